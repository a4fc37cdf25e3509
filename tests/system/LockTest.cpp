// SPDX-License-Identifier: MIT
// The recursive lock between threads, in signal handlers and in forked children.
#include "foundation/system/Lock.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Interruptions.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

/// Whether the work succeeds in a forked child.
template <class Work>
bool holdsInChild(const Work& work) {
    return kit::inChild([&] { return work() ? 0 : 1; }) == 0;
}

/// Waits until a thread, which makes its number known before, sleeps.
void waitUntilAsleep(const std::atomic<pid_t>& number) {
    while (number == 0) {
        std::this_thread::yield();
    }
    const std::string path = "/proc/self/task/" + std::to_string(number) + "/stat";
    std::string text;
    do {
        std::this_thread::yield();
        text = kit::contentsOf(path); // "1234 (name) S ..."
    } while (text.find(") S ") == std::string::npos);
}

pid_t ownNumber() { return static_cast<pid_t>(::syscall(SYS_gettid)); }

} // namespace

TEST(Lock, isRecursiveAndExcludesOtherThreads) {
    constexpr int rounds = 20000;
    Lock lock;
    long count = 0;
    kit::inThreads(4, [&](std::size_t) {
        for (int k = 0; k < rounds; ++k) {
            const Guard outer(lock);
            const Guard inner(lock);
            ++count;
        }
    });
    EXPECT_EQ(count, 4L * rounds);
}

TEST(Lock, wakesSleepingThreadsAndKeepsErrno) {
    Lock lock;
    int entered = 0;
    std::array<std::atomic<pid_t>, 8> numbers{};
    std::optional<kit::Threads> threads;
    {
        const Guard guard(lock);
        threads.emplace(numbers.size(), [&](std::size_t index) {
            errno = ENOTTY;
            numbers[index] = ownNumber();
            const Guard own(lock);
            entered += errno == ENOTTY ? 1 : 100;
        });
        for (const std::atomic<pid_t>& number : numbers) {
            waitUntilAsleep(number);
        }
        EXPECT_EQ(entered, 0);
    }
    threads.reset();
    EXPECT_EQ(entered, 8);
}

TEST(Lock, isFreeInAForkedChildWhoseParentHadAnotherThreadInside) {
    system::forkGeneration();
    Lock lock;
    int state = 0;
    std::thread holder([&] {
        const Guard guard(lock);
        __atomic_store_n(&state, 1, __ATOMIC_RELEASE);
        while (__atomic_load_n(&state, __ATOMIC_ACQUIRE) == 1) {
            usleep(1000);
        }
    });
    while (__atomic_load_n(&state, __ATOMIC_ACQUIRE) == 0) {
        usleep(100);
    }
    EXPECT_TRUE(holdsInChild([&] {
        const Guard guard(lock);
        return true;
    }));
    __atomic_store_n(&state, 2, __ATOMIC_RELEASE);
    holder.join();
}

namespace {

constinit Lock lockOfHandler;

/// Whoever is interrupted between taking the lock and saying so would wait for itself here.
void lockInHandler() { const Guard guard(lockOfHandler); }

} // namespace

TEST(Lock, isTakenAgainByAHandlerThatInterruptsItsThread) {
    constexpr long interruptions = 20000;
    EXPECT_TRUE(holdsInChild([] {
        const kit::Interruptions handler(lockInHandler, interruptions);
        while (!handler.areOver()) {
            const Guard outer(lockOfHandler);
            const Guard inner(lockOfHandler);
        }
        return !lockOfHandler.isHeldByThisThread();
    }));
}

#ifndef __SANITIZE_THREAD__ // which allows no new threads in a child
TEST(Lock, staysHeldByTheForkingThreadInTheChild) {
    system::forkGeneration();
    Lock lock;
    lock.lock();
    EXPECT_TRUE(holdsInChild([&] {
        int order = 0;
        int other = 0;
        std::atomic<pid_t> number{0};
        std::thread second([&] {
            number = ownNumber();
            const Guard guard(lock);
            other = ++order;
        });
        waitUntilAsleep(number);
        lock.lock(); // once more, as the holder may
        const int own = ++order;
        lock.unlock();
        lock.unlock();
        second.join();
        return own == 1 && other == 2;
    }));
    lock.unlock();
}
#endif
