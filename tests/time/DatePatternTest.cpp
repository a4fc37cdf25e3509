// SPDX-License-Identifier: MIT
// Every field of a date pattern, quoted text, rounding, zones, and instants at the ends of time.
#include <string>

#include <gtest/gtest.h>

#include "foundation/time/NSDateFormatter.h"
#include "tests/kit/Zones.h"
#include "tests/time/FormatterTesting.h"

namespace ZQFoundation {
namespace {

struct FieldRow {
    const char* pattern;
    const char* expected;
};

constexpr FieldRow fieldRows[] = {
    {"y", "2024"},
    {"yy", "24"},
    {"yyyy", "2024"},
    {"yyyyy", "02024"},
    {"Y", "2024"},
    {"M", "3"},
    {"MM", "03"},
    {"MMM", "Mar"},
    {"MMMM", "March"},
    {"MMMMM", "M"},
    {"MMMMMM", "000003"},
    {"d", "5"},
    {"dd", "05"},
    {"ddd", "005"},
    {"D", "65"},
    {"DDD", "065"},
    {"E", "Tue"},
    {"EEEE", "Tuesday"},
    {"EEEEE", "T"},
    {"EEEEEE", "Tu"},
    {"a", "PM"},
    {"H", "14"},
    {"HHH", "014"},
    {"k", "14"},
    {"h", "2"},
    {"hh", "02"},
    {"K", "2"},
    {"m", "7"},
    {"s", "9"},
    {"S", "0"},
    {"SSS", "042"},
    {"SSSSSSSSS", "042000000"},
    {"Z", "+0100"},
    {"ZZZ", "+0100"},
    {"ZZZZ", "GMT+01:00"},
    {"ZZZZZ", "+01:00"},
    {"z", "CET"},
    {"zzzz", "Central European Standard Time"},
};

TEST(DatePattern, writesEachField) {
    const kit::TimeZone scope(berlin);
    for (const FieldRow& row : fieldRows) {
        EXPECT_EQ(formatted(row.pattern, teatime), row.expected) << row.pattern;
    }
}

TEST(DatePattern, writesTheFormatsOfLogs) {
    const kit::TimeZone scope(berlin);
    EXPECT_EQ(formatted("yyyy'-'MM'-'dd' 'HH':'mm':'ss'.'SSS", teatime), "2024-03-05 14:07:09.042");
    EXPECT_EQ(formatted("yyyyMMdd'-'HHmm", teatime), "20240305-1407");
}

TEST(DatePattern, countsHoursInFourWays) {
    const kit::TimeZone scope("UTC0");
    const struct {
        int hour;
        const char* expected; ///< H k h K a
    } rows[] = {{0, "0 24 12 0 AM"},   {1, "1 1 1 1 AM"},    {11, "11 11 11 11 AM"},
                {12, "12 12 12 0 PM"}, {13, "13 13 1 1 PM"}, {23, "23 23 11 11 PM"}};
    for (const auto& row : rows) {
        EXPECT_EQ(formatted("H k h K a", row.hour * 3600), row.expected);
    }
}

TEST(DatePattern, roundsToTheMillisecondAndThenCuts) {
    const kit::TimeZone scope("UTC0");
    const struct {
        double seconds;
        const char* expected;
    } rows[] = {
        {0.9995, "1970-01-01 00:00:01.000"},
        {-0.75, "1969-12-31 23:59:59.250"},
        {-62167219200.5, "0002-12-31 23:59:59.500"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(formatted("yyyy-MM-dd HH:mm:ss.SSS", row.seconds), row.expected);
    }
    EXPECT_EQ(formatted("S", 0.9994), "9") << "cut, never rounded up again";
    EXPECT_EQ(formatted("s S", 0.9995), "1 0");
}

TEST(DatePattern, roundsBeforeItLooksForTheOffset) {
    const kit::TimeZone scope(berlin);
    EXPECT_EQ(formatted("HH:mm:ss.SSS z", 1711846799.9994), "01:59:59.999 CET");
    EXPECT_EQ(formatted("HH:mm:ss.SSS z", 1711846799.9996), "03:00:00.000 CEST");
}

TEST(DatePattern, countsYearsOfTheEra) {
    const kit::TimeZone scope("UTC0");
    const struct {
        double seconds;
        const char* expected; ///< y yy yyyy Y
    } rows[] = {
        {-62135596800, "1 01 0001 1"},  // the first day of the year 1
        {-62135596801, "1 01 0001 0"},  // the last one of the year before
        {-62198755200, "2 02 0002 -2"}, // 1 January of the year before that
        {253402300799, "9999 99 9999 9999"}, {253402300800, "10000 00 10000 9999"}, // a Saturday
        {-77999999999, "503 03 0503 -502"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(formatted("y yy yyyy Y", row.seconds), row.expected) << std::to_string(row.seconds);
    }
    EXPECT_EQ(formatted("YYYY", -62198755200), "-0002");
}

TEST(DatePattern, knowsTheYearOfAWeek) {
    const kit::TimeZone scope("UTC0");
    EXPECT_EQ(formatted("yyyy YYYY", 1419811200), "2014 2015"); // 2014-12-29
    EXPECT_EQ(formatted("yyyy YYYY", 1451779200), "2016 2015"); // 2016-01-03
    EXPECT_EQ(formatted("yyyy YYYY D", 1735603200), "2024 2025 366");
}

TEST(DatePattern, takesQuotedTextLiterally) {
    const kit::TimeZone scope(berlin);
    const struct {
        const char16_t* pattern;
        const char16_t* expected;
    } rows[] = {
        {u"'yyyy'yyyy", u"yyyy2024"},
        {u"''", u"'"},
        {u"''''", u"''"},
        {u"h 'o''clock' a", u"2 o'clock PM"},
        {u"''d''", u"'5'"},
        {u"'''d'''", u"'d'"},
        {u"d'", u"5"},
        {u"d'dd yyyy", u"5dd yyyy"},
        {u"d'dd''", u"5dd'"},
        {u"'d'd'd'", u"d5d"},
        {u"d'-'d", u"5-5"},
        {u"", u""},
        {u"'", u""},
        {u" -/:.,()0 ", u" -/:.,()0 "},
        {u"\u00e9\u4e2d d \U0001F600 '\u00fc d' MM", u"\u00e9\u4e2d 5 \U0001F600 \u00fc d 03"},
        {u"\u0124d\u0179", u"\u01245\u0179"}, // units whose low bytes are those of a letter and a field
        {u"\xd800 d", u"\xd800 5"},
    };
    for (const auto& row : rows) {
        NSDateFormatter formatter;
        formatter.setDateFormat(row.pattern);
        EXPECT_EQ(formatter.stringFromDate(at(teatime)), row.expected);
    }
    const std::u16string withNul(u"d\0d", 3);
    NSDateFormatter formatter;
    formatter.setDateFormat(withNul);
    EXPECT_EQ(formatter.stringFromDate(at(teatime)), std::u16string(u"5\0"
                                                                    u"5",
                                                                    3));
}

TEST(DatePattern, leavesReservedLettersUnchanged) {
    const kit::TimeZone scope(berlin);
    EXPECT_EQ(formatted("dnnbQQQ", teatime), "5nnbQQQ");
    EXPECT_EQ(formatted("T HH", teatime), "T 14");
}

TEST(DatePattern, writesZonesAndOffsets) {
    const struct {
        const char* zone;
        const char* expected; ///< Z ZZZZ ZZZZZ z zzzz
    } rows[] = {
        {"UTC0", "+0000 GMT Z UTC Coordinated Universal Time"},
        {"<+0530>-5:30", "+0530 GMT+05:30 +05:30 GMT+5:30 GMT+05:30"},
        {"<-03>3", "-0300 GMT-03:00 -03:00 GMT-3 GMT-03:00"},
        {"LMT-0:53:28", "+005328 GMT+00:53:28 +00:53:28 LMT GMT+00:53:28"},
        {"EST5EDT,0/0,J365/25", "-0400 GMT-04:00 -04:00 EDT Eastern Daylight Time"},
        {"IST-5:30", "+0530 GMT+05:30 +05:30 IST India Standard Time"},
        {"QQQ-1", "+0100 GMT+01:00 +01:00 QQQ GMT+01:00"},
    };
    const kit::TimeZone scope("UTC0");
    for (const auto& row : rows) {
        scope.change(row.zone);
        EXPECT_EQ(formatted("Z ZZZZ ZZZZZ z zzzz", teatime), row.expected) << row.zone;
    }
}

TEST(DatePattern, writesInstantsAtTheEndsOfTime) {
    const kit::TimeZone scope(berlin);
    EXPECT_EQ(formatted("yyyy-MM-dd", 9223372036854774784.0), "292277026596-12-04");
    EXPECT_EQ(formatted("yyyy-MM-dd HH:mm:ss.SSS Z", -0x1p63), "292277022658-01-27 09:29:52.000 +0100");
}

TEST(DatePattern, padsAsFarAsThePatternSays) {
    const kit::TimeZone scope("UTC0");
    std::string firstDay(5000, '0');
    firstDay.back() = '1';
    EXPECT_EQ(formatted(std::string(5000, 'd'), 0), firstDay);
    std::string half(5000, '0');
    half.front() = '5';
    EXPECT_EQ(formatted(std::string(5000, 'S'), 0.5), half);
}

} // namespace
} // namespace ZQFoundation
