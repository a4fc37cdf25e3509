// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_DESCRIPTOR_H
#define ZQFOUNDATION_SYSTEM_DESCRIPTOR_H

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/system/StandardStreams.h"

namespace ZQFoundation::detail {

/// Owns an open descriptor, or none. Closing keeps `errno`, so that an operation that failed may set it and
/// then leave the scope of its descriptors.
class Descriptor {
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        // Released first, so that assigning an object to itself does not close its descriptor.
        const int taken = other.release();
        reset();
        number_ = taken;
        return *this;
    }
    ~Descriptor() { reset(); }

    explicit operator bool() const noexcept { return number_ >= 0; }
    int number() const noexcept { return number_; }

    /// Hands the descriptor over to the caller, who closes it.
    int release() noexcept {
        const int number = number_;
        number_ = -1;
        return number;
    }

    /// Never repeats `close`, not even after a signal: the number may be free already, and belong to a file
    /// that another thread has opened.
    void reset() noexcept {
        if (number_ >= 0) {
            const int error = errno;
            ::close(number_);
            errno = error;
            number_ = -1;
        }
    }

private:
    int number_ = -1;
};

/// `openat` that restarts after a signal, and that never returns the number of a standard stream that the
/// host has closed: log lines would go there.
inline int openAt(int folder, const char* name, int flags, mode_t mode = 0) noexcept {
    const system::StandardStreamsGuard guard((flags & O_ACCMODE) != O_RDONLY);
    int descriptor = -1;
    do {
        descriptor = ::openat(folder, name, flags, mode);
    } while (descriptor < 0 && errno == EINTR);
    return system::keepOffStandardStreams(descriptor);
}

} // namespace ZQFoundation::detail

#endif
