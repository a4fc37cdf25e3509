// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/Screen.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace ZQFoundation::zqmigrate {

namespace {

constexpr int redrawMilliseconds = 100;
constexpr int lookMilliseconds = 100;      ///< between looks for signals while a reader takes nothing
constexpr int patienceMilliseconds = 2000; ///< with such a reader after a signal
constexpr std::size_t narrowestBar = 5;
constexpr std::size_t widestBar = 40;

std::int64_t seconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec);
}

bool canDrawBars() {
    const char* const kind = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) == 1 && kind != nullptr && *kind != '\0' && std::strcmp(kind, "dumb") != 0;
}

/// The terminal belongs to another program while this one works in the background.
bool isInBackground() {
    const pid_t group = ::tcgetpgrp(STDERR_FILENO);
    return group > 0 && group != ::getpgrp();
}

std::size_t columnCount() {
    winsize size{};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return isKnown ? size.ws_col : 80;
}

std::string twoDigits(std::int64_t number) {
    const std::string digits = std::to_string(number);
    return digits.size() < 2 ? std::string("0").append(digits) : digits;
}

} // namespace

bool writeAll(int descriptor, const std::string& bytes, const Interruption* interruption) {
    std::size_t written = 0;
    int waited = 0;
    while (written < bytes.size()) {
        pollfd room{descriptor, POLLOUT, 0};
        if (::poll(&room, 1, interruption != nullptr ? lookMilliseconds : -1) == 0) {
            waited = interruption->hasCome() ? waited + lookMilliseconds : 0;
            if (waited > patienceMilliseconds) {
                return false;
            }
            continue;
        }
        waited = 0;
        // Of more than this, a pipe with some room may take a part and then wait, deaf to held back signals.
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

Screen::Screen(bool wantsBar, const Interruption& interruption)
    : interruption_(interruption), start_(seconds()) {
    if (!wantsBar || !canDrawBars() || ::pipe(stop_) != 0) {
        return;
    }
    // No copy of an item has to do with it.
    ::fcntl(stop_[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(stop_[1], F_SETFD, FD_CLOEXEC);
    sharesTerminal_ = ::isatty(STDOUT_FILENO) == 1;
    try {
        thread_ = std::thread(&Screen::keepDrawing, this);
    } catch (const std::system_error&) {
        // The work matters more than the bar.
        sharesTerminal_ = false;
    }
}

void Screen::write(const std::string& text) {
    if (!sharesTerminal_) {
        writeLines(text); // no lock: a slow reader does not hold the bar up
        return;
    }
    const std::lock_guard guard(mutex_);
    waiting_.append(text);
}

void Screen::setTotal(std::uint64_t total, bool isComplete) {
    const std::lock_guard guard(mutex_);
    progress_.total = total;
    progress_.isTotalKnown = isComplete;
}

void Screen::advance(bool isFailure) {
    const std::lock_guard guard(mutex_);
    ++progress_.done;
    progress_.failed += isFailure ? 1 : 0;
}

void Screen::finish() {
    if (thread_.joinable()) {
        ::close(stop_[1]);
        thread_.join();
        ::close(stop_[0]);
    }
    sharesTerminal_ = false;
}

void Screen::keepDrawing() {
    pollfd stop{stop_[0], POLLIN, 0};
    do {
        const std::lock_guard guard(mutex_);
        draw();
    } while (::poll(&stop, 1, redrawMilliseconds) <= 0);
    const std::lock_guard guard(mutex_);
    erase();
    writeWaiting();
}

void Screen::draw() {
    if (!waiting_.empty()) {
        erase();
        writeWaiting();
    }
    if (!isInBackground()) {
        writeAll(STDERR_FILENO, std::string("\r").append(bar(columnCount())).append("\x1B[K"),
                 &interruption_);
        isShown_ = true;
    }
}

void Screen::erase() {
    if (isShown_) {
        writeAll(STDERR_FILENO, "\r\x1B[K", &interruption_);
        isShown_ = false;
    }
}

void Screen::writeWaiting() {
    if (!waiting_.empty()) {
        writeLines(waiting_);
        waiting_.clear();
    }
}

void Screen::writeLines(const std::string& text) {
    isBroken_ = isBroken_ || !writeAll(STDOUT_FILENO, text, &interruption_);
}

/// "[####......]  45%  450 of 1000, 2 failed, 0:12", never as wide as the terminal: some would begin a new
/// line.
std::string Screen::bar(std::size_t columns) const {
    const std::uint64_t total = progress_.total > progress_.done ? progress_.total : progress_.done;
    const std::int64_t passed = seconds() - start_;
    std::string text;
    if (progress_.isTotalKnown) {
        text.append(std::to_string(progress_.done)).append(" of ").append(std::to_string(total));
    } else {
        text.append("counting: ").append(std::to_string(total));
    }
    if (progress_.failed != 0) {
        text.append(", ").append(std::to_string(progress_.failed)).append(" failed");
    }
    text.append(", ").append(std::to_string(passed / 60)).append(":").append(twoDigits(passed % 60));
    if (interruption_.hasCome()) {
        text.append(", stopping");
    }
    const std::size_t room = columns > 1 ? columns - 1 : 1;
    const std::size_t others = text.size() + std::strlen("[]  99%  ");
    if (progress_.isTotalKnown && room >= others + narrowestBar) {
        const std::size_t width = room - others < widestBar ? room - others : widestBar;
        const double part = total == 0 ? 0 : static_cast<double>(progress_.done) / static_cast<double>(total);
        const auto filled = static_cast<std::size_t>(part * static_cast<double>(width));
        std::string percent = std::to_string(static_cast<int>(part * 100));
        percent.insert(0, percent.size() < 3 ? 3 - percent.size() : 0, ' ');
        std::string front("[");
        front.append(filled, '#').append(width - filled, '.').append("] ").append(percent).append("%  ");
        text.insert(0, front);
    }
    return text.substr(0, room);
}

} // namespace ZQFoundation::zqmigrate
