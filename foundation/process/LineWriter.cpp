// SPDX-License-Identifier: MIT
// The way of a line into descriptor 2, whatever that is.
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

/// Lines of different threads must not tear on pipes, terminals and sockets, where long writes go out in
/// pieces. In a file in append mode the kernel keeps them whole, and threads need not wait for each other
/// here.
constinit Lock writerLock;

/// Where a line broke off half-way, so that the next one there starts on a line of its own.
struct TornLine {
    bool isTorn;
    dev_t device;
    ino_t inode;
};

constinit TornLine tornLine{}; // guarded by the lock of the writer

bool isTorn() noexcept { return __atomic_load_n(&tornLine.isTorn, __ATOMIC_RELAXED); }
void setTorn(bool isTorn) noexcept { __atomic_store_n(&tornLine.isTorn, isTorn, __ATOMIC_RELAXED); }

constinit KeptLinePrefixes keptPrefixes;

/// False when the descriptor is beyond waiting for.
bool waitUntilWritable() noexcept {
    pollfd descriptor{STDERR_FILENO, POLLOUT, 0};
    const int ready = poll(&descriptor, 1, -1);
    return ready >= 0 ? (descriptor.revents & POLLNVAL) == 0 : errno == EINTR;
}

/// Writes all bytes, over interruptions, short writes and full pipes. Returns how many went out.
std::size_t writeAll(const char* bytes, std::size_t count, std::int64_t second) noexcept {
    std::size_t written = 0;
    while (written < count) {
        const std::ptrdiff_t step = writeToStandardError(bytes + written, count - written, second);
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
    struct stat status {};
    if (fstat(STDERR_FILENO, &status) == 0) {
        tornLine.device = status.st_dev;
        tornLine.inode = status.st_ino;
        setTorn(true);
    }
}

/// Whether descriptor 2 leads where a line broke off, and that is still there. If not, the line is nobody's
/// business any more.
bool leadsToTornLine() noexcept {
    struct stat status {};
    const bool leads = fstat(STDERR_FILENO, &status) == 0 && status.st_dev == tornLine.device &&
                       status.st_ino == tornLine.inode && (!S_ISREG(status.st_mode) || status.st_size != 0);
    setTorn(leads);
    return leads;
}

/// In front of the bytes is room for one more: the line feed that completes a half line goes out with the
/// line that follows it, or not at all.
void writeWhole(char* bytes, std::size_t count, std::int64_t second) noexcept {
    const CallerState callerState;
    const bool completes = isTorn() && leadsToTornLine();
    if (completes) {
        *--bytes = '\n';
        ++count;
    }
    const std::size_t written = writeAll(bytes, count, second);
    if (written == 0) {
        return;
    }
    setTorn(false);
    if (written != count && !(completes && written == 1)) {
        rememberTear();
    }
}

/// After a first write that was not the whole line: the rest, or all of it once more.
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

/// While no other thread writes, where lines would tear otherwise.
[[gnu::noinline]] void writeInTurn(char* bytes, std::size_t count, std::int64_t second) noexcept {
    const Guard guard(writerLock);
    if (writerLock.isHeldAgain()) { // a signal handler that interrupted this very write
        const CallerState callerState;
        writeAll(bytes, count, second);
        return;
    }
    if (isTorn()) [[unlikely]] {
        return writeWhole(bytes, count, second);
    }
    const std::ptrdiff_t written = writeToStandardError(bytes, count, second);
    if (written != static_cast<std::ptrdiff_t>(count)) [[unlikely]] {
        continueLine(bytes, count, written, second);
    }
}

/// After a write that was not in turn, to a file that is full or gone.
[[gnu::noinline]] void continueInTurn(char* bytes, std::size_t count, std::ptrdiff_t written,
                                      std::int64_t second) noexcept {
    const Guard guard(writerLock);
    if (!writerLock.isHeldAgain()) { // else the line of a handler, which is lost with that file
        continueLine(bytes, count, written, second);
    }
}

} // namespace

LogLine::LogLine() : process_(processIdentity()) {
    // One more for the line feed that completes a half line.
    messageStart_ = 1 + LinePrefix::roomFor(process_);
    text_.reserveAscii(messageStart_);
    text_.commitAscii(messageStart_);
}

/// Returns where the line begins, which ends at `end`.
char* LogLine::writeBytes(char* message, const char* end) noexcept {
    const LinePrefix prefix{process_, roundedToMilliseconds(currentInstant())};
    const std::int64_t second = prefix.time.seconds;
    char* const start = keptPrefixes.writeBefore(message, prefix);
    const auto count = static_cast<std::size_t>(end - start);
    if (!isTorn() && standardErrorAppendsWhole(second)) [[likely]] {
        const std::ptrdiff_t written = system::plainWrite(STDERR_FILENO, start, count);
        if (written != static_cast<std::ptrdiff_t>(count)) [[unlikely]] {
            continueInTurn(start, count, written, second);
        }
    } else {
        writeInTurn(start, count, second);
    }
    return start;
}

void LogLine::write() {
    text_.replaceUnpairedSurrogates();
    if (text_.length() == messageStart_ || text_.bytes()[text_.length() - 1] != '\n') {
        text_.appendAscii('\n');
    }
    char* const message = text_.bytes() + messageStart_;
    const char* const end = text_.bytes() + text_.length();
    const char* const start = writeBytes(message, end);
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
