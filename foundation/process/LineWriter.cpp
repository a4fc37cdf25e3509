// SPDX-License-Identifier: MIT
#include "foundation/process/LineWriter.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "foundation/objects/NSString.h"
#include "foundation/process/ProcessIdentity.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Lock.h"
#include "foundation/system/System.h"
#include "foundation/text/NumberText.h"
#include "foundation/text/Utf.h"
#include "foundation/time/LocalTimeText.h"

namespace ZQFoundation::detail {

namespace {

/// Lines of different threads must not tear on pipes, terminals and sockets, where long writes go out in
/// pieces.
constinit Lock writerLock;

/// Whether this thread is between asking for the lock and having given it back. A handler that interrupts it
/// there must not ask again.
constinit thread_local bool isWriting = false;

class WritingScope {
public:
    WritingScope() noexcept {
        isWriting = true;
        __atomic_signal_fence(__ATOMIC_SEQ_CST);
    }
    WritingScope(const WritingScope&) = delete;
    WritingScope& operator=(const WritingScope&) = delete;
    ~WritingScope() {
        __atomic_signal_fence(__ATOMIC_SEQ_CST);
        isWriting = false;
    }
};

/// Where a line broke off half-way, so that the next one there starts on a line of its own.
struct TornLine {
    bool isTorn;
    dev_t device;
    ino_t inode;
};

constinit TornLine tornLine{};

constexpr std::size_t inlineBytes = 2048;

/// The bytes of one line: on the stack when they fit.
class LineBuffer {
public:
    explicit LineBuffer(std::size_t capacity)
        : start_(capacity > inlineBytes ? static_cast<char*>(::operator new(capacity)) : inline_),
          end_(start_) {}
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;
    ~LineBuffer() {
        if (start_ != inline_) {
            ::operator delete(start_);
        }
    }

    char* start() noexcept { return start_; }
    char* end() noexcept { return end_; }
    void setEnd(char* end) noexcept { end_ = end; }

    void append(const char* bytes, std::size_t count) noexcept {
        std::memcpy(end_, bytes, count);
        end_ += count;
    }
    void append(char character) noexcept { *end_++ = character; }

private:
    char* start_;
    char* end_;
    char inline_[inlineBytes];
};

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

/// The numbers of process and thread, the characters between, and the line feed.
constexpr std::size_t prefixBytesWithoutName = localTimeTextCapacity + 2 * numberTextCapacity + 8;

void appendPrefix(LineBuffer& line, const ProcessIdentity& process) noexcept {
    line.setEnd(writeLocalTime(currentInstant(), line.end()));
    line.append(' ');
    line.append(process.name, process.nameLength);
    line.append('[');
    line.setEnd(writeInt64(process.pid, line.end()));
    line.append(':');
    line.setEnd(writeHex(system::threadIdentifier(), line.end()));
    line.append("] ", 2);
}

/// UTF-8 of any text; what has no UTF-8 form becomes a replacement character.
std::size_t utf8Size(StringView text) noexcept {
    return text.form() == StringView::Form::utf16 ? utf8Length(text.units(), text.size(), IllFormed::replace)
                                                  : text.size();
}

void appendText(LineBuffer& line, StringView text, std::size_t size) noexcept {
    if (text.form() == StringView::Form::utf16) {
        line.setEnd(utf16ToUtf8(text.units(), text.size(), line.end(), IllFormed::replace));
    } else if (size != 0) {
        line.append(text.bytes(), size);
    }
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

void mendTear() noexcept {
    struct stat status {};
    const bool isSamePlace = fstat(STDERR_FILENO, &status) == 0 && status.st_dev == tornLine.device &&
                             status.st_ino == tornLine.inode;
    if (!isSamePlace || writeAll("\n", 1) == 1) {
        tornLine.isTorn = false;
    }
}

void writeWhole(const char* bytes, std::size_t count) noexcept {
    if (tornLine.isTorn) {
        mendTear();
    }
    const std::size_t written = writeAll(bytes, count);
    if (written != 0 && written != count) {
        rememberTear();
    }
}

/// Ill-formed UTF-8 in a text argument goes the way through units, which replaces it.
bool isPlainBytes(StringView text) noexcept {
    return text.form() != StringView::Form::utf8 || isWellFormedUtf8(text.bytes(), text.size());
}

} // namespace

void writeLine(StringView text) {
    const CallerState callerState;
    if (!isPlainBytes(text)) {
        writeLine(NSString(text));
        return;
    }
    const ProcessIdentity& process = processIdentity();
    const std::size_t size = utf8Size(text);
    LineBuffer line(prefixBytesWithoutName + process.nameLength + size);
    appendPrefix(line, process);
    appendText(line, text, size);
    if (line.end()[-1] != '\n' || size == 0) {
        line.append('\n');
    }
    const auto count = static_cast<std::size_t>(line.end() - line.start());
    if (isWriting) { // a signal handler that interrupted this very write
        writeAll(line.start(), count);
        return;
    }
    const WritingScope scope;
    const Guard guard(writerLock);
    writeWhole(line.start(), count);
}

} // namespace ZQFoundation::detail
