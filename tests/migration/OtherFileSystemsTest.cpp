// SPDX-License-Identifier: MIT
// Migrations from one file system to another, onto a full one, to one without attributes, and from and to one
// that may only be read.
#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include "tests/files/CopyScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/Mounts.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

constexpr std::size_t tooLarge = 400000; ///< bytes, for the small file system

/// "there" is a file system of its own in memory, while a test runs in a child.
struct TwoFileSystems {
    TwoFileSystems() {
        folder.write("here/tree/one", "the only copy");
        folder.write("here/tree/sub/deeper/two", std::string(9000, 'x'));
        folder.link("sub/deeper/two", "here/tree/link");
        folder.link("nowhere", "here/tree/dangling");
        folder.makePipe("here/tree/pipe");
        folder.write("here/single.txt", "a file");
        folder.setMode("here/tree/one", 0440);
        folder.setMode("here/tree/sub", 0750);
        folder.makeFolder("there");
    }
    std::string operator/(const std::string& name) const { return folder / name; }
    Digest here() const { return folder.digest("here", Detail::times); }
    std::size_t itemsThere() const { return folder.digest("there").size() - 1; }

    /// Runs the body where "there" is a file system of this type; the test is skipped where that is
    /// forbidden.
    template <class Body>
    void with(const char* type, const char* options, const Body& body) const {
        kit::withOwnMounts([&] {
            const bool isMounted = ::mount("none", (folder / "there").c_str(), type, 0, options) == 0;
            return isMounted && (body(), true);
        });
    }
    void forbidChanges(const std::string& place, unsigned long bound = 0) const {
        if (::mount(nullptr, (folder / place).c_str(), nullptr, bound | MS_REMOUNT | MS_RDONLY, nullptr) !=
            0) {
            kit::leave(77);
        }
    }

    MigrationFolder folder;
};

/// What a file or folder may have besides its contents.
struct Attribute {
    const char* name;
    std::string value;

    bool isGivenTo(const std::string& path) const { return setAttribute(path, name, value); }
};

/// The file "here/one.log" and one in "here/tree" have the attribute; what has none is moved.
void expectRefused(const TwoFileSystems& places, const Attribute& attribute) {
    const Digest before = places.here();
    for (const bool keeps : {false, true}) {
        const Flags flags{keeps, true, false, true};
        EXPECT_EQ(migrateFile(places / "here/one.log", places / "there/one.log", flags), 35U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree", flags), 37U);
    }
    EXPECT_EQ(places.itemsThere(), 0U) << "a failed copy has left something";
    EXPECT_EQ(places.here(), before);
    EXPECT_EQ(places.folder.migrateLogs("here", "there"), "{ one.log = 35; two.log = 0; }");
    EXPECT_EQ(scene::attribute(places / "here/one.log", attribute.name), attribute.value);
    EXPECT_EQ(places.folder.contents("there/two.log"), "here/two.log");
    EXPECT_EQ(places.itemsThere(), 1U);
}

} // namespace

TEST(OtherFileSystems, getWholeTreesAndGiveThemBack) {
    const TwoFileSystems places;
    places.with("tmpfs", "size=4m", [&] {
        const Digest before = places.folder.digest("here/tree", Detail::times);
        ASSERT_NE(kit::deviceOf(places / "here"), kit::deviceOf(places / "there"));
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/new/tree", creating), 0U);
        EXPECT_FALSE(places.folder.has("here/tree"));
        EXPECT_EQ(places.folder.digest("there/new/tree", Detail::times), before);
        EXPECT_EQ(migrateFolder(places / "there/new/tree", places / "here/tree"), 0U);
        EXPECT_FALSE(places.folder.has("there/new/tree"));
        EXPECT_EQ(places.folder.digest("here/tree", Detail::times), before);
    });
}

TEST(OtherFileSystems, getFilesAndBatches) {
    const TwoFileSystems places;
    places.with("tmpfs", "size=4m", [&] {
        EXPECT_EQ(migrateFile(places / "here/single.txt", places / "there/single.txt"), 0U);
        EXPECT_FALSE(places.folder.has("here/single.txt"));
        EXPECT_EQ(places.folder.contents("there/single.txt"), "a file");
        // Where nothing is found, the entry before it decides, and the order of entries is the file system's.
        ::unlink((places / "here/tree/dangling").c_str());
        const auto codes =
            migrateFiles(nullptr, places / "here/tree", places / "there/tree", DotFiles::included, creating);
        EXPECT_EQ(codes.condensedDescription(), "{ link = 0; one = 0; pipe = 0; sub/deeper/two = 0; }");
        EXPECT_EQ(places.folder.contents("there/tree/one"), "the only copy");
        EXPECT_FALSE(places.folder.has("here/tree/one"));
    });
}

TEST(OtherFileSystems, thatAreFullTakeNothingAway) {
    const TwoFileSystems places;
    places.folder.write("here/tree/large.bin", std::string(tooLarge, 'x'));
    places.folder.write("here/large.bin", std::string(tooLarge, 'y'));
    places.with("tmpfs", "size=128k", [&] {
        const Digest before = places.here();
        for (const bool keeps : {false, true}) {
            const Flags flags{keeps, false, false, true};
            EXPECT_EQ(migrateFile(places / "here/large.bin", places / "there/large.bin", flags), 35U);
            EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree", flags), 37U);
            EXPECT_EQ(places.itemsThere(), 0U) << "something is left of what has no room";
            EXPECT_EQ(places.here(), before);
        }
        // What is overwritten goes before the copy shows that there is no room.
        places.folder.write("there/large.bin", "old");
        EXPECT_EQ(migrateFile(places / "here/large.bin", places / "there/large.bin", overwriting), 35U);
        EXPECT_EQ(places.itemsThere(), 0U);
        EXPECT_EQ(places.here(), before);
    });
}

TEST(OtherFileSystems, thatAreFullTakeWhatHasRoomOfABatch) {
    const TwoFileSystems places;
    places.folder.write("here/batch/large.log", std::string(tooLarge, 'x'));
    places.folder.write("here/batch/small.log", "small");
    places.with("tmpfs", "size=128k", [&] {
        EXPECT_EQ(places.folder.migrateLogs("here/batch", "there/batch", creating),
                  "{ large.log = 35; small.log = 0; }");
        EXPECT_EQ(places.folder.contents("here/batch/large.log"), std::string(tooLarge, 'x'));
        // The large one, whose turn may have come first, has given its room back.
        EXPECT_EQ(places.folder.contents("there/batch/small.log"), "small");
        EXPECT_EQ(places.itemsThere(), 2U);
    });
}

TEST(OtherFileSystems, withoutAttributesGetNothingThatHasThem) {
    const std::string list = listForUser(6);
    for (const Attribute& attribute : {Attribute{"user.note", "kept"}, Attribute{accessList, list}}) {
        const TwoFileSystems places;
        places.folder.writeFiles({"here/one.log", "here/two.log", "here/tree/sub/deeper/three"});
        // Another user's entry and the group's right to read; the mask shows in the mode as the group's.
        places.folder.setMode("here/one.log", 0640);
        if (!attribute.isGivenTo(places / "here/one.log") ||
            !attribute.isGivenTo(places / "here/tree/sub/deeper/three")) {
            GTEST_SKIP() << "this file system stores no " << attribute.name;
        }
        SCOPED_TRACE(attribute.name);
        places.with("ramfs", nullptr, [&] { expectRefused(places, attribute); });
    }
}

TEST(OtherFileSystems, withoutAttributesGetNoFolderThatHasThem) {
    const std::string list = listForUser(6);
    for (const Attribute& attribute :
         {Attribute{"user.note", "kept"}, Attribute{accessList, list}, Attribute{listForNewItems, list}}) {
        for (const char* const folder : {"here/tree", "here/tree/sub"}) {
            const TwoFileSystems places;
            if (!attribute.isGivenTo(places / folder)) {
                GTEST_SKIP() << "this file system stores no " << attribute.name;
            }
            places.with("ramfs", nullptr, [&] {
                const Digest before = places.here();
                EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree"), 37U) << folder;
                EXPECT_EQ(places.itemsThere(), 0U);
                EXPECT_EQ(places.here(), before);
                EXPECT_EQ(scene::attribute(places / folder, attribute.name), attribute.value);
            });
        }
    }
}

TEST(OtherFileSystems, thatMayOnlyBeReadKeepTheSourceBesideItsCopy) {
    const TwoFileSystems places;
    places.with("tmpfs", "size=4m", [&] {
        if (!kit::bindMount(places / "here", places / "here")) {
            kit::leave(77);
        }
        places.forbidChanges("here", MS_BIND);
        const Digest before = places.here();
        EXPECT_EQ(migrateFile(places / "here/single.txt", places / "there/single.txt"), 15U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree"), 15U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/copy", copying), 0U);
        EXPECT_EQ(places.here(), before);
        EXPECT_EQ(places.folder.contents("there/single.txt"), "a file");
        EXPECT_EQ(places.folder.digest("there/tree", Detail::times),
                  places.folder.digest("here/tree", Detail::times));
    });
}

TEST(OtherFileSystems, thatMayOnlyBeReadAreNoDestination) {
    const TwoFileSystems places;
    places.with("tmpfs", "size=4m", [&] {
        places.folder.write("there/old.txt", "old");
        places.folder.write("there/old/inside", "old");
        places.forbidChanges("there");
        const Digest before = places.folder.digest();
        for (const Operation& migrate : {ofFiles, ofFolders}) {
            const std::string from = places / (migrate.isFolder ? "here/tree" : "here/single.txt");
            const std::string old = places / (migrate.isFolder ? "there/old" : "there/old.txt");
            EXPECT_EQ(migrate(from, places / "there/new"), migrate.writingFailed);
            EXPECT_EQ(migrate(from, places / "there/x/new", creating), 22U);
            EXPECT_EQ(migrate(from, old, overwriting), migrate.overwritingFailed);
        }
        EXPECT_EQ(places.folder.digest(), before);
    });
}
