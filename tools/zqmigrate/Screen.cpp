// SPDX-License-Identifier: MIT
// Lines on standard output, and the bar on a terminal.
#include "tools/zqmigrate/Screen.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <system_error>

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/zqmigrate/Interruption.h"
#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::tools::zqmigrate {

namespace {

constexpr int lookMilliseconds = 100; ///< between drawings, and between checks for signals while nobody reads
constexpr int maxStallMilliseconds = 2000; ///< with a reader that reads nothing, after a signal
constexpr std::size_t minBar = 5;
constexpr std::size_t maxBar = 40;

/// By a clock that nobody sets.
std::int64_t seconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec;
}

/// Requires a terminal that can return to the start of a line and erase the rest of it.
bool canDrawBars() {
    const char* const kind = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) == 1 && kind != nullptr && *kind != '\0' &&
           std::string_view(kind) != "dumb";
}

/// While this program runs in the background, the terminal belongs to another one.
bool isInBackground() {
    const pid_t group = ::tcgetpgrp(STDERR_FILENO);
    return group > 0 && group != ::getpgrp();
}

/// Queried for each drawing, because windows are resized.
std::size_t columnCount() {
    winsize size{};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return isKnown ? size.ws_col : 80;
}

/// At most 1: files may grow after they were counted.
double partOf(std::uint64_t done, std::uint64_t total) {
    return done >= total ? 1 : static_cast<double>(done) / static_cast<double>(total);
}

/// "1.2 of 3.4 GB", in the unit of the total.
std::string amounts(std::uint64_t done, std::uint64_t total) {
    double factor = 1000;
    const char* units = "kMGT";
    while (static_cast<double>(total) / factor >= 1000 && units[1] != '\0') {
        factor *= 1000;
        ++units;
    }
    return NSString::stringWithFormat("%.1f of %.1f %cB", static_cast<double>(done) / factor,
                                      static_cast<double>(total) / factor, *units)
        .utf8();
}

} // namespace

// Waits for room before each piece, because a write that blocks could not be ended after a signal: handlers
// restart it.
bool writeAll(int descriptor, const std::string& bytes) {
    int waited = 0;
    for (std::size_t written = 0; written < bytes.size();) {
        pollfd room{descriptor, POLLOUT, 0};
        if (::poll(&room, 1, lookMilliseconds) <= 0) {
            waited = signalCount != 0 ? waited + lookMilliseconds : 0;
            if (waited > maxStallMilliseconds) {
                return false;
            }
            continue;
        }
        waited = 0;
        // If a write is larger than this, a pipe with some room may take a part and then block.
        const std::size_t piece = std::min<std::size_t>(bytes.size() - written, PIPE_BUF);
        const ssize_t count = ::write(descriptor, bytes.data() + written, piece);
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
        } else if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK) {
            return false;
        }
    }
    return true;
}

Screen::Screen(bool wantsBar) : start_(seconds()) {
    if (wantsBar && canDrawBars()) {
        try {
            thread_ = std::thread(&Screen::keepDrawing, this);
            sharesTerminal_ = ::isatty(STDOUT_FILENO) == 1;
        } catch (const std::system_error&) {
            // The work matters more than the bar.
        }
    }
}

// If lines and bar share a terminal, the bar is erased first and drawn again below the text by its thread. A
// failure is recorded, and the work continues: half a migration is worse than one without a report.
void Screen::write(const std::string& text) {
    std::unique_lock guard(mutex_, std::defer_lock); // a slow reader elsewhere does not block the bar
    if (sharesTerminal_ && !text.empty()) {
        guard.lock();
        erase();
    }
    isBroken_ = isBroken_ || !writeAll(STDOUT_FILENO, text);
}

void Screen::finish() {
    if (thread_.joinable()) {
        {
            const std::lock_guard guard(mutex_);
            isOver_ = true;
        }
        over_.notify_one();
        thread_.join();
    }
}

// The mutex is held except while waiting, so that lines and bar never mix.
void Screen::keepDrawing() {
    std::unique_lock guard(mutex_);
    do {
        draw();
    } while (!over_.wait_for(guard, std::chrono::milliseconds(lookMilliseconds), [this] { return isOver_; }));
    erase();
}

// A program in the background must not write over the one in the foreground.
void Screen::draw() {
    if (!isInBackground()) {
        writeAll(STDERR_FILENO, "\r" + bar(columnCount()) + "\x1B[K");
        isShown_ = true;
    }
}

void Screen::erase() {
    if (isShown_) {
        writeAll(STDERR_FILENO, "\r\x1B[K");
        isShown_ = false;
    }
}

/// "[####......]  45%  450 of 1,000, 1.2 of 3.4 GB, 2 failed, 0:12", always narrower than the terminal,
/// because some terminals would begin a new line.
std::string Screen::bar(std::size_t columns) const {
    const Progress& now = progress_;
    const std::int64_t passed = seconds() - start_;
    std::string text = now.isTotalKnown
                           ? grouped(now.items) + " of " + grouped(std::max(now.totalItems, now.items))
                           : "counting: " + grouped(now.totalItems);
    if (now.isTotalKnown && now.totalBytes != 0) {
        text += ", " + amounts(now.bytes, std::max(now.totalBytes, now.bytes));
    }
    text += now.failed != 0 ? ", " + grouped(now.failed) + " failed" : "";
    text += NSString::stringWithFormat(", %ld:%02ld", passed / 60, passed % 60).utf8();
    text += signalCount != 0 ? ", stopping" : "";
    const std::size_t room = columns > 1 ? columns - 1 : 1;
    const std::size_t others = text.size() + std::string_view("[]  99%  ").size();
    if (now.isTotalKnown && room >= others + minBar) {
        // An item that has begun counts as done; so for a single item, the bytes decide.
        const double part = std::min(partOf(now.items, now.totalItems), partOf(now.bytes, now.totalBytes));
        const std::size_t width = std::min(room - others, maxBar);
        const auto filled = static_cast<std::size_t>(part * static_cast<double>(width));
        const std::string drawn = std::string(filled, '#') + std::string(width - filled, '.');
        text.insert(0,
                    NSString::stringWithFormat("[%@] %3d%%  ", drawn, static_cast<int>(part * 100)).utf8());
    }
    return text.substr(0, room);
}

} // namespace ZQFoundation::tools::zqmigrate
