// SPDX-License-Identifier: MIT
// The lines of the log as a window has them.
#include "examples/Notes/model/LogLines.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "tests/kit/Threads.h"

using namespace ZQFoundation;
using notes::LogCapture;
using notes::LogLines;

namespace {

std::vector<std::string> linesSince(std::size_t& next) {
    std::vector<std::string> lines;
    next = LogLines::shared().copySince(next, lines);
    return lines;
}

std::size_t endOfLines() {
    std::size_t next = 0;
    linesSince(next);
    return next;
}

} // namespace

TEST(LogLines, areThoseOfTheLog) {
    LogLines::shared().observe();
    std::size_t next = endOfLines();
    ZQLog::log("one");
    ZQLog::logWithFormat("%d", 2);
    const std::vector<std::string> lines = linesSince(next);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NE(lines[0].find("] one"), std::string::npos) << lines[0];
    EXPECT_NE(lines[1].find("] 2"), std::string::npos) << lines[1];
    EXPECT_TRUE(linesSince(next).empty());
}

TEST(LogLines, theOldestAreDropped) {
    LogLines::shared().observe();
    std::size_t next = endOfLines();
    const std::size_t start = next;
    for (std::size_t count = 0; count < LogLines::maxCount + 5; ++count) {
        ZQLog::logWithFormat("%zu", count);
    }
    const std::vector<std::string> lines = linesSince(next);
    EXPECT_EQ(lines.size(), LogLines::maxCount);
    EXPECT_EQ(next, start + LogLines::maxCount + 5);
    EXPECT_NE(lines.front().find("] 5"), std::string::npos) << lines.front();
}

TEST(LogLines, aCaptureHoldsTheMessagesOfItsThread) {
    LogLines::shared().observe();
    ZQLog::log("before");
    const LogCapture capture;
    ZQLog::log("within");
    std::thread([] { ZQLog::log("of another thread"); }).join();
    EXPECT_EQ(capture.messages(), std::vector<std::string>{"within"});
}

TEST(LogLinesConcurrency, listenersAndThreadsThatLog) {
    constexpr int perThread = 500;
    LogLines::shared().observe();
    std::size_t next = endOfLines();
    std::atomic<int> heard = 0;
    LogLines::shared().setListener([&] { ++heard; });
    std::size_t seen = 0;
    {
        const kit::Threads threads(4, [](std::size_t number) {
            for (int count = 0; count < perThread; ++count) {
                ZQLog::logWithFormat("thread %zu", number);
            }
        });
        for (int look = 0; look < 100; ++look) {
            seen += linesSince(next).size();
        }
    }
    LogLines::shared().setListener({});
    seen += linesSince(next).size();
    EXPECT_EQ(seen, 4U * perThread);
    EXPECT_EQ(heard, 4 * perThread);
    ZQLog::log("nobody listens");
    EXPECT_EQ(heard, 4 * perThread);
}
