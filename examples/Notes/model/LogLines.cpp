// SPDX-License-Identifier: MIT
// The observer of the log's lines.
#include "LogLines.h"

#include <algorithm>

using namespace ZQFoundation;

namespace notes {

namespace {

/// Where this thread's messages are collected; null while it collects none.
thread_local std::vector<std::string>* captured = nullptr;

} // namespace

LogLines& LogLines::shared() {
    static LogLines* const lines = new LogLines;
    return *lines;
}

void LogLines::observe() {
    ZQLog::setLineObserver(
        [](const ZQLogLine& line, void* context) {
            if (captured != nullptr) {
                captured->emplace_back(line.message);
            }
            static_cast<LogLines*>(context)->add(line);
        },
        this);
}

void LogLines::setListener(std::function<void()> listener) {
    const std::lock_guard lock(listenerMutex_);
    listener_ = std::move(listener);
}

void LogLines::add(const ZQLogLine& line) {
    {
        const std::lock_guard lock(mutex_);
        lines_.emplace_back(line.text);
        if (lines_.size() > maxCount) {
            lines_.pop_front();
            ++dropped_;
        }
    }
    const std::lock_guard lock(listenerMutex_);
    if (listener_) {
        listener_();
    }
}

std::size_t LogLines::copySince(std::size_t next, std::vector<std::string>& lines) const {
    const std::lock_guard lock(mutex_);
    const std::size_t end = dropped_ + lines_.size();
    const std::size_t start = std::min(std::max(next, dropped_), end) - dropped_;
    lines.insert(lines.end(), lines_.begin() + static_cast<std::ptrdiff_t>(start), lines_.end());
    return end;
}

LogCapture::LogCapture() { captured = &messages_; }

LogCapture::~LogCapture() { captured = nullptr; }

} // namespace notes
