// SPDX-License-Identifier: MIT
// Changes to files that could get the time of the change before.
#include <climits>
#include <ctime>

#include <gtest/gtest.h>

#include "foundation/system/FileSystem.h"
#include "foundation/system/System.h"
#include "tests/kit/Interruptions.h"

using namespace ZQFoundation;
using detail::system::currentFileTime;
using detail::system::mightHideChange;

namespace {

constexpr long manyTimes = LONG_MAX;

timespec after(const timespec& time, long nanoseconds) {
    const long sum = time.tv_nsec + nanoseconds;
    return {time.tv_sec + sum / 1'000'000'000, sum % 1'000'000'000};
}

bool isBefore(const timespec& left, const timespec& right) {
    return left.tv_sec != right.tv_sec ? left.tv_sec < right.tv_sec : left.tv_nsec < right.tv_nsec;
}

} // namespace

TEST(FileTimes, areWaitedForUntilAChangeWouldShow) {
    timespec changed = currentFileTime();
    EXPECT_FALSE(mightHideChange(changed));
    EXPECT_TRUE(isBefore(changed, currentFileTime()));

    // As they are stored in hundredths of a second, in seconds, and in even seconds.
    changed = currentFileTime();
    changed.tv_nsec -= changed.tv_nsec % 10'000'000;
    EXPECT_FALSE(mightHideChange(changed));
    EXPECT_FALSE(isBefore(currentFileTime(), after(changed, 10'000'000)));
    changed = {currentFileTime().tv_sec, 0};
    EXPECT_FALSE(mightHideChange(changed));
    EXPECT_LT(changed.tv_sec, currentFileTime().tv_sec);
    changed = {currentFileTime().tv_sec & ~time_t{1}, 0};
    EXPECT_FALSE(mightHideChange(changed));
    EXPECT_LE(changed.tv_sec + 2, currentFileTime().tv_sec);
}

TEST(FileTimes, areNotWaitedForIfTheyAreNotOfThisClock) {
    const timespec before = currentFileTime();
    constexpr time_t latest = sizeof(time_t) == 8 ? static_cast<time_t>(INT64_MAX) : INT_MAX;
    EXPECT_TRUE(mightHideChange({latest, 999'999'999}));
    EXPECT_TRUE(mightHideChange({before.tv_sec + 60, 0}));
    EXPECT_FALSE(mightHideChange({before.tv_sec - 60, 0}));
    EXPECT_FALSE(mightHideChange({-latest, 0}));
}

TEST(FileTimes, areWaitedForHoweverManySignalsArrive) {
    const kit::Interruptions interruptions([] {}, manyTimes);
    for (int round = 0; round < 20; ++round) {
        const timespec changed = currentFileTime();
        EXPECT_FALSE(mightHideChange(changed));
        EXPECT_TRUE(isBefore(changed, currentFileTime()));
    }
}

TEST(Pauses, areNotEndedBySignals) {
    const kit::Interruptions interruptions([] {}, manyTimes);
    timespec start{};
    timespec end{};
    ::clock_gettime(CLOCK_MONOTONIC, &start);
    detail::system::pauseFor(20'000'000);
    ::clock_gettime(CLOCK_MONOTONIC, &end);
    EXPECT_FALSE(isBefore(end, after(start, 20'000'000)));
}
