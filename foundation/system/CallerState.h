// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_CALLERSTATE_H
#define ZQFOUNDATION_SYSTEM_CALLERSTATE_H

#include <cerrno>

#include <pthread.h>

namespace ZQFoundation::detail {

/// Encloses code that makes system calls on a host's thread: `errno` is preserved, however the scope is left,
/// and cancellation of the thread is deferred until then, so that no line is left incomplete and no lock
/// held.
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
