// SPDX-License-Identifier: MIT
// Names that are free: of paths, of dictionary keys and of members of sets.
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Values.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;
using kit::utf8Of;

namespace {

constexpr std::uint64_t anyLimit[] = {0, 1, UINT64_MAX};

std::string uniquePath(const NSString& path, StringView between) {
    return utf8Of(ZQFileMigrator::uniquePathForPath_usingIntermediateString(path, between));
}

std::string uniquePath(const NSString& path, StringView between, std::uint64_t limit) {
    return utf8Of(
        ZQFileMigrator::uniquePathForPath_usingIntermediateString_maxAttempts(path, between, limit));
}

std::string uniqueMember(const NSSet& set, const NSString& name, StringView between,
                         std::uint64_t limit = 100) {
    return utf8Of(set.uniqueStringForString_usingIntermediateString_maxAttempts(name, between, limit));
}

std::string uniqueKey(const NSDictionary& entries, StringView between, std::uint64_t limit) {
    return utf8Of(entries.uniqueKeyForKey_usingIntermediateString_maxAttempts("Name", between, limit));
}

} // namespace

TEST(UniquePath, isThePathItselfWhenItIsFreeWhateverTheLimit) {
    const MigrationFolder folder;
    for (const std::uint64_t limit : anyLimit) {
        EXPECT_EQ(uniquePath(folder / "free.txt", " ", limit), folder / "free.txt");
    }
    EXPECT_EQ(uniquePath(folder / "free.txt", nullptr), folder / "free.txt");
    // Unchanged to the letter: nothing is squeezed.
    EXPECT_EQ(uniquePath(folder.path() + "//no//such/", " "), folder.path() + "//no//such/");
    EXPECT_EQ(uniquePath("", " "), "");
    EXPECT_EQ(uniquePath(nullptr, " "), "(nil)");
}

TEST(UniquePath, hasTheCounterBeforeTheExtension) {
    const struct {
        const char* taken;
        const char* between;
        const char* expected;
    } rows[] = {
        {"report.pdf", nullptr, "report1.pdf"},
        {"report.pdf", "-", "report-1.pdf"},
        {"report.pdf", "", "report1.pdf"},
        {"report.pdf", " ", "report 1.pdf"},
        {"report.pdf", " copy ", "report copy 1.pdf"},
        {"a.tar.gz", nullptr, "a.tar1.gz"},
        {"a.tar.gz", " ", "a.tar 1.gz"},
        {"scratch..tiff", nullptr, "scratch.1.tiff"},
        {".a.b", " ", ".a 1.b"},
        {"folder.d/plain", " ", "folder.d/plain 1."}, // only the last component has an extension
        // Without an extension the name ends in a period, and then has an empty one.
        {"Backup", nullptr, "Backup1."},
        {"Backup", " copy ", "Backup copy 1."},
        {"Backup1.", nullptr, "Backup11."},
        {".profile", " ", ".profile 1."},
    };
    for (const auto& row : rows) {
        const MigrationFolder folder;
        folder.write(row.taken, "x");
        EXPECT_EQ(uniquePath(folder / row.taken, row.between), folder / row.expected) << row.taken;
    }
    EXPECT_EQ(uniquePath("/", " "), "/ 1.");
}

TEST(UniquePath, triesEveryCounterUpToTheLimitAndTakesTheFirstGap) {
    const MigrationFolder folder;
    for (const char* const name : {"n.txt", "n1.txt", "n2.txt", "n3.txt", "n 1.txt", "n 3.txt"}) {
        folder.write(name, "x");
    }
    folder.makeFolder("n4.txt");
    for (const std::uint64_t limit : {0U, 1U, 4U}) {
        EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, limit), "(nil)") << limit;
    }
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, 5), folder / "n5.txt");
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, UINT64_MAX), folder / "n5.txt");
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr), folder / "n5.txt");
    EXPECT_EQ(uniquePath(folder / "n.txt", " "), folder / "n 2.txt");
}

TEST(UniquePath, isThatOfADanglingLinkToo) {
    const MigrationFolder folder;
    folder.write("real.txt", "x");
    folder.link("nosuch", "dangling.txt");
    folder.link("real.txt", "link.txt");
    folder.link("nosuch", "link1.txt");
    EXPECT_EQ(uniquePath(folder / "dangling.txt", nullptr), folder / "dangling.txt");
    EXPECT_EQ(uniquePath(folder / "link.txt", nullptr), folder / "link1.txt");
}

TEST(UniquePath, createsNothingAndExpandsNoTilde) {
    const MigrationFolder folder;
    folder.write("taken", "x");
    const kit::Variable home("HOME", folder.path().c_str());
    const Digest before = folder.digest();
    uniquePath(folder / "taken", " ");
    EXPECT_EQ(folder.digest(), before);
    EXPECT_EQ(uniquePath("~/taken", " "), "~/taken");
}

TEST(UniqueString, isTheStringItselfWhenItIsNoMember) {
    for (const std::uint64_t limit : anyLimit) {
        EXPECT_EQ(uniqueMember(NSSet{"other"}, "Name", "_", limit), "Name");
    }
    EXPECT_EQ(uniqueMember(NSSet::set(), "", "_", 0), "");
    // Members are compared by equality and not across kinds.
    EXPECT_EQ(uniqueMember(NSSet{"n", 1}, "1", nullptr), "1");
    EXPECT_EQ(uniqueMember(NSSet{"N"}, "n", nullptr), "n");
}

TEST(UniqueString, countsUpFromOneToTheLimit) {
    const NSSet names{"Name", "Name1", "a.txt", "", "n", "n1", "n2", "n3"};
    EXPECT_EQ(uniqueMember(names, "Name", nullptr), "Name2");
    EXPECT_EQ(uniqueMember(names, "Name", ""), "Name2");
    EXPECT_EQ(uniqueMember(names, "Name", "_"), "Name_1");
    EXPECT_EQ(uniqueMember(names, "Name1", nullptr), "Name11");
    EXPECT_EQ(uniqueMember(names, "", nullptr), "1");
    EXPECT_EQ(uniqueMember(names, "a.txt", " "), "a.txt 1") << "no extension is looked for";
    EXPECT_EQ(uniqueMember(names, "n", nullptr, 0), "(nil)");
    EXPECT_EQ(uniqueMember(names, "n", nullptr, 3), "(nil)");
    EXPECT_EQ(uniqueMember(names, "n", nullptr, 4), "n4");
}

TEST(UniqueKey, isTheKeyOrNilEvenWhenEveryCandidateIsFree) {
    const NSDictionary taken{{"Name", 1}};
    const NSDictionary free{{"Other", 1}};
    for (const char* const between : {static_cast<const char*>(nullptr), "", "_"}) {
        for (const std::uint64_t limit : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
            EXPECT_EQ(uniqueKey(taken, between, limit), "(nil)") << limit;
            EXPECT_EQ(uniqueKey(free, between, limit), "Name") << limit;
        }
        EXPECT_EQ(utf8Of(taken.uniqueKeyForKey_usingIntermediateString("Name", between)), "(nil)");
        EXPECT_EQ(utf8Of(free.uniqueKeyForKey_usingIntermediateString("Name", between)), "Name");
    }
    EXPECT_EQ(uniqueKey(NSDictionary::dictionary(), nullptr, 1), "Name");
}
