// SPDX-License-Identifier: MIT
// Time zones by name, by offset and of the process.
#include "foundation/time/NSTimeZone.h"

#include <climits>
#include <limits>

#include <gtest/gtest.h>

#include "tests/kit/Zones.h"

namespace ZQFoundation {
namespace {

const NSDate winter = NSDate::dateWithTimeIntervalSince1970(1709643629);
const NSDate summer = NSDate::dateWithTimeIntervalSince1970(1720000000);

TEST(NSTimeZone, isNilByDefaultAndAnswersNothing) {
    const NSTimeZone zone;
    EXPECT_FALSE(zone);
    EXPECT_FALSE(zone.name());
    EXPECT_FALSE(zone.abbreviationForDate(winter));
    EXPECT_EQ(zone.secondsFromGMTForDate(winter), 0);
    EXPECT_FALSE(zone.isDaylightSavingTimeForDate(winter));
    EXPECT_EQ(zone, NSTimeZone(nullptr));
}

TEST(NSTimeZone, followsTheVariable) {
    const kit::TimeZone scope("CET-1CEST,M3.5.0,M10.5.0/3");
    const NSTimeZone zone = NSTimeZone::systemTimeZone();
    EXPECT_EQ(zone, NSTimeZone::defaultTimeZone());
    EXPECT_EQ(zone.name(), "CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(zone.secondsFromGMTForDate(winter), 3600);
    EXPECT_EQ(zone.secondsFromGMTForDate(summer), 7200);
    EXPECT_EQ(zone.abbreviationForDate(winter), "CET");
    EXPECT_EQ(zone.abbreviationForDate(summer), "CEST");
    EXPECT_FALSE(zone.isDaylightSavingTimeForDate(winter));
    EXPECT_TRUE(zone.isDaylightSavingTimeForDate(summer));

    scope.change("EST5");
    EXPECT_EQ(NSTimeZone::systemTimeZone().secondsFromGMTForDate(summer), -18000);
    EXPECT_EQ(zone.secondsFromGMTForDate(summer), 7200) << "a zone that was handed out stays what it is";
    scope.change("");
    EXPECT_EQ(NSTimeZone::systemTimeZone().name(), "UTC");
}

TEST(NSTimeZone, rereadsAZoneFileWhenReset) {
    kit::ScratchFolder folder;
    kit::ZoneData data;
    data.clocks = {{3600, false, 0}};
    data.names = std::string("ONE", 4);
    const std::string path = folder.write("zone", data.bytes());
    const kit::TimeZone scope(path.c_str());
    EXPECT_EQ(NSTimeZone::systemTimeZone().secondsFromGMTForDate(winter), 3600);
    data.clocks[0].offset = 7200;
    folder.write("zone", data.bytes());
    EXPECT_EQ(NSTimeZone::systemTimeZone().secondsFromGMTForDate(winter), 3600);
    NSTimeZone::resetSystemTimeZone();
    EXPECT_EQ(NSTimeZone::systemTimeZone().secondsFromGMTForDate(winter), 7200);
}

TEST(NSTimeZone, findsZonesByName) {
    if (!kit::hasZoneFile("Europe/Berlin")) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
    const NSTimeZone berlin = NSTimeZone::timeZoneWithName("Europe/Berlin");
    ASSERT_TRUE(berlin);
    EXPECT_EQ(berlin.name(), "Europe/Berlin");
    EXPECT_EQ(berlin.secondsFromGMTForDate(winter), 3600);
    EXPECT_EQ(berlin.abbreviationForDate(summer), "CEST");
    EXPECT_EQ(berlin, NSTimeZone::timeZoneWithName(u"Europe/Berlin"));
    EXPECT_EQ(berlin, NSTimeZone::timeZoneWithName(NSString("Europe/Berlin")));
    EXPECT_FALSE(berlin == NSTimeZone::timeZoneWithName("America/New_York"));
    EXPECT_FALSE(berlin == NSTimeZone());
    const NSDate farAway = NSDate::dateWithTimeIntervalSince1970(2540000000); // June 2050
    EXPECT_EQ(berlin.secondsFromGMTForDate(farAway), 7200);
    const NSDate beforeRailways = NSDate::dateWithTimeIntervalSince1970(-6000000000);
    EXPECT_EQ(berlin.secondsFromGMTForDate(beforeRailways), 3208);
}

TEST(NSTimeZone, isNilForNamesThatAreUnknown) {
    for (const StringView row : {StringView(), StringView("Nowhere/Land"), StringView(u"Europe/B\u00e9rlin"),
                                 StringView("UTC\0", 4), StringView(u"UT\u0143")}) {
        EXPECT_FALSE(NSTimeZone::timeZoneWithName(row)) << NSString(row).utf8();
    }
}

TEST(NSTimeZone, takesFixedOffsetsUpTo18Hours) {
    const struct {
        int seconds;
        const char* name;
        const char* abbreviation;
    } rows[] = {{0, "GMT", "GMT"},
                {3600, "GMT+0100", "GMT+1"},
                {-12600, "GMT-0330", "GMT-3:30"},
                {64800, "GMT+1800", "GMT+18"},
                {-64800, "GMT-1800", "GMT-18"}};
    for (const auto& row : rows) {
        const NSTimeZone zone = NSTimeZone::timeZoneForSecondsFromGMT(row.seconds);
        ASSERT_TRUE(zone);
        EXPECT_EQ(zone.name(), row.name);
        EXPECT_EQ(zone.abbreviationForDate(winter), row.abbreviation);
        EXPECT_EQ(zone.secondsFromGMTForDate(winter), row.seconds);
        EXPECT_FALSE(zone.isDaylightSavingTimeForDate(summer));
        EXPECT_EQ(zone, NSTimeZone::timeZoneForSecondsFromGMT(row.seconds));
    }
    EXPECT_FALSE(NSTimeZone::timeZoneForSecondsFromGMT(64801));
    EXPECT_FALSE(NSTimeZone::timeZoneForSecondsFromGMT(-64801));
    EXPECT_FALSE(NSTimeZone::timeZoneForSecondsFromGMT(INT_MIN));
}

TEST(NSTimeZone, answersNothingForNilDatesAndSomethingForAllOthers) {
    const kit::TimeZone scope("CET-1CEST,M3.5.0,M10.5.0/3");
    const NSTimeZone zone = NSTimeZone::systemTimeZone();
    EXPECT_EQ(zone.secondsFromGMTForDate(nullptr), 0);
    EXPECT_FALSE(zone.abbreviationForDate(nullptr));
    EXPECT_FALSE(zone.isDaylightSavingTimeForDate(nullptr));
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds :
         {1e300, -1e300, infinity, -infinity, std::numeric_limits<double>::quiet_NaN(), 9e18}) {
        const int offset = zone.secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(seconds));
        EXPECT_TRUE(offset == 3600 || offset == 7200) << seconds;
    }
}

TEST(NSTimeZone, countsTheSecondOfAFractionBefore1970) {
    const kit::TimeZone scope("AAA0BBB,0/0,J182");
    const NSTimeZone zone = NSTimeZone::systemTimeZone();
    EXPECT_FALSE(zone.isDaylightSavingTimeForDate(NSDate::dateWithTimeIntervalSince1970(-0.25)));
    EXPECT_TRUE(zone.isDaylightSavingTimeForDate(NSDate::dateWithTimeIntervalSince1970(0)));
}

TEST(NSTimeZone, saysHowLongItsClocksStayAsTheyAre) {
    const kit::TimeZone scope("AAA0BBB,0/0,J182/0"); // both parts of 1970 begin at 00:00 of the old clocks
    const detail::ZonePeriod half = detail::ZoneAccess::periodAt(NSTimeZone::systemTimeZone(), 86400);
    EXPECT_EQ(half.from, 0);
    EXPECT_EQ(half.until, 181 * 86400 - 3600);
    EXPECT_EQ(half.offset, 3600);
    EXPECT_TRUE(half.isDaylightSaving);
    EXPECT_STREQ(half.abbreviation, "BBB");
    const detail::ZonePeriod fixed =
        detail::ZoneAccess::periodAt(NSTimeZone::timeZoneForSecondsFromGMT(3600), 0);
    EXPECT_EQ(fixed.from, INT64_MIN);
    EXPECT_EQ(fixed.until, INT64_MAX);
    EXPECT_EQ(fixed.offset, 3600);
    EXPECT_EQ(fixed.abbreviation, nullptr);
    EXPECT_STREQ(detail::ZoneAccess::periodAt(NSTimeZone(), 0).abbreviation, "UTC");
}

} // namespace
} // namespace ZQFoundation
