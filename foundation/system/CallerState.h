// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_CALLERSTATE_H
#define ZQFOUNDATION_SYSTEM_CALLERSTATE_H

#include <cerrno>

#include <pthread.h>

namespace ZQFoundation::detail {

/// Stands around whatever calls the system on a host's thread: the host finds its `errno` as it was, however
/// the scope is left, and a cancellation of the thread waits until then, so that no line and no lock is left
/// half-way.
class [[nodiscard]] CallerState {
public:
    CallerState() noexcept : errno_(errno) { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancelState_); }
    CallerState(const CallerState&) = delete;
    CallerState& operator=(const CallerState&) = delete;
    ~CallerState() {
        int disabled;
        pthread_setcancelstate(cancelState_, &disabled);
        errno = errno_;
    }

private:
    int errno_;
    int cancelState_ = PTHREAD_CANCEL_ENABLE;
};

} // namespace ZQFoundation::detail

#endif
