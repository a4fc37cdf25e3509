// SPDX-License-Identifier: MIT
// Names that are free: of paths, of dictionary keys and of members of sets.
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using scene::MigrationFolder;
using scene::shownText;

namespace {

std::string uniquePath(const NSString& path, StringView between) {
    return shownText(ZQFileMigrator::uniquePathForPath_usingIntermediateString(path, between));
}

std::string uniquePath(const NSString& path, StringView between, std::uint64_t limit) {
    return shownText(
        ZQFileMigrator::uniquePathForPath_usingIntermediateString_maxAttempts(path, between, limit));
}

std::string uniqueMember(const NSSet& set, const NSString& name, StringView between, std::uint64_t limit) {
    return shownText(set.uniqueStringForString_usingIntermediateString_maxAttempts(name, between, limit));
}

std::string uniqueKey(const NSDictionary& entries, const NSString& key, StringView between) {
    return shownText(entries.uniqueKeyForKey_usingIntermediateString(key, between));
}

std::string uniqueKey(const NSDictionary& entries, const NSString& key, StringView between,
                      std::uint64_t limit) {
    return shownText(entries.uniqueKeyForKey_usingIntermediateString_maxAttempts(key, between, limit));
}

} // namespace

TEST(UniquePath, isThePathItselfWhenItIsFreeWhateverTheLimit) {
    const MigrationFolder folder;
    for (const std::uint64_t limit : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
        EXPECT_EQ(uniquePath(folder / "free.txt", " ", limit), folder / "free.txt");
    }
    EXPECT_EQ(uniquePath(folder / "free.txt", nullptr), folder / "free.txt");
    // Unchanged to the letter: nothing is squeezed.
    EXPECT_EQ(uniquePath(folder.path() + "//no//such/", " "), folder.path() + "//no//such/");
}

TEST(UniquePath, hasTheCounterInFrontOfTheExtension) {
    struct Row {
        const char* taken;
        const char* between;
        const char* expected;
    };
    const Row rows[] = {
        {"report.pdf", nullptr, "report1.pdf"},
        {"report.pdf", "-", "report-1.pdf"},
        {"report.pdf", "", "report1.pdf"},
        {"report.pdf", " ", "report 1.pdf"},
        {"report.pdf", " copy ", "report copy 1.pdf"},
        {"a.tar.gz", nullptr, "a.tar1.gz"},
        {"a.tar.gz", " ", "a.tar 1.gz"},
        {"scratch..tiff", nullptr, "scratch.1.tiff"},
        {".a.b", " ", ".a 1.b"},
    };
    for (const Row& row : rows) {
        const MigrationFolder folder;
        folder.file(row.taken, "x");
        EXPECT_EQ(uniquePath(folder / row.taken, row.between), folder / row.expected) << row.taken;
    }
}

TEST(UniquePath, withoutExtensionEndsInAPeriod) {
    const MigrationFolder folder;
    folder.folder("Backup");
    folder.file(".profile", "x");
    EXPECT_EQ(uniquePath(folder / "Backup", nullptr), folder / "Backup1.");
    EXPECT_EQ(uniquePath(folder / "Backup", " copy "), folder / "Backup copy 1.");
    EXPECT_EQ(uniquePath(folder / ".profile", " "), folder / ".profile 1.");
    folder.folder("Backup1.");
    EXPECT_EQ(uniquePath(folder / "Backup", nullptr), folder / "Backup2.");
    // Its own name is in turn one with an empty extension.
    EXPECT_EQ(uniquePath(folder / "Backup1.", nullptr), folder / "Backup11.");
}

TEST(UniquePath, splitsOnlyTheLastComponent) {
    const MigrationFolder folder;
    folder.file("folder.d/plain", "x");
    EXPECT_EQ(uniquePath(folder / "folder.d/plain", " "), folder / "folder.d/plain 1.");
    EXPECT_EQ(uniquePath(folder / "folder.d", " "), folder / "folder 1.d");
}

TEST(UniquePath, triesEveryCounterUpToTheLimitAndNoneBeyond) {
    const MigrationFolder folder;
    for (const char* name : {"n.txt", "n1.txt", "n2.txt", "n3.txt"}) {
        folder.file(name, "x");
    }
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, 0), "(nil)");
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, 1), "(nil)");
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, 3), "(nil)");
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, 4), folder / "n4.txt");
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr, UINT64_MAX), folder / "n4.txt");
    EXPECT_EQ(uniquePath(folder / "n.txt", nullptr), folder / "n4.txt");
}

TEST(UniquePath, takesTheFirstGap) {
    const MigrationFolder folder;
    for (const char* name : {"n.txt", "n 1.txt", "n 3.txt", "n1.txt"}) {
        folder.file(name, "x");
    }
    EXPECT_EQ(uniquePath(folder / "n.txt", " "), folder / "n 2.txt");
}

TEST(UniquePath, findsADanglingLinkFree) {
    const MigrationFolder folder;
    folder.file("real.txt", "x");
    folder.link("nosuch", "dangling.txt");
    folder.link("real.txt", "link.txt");
    folder.link("nosuch", "link1.txt");
    EXPECT_EQ(uniquePath(folder / "dangling.txt", nullptr), folder / "dangling.txt");
    EXPECT_EQ(uniquePath(folder / "link.txt", nullptr), folder / "link1.txt");
}

TEST(UniquePath, createsNothingAndExpandsNoTilde) {
    const MigrationFolder folder;
    folder.file("taken", "x");
    const scene::Variable home("HOME", folder.path().c_str());
    const scene::Digest before = folder.digest();
    uniquePath(folder / "taken", " ");
    EXPECT_EQ(folder.digest(), before);
    EXPECT_EQ(uniquePath("~/taken", " "), "~/taken");
}

TEST(UniquePath, ofNothingIsNothing) {
    EXPECT_EQ(uniquePath("", " "), "");
    EXPECT_EQ(uniquePath(nullptr, " "), "(nil)");
}

TEST(UniquePath, ofTheRootIsAName) { EXPECT_EQ(uniquePath("/", " "), "/ 1."); }

TEST(UniqueString, isTheStringItselfWhenItIsNoMember) {
    for (const std::uint64_t limit : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
        EXPECT_EQ(uniqueMember(NSSet{"other"}, "Name", "_", limit), "Name");
    }
    EXPECT_EQ(uniqueMember(NSSet::set(), "", "_", 0), "");
}

TEST(UniqueString, countsUpFromOne) {
    const NSSet names{"Name", "Name1"};
    EXPECT_EQ(uniqueMember(names, "Name", nullptr, 100), "Name2");
    EXPECT_EQ(uniqueMember(names, "Name", "", 100), "Name2");
    EXPECT_EQ(uniqueMember(names, "Name", "_", 100), "Name_1");
    EXPECT_EQ(uniqueMember(names, "Name1", nullptr, 100), "Name11");
    // No extension is looked for here.
    EXPECT_EQ(uniqueMember(NSSet{"a.txt"}, "a.txt", " ", 100), "a.txt 1");
}

TEST(UniqueString, stopsAtTheLimit) {
    const NSSet names{"n", "n1", "n2", "n3"};
    EXPECT_EQ(uniqueMember(names, "n", nullptr, 0), "(nil)");
    EXPECT_EQ(uniqueMember(names, "n", nullptr, 3), "(nil)");
    EXPECT_EQ(uniqueMember(names, "n", nullptr, 4), "n4");
}

TEST(UniqueString, comparesByEqualityAndNotAcrossKinds) {
    EXPECT_EQ(uniqueMember(NSSet{"n", 1}, "1", nullptr, 5), "1");
    EXPECT_EQ(uniqueMember(NSSet{"N"}, "n", nullptr, 5), "n");
    EXPECT_EQ(uniqueMember(NSSet{""}, "", nullptr, 5), "1");
}

TEST(UniqueKey, isTheKeyItselfWhenItIsFree) {
    const NSDictionary entries{{"Other", 1}};
    EXPECT_EQ(uniqueKey(entries, "Name", " "), "Name");
    EXPECT_EQ(uniqueKey(entries, "Name", " ", 0), "Name");
    EXPECT_EQ(uniqueKey(NSDictionary::dictionary(), "Name", nullptr, UINT64_MAX), "Name");
}

TEST(UniqueKey, isNilWhenItIsTakenEvenWhenEveryCandidateIsFree) {
    const NSDictionary entries{{"Name", 1}};
    EXPECT_EQ(uniqueKey(entries, "Name", nullptr), "(nil)");
    EXPECT_EQ(uniqueKey(entries, "Name", "_"), "(nil)");
    for (const std::uint64_t limit : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{1000}}) {
        EXPECT_EQ(uniqueKey(entries, "Name", nullptr, limit), "(nil)") << limit;
        EXPECT_EQ(uniqueKey(entries, "Name", "", limit), "(nil)") << limit;
    }
}
