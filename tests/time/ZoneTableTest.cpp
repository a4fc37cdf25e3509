// SPDX-License-Identifier: MIT
// The zones of the process: what TZ may say, threads and forked children.
#include "foundation/time/ZoneTable.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <random>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/kit/Child.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Zones.h"

namespace ZQFoundation::detail {
namespace {

using namespace std::string_view_literals;

constexpr std::int64_t inWinter = 1709643629; // 2024-03-05 13:00:29 UTC
constexpr std::int64_t inSummer = 1720000000;

const Zone* zoneNamed(std::string_view name) { return namedZone(name.data(), name.size()); }

/// A folder of zone files with "Test/Zone", an hour ahead.
class ZoneTable : public ::testing::Test {
protected:
    ZoneTable() : folder_("TZDIR", files_.path().c_str()) {
        write("Test/Zone", 3600);
        rereadProcessZone();
    }
    ~ZoneTable() override { rereadProcessZone(); }

    std::string write(const std::string& name, int offset) {
        kit::ZoneData data;
        data.clocks = {{offset, false, 0}};
        data.names = std::string("TST", 4);
        return files_.write(name, data.bytes());
    }

    std::int32_t offsetFor(const char* value) {
        zone_.change(value);
        return zoneOffsetAt(processZone(), inWinter);
    }
    std::string nameFor(const char* value) {
        zone_.change(value);
        return zoneName(*processZone());
    }

    kit::ScratchFolder files_;
    kit::Variable folder_;
    // Not for the C library, which would wait for a writer of the FIFO below.
    kit::Variable zone_{"TZ", "UTC"};
};

TEST_F(ZoneTable, understandsEveryFormOfTheVariable) {
    const std::string path = write("elsewhere", 7200);
    EXPECT_EQ(offsetFor("Test/Zone"), 3600);
    EXPECT_EQ(offsetFor(":Test/Zone"), 3600);
    EXPECT_EQ(offsetFor(path.c_str()), 7200);
    EXPECT_EQ(offsetFor((":" + path).c_str()), 7200);
    EXPECT_EQ(offsetFor("AAA-3"), 10800);
    EXPECT_EQ(offsetFor(":AAA-3"), 10800);
    EXPECT_EQ(offsetFor("<+0530>-5:30"), 19800);
    EXPECT_EQ(nameFor("Test/Zone"), "Test/Zone");
    EXPECT_EQ(nameFor(path.c_str()), path);
    EXPECT_EQ(nameFor("AAA-3"), "AAA-3");
}

TEST_F(ZoneTable, takesNonsenseForUtc) {
    write("not-a-zone", 3600);
    files_.write("not-a-zone", "TZif2 and then nothing of use");
    files_.write("empty", "");
    mkfifo((files_ / "fifo").c_str(), 0600);
    const std::string big(100000, 'x');
    for (const char* row : {"", ":", "Test", "Test/", "Test/Nowhere", "/nowhere/at/all", "not-a-zone",
                            "empty", "fifo", "AAA", "AAA-99", "..", "../etc/passwd", "/", "Test//Zone",
                            "./Test/Zone", "Test/../Test/Zone", "/dev/zero", big.c_str()}) {
        EXPECT_EQ(offsetFor(row), 0) << row;
        EXPECT_EQ(nameFor(row), "UTC") << row;
    }
}

TEST_F(ZoneTable, readsTheVariableAgainOnlyWhenAsked) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(offsetFor("AAA-1"), 3600);
        setenv("TZ", "AAA-2", 1);
        EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 3600);
        rereadProcessZone();
        EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 7200);
    }
    // A value that is changed in place, where its address shows nothing.
    char inPlace[] = "TZ=BBB-3";
    putenv(inPlace);
    rereadProcessZone();
    EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 10800);
    inPlace[7] = '4';
    rereadProcessZone();
    EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 14400);
    zone_.change("AAA-1"); // before the array goes
    EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 3600);
}

TEST_F(ZoneTable, makesEachZoneOnce) {
    zone_.change("AAA-1");
    const Zone* const first = processZone();
    zone_.change("Test/Zone");
    const Zone* const named = processZone();
    EXPECT_EQ(named, zoneNamed("Test/Zone"));
    for (int round = 0; round < 100; ++round) {
        zone_.change("AAA-1");
        ASSERT_EQ(processZone(), first);
        zone_.change("Test/Zone");
        ASSERT_EQ(processZone(), named);
        rereadProcessZone();
    }
}

TEST_F(ZoneTable, readsTheFileAgainOnlyWhenAsked) {
    EXPECT_EQ(offsetFor("Test/Zone"), 3600);
    write("Test/Zone", 7200);
    EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 3600);
    rereadProcessZone();
    EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 7200);
    write("Test/Zone", 3600);
    rereadProcessZone();
    EXPECT_EQ(zoneOffsetAt(processZone(), inWinter), 3600);
}

TEST_F(ZoneTable, usesTheSystemsSettingWhenTheVariableIsUnset) {
    zone_.change(nullptr);
    const Zone* const zone = processZone();
    tzset();
    const time_t times[] = {inWinter, inSummer};
    for (const time_t time : times) {
        struct tm local = {};
        ASSERT_NE(localtime_r(&time, &local), nullptr);
        EXPECT_EQ(zoneOffsetAt(zone, time), local.tm_gmtoff);
    }
    EXPECT_NE(zoneName(*zone), "");
}

TEST_F(ZoneTable, findsZonesByPlainNamesOnly) {
    ASSERT_NE(zoneNamed("Test/Zone"), nullptr);
    EXPECT_EQ(zoneName(*zoneNamed("Test/Zone")), "Test/Zone");
    const std::string absolute = files_.path() + "/Test/Zone";
    for (const std::string_view row :
         {""sv, "Test"sv, "Test/"sv, "/Test/Zone"sv, "Test//Zone"sv, "./Test/Zone"sv, "Test/./Zone"sv,
          "Test/../Test/Zone"sv, ".."sv, "."sv, "test/zone"sv, "AAA-3"sv, std::string_view(absolute),
          "Test/Zone\0"sv, "Test/Zone\0x"sv}) {
        EXPECT_EQ(zoneNamed(row), nullptr) << row;
    }
    EXPECT_EQ(zoneNamed(std::string(300, 'a')), nullptr);
}

TEST_F(ZoneTable, distinguishesZones) {
    write("Test/Other", 7200);
    const Zone* const zone = zoneNamed("Test/Zone");
    const Zone* const other = zoneNamed("Test/Other");
    EXPECT_EQ(zoneOffsetAt(zone, inWinter), 3600);
    EXPECT_EQ(zoneOffsetAt(other, inWinter), 7200);
    EXPECT_EQ(zoneNamed("Test/Zone"), zone);
    EXPECT_TRUE(sameZone(*zone, *zone));
    EXPECT_FALSE(sameZone(*zone, *other));
}

TEST_F(ZoneTable, knowsUtcAndGmtWithoutFiles) {
    for (const char* name : {"UTC", "GMT"}) {
        ASSERT_NE(zoneNamed(name), nullptr);
        EXPECT_EQ(zoneName(*zoneNamed(name)), name);
        EXPECT_STREQ(zonePeriodAt(zoneNamed(name), 0).abbreviation, name);
        EXPECT_EQ(zoneOffsetAt(zoneNamed(name), 0), 0);
    }
    EXPECT_STREQ(zonePeriodAt(nullptr, 0).abbreviation, "UTC");
    EXPECT_EQ(zoneOffsetAt(nullptr, 0), 0);
}

TEST_F(ZoneTable, namesALinkedFileAfterItsTarget) {
    ASSERT_EQ(mkdir((files_.path() + "/zoneinfo").c_str(), 0700), 0);
    write("zoneinfo/There", 3600);
    const std::string link = (files_ / "link");
    ASSERT_EQ(symlink("zoneinfo/There", link.c_str()), 0);
    // Only a marker with both slashes counts.
    EXPECT_EQ(nameFor(link.c_str()), link);
    unlink(link.c_str());
    ASSERT_EQ(symlink("./zoneinfo/There", link.c_str()), 0);
    rereadProcessZone();
    EXPECT_EQ(nameFor(link.c_str()), "There");
    EXPECT_EQ(nameFor((files_.path() + "/zoneinfo/There").c_str()), "There");
    unlink((files_.path() + "/zoneinfo/There").c_str());
    EXPECT_EQ(rmdir((files_.path() + "/zoneinfo").c_str()), 0);
}

TEST_F(ZoneTable, preservesErrno) {
    errno = 4711;
    offsetFor("/nowhere/at/all");
    EXPECT_EQ(errno, 4711);
    zoneNamed("Test/Nowhere");
    EXPECT_EQ(errno, 4711);
}

TEST_F(ZoneTable, leavesNoDescriptorOpen) {
    const int before = dup(0);
    ASSERT_GE(before, 0);
    close(before);
    for (int round = 0; round < 10; ++round) {
        zoneNamed("Test");
        rereadProcessZone();
        offsetFor("Test/Zone");
    }
    const int after = dup(0);
    EXPECT_EQ(after, before);
    close(after);
}

TEST_F(ZoneTable, answersTheSameFromMemoryAsFromTheRules) {
    std::mt19937_64 random(3);
    for (const char* value : {"CET-1CEST,M3.5.0,M10.5.0/3", "AAA24:59:59BBB,0/0,J365/25", "<+0530>-5:30"}) {
        zone_.change(value);
        const Zone* const zone = processZone();
        std::int64_t seconds = 0;
        for (int i = 0; i < 200000; ++i) {
            // Near the last one mostly, sometimes anywhere, sometimes right where the clocks change.
            const std::uint64_t number = random();
            seconds = i % 16 == 0   ? static_cast<std::int64_t>(number) >> (number % 64)
                      : i % 16 == 1 ? zonePeriodAt(zone, seconds).until
                                    : seconds ^ static_cast<std::int64_t>(number & 0x1fff);
            ASSERT_EQ(zoneOffsetAt(zone, seconds), zonePeriodAt(zone, seconds).offset) << seconds;
        }
    }
}

TEST_F(ZoneTable, takesNoInstantForOneFarAway) {
    zone_.change("CET-1CEST,M3.5.0,M10.5.0/3");
    const Zone* const zone = processZone();
    int differing = 0;
    for (int bit = 24; bit < 63; ++bit) {
        const std::int64_t farAway = inSummer + (std::int64_t{1} << bit);
        differing += zonePeriodAt(zone, farAway).offset != 7200;
        EXPECT_EQ(zoneOffsetAt(zone, farAway), zonePeriodAt(zone, farAway).offset) << bit;
        EXPECT_EQ(zoneOffsetAt(zone, inSummer), 7200) << bit;
    }
    EXPECT_GT(differing, 5);
}

TEST_F(ZoneTable, servesManyThreadsAtOnce) {
    zone_.change("CET-1CEST,M3.5.0,M10.5.0/3");
    std::atomic<int> wrong{0};
    kit::inThreads(4, [&wrong](std::size_t number) {
        for (int i = 0; i < 5000; ++i) {
            wrong += zoneOffsetAt(processZone(), inWinter) != 3600;
            wrong += zoneOffsetAt(processZone(), inSummer) != 7200;
            wrong += zoneOffsetAt(zoneNamed("Test/Zone"), inWinter) != 3600;
            if (number == 0 && i % 100 == 0) {
                rereadProcessZone();
            }
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(ZoneTable, servesAForkedChildWhileThreadsAreAtWork) {
    zone_.change("CET-1CEST,M3.5.0,M10.5.0/3");
    const auto work = [] {
        rereadProcessZone();
        processZone();
        zoneNamed("Test/Zone");
    };
    const kit::Meanwhile working(work, 3);
    for (int round = 0; round < 50; ++round) {
        kit::expectInChild([] {
            rereadProcessZone();
            return zoneOffsetAt(processZone(), inSummer) == 7200 &&
                   zoneOffsetAt(zoneNamed("Test/Zone"), inWinter) == 3600;
        });
    }
}

/// Asked for before `main`, when other initializers may still be to come.
const std::int32_t offsetBeforeMain = zoneOffsetAt(zoneNamed("UTC"), inWinter) + 1;

TEST_F(ZoneTable, worksBeforeMain) { EXPECT_EQ(offsetBeforeMain, 1); }

} // namespace
} // namespace ZQFoundation::detail
