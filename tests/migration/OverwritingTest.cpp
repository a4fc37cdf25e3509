// SPDX-License-Identifier: MIT
// What overwriting must not take away: files that the same batch has just brought there by another way, and a
// folder through which the destination's own path leads.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Leftovers.h"

using scene::Flags;
using scene::MigrationFolder;

namespace {

constexpr Flags moving{false, true, true, false};
constexpr Flags keeping{true, true, true, false};

ZQFoundation::NSDictionary batch(const MigrationFolder& folder, const Flags& flags) {
    return scene::migrateFiles("log", folder / "source", folder / "destination", scene::DotFiles::included,
                               flags);
}

/// Two names of a batch with one destination: one of them gets there, the other stays where it is.
void expectOneOfTwo(const MigrationFolder& folder, const ZQFoundation::NSDictionary& codes,
                    const std::string& one, const std::string& other, const std::string& place,
                    bool keepsOriginals) {
    const auto first = codes.integerForKey(one);
    const auto second = codes.integerForKey(other);
    EXPECT_TRUE((first == 0 && second == 34) || (first == 34 && second == 0))
        << one << " " << first << " " << second;
    const std::string arrived = first == 0 ? one : other;
    const std::string refused = first == 0 ? other : one;
    EXPECT_EQ(scene::contentsOf(folder / ("destination/" + place)), "from " + arrived);
    EXPECT_EQ(scene::contentsOf(folder / ("source/" + refused)), "from " + refused);
    EXPECT_EQ(scene::stands(folder / ("source/" + arrived)), keepsOriginals) << arrived;
}

void make(const MigrationFolder& folder, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        folder.file("source/" + name, "from " + name);
    }
}

} // namespace

TEST(Overwriting, inABatchSparesWhatTheBatchHasBroughtThroughALink) {
    for (const Flags& flags : {moving, keeping}) {
        const MigrationFolder folder;
        make(folder, {"one/x.log", "two/x.log", "one/y.log"});
        folder.folder("destination/one");
        folder.link("one", "destination/two");
        const auto codes = batch(folder, flags);
        EXPECT_EQ(codes.count(), 3U);
        expectOneOfTwo(folder, codes, "one/x.log", "two/x.log", "one/x.log", flags.keepOriginal);
        EXPECT_EQ(codes.integerForKey("one/y.log"), 0);
    }
}

TEST(Overwriting, inABatchSparesWhatTheBatchHasBroughtToTheFolderAbove) {
    for (const Flags& flags : {moving, keeping}) {
        const MigrationFolder folder;
        make(folder, {"x.log", "sub/x.log"});
        folder.folder("destination");
        folder.link(".", "destination/sub");
        expectOneOfTwo(folder, batch(folder, flags), "x.log", "sub/x.log", "x.log", flags.keepOriginal);
    }
}

TEST(Overwriting, inABatchOfHundredsSparesAllThatTheBatchHasBrought) {
    const MigrationFolder folder;
    folder.folder("destination/one");
    folder.link("one", "destination/two");
    for (int number = 0; number < 300; ++number) {
        const std::string name = "/" + std::to_string(number) + ".log";
        make(folder, {"one" + name, "two" + name});
        folder.file("destination/one" + name, "old");
    }
    const auto codes = batch(folder, moving);
    EXPECT_EQ(codes.count(), 600U);
    for (int number = 0; number < 300; ++number) {
        const std::string name = "/" + std::to_string(number) + ".log";
        expectOneOfTwo(folder, codes, "one" + name, "two" + name, "one" + name, false);
    }
}

TEST(Overwriting, inABatchReplacesTwoNamesOfOneOlderFile) {
    const MigrationFolder folder;
    make(folder, {"one/x.log", "two/x.log"});
    folder.file("destination/one/x.log", "old");
    folder.folder("destination/two");
    ASSERT_EQ(::link((folder / "destination/one/x.log").c_str(), (folder / "destination/two/x.log").c_str()),
              0);
    EXPECT_EQ(batch(folder, moving).condensedDescription(), "{ one/x.log = 0; two/x.log = 0; }");
    EXPECT_EQ(scene::contentsOf(folder / "destination/one/x.log"), "from one/x.log");
    EXPECT_EQ(scene::contentsOf(folder / "destination/two/x.log"), "from two/x.log");
}

TEST(Overwriting, sparesAFolderThroughWhichThePathToItLeads) {
    for (const char* const to :
         {"e/../e", "e/sub/../../e", "e/./../e/", "toE/../e", "e/sub/../../toE/../e"}) {
        for (const bool keeps : {false, true}) {
            const MigrationFolder folder;
            folder.file("source/one", "the only copy");
            folder.file("e/sub/old", "old");
            folder.link("e", "toE");
            const scene::Digest before = folder.digest();
            const scene::Digest source = folder.digest("source", scene::Detail::times);
            const unsigned code =
                scene::migrateFolder(folder / "source", folder / to, {keeps, false, true, false});
            if (code == 0) {
                // Where the parent folder is found before anything goes, there is nothing to refuse.
                EXPECT_EQ(folder.digest("e", scene::Detail::times), source) << to;
                EXPECT_EQ(scene::stands(folder / "source"), keeps) << to;
            } else {
                EXPECT_TRUE(code == 36 || code == 37) << to << " gave " << code;
                EXPECT_EQ(scene::shownDigest(folder.digest()), scene::shownDigest(before)) << to;
            }
        }
    }
}
