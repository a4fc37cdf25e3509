// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_STANDARDSTREAMS_H
#define ZQFOUNDATION_SYSTEM_STANDARDSTREAMS_H

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace ZQFoundation::detail::system {

/// A host may have closed its standard streams. What is opened then gets one of their numbers, and whatever
/// is written to the stream, each log line among it, would go there.
constexpr int firstFreeDescriptor = STDERR_FILENO + 1;

/// Gives an open descriptor a number behind those of the standard streams. -1 with `errno` when there is none
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

/// While the host's standard error is closed, and if asked for, the numbers of closed standard streams are
/// taken for a scope by a device that cannot be written to through them: not even a line that another thread
/// writes meanwhile reaches what is opened in the scope. Keeps `errno`.
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
