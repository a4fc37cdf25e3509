// SPDX-License-Identifier: MIT
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSDate.h"
#include "tests/time/CivilTesting.h"
#include "tests/time/TimeTesting.h"

using namespace ZQFoundation;
using civiltest::later;
using civiltest::shown;
using civiltest::utc;
using ZQFoundation::testing::ScopedTimeZone;

namespace {

/// A receiver that must play no part: another week, year, month and quarter than any date it is asked about.
const NSDate bystander = utc(1776, 8, 15, 12, 0, 0);

struct Period {
    std::int64_t week;
    std::int64_t weekYear;
    std::int64_t month;
    std::int64_t quarter;
    std::int64_t year;

    friend bool operator==(const Period&, const Period&) = default;

    friend void PrintTo(const Period& period, std::ostream* stream) {
        *stream << "week " << period.week << "/" << period.weekYear << ", month " << period.month
                << ", quarter " << period.quarter << " of " << period.year;
    }
};

Period periodOf(const NSDate& date) {
    return {date.calendarWeek(), date.yearForCalendarWeek(), date.calendarMonth(), date.calendarQuarter(),
            date.calendarYear()};
}

/// Asks a receiver about another date; the quarter, which is always the receiver's, is asked of the date.
Period periodAskedOf(const NSDate& receiver, const NSDate& date) {
    return {receiver.calendarWeekOf(date), receiver.yearForCalendarWeekOf(date),
            receiver.calendarMonthOf(date), date.calendarQuarterOf(receiver), receiver.calendarYearOf(date)};
}

/// Walks through the days one by one, beginning in a week whose number and year are known.
class Walk {
public:
    /// 1 January 1900, a Monday, in week 1 of 1900.
    Walk() = default;

    Period period() const { return {week_, weekYear_, month_, (month_ - 1) / 3 + 1, year_}; }
    int year() const { return year_; }
    int month() const { return month_; }
    int day() const { return day_; }

    void step() {
        nextDate();
        weekday_ = weekday_ % 7 + 1;
        if (weekday_ == 1) {
            nextWeek();
        }
    }

private:
    static int daysOfMonth(int year, int month) {
        if (month == 2) {
            return civiltest::isLeap(year) ? 29 : 28;
        }
        return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
    }

    void nextDate() {
        ++day_;
        if (day_ > daysOfMonth(year_, month_)) {
            day_ = 1;
            month_ = month_ % 12 + 1;
            year_ += month_ == 1 ? 1 : 0;
        }
    }

    /// On a Monday: the week belongs to the year in which its Thursday lies.
    void nextWeek() {
        const bool isThursdayInNextYear = month_ == 12 && day_ + 3 > 31;
        const int thursdaysYear = year_ + (isThursdayInNextYear ? 1 : 0);
        week_ = thursdaysYear == weekYear_ ? week_ + 1 : 1;
        weekYear_ = thursdaysYear;
    }

    int year_ = 1900;
    int month_ = 1;
    int day_ = 1;
    int weekday_ = 1;
    int week_ = 1;
    int weekYear_ = 1900;
};

/// Checks each day from 1900 to 2100 at the seconds of the day given, in UTC and the zone's offset before it.
void expectEveryDayAt(const std::vector<int>& secondsOfDay, int offset) {
    Walk walk;
    int days = 0;
    int failures = 0;
    for (; walk.year() <= 2100 && failures < 10; walk.step(), ++days) {
        const NSDate midnight = later(utc(walk.year(), walk.month(), walk.day()), -offset);
        for (const int second : secondsOfDay) {
            const NSDate date = later(midnight, second);
            failures += periodOf(date) == walk.period() ? 0 : 1;
            EXPECT_EQ(periodOf(date), walk.period()) << shown(date);
            EXPECT_EQ(periodAskedOf(bystander, date), walk.period()) << shown(date);
        }
    }
    EXPECT_EQ(days, 73414) << "the walk itself went wrong";
}

constexpr double secondsOf400Years = 146097.0 * 86400;

} // namespace

TEST(CalendarPeriodsFromFacts, ofTheTurnsOfTheYear) {
    struct Row {
        NSDate date;
        Period expected;
    };
    const ScopedTimeZone zone("UTC");
    const Row rows[] = {
        {utc(2014, 12, 29), {1, 2015, 12, 4, 2014}},  {utc(2016, 1, 3), {53, 2015, 1, 1, 2016}},
        {utc(2024, 12, 31), {1, 2025, 12, 4, 2024}},  {utc(2021, 1, 1), {53, 2020, 1, 1, 2021}},
        {utc(2014, 12, 28), {52, 2014, 12, 4, 2014}}, {utc(2016, 1, 4), {1, 2016, 1, 1, 2016}},
        {utc(2022, 1, 1), {52, 2021, 1, 1, 2022}},    {utc(2023, 1, 1), {52, 2022, 1, 1, 2023}},
        {utc(2023, 1, 2), {1, 2023, 1, 1, 2023}},     {utc(2020, 12, 31), {53, 2020, 12, 4, 2020}},
        {utc(2021, 1, 3), {53, 2020, 1, 1, 2021}},    {utc(2021, 1, 4), {1, 2021, 1, 1, 2021}},
        {utc(2001, 1, 1), {1, 2001, 1, 1, 2001}},     {utc(1969, 12, 31), {1, 1970, 12, 4, 1969}},
        {utc(1970, 1, 1), {1, 1970, 1, 1, 1970}},     {utc(9999, 12, 31), {52, 9999, 12, 4, 9999}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(periodOf(row.date), row.expected) << shown(row.date);
        EXPECT_EQ(periodAskedOf(bystander, row.date), row.expected) << shown(row.date);
    }
}

TEST(CalendarPeriodsFromFacts, weekOfTheLastMondayOf2014IsTheFirstOf2015) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(bystander.calendarWeekOf(utc(2014, 12, 29)), 1);
    EXPECT_EQ(bystander.yearForCalendarWeekOf(utc(2014, 12, 29)), 2015);
}

TEST(CalendarPeriodsFromFacts, weekOfTheFirstSundayOf2016IsThe53rdOf2015) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(bystander.calendarWeekOf(utc(2016, 1, 3)), 53);
    EXPECT_EQ(bystander.yearForCalendarWeekOf(utc(2016, 1, 3)), 2015);
}

TEST(CalendarPeriodsFromFacts, ofEveryDayOfTwoCenturies) {
    const ScopedTimeZone zone("UTC");
    expectEveryDayAt({0, 86399}, 0);
}

TEST(CalendarPeriodsFromFacts, ofEveryDayOnClocksAheadByAnOddOffset) {
    const ScopedTimeZone zone("XXX-05:41:16");
    expectEveryDayAt({0, 86399}, 5 * 3600 + 41 * 60 + 16);
}

TEST(CalendarPeriodsFromFacts, ofTheDayInTheProcesssZone) {
    const NSDate newYear = utc(2024, 12, 31, 23, 30, 0);
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(periodOf(newYear), (Period{1, 2025, 12, 4, 2024}));
    zone.change("Europe/Berlin");
    EXPECT_EQ(periodOf(newYear), (Period{1, 2025, 1, 1, 2025})) << "the zone was kept from the call before";
    zone.change("America/New_York");
    EXPECT_EQ(periodOf(newYear), (Period{1, 2025, 12, 4, 2024}));
    const NSDate sunday = utc(2024, 6, 30, 18, 20, 0);
    EXPECT_EQ(periodOf(sunday), (Period{26, 2024, 6, 2, 2024}));
    zone.change("Asia/Kathmandu");
    EXPECT_EQ(periodOf(sunday), (Period{27, 2024, 7, 3, 2024}));
}

TEST(CalendarPeriodsFromFacts, changeWithTheSecondThatBeginsADay) {
    const ScopedTimeZone zone("America/Sao_Paulo");
    // Sunday the 4th begins at 01:00; Monday the 5th, of the next week, at 00:00 of the new offset.
    EXPECT_EQ(utc(2018, 11, 5, 1, 59, 59).calendarWeek(), 44);
    EXPECT_EQ(utc(2018, 11, 5, 2, 0, 0).calendarWeek(), 45);
    EXPECT_EQ(later(utc(2018, 11, 5, 2, 0, 0), -0.001).calendarWeek(), 44);
}

TEST(CalendarPeriodsFromFacts, ignoreTheReceiverWhenADateIsGiven) {
    const ScopedTimeZone zone("UTC");
    const NSDate date = utc(2016, 1, 3);
    for (const NSDate& receiver : {bystander, utc(2024, 5, 5), utc(-43, 3, 15), date}) {
        EXPECT_EQ(receiver.calendarWeekOf(date), 53) << shown(receiver);
        EXPECT_EQ(receiver.yearForCalendarWeekOf(date), 2015) << shown(receiver);
        EXPECT_EQ(receiver.calendarMonthOf(date), 1) << shown(receiver);
        EXPECT_EQ(receiver.calendarYearOf(date), 2016) << shown(receiver);
    }
}

TEST(CalendarPeriodsFromFacts, giveTheQuarterOfTheReceiverInMayAskedAboutNovember) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(utc(2024, 5, 17).calendarQuarterOf(utc(2024, 11, 17)), 2);
}

TEST(CalendarPeriodsFromFacts, giveTheQuarterOfTheReceiverWhateverTheArgument) {
    const ScopedTimeZone zone("UTC");
    for (int month = 1; month <= 12; ++month) {
        const int expected = month <= 3 ? 1 : month <= 6 ? 2 : month <= 9 ? 3 : 4;
        const NSDate receiver = utc(2024, month, 17);
        for (int other = 1; other <= 12; ++other) {
            EXPECT_EQ(receiver.calendarQuarterOf(utc(1999, other, 17)), expected) << month << " " << other;
        }
        EXPECT_EQ(receiver.calendarQuarterOf(NSDate()), expected) << month;
        EXPECT_EQ(receiver.calendarQuarter(), expected) << month;
    }
}

TEST(CalendarPeriodsFromFacts, repeatEvery400Years) {
    const ScopedTimeZone zone("UTC");
    for (int day = 0; day < 146097; day += 73) {
        const NSDate date = later(utc(1801, 1, 1, 12, 0, 0), day * 86400.0);
        const Period now = periodOf(date);
        for (const int cycles : {-30, -5, 1, 20, 2'000'000}) {
            const NSDate then = later(date, cycles * secondsOf400Years);
            const std::int64_t years = 400LL * cycles;
            EXPECT_EQ(then.calendarWeek(), now.week) << shown(then);
            EXPECT_EQ(then.yearForCalendarWeek(), now.weekYear + years) << shown(then);
            EXPECT_EQ(then.calendarMonth(), now.month) << shown(then);
            EXPECT_EQ(then.calendarQuarter(), now.quarter) << shown(then);
            // Before the year 1 the years of an era count backwards, without a year 0.
            const std::int64_t year = now.year + years;
            EXPECT_EQ(then.calendarYear(), year > 0 ? year : 1 - year) << shown(then);
        }
    }
}

TEST(CalendarPeriodsFromFacts, aroundTheFirstYear) {
    const ScopedTimeZone zone("UTC");
    // 1 January of the year 1 was a Monday.
    EXPECT_EQ(periodOf(utc(1, 1, 1)), (Period{1, 1, 1, 1, 1}));
    EXPECT_EQ(periodOf(utc(0, 12, 31)), (Period{52, 0, 12, 4, 1}));
    EXPECT_EQ(periodOf(utc(0, 1, 1)), (Period{52, -1, 1, 1, 1}));
    EXPECT_EQ(periodOf(utc(-43, 3, 15)), (Period{11, -43, 3, 1, 44}));
}

TEST(CalendarPeriodsFromFacts, areAllZeroForNil) {
    const NSDate date = utc(2024, 5, 17);
    EXPECT_EQ(periodOf(NSDate()), Period{});
    EXPECT_EQ(date.calendarWeekOf(NSDate()), 0);
    EXPECT_EQ(date.yearForCalendarWeekOf(NSDate()), 0);
    EXPECT_EQ(date.calendarMonthOf(NSDate()), 0);
    EXPECT_EQ(date.calendarYearOf(NSDate()), 0);
    EXPECT_EQ(NSDate().calendarWeekOf(date), 0);
    EXPECT_EQ(NSDate().yearForCalendarWeekOf(date), 0);
    EXPECT_EQ(NSDate().calendarMonthOf(date), 0);
    EXPECT_EQ(NSDate().calendarYearOf(date), 0);
    EXPECT_EQ(NSDate().calendarQuarterOf(date), 0);
}

TEST(CalendarPeriodsFromFacts, areAllZeroBeyondTheCalendar) {
    for (const char* name : {"UTC", "America/New_York", "Asia/Kathmandu"}) {
        const ScopedTimeZone zone(name);
        for (const double seconds : {9.3e18, -9.3e18, 1e300, -1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
            EXPECT_EQ(periodOf(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds)), Period{})
                << name << " " << seconds;
        }
    }
}

TEST(CalendarPeriodsFromFacts, reachToTheLimitsOfTheCalendar) {
    const ScopedTimeZone zone("UTC");
    for (const double side : {1.0, -1.0}) {
        // 700,000,000 cycles of 400 years on, the same day of the same month.
        const NSDate date =
            NSDate::dateWithTimeIntervalSinceReferenceDate(side * 700'000'000 * secondsOf400Years);
        EXPECT_EQ(date.calendarMonth(), 1);
        EXPECT_EQ(date.calendarWeek(), 1);
        EXPECT_EQ(date.yearForCalendarWeek(), 2001 + (side > 0 ? 280'000'000'000 : -280'000'000'000));
        EXPECT_EQ(date.calendarYear(), side > 0 ? 280'000'002'001 : 279'999'998'000);
    }
}
