// SPDX-License-Identifier: MIT
// The clock of the system, and that of a test.
#include "foundation/time/Clock.h"

#include <cmath>
#include <limits>

#include <time.h>

#include <gtest/gtest.h>

#include "foundation/system/TestOverrides.h"

namespace ZQFoundation::detail {

void PrintTo(const Instant& instant, std::ostream* stream) {
    *stream << instant.seconds << " s " << instant.nanoseconds << " ns";
}

namespace {

class ScopedClock {
public:
    explicit ScopedClock(double seconds) : seconds_(seconds) { overrides::clock = &seconds_; }
    ScopedClock(const ScopedClock&) = delete;
    ScopedClock& operator=(const ScopedClock&) = delete;
    ~ScopedClock() { overrides::clock = nullptr; }

private:
    double seconds_;
};

TEST(NSDateClock, readsTheSystemsClock) {
    const double before = static_cast<double>(time(nullptr));
    const NSDate date = NSDate::date();
    const Instant instant = currentInstant();
    const double after = static_cast<double>(time(nullptr)) + 1;
    // time() may lag the precise clock by a tick.
    EXPECT_GE(date.timeIntervalSince1970(), before);
    EXPECT_LE(date.timeIntervalSince1970(), after + 0.1);
    EXPECT_GE(instant.seconds, static_cast<std::int64_t>(before));
    EXPECT_GE(instant.nanoseconds, 0);
    EXPECT_LT(instant.nanoseconds, 1000000000);
    EXPECT_NE(NSDate::date().timeIntervalSinceReferenceDate(),
              std::floor(date.timeIntervalSinceReferenceDate()))
        << "a clock of whole seconds";
}

TEST(NSDateClock, goesForward) {
    const NSDate first = NSDate::date();
    NSDate later = NSDate::date();
    while (later.timeIntervalSinceDate(first) == 0) {
        later = NSDate::date();
    }
    EXPECT_GT(later.timeIntervalSinceDate(first), 0);
    EXPECT_LT(later.timeIntervalSinceDate(first), 60);
}

TEST(NSDateClock, answersWhatATestHasSet) {
    const ScopedClock clock(1709643629.25);
    EXPECT_EQ(NSDate::date().timeIntervalSince1970(), 1709643629.25);
    EXPECT_EQ(currentInstant(), (Instant{1709643629, 250000000}));
}

TEST(NSDateClock, roundsInstantsToMillisecondsHalfUp) {
    const struct {
        Instant instant, expected;
    } rows[] = {
        {{5, 499999}, {5, 0}},
        {{5, 500000}, {5, 1000000}},
        {{5, 999500000}, {6, 0}},
        {{-1, 999999999}, {0, 0}},
        {{INT64_MAX, 999999999}, {INT64_MAX, 0}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(roundedToMilliseconds(row.instant), row.expected) << ::testing::PrintToString(row.instant);
    }
}

TEST(NSDateClock, roundsSecondsToMillisecondsHalfUp) {
    const struct {
        double seconds;
        Instant expected;
    } rows[] = {
        {1709643629.0425, {1709643629, 43000000}},
        {0.9994, {0, 999000000}},
        {0.9995, {1, 0}},
        {-0.0005, {0, 0}},
        {-0.0006, {-1, 999000000}},
        {-1.5, {-2, 500000000}},
        {442386900000001, {442386900000001, 0}},
        {-442386900000000.0625, {-442386900000001, 938000000}},
        {0x1p42 + 0x1p-10, {INT64_C(1) << 42, 1000000}},
        {0x1p43 - 0x1p-10, {(INT64_C(1) << 43) - 1, 999000000}},
        {0x1p51 + 0.5, {INT64_C(1) << 51, 500000000}},
        {-0x1p51 - 0.5, {-(INT64_C(1) << 51) - 1, 500000000}},
        {1e300, {INT64_MAX, 0}},
        {-1e300, {INT64_MIN, 0}},
        {std::numeric_limits<double>::infinity(), {INT64_MAX, 0}},
        {-std::numeric_limits<double>::infinity(), {INT64_MIN, 0}},
        {std::numeric_limits<double>::quiet_NaN(), {0, 0}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(roundedToMilliseconds(row.seconds), row.expected) << row.seconds;
    }
}

TEST(NSDateClock, cutsWholeSecondsDownward) {
    EXPECT_EQ(wholeSeconds(NSDate::dateWithTimeIntervalSince1970(1.75)), 1);
    EXPECT_EQ(wholeSeconds(NSDate::dateWithTimeIntervalSince1970(-0.25)), -1);
    EXPECT_EQ(wholeSeconds(nullptr), 0);
    EXPECT_EQ(wholeSeconds(NSDate::dateWithTimeIntervalSince1970(1e300)), INT64_MAX);
}

} // namespace
} // namespace ZQFoundation::detail
