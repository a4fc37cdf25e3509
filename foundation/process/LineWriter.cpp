// SPDX-License-Identifier: MIT
// The head of a line, and its way into descriptor 2 whatever that is.
#include "foundation/process/LineWriter.h"

#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/process/ProcessIdentity.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Lock.h"
#include "foundation/system/System.h"
#include "foundation/text/NumberText.h"
#include "foundation/time/LocalTimeText.h"

namespace ZQFoundation::detail {

namespace {

/// Lines of different threads must not tear on pipes, terminals and sockets, where long writes go out in
/// pieces.
constinit Lock writerLock;

/// Where a line broke off half-way, so that the next one there starts on a line of its own.
struct TornLine {
    bool isTorn;
    dev_t device;
    ino_t inode;
};

constinit TornLine tornLine{};

char* writeHex(std::uint64_t number, char* out) noexcept {
    int shift = 60;
    while (shift > 0 && (number >> shift) == 0) {
        shift -= 4;
    }
    for (; shift >= 0; shift -= 4) {
        *out++ = "0123456789abcdef"[number >> shift & 15];
    }
    return out;
}

// In front of a line's own bytes stands room for its date, which ends where that room ends, and for the line
// feed that completes a half line.
constexpr std::size_t dateEnd = 1 + localTimeTextCapacity;

/// The numbers of process and thread, and the characters between.
constexpr std::size_t headBytesWithoutName = dateEnd + 2 * numberTextCapacity + 5;

/// The head but for the date, which is that of the writing.
char* writeHead(const ProcessIdentity& process, char* out) noexcept {
    std::memset(out, ' ', dateEnd);
    out += dateEnd;
    *out++ = ' ';
    std::memcpy(out, process.name, process.nameLength);
    out += process.nameLength;
    *out++ = '[';
    out = writeInt64(system::processIdentifier(), out);
    *out++ = ':';
    out = writeHex(system::threadIdentifier(), out);
    *out++ = ']';
    *out++ = ' ';
    return out;
}

/// False when the descriptor is beyond waiting for.
bool waitUntilWritable() noexcept {
    pollfd descriptor{STDERR_FILENO, POLLOUT, 0};
    const int ready = poll(&descriptor, 1, -1);
    return ready >= 0 ? (descriptor.revents & POLLNVAL) == 0 : errno == EINTR;
}

/// Writes all bytes, over interruptions, short writes and full pipes. Returns how many went out.
std::size_t writeAll(const char* bytes, std::size_t count) noexcept {
    std::size_t written = 0;
    while (written < count) {
        const std::ptrdiff_t step =
            system::writeWithoutSignals(STDERR_FILENO, bytes + written, count - written);
        if (step > 0) {
            written += static_cast<std::size_t>(step);
        } else if (step == 0 || (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK)) {
            break;
        } else if (errno != EINTR && !waitUntilWritable()) {
            break;
        }
    }
    return written;
}

void rememberTear() noexcept {
    struct stat status {};
    if (fstat(STDERR_FILENO, &status) == 0) {
        tornLine = {true, status.st_dev, status.st_ino};
    }
}

/// Whether descriptor 2 leads where a line broke off, and that is still there. If not, the line is nobody's
/// business any more.
bool leadsToTornLine() noexcept {
    struct stat status {};
    tornLine.isTorn = fstat(STDERR_FILENO, &status) == 0 && status.st_dev == tornLine.device &&
                      status.st_ino == tornLine.inode && (!S_ISREG(status.st_mode) || status.st_size != 0);
    return tornLine.isTorn;
}

/// In front of the bytes is room for one more: the line feed that completes a half line goes out with the
/// line that follows it, or not at all.
void writeWhole(char* bytes, std::size_t count) noexcept {
    const bool completes = tornLine.isTorn && leadsToTornLine();
    if (completes) {
        *--bytes = '\n';
        ++count;
    }
    const std::size_t written = writeAll(bytes, count);
    if (written == 0) {
        return;
    }
    tornLine.isTorn = false;
    if (written != count && !(completes && written == 1)) {
        rememberTear();
    }
}

} // namespace

LogLine::LogLine() {
    const ProcessIdentity& process = processIdentity();
    char* const out = text_.reserveAscii(headBytesWithoutName + process.nameLength);
    messageStart_ = static_cast<std::size_t>(writeHead(process, out) - out);
    text_.commitAscii(messageStart_);
}

void LogLine::write() {
    const CallerState callerState;
    text_.replaceUnpairedSurrogates();
    if (text_.length() == messageStart_ || text_.bytes()[text_.length() - 1] != '\n') {
        text_.appendAscii('\n');
    }
    char date[localTimeTextCapacity];
    const auto dateLength = static_cast<std::size_t>(writeLocalTime(currentInstant(), date) - date);
    char* const start = text_.bytes() + dateEnd - dateLength;
    std::memcpy(start, date, dateLength);
    const std::size_t count = text_.length() - (dateEnd - dateLength);
    if (writerLock.isHeldByThisThread()) { // a signal handler that interrupted this very write
        writeAll(start, count);
        return;
    }
    const Guard guard(writerLock);
    writeWhole(start, count);
}

void writeLine(StringView text) {
    LogLine line;
    line.text().append(text);
    line.write();
}

} // namespace ZQFoundation::detail
