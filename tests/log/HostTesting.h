// SPDX-License-Identifier: MIT
// What the tests of the promises to a host share: something else in the place of standard error, lines that
// can be checked byte by byte, children that are waited for only so long.
#ifndef ZQFOUNDATION_TESTS_LOG_HOSTTESTING_H
#define ZQFOUNDATION_TESTS_LOG_HOSTTESTING_H

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZQ_TEST_ADDRESS_SANITIZER 1
#elif __has_feature(thread_sanitizer)
#define ZQ_TEST_THREAD_SANITIZER 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define ZQ_TEST_ADDRESS_SANITIZER 1
#elif defined(__SANITIZE_THREAD__)
#define ZQ_TEST_THREAD_SANITIZER 1
#endif

namespace hosttest {

#if defined(ZQ_TEST_ADDRESS_SANITIZER)
inline constexpr const char* buildKind = "address sanitizer";
#elif defined(ZQ_TEST_THREAD_SANITIZER)
inline constexpr const char* buildKind = "thread sanitizer";
#else
inline constexpr const char* buildKind = "plain build";
#endif

/// How much of a work to do: all of it, or less where a sanitizer makes it slow.
constexpr int scaled([[maybe_unused]] int plain, [[maybe_unused]] int underAddressSanitizer,
                     [[maybe_unused]] int underThreadSanitizer) {
#if defined(ZQ_TEST_ADDRESS_SANITIZER)
    return underAddressSanitizer;
#elif defined(ZQ_TEST_THREAD_SANITIZER)
    return underThreadSanitizer;
#else
    return plain;
#endif
}

/// Says in the output how much was really done.
inline void sayScale(const std::string& text) {
    std::printf("[  SCALE   ] %s (%s)\n", text.c_str(), buildKind);
    std::fflush(stdout);
}

inline double secondsNow(clockid_t clock = CLOCK_MONOTONIC) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// A descriptor that is closed with its scope.
class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int number() const noexcept { return number_; }
    void close() {
        if (number_ >= 0) {
            ::close(number_);
            number_ = -1;
        }
    }

private:
    int number_;
};

inline int openToAppend(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
}

/// Standard error is another descriptor for a scope.
class StandardErrorAs {
public:
    explicit StandardErrorAs(int descriptor) : before_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        EXPECT_GE(::dup2(descriptor, STDERR_FILENO), 0) << std::strerror(errno);
    }
    StandardErrorAs(const StandardErrorAs&) = delete;
    StandardErrorAs& operator=(const StandardErrorAs&) = delete;
    ~StandardErrorAs() {
        ::dup2(before_, STDERR_FILENO);
        ::close(before_);
    }

private:
    int before_;
};

/// "2024-03-05 14:07:09.042 Name[1234:5d7f] " taken apart; an empty thread when the line does not begin so.
struct Prefix {
    std::string_view process;
    std::string_view pid;
    std::string_view thread;
    std::size_t length = 0;
};

inline Prefix prefixOf(std::string_view line) {
    constexpr std::string_view shape = "0000-00-00 00:00:00.000 ";
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const bool isDigit = i < line.size() && line[i] >= '0' && line[i] <= '9';
        if (i >= line.size() || (shape[i] == '0' ? !isDigit : line[i] != shape[i])) {
            return {};
        }
    }
    const std::size_t open = line.find('[', shape.size());
    const std::size_t colon = line.find(':', open);
    const std::size_t close = line.find("] ", colon);
    if (open == line.npos || colon == line.npos || close == line.npos || open == shape.size()) {
        return {};
    }
    const std::string_view pid = line.substr(open + 1, colon - open - 1);
    const std::string_view thread = line.substr(colon + 1, close - colon - 1);
    if (pid.empty() || pid.find_first_not_of("0123456789") != pid.npos || thread.empty() ||
        thread.find_first_not_of("0123456789abcdef") != thread.npos) {
        return {};
    }
    return {line.substr(shape.size(), open - shape.size()), pid, thread, close + 2};
}

/// A filling in which every byte shows whether it is where it belongs.
inline std::string_view filling(std::size_t start, std::size_t length) {
    static const std::string pattern = [] {
        std::string bytes;
        while (bytes.size() < (std::size_t{1} << 20)) {
            bytes += "abcdefghijklmnopqrstuvwxyz0123456789-";
        }
        return bytes;
    }();
    return std::string_view(pattern).substr(start % 37, length);
}

/// The text of one line: who wrote it, its number among that writer's lines, and a filling of the length that
/// it states.
inline std::string numberedText(int writer, int sequence, std::size_t length) {
    const std::size_t start = static_cast<std::size_t>(writer) * 7 + static_cast<std::size_t>(sequence);
    return std::to_string(writer) + ' ' + std::to_string(sequence) + ' ' + std::to_string(length) + ' ' +
           std::string(filling(start, length));
}

/// Takes output in pieces and checks each line of `numberedText`: whole, after a prefix of this process, the
/// writer's lines complete, once each and in their order. `labels` are what may precede the text.
class LineChecker {
public:
    explicit LineChecker(std::vector<std::string> labels = {}) : labels_(std::move(labels)) {}

    void take(std::string_view bytes) {
        for (std::size_t end = bytes.find('\n'); end != bytes.npos; end = bytes.find('\n')) {
            if (rest_.empty()) {
                checkLine(bytes.substr(0, end));
            } else {
                rest_.append(bytes.substr(0, end));
                checkLine(rest_);
                rest_.clear();
            }
            bytes.remove_prefix(end + 1);
        }
        rest_.append(bytes);
    }

    /// Reads until the end; a terminal reports its end as an error.
    void takeAllOf(int descriptor) {
        std::string buffer(std::size_t{1} << 16, '\0');
        for (;;) {
            const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
            if (count > 0) {
                take(std::string_view(buffer).substr(0, static_cast<std::size_t>(count)));
            } else if (count == 0 || errno != EINTR) {
                return;
            }
        }
    }

    /// What was wrong, the first thing of all; empty when each of `writers` has written `lines` lines.
    std::string verdict(int writers, int lines) const {
        if (!wrong_.empty()) {
            return wrong_;
        }
        if (!rest_.empty()) {
            return "a line without an end: " + rest_.substr(0, 200);
        }
        if (next_.size() != static_cast<std::size_t>(writers)) {
            return std::to_string(next_.size()) + " writers instead of " + std::to_string(writers);
        }
        for (const auto& [writer, next] : next_) {
            if (next != lines) {
                return "writer " + std::to_string(writer) + " wrote " + std::to_string(next) + " lines";
            }
        }
        return threads_.size() == next_.size() ? std::string() : "writers share thread identifiers";
    }

private:
    void checkLine(std::string_view line) {
        if (wrong_.empty() && !isGood(line)) {
            wrong_ = "after " + std::to_string(good_) + " good lines: " + std::string(line.substr(0, 200));
        }
        ++good_;
    }

    bool isGood(std::string_view line) {
        const Prefix prefix = prefixOf(line);
        if (prefix.length == 0 || prefix.pid != pid_) {
            return false;
        }
        std::string_view text = line.substr(prefix.length);
        for (const std::string& label : labels_) {
            if (text.substr(0, label.size()) == label) {
                text.remove_prefix(label.size());
                break;
            }
        }
        int writer = 0;
        int sequence = 0;
        unsigned length = 0;
        if (std::sscanf(std::string(text.substr(0, 40)).c_str(), "%d %d %u ", &writer, &sequence, &length) !=
                3 ||
            text != numberedText(writer, sequence, length) || next_[writer] != sequence) {
            return false;
        }
        ++next_[writer];
        return threads_.emplace(std::string(prefix.thread), writer).first->second == writer;
    }

    std::vector<std::string> labels_;
    std::string pid_ = std::to_string(::getpid());
    std::string rest_;
    std::string wrong_;
    std::map<int, int> next_;
    std::map<std::string, int> threads_;
    long good_ = 0;
};

/// The text lines of a file without their prefixes; a line without one is in angle brackets.
inline std::vector<std::string> textsIn(std::string_view bytes) {
    std::vector<std::string> texts;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view line = bytes.substr(0, end);
        const Prefix prefix = prefixOf(line);
        const std::string text(line.substr(prefix.length));
        texts.push_back(prefix.length == 0 || end == bytes.npos ? "<" + text + ">" : text);
        bytes.remove_prefix(end == bytes.npos ? bytes.size() : end + 1);
    }
    return texts;
}

/// How the child ended: empty when it exited with 0. One that takes longer is killed.
inline std::string endOf(pid_t child, double seconds = 120) {
    const double deadline = secondsNow() + seconds;
    int status = 0;
    for (;;) {
        const pid_t ended = ::waitpid(child, &status, WNOHANG);
        if (ended == child) {
            break;
        }
        if (ended < 0 && errno != EINTR) {
            return std::string("cannot be waited for: ") + std::strerror(errno);
        }
        if (secondsNow() > deadline) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            return "hangs";
        }
        ::usleep(200);
    }
    if (WIFSIGNALED(status)) {
        return "killed by signal " + std::to_string(WTERMSIG(status));
    }
    return WEXITSTATUS(status) == 0 ? std::string() : "exit code " + std::to_string(WEXITSTATUS(status));
}

/// What a child found wrong, reported to its parent while it runs.
class Findings {
public:
    explicit Findings(int descriptor) noexcept : descriptor_(descriptor) {}

    bool expect(bool holds, const std::string& otherwise) const {
        if (!holds) {
            const std::string line = otherwise + "; ";
            [[maybe_unused]] const ssize_t told = ::write(descriptor_, line.data(), line.size());
        }
        return holds;
    }

private:
    int descriptor_;
};

/// Runs the body in a forked child and returns what it found wrong and, unless it ended well, how it ended.
template <class Body>
std::string inChild(const Body& body, double seconds = 120) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return "no pipe";
    }
    const pid_t child = ::fork();
    if (child == 0) {
        // Out of the way of the lowest numbers, which some bodies want to see free.
        const int telling = ::fcntl(ends[1], F_DUPFD_CLOEXEC, 100);
        ::close(ends[0]);
        ::close(ends[1]);
        body(Findings(telling));
        ::_exit(0);
    }
    ::close(ends[1]);
    const std::string end = endOf(child, seconds);
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    char buffer[4096];
    const ssize_t count = ::read(ends[0], buffer, sizeof buffer);
    ::close(ends[0]);
    return std::string(buffer, count > 0 ? static_cast<std::size_t>(count) : 0) + end;
}

/// Runs a program with its standard error on a descriptor; how it ended.
inline std::string run(std::vector<std::string> words, int standardError, double seconds = 120) {
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(standardError, STDERR_FILENO);
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    return endOf(child, seconds);
}

/// A program that is built beside these tests.
inline std::string childProgram(const std::string& name) { return ZQ_TEST_BINARY_DIR "/tests/log/" + name; }

} // namespace hosttest

#endif
