// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_STANDARDSTREAMS_H
#define ZQFOUNDATION_SYSTEM_STANDARDSTREAMS_H

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace ZQFoundation::detail::system {

/// A host may have closed its standard streams. A file opened then gets one of their numbers, and everything
/// written to the stream, such as each log line, would go there.
constexpr int firstFreeDescriptor = STDERR_FILENO + 1;

/// Moves an open descriptor to a number above those of the standard streams. -1 with `errno` if there is none
/// left.
inline int keepOffStandardStreams(int descriptor) noexcept {
    if (descriptor < 0 || descriptor >= firstFreeDescriptor) {
        return descriptor;
    }
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, firstFreeDescriptor);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return moved;
}

/// While the host's standard error is closed, and if requested, the numbers of closed standard streams are
/// occupied for a scope by a device that cannot be written to through them: not even a line that another
/// thread writes meanwhile reaches a file opened in the scope. Preserves `errno`.
class StandardStreamsGuard {
public:
    explicit StandardStreamsGuard(bool isNeeded) noexcept {
        const int error = errno;
        if (isNeeded && ::fcntl(STDERR_FILENO, F_GETFD) < 0) {
            takeClosedNumbers();
        }
        errno = error;
    }
    StandardStreamsGuard(const StandardStreamsGuard&) = delete;
    StandardStreamsGuard& operator=(const StandardStreamsGuard&) = delete;
    ~StandardStreamsGuard() {
        const int error = errno;
        while (count_ > 0) {
            ::close(held_[--count_]);
        }
        errno = error;
    }

private:
    void takeClosedNumbers() noexcept {
        int descriptor = -1;
        while (count_ < firstFreeDescriptor &&
               (descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0) {
            if (descriptor >= firstFreeDescriptor) {
                ::close(descriptor);
                break;
            }
            held_[count_++] = descriptor;
        }
    }

    int held_[firstFreeDescriptor] = {};
    int count_ = 0;
};

} // namespace ZQFoundation::detail::system

#endif
