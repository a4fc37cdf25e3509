// SPDX-License-Identifier: MIT
// Writes a line to descriptor 2, whatever that is.
// A line is one write under a lock. What can go wrong is a write that ends early: the rest is written as
// long as that makes sense, and a line that stays incomplete is ended before the next one.
#include "foundation/process/LineWriter.h"

#include <cerrno>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/process/LineObserver.h"
#include "foundation/process/LinePrefix.h"
#include "foundation/process/StandardErrorWrite.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Lock.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail {

namespace {

/// Lines of different threads must not tear on pipes, terminals and sockets, where long writes are split.
constinit Lock writerLock;

/// Where a line was left incomplete, so that the next one there starts on a new line.
struct TornLine {
    bool isTorn;
    dev_t device;
    ino_t inode;
};

/// Guarded by the lock of the writer, like the kept prefixes.
constinit TornLine tornLine{};

/// Guarded by the lock of the writer.
constinit LinePrefixCache prefixCache;

/// False if waiting for the descriptor is useless.
bool waitUntilWritable() noexcept {
    pollfd descriptor{STDERR_FILENO, POLLOUT, 0};
    // Without a time limit: a line is not dropped because its reader is slow.
    const int ready = poll(&descriptor, 1, -1);
    return ready >= 0 ? (descriptor.revents & POLLNVAL) == 0 : errno == EINTR;
}

/// Writes all bytes, despite interruptions, short writes and full pipes. Returns the number written.
std::size_t writeAll(const char* bytes, std::size_t count, std::int64_t second) noexcept {
    std::size_t written = 0;
    while (written < count) {
        const std::ptrdiff_t step = writeToStandardError(bytes + written, count - written, second);
        // An interrupted write is repeated, a full pipe waited for; anything else would fail again.
        if (step > 0) {
            written += static_cast<std::size_t>(step);
        } else if (step == 0 || (step != -EINTR && step != -EAGAIN && step != -EWOULDBLOCK)) {
            break;
        } else if (step != -EINTR && !waitUntilWritable()) {
            break;
        }
    }
    return written;
}

void rememberTear() noexcept {
    // By device and inode, since descriptor 2 may be redirected before the next line.
    struct stat status {};
    if (fstat(STDERR_FILENO, &status) == 0) {
        tornLine = {true, status.st_dev, status.st_ino};
    }
}

/// Whether descriptor 2 refers to the place where a line was left incomplete, and that still exists. If not,
/// the line no longer matters.
bool leadsToTornLine() noexcept {
    struct stat status {};
    // An emptied file has no incomplete line any more.
    tornLine.isTorn = fstat(STDERR_FILENO, &status) == 0 && status.st_dev == tornLine.device &&
                      status.st_ino == tornLine.inode && (!S_ISREG(status.st_mode) || status.st_size != 0);
    return tornLine.isTorn;
}

/// Before the bytes there is room for one more: the line feed that completes an incomplete line is written
/// together with the next line, or not at all.
void writeWhole(char* bytes, std::size_t count, std::int64_t second) noexcept {
    const CallerState callerState;
    // Only looked at after a tear, so an ordinary line pays nothing.
    const bool completes = tornLine.isTorn && leadsToTornLine();
    if (completes) {
        *--bytes = '\n';
        ++count;
    }
    const std::size_t written = writeAll(bytes, count, second);
    if (written == 0) {
        return;
    }
    tornLine.isTorn = false;
    // If only the line feed was written, the old line is complete, and the new one has not begun.
    if (written != count && !(completes && written == 1)) {
        rememberTear();
    }
}

/// After a first write that did not write the whole line: writes the rest, or all of it again.
/// Kept out of the common path, which it would make larger.
[[gnu::noinline]] void continueLine(char* bytes, std::size_t count, std::ptrdiff_t written,
                                    std::int64_t second) noexcept {
    if (written <= 0) {
        return writeWhole(bytes, count, second);
    }
    const CallerState callerState;
    const auto start = static_cast<std::size_t>(written);
    if (writeAll(bytes + start, count - start, second) != count - start) {
        rememberTear();
    }
}

} // namespace

LogLine::LogLine() : process_(processIdentity()) {
    // One more for the line feed that completes an incomplete line.
    // The prefix is written last, when the line is sent, so that its time is that of the write.
    messageStart_ = 1 + LinePrefix::roomFor(process_);
    text_.reserveAscii(messageStart_);
    text_.commitAscii(messageStart_);
}

/// Returns the start of the line, which ends at `end`.
char* LogLine::writeBytes(char* message, const char* end) noexcept {
    const LinePrefix prefix{process_, roundedToMilliseconds(currentInstant())};
    const std::int64_t second = prefix.time.seconds;
    const Guard guard(writerLock);
    if (writerLock.isHeldAgain()) { // in a signal handler that interrupted this write
        const CallerState callerState;
        // Sent at once, within the interrupted line, because waiting for that would never end; and not from
        // the kept prefixes, which the interrupted write may be changing.
        char* const start = prefix.writeBefore(message);
        writeAll(start, static_cast<std::size_t>(end - start), second);
        return start;
    }
    char* const start = prefixCache.writeBefore(message, prefix);
    const auto count = static_cast<std::size_t>(end - start);
    if (tornLine.isTorn) [[unlikely]] {
        writeWhole(start, count, second);
        return start;
    }
    // The common path: one system call, without saving or restoring anything.
    const std::ptrdiff_t written = writeToStandardError(start, count, second);
    if (written != static_cast<std::ptrdiff_t>(count)) [[unlikely]] {
        continueLine(start, count, written, second);
    }
    return start;
}

void LogLine::write() {
    // Only now, because a pair may have come together from two pieces.
    text_.replaceUnpairedSurrogates();
    if (text_.length() == messageStart_ || text_.bytes()[text_.length() - 1] != '\n') {
        text_.appendAscii('\n');
    }
    char* const message = text_.bytes() + messageStart_;
    const char* const end = text_.bytes() + text_.length();
    const char* const start = writeBytes(message, end);
    // After the lock is released: the observer may take time, and may log.
    if (isLineObserved()) [[unlikely]] {
        observeLine({std::string_view(start, static_cast<std::size_t>(end - 1 - start)),
                     std::string_view(message, static_cast<std::size_t>(end - 1 - message))});
    }
}

void writeLine(StringView text) {
    LogLine line;
    line.text().append(text);
    line.write();
}

} // namespace ZQFoundation::detail
