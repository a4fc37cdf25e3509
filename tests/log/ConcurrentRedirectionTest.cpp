// SPDX-License-Identifier: MIT
// Redirection of standard error while other threads log and open files of their own. The saved descriptor is
// the process's, so each test needs a process to itself; the runner gives every test about threads its own.
#include <array>
#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "log/ZQLog.h"
#include "tests/log/LogTestSupport.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;

namespace {

/// Descriptor 2 redirected to a file of the test's own; restored at the end, whatever was done with it.
class StandardErrorScene {
public:
    explicit StandardErrorScene(const std::string& path)
        : before_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        EXPECT_GE(file, 0);
        ::dup2(file, STDERR_FILENO);
        ::close(file);
    }
    StandardErrorScene(const StandardErrorScene&) = delete;
    StandardErrorScene& operator=(const StandardErrorScene&) = delete;
    ~StandardErrorScene() {
        ::dup2(before_, STDERR_FILENO);
        ::close(before_);
    }

private:
    int before_;
};

std::vector<std::string> linesOf(const std::string& path) {
    const std::string bytes = scene::contentsOf(path);
    EXPECT_TRUE(bytes.empty() || bytes.back() == '\n') << path << " ends within a line";
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < bytes.size();) {
        const std::size_t end = bytes.find('\n', start);
        lines.push_back(bytes.substr(start, end - start));
        start = end == std::string::npos ? bytes.size() : end + 1;
    }
    return lines;
}

/// What thread `thread` writes as its line `number`: longer and shorter ones, so that a torn line shows.
std::string lineText(int thread, int number) {
    std::string text = "thread ";
    text.append(std::to_string(thread)).append(" line ").append(std::to_string(number)).append(" ");
    text.append(static_cast<std::size_t>(number % 97), static_cast<char>('a' + thread));
    return text.append(" end");
}

constexpr int loggingThreads = 8;

/// Threads that log until they are asked to stop, and how many lines each has written.
class LoggingThreads {
public:
    LoggingThreads() {
        for (int thread = 0; thread < loggingThreads; ++thread) {
            threads_.emplace_back([this, thread] {
                int number = 0;
                while (!stop_.load(std::memory_order_relaxed) && number < mostLines) {
                    ZQLog::logAlways_log(true, lineText(thread, number++));
                }
                counts_[static_cast<std::size_t>(thread)] = number;
            });
        }
    }
    LoggingThreads(const LoggingThreads&) = delete;
    LoggingThreads& operator=(const LoggingThreads&) = delete;
    ~LoggingThreads() { finish(); }

    const std::array<int, loggingThreads>& finish() {
        stop_ = true;
        for (std::thread& thread : threads_) {
            if (thread.joinable()) {
                thread.join();
            }
        }
        return counts_;
    }

private:
    static constexpr int mostLines = 20000;

    std::atomic<bool> stop_ = false;
    std::array<int, loggingThreads> counts_{};
    std::vector<std::thread> threads_;
};

/// The texts of all lines in the files, and how often each occurs. A line without a whole prefix fails the
/// test.
std::map<std::string, int> textsIn(const std::vector<std::string>& paths) {
    std::map<std::string, int> texts;
    for (const std::string& path : paths) {
        for (const std::string& line : linesOf(path)) {
            const auto prefix = logtest::readPrefix(line);
            EXPECT_TRUE(prefix) << path << ": " << line;
            if (prefix) {
                ++texts[line.substr(prefix->length)];
            }
        }
    }
    return texts;
}

TEST(ConcurrentRedirection, putsEveryLineWholeIntoExactlyOnePlace) {
    const scene::Folder folder;
    std::vector<std::string> paths{folder / "origin"};
    std::map<std::string, int> texts;
    std::array<int, loggingThreads> counts{};
    {
        const StandardErrorScene standardError(paths[0]);
        LoggingThreads threads;
        for (int change = 0; change < 1000; ++change) {
            std::string path = folder / "target";
            path.append(std::to_string(change % 10)).append(".log");
            if (change < 10) {
                paths.push_back(path);
            }
            ZQLog::setOptionalLogFilePath(path);
            std::this_thread::yield();
        }
        ZQLog::clearLogFilePath();
        counts = threads.finish();
    }
    texts = textsIn(paths);
    std::size_t expected = 0;
    for (int thread = 0; thread < loggingThreads; ++thread) {
        const int count = counts[static_cast<std::size_t>(thread)];
        EXPECT_GT(count, 0) << "thread " << thread;
        expected += static_cast<std::size_t>(count);
        for (int number = 0; number < count; ++number) {
            const std::string text = lineText(thread, number);
            ASSERT_EQ(texts[text], 1) << text;
        }
    }
    EXPECT_EQ(texts.size(), expected) << "lines that nobody wrote";
}

TEST(ConcurrentRedirection, leavesTheDocumentsOfOtherThreadsAlone) {
    const scene::Folder folder;
    const std::string loop = folder / "loop";
    ASSERT_EQ(::symlink(loop.c_str(), loop.c_str()), 0);
    const std::array<std::string, 4> targets{folder / "missing/x.log", loop, folder / "good.log",
                                             folder.path()};
    const StandardErrorScene standardError(folder / "origin");
    LoggingThreads threads;
    std::atomic<bool> stop = false;
    const std::string content(100, 'd');
    int documents = 0;
    std::thread host([&] {
        for (; !stop || documents < 50; ++documents) {
            std::string path = folder / "document";
            path.append(std::to_string(documents % 50));
            const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
            if (file < 0 || ::write(file, content.data(), content.size()) != 100 || ::close(file) != 0) {
                ADD_FAILURE() << path;
                return;
            }
        }
    });
    for (int change = 0; change < 1000; ++change) {
        ZQLog::setOptionalLogFilePath(targets[static_cast<std::size_t>(change) % targets.size()]);
    }
    stop = true;
    host.join();
    threads.finish();
    for (int number = 0; number < 50; ++number) {
        std::string path = folder / "document";
        path.append(std::to_string(number));
        EXPECT_EQ(scene::contentsOf(path), content) << path;
    }
    for (const std::string& line : linesOf(folder / "good.log")) {
        EXPECT_TRUE(logtest::readPrefix(line)) << line;
    }
}

} // namespace
