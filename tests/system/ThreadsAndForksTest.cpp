// SPDX-License-Identifier: MIT
// The identifiers of threads, and the generations of forked processes.
#include <thread>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/system/Lock.h"
#include "foundation/system/System.h"

using namespace ZQFoundation::detail;

namespace {

bool isTheSystemsNumber() {
    return system::threadIdentifier() == static_cast<std::uint64_t>(::syscall(SYS_gettid));
}

/// The answer of the body in a child made by the function.
template <class Fork, class Body>
bool inChild(const Fork& fork, const Body& body) {
    const pid_t child = fork();
    if (child == 0) {
        ::_exit(body() ? 0 : 1);
    }
    int status = 1;
    return ::waitpid(child, &status, 0) == child && status == 0;
}

TEST(ThreadIdentifier, isTheNumberByWhichTheSystemKnowsTheThread) {
    EXPECT_TRUE(isTheSystemsNumber());
    for (int i = 0; i < 20; ++i) { // a new thread may be where the last one was
        bool isRight = false;
        std::thread([&isRight] { isRight = isTheSystemsNumber(); }).join();
        EXPECT_TRUE(isRight);
    }
    EXPECT_TRUE(inChild(::fork, isTheSystemsNumber));
    EXPECT_TRUE(inChild(::_Fork, isTheSystemsNumber));
}

TEST(ForkGeneration, growsFromParentToChildAndStaysWithinAProcess) {
    const std::uint32_t own = system::forkGeneration();
    const auto isNext = [own] {
        const std::uint32_t next = system::forkGeneration();
        const auto isAfterThat = [next] {
            return system::forkGeneration() == next + 1;
        };
        return next == own + 1 && system::processIdentifier() == ::getpid() &&
               system::forkingThread() == Holder::currentThread() && inChild(::fork, isAfterThat) &&
               system::forkGeneration() == next;
    };
    EXPECT_NE(own, 0U);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(inChild(::fork, isNext));
        EXPECT_TRUE(inChild(::_Fork, isNext));
    }
    EXPECT_EQ(system::forkGeneration(), own);
    EXPECT_EQ(system::processIdentifier(), ::getpid());
}

} // namespace
