// SPDX-License-Identifier: MIT
// The prefix of log lines: date, name, process and thread.
#include "foundation/process/LinePrefix.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "foundation/process/NSProcessInfo.h"
#include "foundation/system/System.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"

using namespace ZQFoundation;
using detail::Instant;
using detail::LinePrefix;
using detail::LinePrefixCache;
using detail::processIdentity;

namespace {

/// What is written before the end of a buffer, which nothing else of it shows.
template <class Write>
std::string writtenBefore(std::size_t room, const Write& write) {
    std::string buffer(room + 1, '#');
    char* const end = buffer.data() + room;
    char* const start = write(end);
    EXPECT_EQ(*end, '#');
    return std::string(start, end);
}

std::string plain(const LinePrefix& prefix) {
    return writtenBefore(LinePrefix::roomFor(prefix.process),
                         [&](char* end) { return prefix.writeBefore(end); });
}

std::string cached(LinePrefixCache& prefixes, const LinePrefix& prefix) {
    return writtenBefore(LinePrefix::roomFor(prefix.process),
                         [&](char* end) { return prefixes.writeBefore(end, prefix); });
}

std::string hexOf(std::uint64_t number) {
    std::string text;
    for (; number != 0; number >>= 4) {
        text.insert(text.begin(), "0123456789abcdef"[number & 15]);
    }
    return text;
}

/// Runs the body in a child, because a process name that a host has set cannot be unset.
template <class Body>
void inChildNamed(const std::string& name, const Body& body) {
    kit::expectInChild([&] {
        NSProcessInfo::processInfo().setProcessName(name);
        body();
    });
}

constexpr Instant moment{1709647629, 42000000};

TEST(LinePrefix, isDateNameProcessAndThread) {
    const kit::TimeZone zone("UTC0");
    inChildNamed("MyApp", [] {
        EXPECT_EQ(plain({processIdentity(), moment}),
                  "2024-03-05 14:07:09.042 MyApp[" + std::to_string(detail::system::processIdentifier()) +
                      ":" + hexOf(detail::system::threadIdentifier()) + "] ");
    });
}

TEST(LinePrefixCache, returnsWhatThePrefixWouldWrite) {
    LinePrefixCache prefixes;
    const std::vector<std::int64_t> seconds{moment.seconds,     moment.seconds, moment.seconds + 1,
                                            moment.seconds + 1, moment.seconds, -62135596801};
    const auto expectSame = [&] {
        for (const char* const zoneName : {"UTC0", "AAA-3"}) {
            const kit::TimeZone zone(zoneName);
            for (const std::int64_t second : seconds) {
                for (const std::int32_t millisecond : {0, 7, 42, 999}) {
                    const LinePrefix prefix{processIdentity(), {second, millisecond * 1000000}};
                    EXPECT_EQ(cached(prefixes, prefix), plain(prefix)) << zoneName;
                }
            }
        }
    };
    kit::expectInChild([&] {
        for (const std::string& name : {std::string("a"), std::string("MyApp"), std::string(300, 'n')}) {
            NSProcessInfo::processInfo().setProcessName(name);
            expectSame();
        }
    });
}

TEST(LinePrefixCache, keepsThreadsApart) {
    LinePrefixCache prefixes;
    for (int i = 0; i < 40; ++i) {
        std::thread([&] {
            const LinePrefix prefix{processIdentity(), moment};
            EXPECT_EQ(cached(prefixes, prefix), plain(prefix));
            EXPECT_EQ(cached(prefixes, prefix), plain(prefix));
        }).join();
    }
}

} // namespace
