// SPDX-License-Identifier: MIT
// The latest lines of the log, for a window.
#ifndef ZQFOUNDATION_MODEL_LOGLINES_H
#define ZQFOUNDATION_MODEL_LOGLINES_H

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <ZQFoundation/ZQFoundation.h>

namespace notes {

/// Keeps the latest lines that were written to the log. Any thread.
class LogLines {
public:
    /// At most this many lines are kept.
    static constexpr std::size_t maxCount = 10000;

    /// The one object, never destroyed: a thread may log as long as the process lives.
    static LogLines& shared();

    /// From now on each line of the log is kept.
    void observe();

    /// Called after each line, in the thread that logged; an empty function removes the listener. An earlier
    /// listener is no longer being called when this returns, so a listener must not call it.
    void setListener(std::function<void()> listener);

    /// Appends the lines from number `next` on, counted from the first one ever, as far as they are still
    /// kept. Returns the number of the line that comes next.
    std::size_t copySince(std::size_t next, std::vector<std::string>& lines) const;

private:
    LogLines() = default;
    void add(const ZQFoundation::ZQLogLine& line);

    mutable std::mutex mutex_;
    std::deque<std::string> lines_;
    std::size_t dropped_ = 0;
    std::mutex listenerMutex_;
    std::function<void()> listener_;
};

/// Collects the messages, without the prefixes of their lines, that this thread logs while it lives. One at
/// a time in a thread.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The messages until now.
    const std::vector<std::string>& messages() const { return messages_; }

private:
    std::vector<std::string> messages_;
};

} // namespace notes

#endif
