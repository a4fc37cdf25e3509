// SPDX-License-Identifier: MIT
// Days, weeks and fields of the calendar, up to the limits of 64 bits.
#include "foundation/objects/CivilTime.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "tests/models/Calendar.h"

namespace ZQFoundation::detail {

void PrintTo(const CivilDate& date, std::ostream* stream) {
    *stream << date.year << "-" << date.month << "-" << date.day;
}
void PrintTo(const WeekOfYear& week, std::ostream* stream) { *stream << week.year << "-W" << week.week; }

namespace {

/// -1 for what does not fit; no test uses that day.
std::int64_t dayNumber(std::int64_t year, std::int64_t month, std::int64_t day) {
    std::int64_t days = -1;
    return daysFromCivil(year, month, day, days) ? days : -1;
}

TEST(CivilTime, knowsTheDayNumbersOfKnownDates) {
    const struct {
        std::int64_t year;
        int month, day;
        std::int64_t days;
        int weekday, ordinal;
    } rows[] = {
        {1970, 1, 1, 0, 4, 1},       {1969, 12, 31, -1, 3, 365},      {1972, 2, 29, 789, 2, 60},
        {2000, 2, 29, 11016, 2, 60}, {2000, 3, 1, 11017, 3, 61},      {2001, 1, 1, 11323, 1, 1},
        {2024, 3, 5, 19787, 2, 65},  {2024, 12, 31, 20088, 2, 366},   {1900, 2, 28, -25509, 3, 59},
        {1900, 3, 1, -25508, 4, 60}, {1600, 12, 31, -134775, 7, 366}, {1, 1, 1, -719162, 1, 1},
        {0, 2, 29, -719469, 2, 60},  {0, 3, 1, -719468, 3, 61},       {-1, 12, 31, -719529, 5, 365},
        {-400, 1, 1, -865625, 6, 1}, {9999, 12, 31, 2932896, 5, 365}, {10000, 1, 1, 2932897, 6, 1},
    };
    for (const auto& row : rows) {
        const CivilDate date{row.year, row.month, row.day};
        SCOPED_TRACE(::testing::PrintToString(date));
        EXPECT_EQ(dayNumber(row.year, row.month, row.day), row.days);
        EXPECT_EQ(civilFromDays(row.days), date);
        EXPECT_EQ(weekdayFromDays(row.days), row.weekday);
        EXPECT_EQ(dayOfYear(date), row.ordinal);
    }
}

TEST(CivilTime, countsDayByDayThroughEightHundredYears) {
    for (std::int64_t days = dayNumber(1599, 1, 1); days < dayNumber(2401, 1, 1); ++days) {
        const models::CivilDate expected = models::civilDate(days);
        const CivilDate date = civilFromDays(days);
        ASSERT_EQ(date, (CivilDate{expected.year, expected.month, expected.day}));
        ASSERT_EQ(dayNumber(date.year, date.month, date.day), days);
        ASSERT_EQ(dayOfYear(date), expected.dayOfYear);
        ASSERT_EQ(weekdayFromDays(days), (expected.weekday + 6) % 7 + 1);
        ASSERT_EQ(isLeapYear(date.year), models::isLeapYear(date.year));
    }
}

TEST(CivilTime, carriesFieldsOutOfTheirRange) {
    const struct {
        std::int64_t year, month, day;
        CivilDate expected;
    } rows[] = {
        {2020, 13, 1, {2021, 1, 1}},    {2020, 0, 1, {2019, 12, 1}},   {2020, -11, 1, {2019, 1, 1}},
        {2020, -12, 1, {2018, 12, 1}},  {2024, 3, 0, {2024, 2, 29}},   {2021, 2, 29, {2021, 3, 1}},
        {2021, 1, 366, {2022, 1, 1}},   {2021, 1, -365, {2020, 1, 1}}, {0, 2, 30, {0, 3, 1}},
        {2020, 1200, 1, {2119, 12, 1}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(civilFromDays(dayNumber(row.year, row.month, row.day)), row.expected);
    }
}

TEST(CivilTime, refusesSumsBeyond64Bits) {
    std::int64_t days = 77;
    EXPECT_FALSE(daysFromCivil(INT64_MAX, 1, 1, days));
    EXPECT_FALSE(daysFromCivil(INT64_MIN, 1, 1, days));
    EXPECT_FALSE(daysFromCivil(0, INT64_MIN, 1, days));
    EXPECT_FALSE(daysFromCivil(INT64_MAX, INT64_MAX, INT64_MAX, days));
    EXPECT_FALSE(daysFromCivil(2020, 1, INT64_MAX, days));
    EXPECT_FALSE(daysFromCivil(30000000000000000, 1, 1, days));
    EXPECT_EQ(days, 77);
    EXPECT_TRUE(daysFromCivil(25000000000000000, 1, 1, days));
    EXPECT_EQ(civilFromDays(days), (CivilDate{25000000000000000, 1, 1}));
    EXPECT_TRUE(daysFromCivil(-25000000000000000, 12, 31, days));
    EXPECT_EQ(civilFromDays(days), (CivilDate{-25000000000000000, 12, 31}));
}

TEST(CivilTime, isDefinedAtBothEndsOf64Bits) {
    for (const std::int64_t days : {INT64_MIN, INT64_MIN + 1, INT64_MAX - 1, INT64_MAX}) {
        const CivilDate date = civilFromDays(days);
        EXPECT_EQ(date.year < 0, days < 0);
        EXPECT_GE(date.month, 1);
        EXPECT_LE(date.month, 12);
        EXPECT_GE(weekdayFromDays(days), 1);
        EXPECT_LE(weekdayFromDays(days), 7);
        EXPECT_LE(weekFromDays(days).week, 53);
    }
    EXPECT_EQ(weekdayFromDays(INT64_MAX - 1) % 7 + 1, weekdayFromDays(INT64_MAX));
    EXPECT_EQ(weekdayFromDays(INT64_MIN) % 7 + 1, weekdayFromDays(INT64_MIN + 1));
}

TEST(CivilTime, givesEachWeekToTheYearOfItsThursday) {
    const struct {
        std::int64_t year;
        int month, day;
        WeekOfYear expected;
    } rows[] = {
        {2014, 12, 29, {2015, 1}},  {2016, 1, 3, {2015, 53}}, {2021, 1, 1, {2020, 53}},
        {2024, 12, 31, {2025, 1}},  {2024, 3, 5, {2024, 10}}, {2021, 1, 4, {2021, 1}},
        {2020, 12, 31, {2020, 53}}, {2023, 1, 1, {2022, 52}}, {0, 1, 1, {-1, 52}},
        {1970, 1, 1, {1970, 1}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(weekFromDays(dayNumber(row.year, row.month, row.day)), row.expected);
    }
}

TEST(CivilTime, numbersWeeksByTheirThursdayThroughACycle) {
    for (std::int64_t days = dayNumber(1850, 1, 1); days < dayNumber(2260, 1, 1); ++days) {
        const CivilDate thursday = civilFromDays(days - weekdayFromDays(days) + 4);
        ASSERT_EQ(weekFromDays(days), (WeekOfYear{thursday.year, (dayOfYear(thursday) - 1) / 7 + 1}));
    }
}

TEST(CivilTime, dividesDownward) {
    EXPECT_EQ(floorDivide(-1, 7), -1);
    EXPECT_EQ(floorModulo(-1, 7), 6);
    EXPECT_EQ(floorDivide(-7, 7), -1);
    EXPECT_EQ(floorModulo(-7, 7), 0);
    EXPECT_EQ(floorDivide(INT64_MIN, 7), -1317624576693539402);
    EXPECT_EQ(saturatingAdd(INT64_MAX, 1), INT64_MAX);
    EXPECT_EQ(saturatingAdd(INT64_MIN, -1), INT64_MIN);
    EXPECT_EQ(saturatingAdd(INT64_MIN, 1), INT64_MIN + 1);
}

} // namespace
} // namespace ZQFoundation::detail
