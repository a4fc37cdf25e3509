// SPDX-License-Identifier: MIT
// What the tests of the log share: the monitor seen by other threads, numbered lines, the amount of work.
#ifndef ZQFOUNDATION_TESTS_LOG_LOGSCENE_H
#define ZQFOUNDATION_TESTS_LOG_LOGSCENE_H

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/system/System.h"
#include "log/ZQLog.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Settings.h"
#include "tests/kit/StandardError.h"
#include "tests/kit/Threads.h"

namespace ZQFoundation::logscene {

using Texts = std::vector<std::string>;

/// How much of a work to do: all of it, or less where a sanitizer makes it slow.
constexpr int scaled(int plain, int underAddressSanitizer, int underThreadSanitizer) {
    return kit::hasAddressSanitizer  ? underAddressSanitizer
           : kit::hasThreadSanitizer ? underThreadSanitizer
                                     : plain;
}

/// Says in the output how much was really done.
inline void sayScale(const std::string& text) {
    std::printf("[  SCALE   ] %s%s\n", text.c_str(), kit::isSanitized ? " (sanitizer)" : "");
    std::fflush(stdout);
}

inline std::string hexText(std::uint64_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(number));
    return text;
}

inline std::string addressText(const void* address) {
    return "0x" + hexText(reinterpret_cast<std::uintptr_t>(address));
}

/// The texts of the lines in a file.
inline Texts textsOf(const std::string& path) { return kit::textsIn(kit::contentsOf(path)); }

/// A program that is built beside these tests.
inline std::string childProgram(const std::string& name) { return ZQ_TEST_BINARY_DIR "/tests/log/" + name; }

/// Polls the condition until it holds, ten seconds at most; returns whether it does.
template <class Condition>
bool holdsSoon(const Condition& condition) {
    for (int milliseconds = 0; milliseconds < 10'000; ++milliseconds) {
        if (condition()) {
            return true;
        }
        ::usleep(1000);
    }
    return false;
}

/// An action in a thread of its own, waited for at the end.
class Background {
public:
    template <class Action>
    explicit Background(Action action)
        : thread_([this, action] {
              thread = detail::system::threadIdentifier();
              action();
              done_ = true;
          }) {}
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;
    ~Background() { thread_.join(); }

    bool isDone() const { return done_; }
    bool isDoneSoon() const {
        return holdsSoon([this] { return isDone(); });
    }
    /// Whether the action waits, asleep, for somebody else.
    bool waitsSoon() const {
        return holdsSoon([this] { return isDone() || isAsleep(); }) && !isDone();
    }

private:
    bool isAsleep() const {
        const std::string status = kit::contentsOf("/proc/self/task/" + std::to_string(thread) + "/stat");
        return thread != 0 && status.find(") S ") != std::string::npos;
    }

    std::atomic<std::uint64_t> thread = 0;
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

/// Whether another thread gets the monitor of ZQLog now. Abandons that thread when it does not.
inline bool anotherThreadCanTakeTheMonitor() {
    // Not waited for: it could be this thread's own caller that keeps the monitor.
    const auto taken = std::make_shared<std::atomic<bool>>(false);
    std::thread([taken] {
        const ZQLog::Synchronized scope;
        *taken = true;
    }).detach();
    return holdsSoon([&taken] { return taken->load(); });
}

/// Whether the action, in a thread of its own, ends while this thread holds the monitor.
template <class Action>
bool finishesWhileTheMonitorIsHeld(const Action& action) {
    std::unique_ptr<Background> background;
    const ZQLog::Synchronized held;
    background = std::make_unique<Background>(action);
    return background->isDoneSoon();
}

/// Whether the action waits in its thread as long as this one holds the monitor.
template <class Action>
bool waitsWhileTheMonitorIsHeld(const Action& action) {
    std::unique_ptr<Background> background;
    bool waited = false;
    {
        const ZQLog::Synchronized held;
        background = std::make_unique<Background>(action);
        waited = background->waitsSoon();
    }
    return background->isDoneSoon() && waited;
}

/// Not a lambda, whose megabyte the compiler would try to make, for seconds in each source.
inline std::string makeFilling() {
    std::string bytes;
    while (bytes.size() < (std::size_t{1} << 20)) {
        bytes += "abcdefghijklmnopqrstuvwxyz0123456789-";
    }
    return bytes;
}

/// A filling in which every byte shows whether it is where it belongs.
inline std::string_view filling(std::size_t start, std::size_t length) {
    static const std::string pattern = makeFilling();
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
    explicit LineChecker(Texts labels = {}) : labels_(std::move(labels)) {}

    void take(std::string_view bytes) {
        for (std::size_t end = bytes.find('\n'); end != bytes.npos; end = bytes.find('\n')) {
            rest_.append(bytes.substr(0, end));
            checkLine(rest_);
            rest_.clear();
            bytes.remove_prefix(end + 1);
        }
        rest_.append(bytes);
    }

    /// Reads until the end, this many bytes at a time; a terminal reports its end as an error. `pause` is
    /// called after each.
    template <class Pause>
    void takeAllOf(int descriptor, std::size_t size, const Pause& pause) {
        std::string buffer(size, '\0');
        for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), size)) > 0;) {
            take(std::string_view(buffer).substr(0, static_cast<std::size_t>(count)));
            pause();
        }
    }
    void takeAllOf(int descriptor) {
        takeAllOf(descriptor, std::size_t{1} << 16, [] {});
    }

    /// What was wrong, the first thing of all; empty when each of `writers` has written `lines` lines.
    std::string verdict(int writers, int lines) const {
        if (!wrong_.empty() || !rest_.empty()) {
            return wrong_ + (rest_.empty() ? "" : "; a line without an end: " + rest_.substr(0, 200));
        }
        if (next_.size() != static_cast<std::size_t>(writers)) {
            return std::to_string(next_.size()) + " writers instead of " + std::to_string(writers);
        }
        for (const auto& [writer, next] : next_) {
            if (next != lines) {
                return "writer " + std::to_string(writer) + " wrote " + std::to_string(next) + " lines";
            }
        }
        return threads_.size() == next_.size() ? "" : "writers share thread identifiers";
    }

private:
    void checkLine(std::string_view line) {
        if (wrong_.empty() && !isGood(line)) {
            wrong_ = "after " + std::to_string(good_) + " good lines: " + std::string(line.substr(0, 200));
        }
        ++good_;
    }

    bool isGood(std::string_view line) {
        const kit::Prefix prefix = kit::readPrefix(line);
        std::string_view text = line.substr(prefix.length);
        for (const std::string& label : labels_) {
            if (text.starts_with(label)) {
                text.remove_prefix(label.size());
                break;
            }
        }
        int writer = 0;
        int sequence = 0;
        unsigned length = 0;
        if (prefix.processNumber != process_ ||
            std::sscanf(std::string(text.substr(0, 40)).c_str(), "%d %d %u ", &writer, &sequence, &length) !=
                3 ||
            text != numberedText(writer, sequence, length) || next_[writer] != sequence) {
            return false;
        }
        ++next_[writer];
        return threads_.emplace(std::string(prefix.threadNumber), writer).first->second == writer;
    }

    Texts labels_;
    std::string process_ = std::to_string(::getpid());
    std::string rest_;
    std::string wrong_;
    std::map<int, int> next_;
    std::map<std::string, int> threads_;
    long good_ = 0;
};

} // namespace ZQFoundation::logscene

#endif
