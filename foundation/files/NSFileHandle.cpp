// SPDX-License-Identifier: MIT
// Open files as objects that raise on failure.
// Descriptors are close-on-exec, and opening never waits.
#include "foundation/files/NSFileHandle.h"

#include <algorithm>
#include <limits>
#include <string>

#include <sys/resource.h>

#include "foundation/files/NonBlockingOpening.h"
#include "foundation/objects/NSException.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/WholeRead.h"
#include "foundation/system/WholeWrite.h"

namespace ZQFoundation {

namespace {

constexpr int notOpen = -1;

/// A descriptor for the item at the path, or `notOpen`.
int opened(StringView path, int flags) {
    const detail::CallerState caller;
    std::string bytes;
    detail::PathHandle handle;
    if (!detail::getPathBytes(path, bytes) || !handle.reach(bytes)) {
        return notOpen;
    }
    // The descriptor belongs to the handle from here on.
    return detail::openNonBlocking(handle, flags).release();
}

[[noreturn]] void raiseFailure(const char* operation) {
    NSException::raise_format(NSFileHandleOperationException, "%s: the system reports error %d", operation,
                              errno);
}

// A pipe has no position, which raises like any other failure.
std::uint64_t moveTo(int descriptor, off_t offset, int origin, const char* operation) {
    const off_t reached = ::lseek(descriptor, offset, origin);
    if (reached < 0) {
        raiseFailure(operation);
    }
    return static_cast<std::uint64_t>(reached);
}

/// An offset as the system's type, which has only half the range.
off_t systemOffset(std::uint64_t offset, const char* operation) {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
        errno = EINVAL;
        raiseFailure(operation);
    }
    return static_cast<off_t>(offset);
}

/// At most `length` bytes. Allocates memory as bytes arrive, since a caller may ask for more than there are.
NSData readBytes(int descriptor, std::size_t length, const char* operation) {
    // Grows by doubling from there, so a huge length allocates nothing by itself.
    constexpr std::size_t firstPiece = 16384;
    std::string bytes;
    std::size_t count = 0;
    // A short step means the end.
    while (count < length && count == bytes.size()) {
        bytes.resize(std::min(length, std::max(firstPiece, 2 * count)));
        const std::ptrdiff_t step = detail::readWhole(descriptor, bytes.data() + count, bytes.size() - count);
        if (step < 0) {
            raiseFailure(operation);
        }
        count += static_cast<std::size_t>(step);
    }
    return NSData::dataWithBytes_length(bytes.data(), count);
}

/// Whether the file would grow beyond the limit, for which the system raises a signal.
bool exceedsLimit(int descriptor, off_t size) noexcept {
    rlimit limit{};
    struct stat information;
    return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
           // Only growth raises the signal; shrinking a file that is too large does not.
           static_cast<rlim_t>(size) > limit.rlim_cur && ::fstat(descriptor, &information) == 0 &&
           size > information.st_size;
}

void resize(int descriptor, off_t size, const char* operation) {
    if (exceedsLimit(descriptor, size)) {
        errno = EFBIG;
        raiseFailure(operation);
    }
    while (::ftruncate(descriptor, size) != 0) {
        if (errno != EINTR) {
            raiseFailure(operation);
        }
    }
}

} // namespace

NSFileHandle::NSFileHandle(NSFileHandle&& other) noexcept
    : descriptor_(other.descriptor_), state_(other.state_) {
    other.descriptor_ = notOpen;
    other.state_ = State::absent;
}

NSFileHandle& NSFileHandle::operator=(NSFileHandle&& other) noexcept {
    const int descriptor = other.descriptor_;
    const State state = other.state_;
    other.descriptor_ = notOpen;
    other.state_ = State::absent;
    // A handle assigned to itself is absent here, so its file stays open.
    closeFile();
    descriptor_ = descriptor;
    state_ = state;
    return *this;
}

NSFileHandle::~NSFileHandle() { closeFile(); }

NSFileHandle NSFileHandle::fileHandleForWritingAtPath(StringView path) {
    const int descriptor = opened(path, O_WRONLY);
    return descriptor != notOpen ? NSFileHandle(descriptor) : NSFileHandle();
}

NSFileHandle NSFileHandle::fileHandleForReadingAtPath(StringView path) {
    const int descriptor = opened(path, O_RDONLY);
    return descriptor != notOpen ? NSFileHandle(descriptor) : NSFileHandle();
}

NSFileHandle NSFileHandle::fileHandleForUpdatingAtPath(StringView path) {
    const int descriptor = opened(path, O_RDWR);
    return descriptor != notOpen ? NSFileHandle(descriptor) : NSFileHandle();
}

/// -1 for nil, on which every operation does nothing.
int NSFileHandle::openDescriptor(const char* operation) const {
    // A closed handle raises, while a nil one does nothing.
    if (state_ == State::closed) {
        NSException::raise_format(NSFileHandleOperationException, "%s: the file is closed", operation);
    }
    return descriptor_;
}

int NSFileHandle::fileDescriptor() const { return openDescriptor("fileDescriptor"); }

std::uint64_t NSFileHandle::seekToEndOfFile() {
    const detail::CallerState caller;
    const int descriptor = openDescriptor("seekToEndOfFile");
    return descriptor != notOpen ? moveTo(descriptor, 0, SEEK_END, "seekToEndOfFile") : 0;
}

void NSFileHandle::seekToFileOffset(std::uint64_t offset) {
    const detail::CallerState caller;
    const int descriptor = openDescriptor("seekToFileOffset:");
    if (descriptor != notOpen) {
        moveTo(descriptor, systemOffset(offset, "seekToFileOffset:"), SEEK_SET, "seekToFileOffset:");
    }
}

std::uint64_t NSFileHandle::offsetInFile() const {
    const detail::CallerState caller;
    const int descriptor = openDescriptor("offsetInFile");
    return descriptor != notOpen ? moveTo(descriptor, 0, SEEK_CUR, "offsetInFile") : 0;
}

void NSFileHandle::writeData(const NSData& data) {
    const detail::CallerState caller;
    const int descriptor = openDescriptor("writeData:");
    const auto* const bytes = reinterpret_cast<const char*>(data.bytes());
    if (descriptor != notOpen && !detail::writeWhole(descriptor, bytes, data.length())) {
        raiseFailure("writeData:");
    }
}

NSData NSFileHandle::readDataOfLength(std::size_t length) {
    const detail::CallerState caller;
    const int descriptor = openDescriptor("readDataOfLength:");
    return descriptor != notOpen ? readBytes(descriptor, length, "readDataOfLength:") : NSData();
}

NSData NSFileHandle::readDataToEndOfFile() {
    const detail::CallerState caller;
    const int descriptor = openDescriptor("readDataToEndOfFile");
    return descriptor != notOpen ? readBytes(descriptor, SIZE_MAX, "readDataToEndOfFile") : NSData();
}

void NSFileHandle::truncateFileAtOffset(std::uint64_t offset) {
    constexpr const char* operation = "truncateFileAtOffset:";
    const detail::CallerState caller;
    const int descriptor = openDescriptor(operation);
    if (descriptor == notOpen) {
        return;
    }
    const off_t end = systemOffset(offset, operation);
    // In this order: the position must not move when the size could not be changed.
    resize(descriptor, end, operation);
    moveTo(descriptor, end, SEEK_SET, operation);
}

void NSFileHandle::synchronizeFile() {
    const detail::CallerState caller;
    const int descriptor = openDescriptor("synchronizeFile");
    if (descriptor == notOpen) {
        return;
    }
    while (::fsync(descriptor) != 0) {
        if (errno != EINTR) {
            raiseFailure("synchronizeFile");
        }
    }
}

void NSFileHandle::closeFile() {
    if (state_ == State::open) {
        // Errors of closing are not reported here; `synchronizeFile` reports them.
        detail::Descriptor(descriptor_).reset();
        descriptor_ = notOpen;
        state_ = State::closed;
    }
}

} // namespace ZQFoundation
