// SPDX-License-Identifier: MIT
// Reading zone files: changes, footers, and invalid data.
#include "foundation/time/ZoneRules.h"

#include <cstring>
#include <deque>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "foundation/objects/CivilTime.h"
#include "tests/kit/Zones.h"

namespace ZQFoundation::detail {
namespace {

/// From a copy of exactly the right size on the heap, so that a sanitizer sees every read beyond it.
std::optional<ZoneRules> rulesOf(const std::string& bytes) {
    const std::unique_ptr<char[]> exact(new char[bytes.size()]);
    std::memcpy(exact.get(), bytes.data(), bytes.size());
    return ZoneRules::fromZoneData(exact.get(), bytes.size());
}
std::optional<ZoneRules> rulesOf(const kit::ZoneData& data) { return rulesOf(data.bytes()); }

std::int64_t instant(std::int64_t year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    std::int64_t days = 0;
    EXPECT_TRUE(daysFromCivil(year, month, day, days));
    return days * secondsPerDay + hour * 3600 + minute * 60 + second;
}

/// "STD 3600", with a star for daylight-saving time.
std::string text(const ZonePeriod& period) {
    return period.abbreviation + std::string(" ") + std::to_string(period.offset) +
           (period.isDaylightSaving ? " *" : "");
}

TEST(ZoneRules, readsRecordedChanges) {
    for (const char version : {'\0', '2', '3', '4'}) {
        SCOPED_TRACE(static_cast<int>(version));
        kit::ZoneData data = kit::simpleZone();
        data.version = version;
        const std::optional<ZoneRules> rules = rulesOf(data);
        ASSERT_TRUE(rules);
        const struct {
            std::int64_t seconds;
            const char* expected;
            std::int64_t from, until;
        } rows[] = {
            {INT64_MIN, "OLD -100", INT64_MIN, 1000}, {999, "OLD -100", INT64_MIN, 1000},
            {1000, "STD 3600", 1000, 2000},           {1999, "STD 3600", 1000, 2000},
            {2000, "DST 7200 *", 2000, INT64_MAX},    {INT64_MAX, "DST 7200 *", 2000, INT64_MAX},
        };
        for (const auto& row : rows) {
            const ZonePeriod period = rules->periodAt(row.seconds);
            EXPECT_EQ(text(period), row.expected) << row.seconds;
            EXPECT_EQ(period.from, row.from) << row.seconds;
            EXPECT_EQ(period.until, row.until) << row.seconds;
        }
    }
}

TEST(ZoneRules, prefersThe64BitTimes) {
    kit::ZoneData old = kit::simpleZone();
    old.clocks[1].offset = 1;
    kit::ZoneData data = kit::simpleZone();
    data.changes = {-std::int64_t{1} << 40, std::int64_t{1} << 40};
    const std::string bytes = old.header(false) + old.block(4) + data.header(false) + data.block(8) + "\n\n";
    const std::optional<ZoneRules> rules = rulesOf(bytes);
    ASSERT_TRUE(rules);
    EXPECT_EQ(text(rules->periodAt(0)), "STD 3600");
    EXPECT_EQ(rules->periodAt(0).from, -std::int64_t{1} << 40);
}

TEST(ZoneRules, followsTheFooterAfterTheLastChange) {
    kit::ZoneData data = kit::simpleZone();
    data.footer = "AAA-1BBB,M3.5.0,M10.5.0/3";
    const std::optional<ZoneRules> rules = rulesOf(data);
    ASSERT_TRUE(rules);
    EXPECT_EQ(text(rules->periodAt(1999)), "STD 3600");
    EXPECT_EQ(text(rules->periodAt(2000)), "AAA 3600");
    EXPECT_EQ(rules->periodAt(2000).from, 2000);
    EXPECT_EQ(text(rules->periodAt(instant(2050, 7, 1))), "BBB 7200 *");
    EXPECT_EQ(text(rules->periodAt(instant(100000, 1, 1))), "AAA 3600");
}

TEST(ZoneRules, appliesTheFooterToAllTimeWhenThereAreNoChanges) {
    kit::ZoneData data = kit::simpleZone();
    data.changes.clear();
    data.indexes.clear();
    EXPECT_EQ(text(rulesOf(data)->periodAt(0)), "OLD -100");
    data.footer = "<+0130>-1:30";
    EXPECT_EQ(text(rulesOf(data)->periodAt(0)), "+0130 5400");
    EXPECT_EQ(rulesOf(data)->periodAt(0).from, INT64_MIN);
}

TEST(ZoneRules, skipsLeapSeconds) {
    kit::ZoneData data = kit::simpleZone();
    data.footer = "AAA-1";
    const std::optional<ZoneRules> without = rulesOf(data);
    data.leapSeconds = 27;
    ASSERT_TRUE(without && rulesOf(data));
    EXPECT_EQ(*without, *rulesOf(data));
}

TEST(ZoneRules, refusesDataCutShortAnywhere) {
    for (const char version : {'\0', '2'}) {
        kit::ZoneData data = kit::simpleZone();
        data.version = version;
        data.flags = 3;
        data.leapSeconds = 2;
        data.footer = "AAA-1BBB,M3.5.0,M10.5.0/3";
        const std::string bytes = data.bytes();
        ASSERT_TRUE(rulesOf(bytes));
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            EXPECT_FALSE(rulesOf(bytes.substr(0, size))) << size;
        }
    }
    EXPECT_FALSE(ZoneRules::fromZoneData(nullptr, 0));
}

TEST(ZoneRules, survivesAnyByteBeingAnything) {
    kit::ZoneData data = kit::simpleZone();
    data.footer = "AAA-1BBB,M3.5.0,M10.5.0/3";
    const std::string bytes = data.bytes();
    std::size_t accepted = 0;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (int value = 0; value < 256; ++value) {
            std::string changed = bytes;
            changed[at] = static_cast<char>(value);
            const std::optional<ZoneRules> rules = rulesOf(changed);
            if (!rules) {
                continue;
            }
            ++accepted;
            for (const std::int64_t seconds : {INT64_MIN, std::int64_t{0}, std::int64_t{1500}, INT64_MAX}) {
                const ZonePeriod period = rules->periodAt(seconds);
                ASSERT_LE(std::abs(period.offset), maxZoneOffset);
                ASSERT_LT(std::strlen(period.abbreviation), bytes.size());
            }
        }
    }
    EXPECT_GT(accepted, bytes.size()); // at least the unchanged ones
}

TEST(ZoneRules, refusesDataThatContradictThemselves) {
    std::deque<std::pair<const char*, kit::ZoneData>> rows;
    const auto spoiled = [&rows](const char* what) -> kit::ZoneData& {
        return rows.emplace_back(what, kit::simpleZone()).second;
    };
    spoiled("changes out of order").changes = {2000, 1000};
    spoiled("the same change twice").changes = {1000, 1000};
    spoiled("an index beyond the clocks").indexes[1] = 3;
    spoiled("a name beyond the names").clocks[0].nameStart = 12;
    spoiled("a last name without an end").names.back() = 'X';
    spoiled("a name that does not print").names[0] = '\n';
    spoiled("a name that is not ASCII").names[0] = '\xe9';
    spoiled("no names").names.clear();
    kit::ZoneData& without = spoiled("no clocks");
    without.clocks.clear();
    without.changes.clear();
    without.indexes.clear();
    spoiled("an offset of 26 hours").clocks[0].offset = 93600;
    spoiled("an offset of -26 hours").clocks[0].offset = -93600;
    spoiled("the least offset there is").clocks[0].offset = INT32_MIN;
    spoiled("flags for some clocks only").flags = 2;
    spoiled("a footer that is no rule").footer = "AAA";
    spoiled("an unknown version").version = '1';
    ASSERT_TRUE(rulesOf(kit::simpleZone()));
    for (const auto& [what, data] : rows) {
        EXPECT_FALSE(rulesOf(data)) << what;
    }
}

TEST(ZoneRules, refusesCountsThatExceedTheData) {
    // The six counts of the header, each with the greatest number there is; alone and all at once.
    for (const char version : {'\0', '2'}) {
        kit::ZoneData data = kit::simpleZone();
        data.version = version;
        std::string all = data.bytes();
        for (std::size_t count = 0; count < 6; ++count) {
            std::string bytes = data.bytes();
            bytes.replace(20 + 4 * count, 4, 4, '\xff');
            all.replace(20 + 4 * count, 4, 4, '\xff');
            EXPECT_FALSE(rulesOf(bytes)) << count;
        }
        EXPECT_FALSE(rulesOf(all));
    }
}

TEST(ZoneRules, refusesDataBeyondItsLimit) {
    kit::ZoneData data = kit::simpleZone();
    std::string bytes = data.bytes();
    bytes.append(ZoneRules::maxFileBytes - bytes.size(), '\0');
    EXPECT_TRUE(rulesOf(bytes));
    bytes.push_back('\0');
    EXPECT_FALSE(rulesOf(bytes));
}

TEST(ZoneRules, distinguishesRules) {
    kit::ZoneData data = kit::simpleZone();
    EXPECT_EQ(*rulesOf(data), *rulesOf(data));
    kit::ZoneData other = data;
    other.footer = "AAA-1";
    EXPECT_FALSE(*rulesOf(data) == *rulesOf(other));
}

/// Compares with the C library at `count` instants from 1900 to 2100, and around every change that is met.
void compareWithTheCLibrary(const std::string& name, int count) {
    const std::optional<ZoneRules> rules = rulesOf(kit::contentsOf(kit::zoneFolder + ("/" + name)));
    ASSERT_TRUE(rules) << name;
    const kit::TimeZone scope(name.c_str());
    std::mt19937_64 random(std::hash<std::string>()(name));
    std::uniform_int_distribution<std::int64_t> between(instant(1900, 1, 1), instant(2100, 1, 1));
    for (int i = 0; i < count; ++i) {
        const ZonePeriod met = rules->periodAt(between(random));
        for (const std::int64_t seconds :
             {between(random), met.from, saturatingAdd(met.from, -1), met.until, met.until - 1}) {
            if (seconds < between.min() || seconds > between.max()) {
                continue;
            }
            const time_t time = seconds;
            struct tm local = {};
            ASSERT_NE(localtime_r(&time, &local), nullptr);
            const std::string expected =
                local.tm_zone + (" " + std::to_string(local.tm_gmtoff)) + (local.tm_isdst > 0 ? " *" : "");
            ASSERT_EQ(text(rules->periodAt(seconds)), expected) << name << " at " << seconds;
        }
    }
}

TEST(ZoneRules, agreesWithTheCLibraryForTheMachinesZones) {
    int compared = 0;
    for (const char* name : kit::remarkableZones) {
        if (kit::hasZoneFile(name)) {
            ++compared;
            compareWithTheCLibrary(name, 2000);
        }
    }
    if (compared == 0) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
}

} // namespace
} // namespace ZQFoundation::detail
