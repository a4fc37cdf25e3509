// SPDX-License-Identifier: MIT
// Calls that the kernel does not carry out, for tests of what follows from their failure. Only for systems
// that have <linux/seccomp.h>.
#ifndef ZQFOUNDATION_TESTS_KIT_REFUSEDCALLS_H
#define ZQFOUNDATION_TESTS_KIT_REFUSEDCALLS_H

#include <cstddef>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace ZQFoundation::kit {

/// An argument of a call, counted from 0, and the value that it must have in its lower 32 bits.
struct CallArgument {
    unsigned index;
    unsigned value;
};

/// From here on a system call of this process and its children, with that argument if one is given, fails
/// with the error, or with 0 succeeds without having done anything. False when the system does not let the
/// process ask for that.
inline bool refuseCall(unsigned number, unsigned error, const CallArgument* argument = nullptr) {
    const unsigned place =
        static_cast<unsigned>(argument != nullptr ? offsetof(seccomp_data, args) + 8 * argument->index
                                                  : offsetof(seccomp_data, nr));
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, place),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, argument != nullptr ? argument->value : number, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{static_cast<unsigned short>(sizeof steps / sizeof *steps), steps};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// From here on every system call of this process but those two ends it. False as above.
inline bool refuseAllCallsBut(unsigned first, unsigned second) {
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, first, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, second, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{static_cast<unsigned short>(sizeof steps / sizeof *steps), steps};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace ZQFoundation::kit

#endif
