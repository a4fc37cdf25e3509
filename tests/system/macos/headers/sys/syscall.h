// SPDX-License-Identifier: MIT
// Where the toolchain has no such header; tests/system/macos/LinuxCalls.h has the calls that tests make.
#ifndef ZQFOUNDATION_TESTS_SYS_SYSCALL_H
#define ZQFOUNDATION_TESTS_SYS_SYSCALL_H

#endif
