// SPDX-License-Identifier: MIT
// Children with mount points of their own, where the machine permits them.
#ifndef ZQFOUNDATION_TESTS_KIT_MOUNTS_H
#define ZQFOUNDATION_TESTS_KIT_MOUNTS_H

#include <string>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include "tests/kit/Child.h"

namespace ZQFoundation::kit {

/// What a child answers that may not have mounts, or something else that it needs.
inline constexpr int notPermitted = 77;

/// From here on the mounts of this process, a child, are its own. False where that is not permitted.
inline bool hasOwnMounts() {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Mounts one folder or file at another one, too.
inline bool bindMount(const std::string& what, const std::string& where) {
    return ::mount(what.c_str(), where.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

/// Runs the body in a child with mounts of its own, which is killed after these seconds. The test is skipped
/// where the machine does not permit them, or something else that the body needs: then it returns false.
template <class Body>
void withOwnMounts(const Body& body, unsigned seconds = 15) {
    const int answer =
        inChild([&]() -> int { return hasOwnMounts() && body() ? answerOf([] {}) : notPermitted; }, seconds);
    if (answer == notPermitted) {
        GTEST_SKIP() << "this machine allows no mounts of one's own";
    }
    EXPECT_EQ(answer, 0);
}

} // namespace ZQFoundation::kit

#endif
