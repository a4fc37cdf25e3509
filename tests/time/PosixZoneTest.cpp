// SPDX-License-Identifier: MIT
// Zones as a rule describes them, against the C library.
#include "foundation/time/PosixZone.h"

#include <cstring>
#include <initializer_list>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/CivilTime.h"
#include "tests/kit/Zones.h"

namespace ZQFoundation::detail {
namespace {

bool reads(const std::string& notation, PosixZone& zone) {
    const std::unique_ptr<char[]> exact(new char[notation.size()]);
    std::memcpy(exact.get(), notation.data(), notation.size());
    return PosixZone::read(exact.get(), notation.size(), zone);
}

/// What holds at an instant given in UTC, as "CET 3600", with a star for daylight-saving time.
std::string at(const std::string& notation, std::int64_t year, int month, int day, int hour, int minute = 0,
               int second = 0) {
    PosixZone zone;
    std::int64_t days = 0;
    if (!reads(notation, zone) || !daysFromCivil(year, month, day, days)) {
        return "unreadable";
    }
    const ZonePeriod period = zone.periodAt(days * secondsPerDay + hour * 3600 + minute * 60 + second);
    return period.abbreviation + (" " + std::to_string(period.offset)) +
           (period.isDaylightSaving ? " *" : "");
}

TEST(PosixZone, readsOffsetsWestOfGreenwichAsPositive) {
    const struct {
        const char* notation;
        const char* expected;
    } rows[] = {
        {"UTC0", "UTC 0"},
        {"CET-1", "CET 3600"},
        {"EST5", "EST -18000"},
        {"EST+5", "EST -18000"},
        {"EST+05:00:00", "EST -18000"},
        {"IST-5:30", "IST 19800"},
        {"LMT-0:53:28", "LMT 3208"},
        {"<+03>-3", "+03 10800"},
        {"<-0330>3:30", "-0330 -12600"},
        {"AAA24:59:59", "AAA -89999"},
        {"AAA-24:59:59", "AAA 89999"},
        {"abc000", "abc 0"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDE1", "ABCDEFGHIJKLMNOPQRSTUVWXYZABCDE -3600"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(at(row.notation, 2024, 1, 1, 0), row.expected) << row.notation;
        EXPECT_EQ(at(row.notation, 2024, 7, 1, 0), row.expected) << row.notation;
    }
}

void expectRefused(std::initializer_list<const char*> notations) {
    PosixZone zone;
    for (const char* const notation : notations) {
        EXPECT_FALSE(reads(notation, zone)) << notation;
    }
}

TEST(PosixZone, refusesWhatIsNotInTheNotation) {
    expectRefused({"", "A", "CE-1", "CET", "CET-", "CET1x", "CET-1 ", " CET-1", "C3T-1", "<CET-1", "<>-1",
                   "<+3>-3", "<C T>1", "CET25", "CET-25", "CET1:60", "CET1:00:60", "CET1:"});
    expectRefused({"CET1:00:", "CET--1", "CET+-1", "CET-1CE", "CET-1CEST,", "CET-1CEST;", "CET-1CEST,M3",
                   "CET1111", "CET-1:5000", "Europe/Berlin"});
    expectRefused({"CET-1CEST,M3.5.0", "CET-1CEST,M3.5.0,", "CET-1CEST,M3.5.0,M10.5.0/",
                   "CET-1CEST,M0.5.0,M10.5.0", "CET-1CEST,M13.5.0,M10.5.0", "CET-1CEST,M3.0.0,M10.5.0",
                   "CET-1CEST,M3.6.0,M10.5.0", "CET-1CEST,M3.5.7,M10.5.0", "CET-1CEST,M3.5.0,M10.5.0,"});
    expectRefused({"CET-1CEST,J0,J365", "CET-1CEST,J1,J366", "CET-1CEST,0,366", "CET-1CEST,-1,365",
                   "CET-1CEST,M3.5.0/168,M10.5.0", "CET-1CEST,M3.5.0/-168,M10.5.0",
                   "CET-1CEST,M3.5.0/2:60,M10.5.0", "CET-1,M3.5.0,M10.5.0",
                   "ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEF1", "CET-1CEST,M3.5.0,M10.5.0/3\n"});
    PosixZone zone;
    EXPECT_FALSE(PosixZone::read("CET-1\0X", 7, zone));
    EXPECT_FALSE(PosixZone::read("C\xc3\xa9T-1", 6, zone));
}

TEST(PosixZone, changesClocksToTheSecond) {
    const struct {
        const char* notation;
        std::int64_t year;
        int month, day, hour, minute; ///< UTC; the first minute of what follows
        const char* before;
        const char* after;
    } rows[] = {
        {"CET-1CEST,M3.5.0,M10.5.0/3", 2024, 3, 31, 1, 0, "CET 3600", "CEST 7200 *"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", 2024, 10, 27, 1, 0, "CEST 7200 *", "CET 3600"},
        {"EST5EDT", 2024, 3, 10, 7, 0, "EST -18000", "EDT -14400 *"},
        {"EST5EDT", 2024, 11, 3, 6, 0, "EDT -14400 *", "EST -18000"},
        {"EST5EDT4,M3.2.0/2,M11.1.0/2", 2050, 3, 13, 7, 0, "EST -18000", "EDT -14400 *"},
        // South of the equator.
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", 2024, 4, 6, 16, 0, "AEDT 39600 *", "AEST 36000"},
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", 2024, 10, 5, 16, 0, "AEST 36000", "AEDT 39600 *"},
        // Half an hour of difference.
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", 2024, 4, 6, 15, 0, "+11 39600 *", "+1030 37800"},
        // Winter is the exception there.
        {"IST-1GMT0,M10.5.0,M3.5.0/1", 2024, 3, 31, 1, 0, "GMT 0 *", "IST 3600"},
        {"IST-1GMT0,M10.5.0,M3.5.0/1", 2024, 10, 27, 1, 0, "IST 3600", "GMT 0 *"},
        // Times outside their day.
        {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", 2024, 3, 31, 1, 0, "-02 -7200", "-01 -3600 *"},
        {"EET-2EEST,M3.4.4/50,M10.4.4/50", 2024, 3, 30, 0, 0, "EET 7200", "EEST 10800 *"},
        {"AAA0BBB,J1/-167,J182", 2023, 12, 25, 1, 0, "AAA 0", "BBB 3600 *"},
        {"AAA0BBB,J182,J365/167", 2025, 1, 6, 22, 0, "BBB 3600 *", "AAA 0"},
        // J60 is 1 March in every year, 59 (from 0) only in common ones.
        {"AAA0BBB,J60/0,J300", 2024, 3, 1, 0, 0, "AAA 0", "BBB 3600 *"},
        {"AAA0BBB,J60/0,J300", 2023, 3, 1, 0, 0, "AAA 0", "BBB 3600 *"},
        {"AAA0BBB,J59/0,J300", 2024, 2, 28, 0, 0, "AAA 0", "BBB 3600 *"},
        {"AAA0BBB,59/0,J300", 2024, 2, 29, 0, 0, "AAA 0", "BBB 3600 *"},
        {"AAA0BBB,59/0,J300", 2023, 3, 1, 0, 0, "AAA 0", "BBB 3600 *"},
        // Years far off, and a weekday that a month has five times and one that it has four times.
        {"CET-1CEST,M3.5.0,M10.5.0/3", 12024, 3, 31, 1, 0, "CET 3600", "CEST 7200 *"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", -376, 3, 31, 1, 0, "CET 3600", "CEST 7200 *"},
        {"AAA0BBB,M2.5.4/0,M10.5.0", 2024, 2, 29, 0, 0, "AAA 0", "BBB 3600 *"},
        {"AAA0BBB,M2.5.5/0,M10.5.0", 2024, 2, 23, 0, 0, "AAA 0", "BBB 3600 *"},
        {"AAA0BBB,M12.1.0/0,M12.5.0/1", 2024, 12, 1, 0, 0, "AAA 0", "BBB 3600 *"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.notation);
        EXPECT_EQ(at(row.notation, row.year, row.month, row.day, row.hour, row.minute, -1), row.before);
        EXPECT_EQ(at(row.notation, row.year, row.month, row.day, row.hour, row.minute), row.after);
    }
}

TEST(PosixZone, knowsDaylightSavingTimeAllYearRound) {
    for (const char* notation : {"EST5EDT,0/0,J365/25", "EST5EDT,J1/0,J365/25", "EST5EDT,0/0,J365/100"}) {
        for (const int month : {1, 4, 12}) {
            EXPECT_EQ(at(notation, 2024, month, 1, 5), "EDT -14400 *") << notation;
        }
        EXPECT_EQ(at(notation, 2025, 1, 1, 4, 59, 59), "EDT -14400 *") << notation;
        EXPECT_EQ(at(notation, 2025, 1, 1, 5), "EDT -14400 *") << notation;
        PosixZone zone;
        ASSERT_TRUE(reads(notation, zone));
        const ZonePeriod period = zone.periodAt(1720000000);
        EXPECT_GT(period.until - period.from, 400 * secondsPerDay) << "cut at New Year";
    }
}

TEST(PosixZone, hasNoDaylightSavingTimeWhenItEndsAsItBegins) {
    for (const int month : {1, 4, 12}) {
        EXPECT_EQ(at("AAA0BBB0,J100,J100", 2024, month, 1, 5), "AAA 0");
    }
}

TEST(PosixZone, namesPeriodsInWhichNothingChanges) {
    PosixZone zone;
    ASSERT_TRUE(reads("CET-1CEST,M3.5.0,M10.5.0/3", zone));
    const ZonePeriod summer = zone.periodAt(1720000000);
    EXPECT_EQ(summer.from, 1711846800);
    EXPECT_EQ(summer.until, 1729990800);
    const ZonePeriod winter = zone.periodAt(summer.until);
    EXPECT_EQ(winter.from, summer.until);
    EXPECT_EQ(winter.until, 1743296400);
    ASSERT_TRUE(reads("CET-1", zone));
    EXPECT_EQ(zone.periodAt(0).from, INT64_MIN);
    EXPECT_EQ(zone.periodAt(0).until, INT64_MAX);
}

TEST(PosixZone, joinsItsPeriodsWhateverTheRule) {
    const char* const notations[] = {
        "CET-1CEST,M3.5.0,M10.5.0/3", "AEST-10AEDT,M10.1.0,M4.1.0/3", "EST5EDT,0/0,J365/25",
        "AAA0BBB,J1/-167,J182",       "AAA0BBB,J182,J365/167",        "AAA24BBB-24,J365/167,J1/-167",
        "AAA0BBB0,J100,J100",         "AAA-24BBB24,0/-167,365/167",   "AAA0BBB,M12.5.6/167,M1.1.0/-167"};
    std::mt19937_64 random(1);
    for (const char* notation : notations) {
        PosixZone zone;
        ASSERT_TRUE(reads(notation, zone)) << notation;
        for (int i = 0; i < 5000; ++i) {
            std::int64_t seconds = static_cast<std::int64_t>(random());
            seconds = i % 2 == 0 ? seconds : seconds % 10000000000;
            const ZonePeriod period = zone.periodAt(seconds);
            ASSERT_LE(period.from, seconds) << notation;
            ASSERT_GT(period.until, seconds) << notation;
            ASSERT_EQ(zone.periodAt(period.from).offset, period.offset) << notation << " at " << seconds;
            ASSERT_EQ(zone.periodAt(period.until - 1).offset, period.offset) << notation << " at " << seconds;
        }
        EXPECT_LE(zone.periodAt(INT64_MIN).from, INT64_MIN + 1) << notation;
        EXPECT_GE(zone.periodAt(INT64_MAX).until, INT64_MAX - 1) << notation;
    }
}

TEST(PosixZone, agreesWithTheCLibrary) {
    const char* const notations[] = {"CET-1CEST,M3.5.0,M10.5.0/3",     "EST5EDT,M3.2.0,M11.1.0",
                                     "AEST-10AEDT,M10.1.0,M4.1.0/3",   "<-02>2<-01>,M3.5.0/-1,M10.5.0/0",
                                     "EET-2EEST,M3.4.4/50,M10.4.4/50", "AAA3:30BBB,J60/1:02:03,J300",
                                     "AAA-3:30BBB-4,59,300/4"};
    std::mt19937_64 random(2);
    // The C library applies a rule only from 1971 on.
    std::uniform_int_distribution<std::int64_t> between(31536000, 4102444800);
    for (const char* notation : notations) {
        const kit::TimeZone scope(notation);
        tzset();
        PosixZone zone;
        ASSERT_TRUE(reads(notation, zone));
        for (int i = 0; i < 4000; ++i) {
            const time_t seconds = between(random);
            struct tm local = {};
            ASSERT_NE(localtime_r(&seconds, &local), nullptr);
            const ZonePeriod period = zone.periodAt(seconds);
            ASSERT_EQ(period.offset, local.tm_gmtoff) << notation << " at " << seconds;
            ASSERT_EQ(period.isDaylightSaving, local.tm_isdst > 0) << notation << " at " << seconds;
            ASSERT_STREQ(period.abbreviation, local.tm_zone) << notation << " at " << seconds;
        }
    }
    tzset();
}

} // namespace
} // namespace ZQFoundation::detail
