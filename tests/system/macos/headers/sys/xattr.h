// SPDX-License-Identifier: MIT
// Where the toolchain has no such header; tests/system/macos/LinuxCalls.h declares what tests use.
#ifndef ZQFOUNDATION_TESTS_SYS_XATTR_H
#define ZQFOUNDATION_TESTS_SYS_XATTR_H

#endif
