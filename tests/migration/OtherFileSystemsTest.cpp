// SPDX-License-Identifier: MIT
// Migrations from one file system to another, onto a full one, to one without attributes, and from and to one
// that may only be read.
#include <string>

#include <gtest/gtest.h>

#include "tests/files/CopyScene.h"
#include "tests/migration/MigrationScene.h"

using scene::copying;
using scene::creating;
using scene::Detail;
using scene::Digest;
using scene::migrateFile;
using scene::migrateFolder;
using scene::MigrationFolder;
using scene::overwriting;

namespace {

constexpr std::size_t tooLarge = 400000; ///< bytes, for the small file system

/// "there" is a file system of its own in memory, while the test runs in a child.
struct TwoFileSystems {
    TwoFileSystems() {
        folder.file("here/tree/one", "the only copy");
        folder.file("here/tree/sub/deeper/two", std::string(9000, 'x'));
        folder.link("sub/deeper/two", "here/tree/link");
        folder.link("nowhere", "here/tree/dangling");
        folder.pipe("here/tree/pipe");
        folder.file("here/single.txt", "a file");
        ::chmod((folder / "here/tree/one").c_str(), 0440);
        ::chmod((folder / "here/tree/sub").c_str(), 0750);
        folder.folder("there");
    }

    std::string operator/(const std::string& name) const { return folder / name; }

    bool mountThere(const char* options, unsigned long flags = 0) const {
        return ::mount("none", (folder / "there").c_str(), "tmpfs", flags, options) == 0;
    }
    bool forbidChanges(const char* place) const {
        const std::string path = folder / place;
        return ::mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0 &&
               ::mount(nullptr, path.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

    MigrationFolder folder;
};

/// Runs the body where "there" is another file system. True when it was skipped because that is not allowed.
template <class Body>
bool skippedWithoutMounts(const TwoFileSystems& places, const char* options, const Body& body) {
    const int answer = scene::inOwnMounts([&] {
        if (!places.mountThere(options)) {
            scene::leave(77);
        }
        body();
    });
    EXPECT_TRUE(answer == 0 || answer == 77) << answer;
    return answer == 77;
}

/// What a file or folder may have besides its contents.
struct Attribute {
    const char* name;
    std::string value;

    bool isGivenTo(const std::string& path) const { return scene::setAttribute(path, name, value); }
};

/// Runs the body where "there" holds neither extended attributes nor access lists. True when it was skipped.
template <class Body>
bool skippedWithoutAttributes(const TwoFileSystems& places, const Body& body) {
    const int answer = scene::inOwnMounts([&] {
        if (::mount("none", (places / "there").c_str(), "ramfs", 0, nullptr) != 0) {
            scene::leave(77);
        }
        body();
    });
    EXPECT_TRUE(answer == 0 || answer == 77) << answer;
    return answer == 77;
}

/// The file "here/one.log" and one in "here/tree" have the attribute; what has none is moved.
void expectRefused(const TwoFileSystems& places, const Attribute& attribute) {
    const Digest before = places.folder.digest("here", Detail::times);
    for (const bool keeps : {false, true}) {
        const scene::Flags flags{keeps, true, false, true};
        EXPECT_EQ(migrateFile(places / "here/one.log", places / "there/one.log", flags), 35U)
            << attribute.name;
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree", flags), 37U) << attribute.name;
    }
    EXPECT_EQ(places.folder.digest("there").size(), 1U) << "a failed copy has left something";
    EXPECT_EQ(places.folder.digest("here", Detail::times), before);
    const auto codes =
        scene::migrateFiles("log", places / "here", places / "there", scene::DotFiles::included);
    EXPECT_EQ(codes.condensedDescription(), "{ one.log = 35; two.log = 0; }");
    EXPECT_EQ(scene::attribute(places / "here/one.log", attribute.name), attribute.value);
    EXPECT_EQ(scene::contentsOf(places / "there/two.log"), "here/two.log");
    EXPECT_EQ(places.folder.digest("there").size(), 2U);
}

constexpr const char noMounts[] = "this machine allows no mounts of one's own";

} // namespace

TEST(OtherFileSystems, getWholeTreesAndGiveThemBack) {
    const TwoFileSystems places;
    const bool isSkipped = skippedWithoutMounts(places, "size=4m", [&] {
        const Digest before = places.folder.digest("here/tree", Detail::times);
        ASSERT_NE(scene::deviceOf(places / "here"), scene::deviceOf(places / "there"));
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/new/tree", creating), 0U);
        EXPECT_FALSE(scene::stands(places / "here/tree"));
        EXPECT_EQ(places.folder.digest("there/new/tree", Detail::times), before);
        EXPECT_EQ(migrateFolder(places / "there/new/tree", places / "here/tree"), 0U);
        EXPECT_FALSE(scene::stands(places / "there/new/tree"));
        EXPECT_EQ(places.folder.digest("here/tree", Detail::times), before);
    });
    if (isSkipped) {
        GTEST_SKIP() << noMounts;
    }
}

TEST(OtherFileSystems, getFilesAndBatches) {
    const TwoFileSystems places;
    const bool isSkipped = skippedWithoutMounts(places, "size=4m", [&] {
        EXPECT_EQ(migrateFile(places / "here/single.txt", places / "there/single.txt"), 0U);
        EXPECT_FALSE(scene::stands(places / "here/single.txt"));
        EXPECT_EQ(scene::contentsOf(places / "there/single.txt"), "a file");
        // Where nothing is found, the entry before it decides, and the order of entries is the file system's.
        ::unlink((places / "here/tree/dangling").c_str());
        const auto codes = scene::migrateFiles(nullptr, places / "here/tree", places / "there/tree",
                                               scene::DotFiles::included, creating);
        EXPECT_EQ(codes.condensedDescription(), "{ link = 0; one = 0; pipe = 0; sub/deeper/two = 0; }");
        EXPECT_EQ(scene::contentsOf(places / "there/tree/one"), "the only copy");
        EXPECT_FALSE(scene::stands(places / "here/tree/one"));
    });
    if (isSkipped) {
        GTEST_SKIP() << noMounts;
    }
}

TEST(OtherFileSystems, thatAreFullTakeNothingAway) {
    const TwoFileSystems places;
    places.folder.file("here/tree/large.bin", std::string(tooLarge, 'x'));
    places.folder.file("here/large.bin", std::string(tooLarge, 'y'));
    const bool isSkipped = skippedWithoutMounts(places, "size=128k", [&] {
        const Digest before = places.folder.digest("here", Detail::times);
        // Nothing is left of what has no room, under no name.
        const Digest empty = places.folder.digest("there", Detail::contents);
        for (const bool keeps : {false, true}) {
            const scene::Flags flags{keeps, false, false, true};
            EXPECT_EQ(migrateFile(places / "here/large.bin", places / "there/large.bin", flags), 35U);
            EXPECT_EQ(places.folder.digest("there", Detail::contents), empty);
            EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree", flags), 37U);
            EXPECT_EQ(places.folder.digest("there", Detail::contents), empty);
            EXPECT_EQ(places.folder.digest("here", Detail::times), before);
        }
        // What is overwritten goes before the copy shows that there is no room.
        places.folder.file("there/large.bin", "old");
        EXPECT_EQ(migrateFile(places / "here/large.bin", places / "there/large.bin", overwriting), 35U);
        EXPECT_EQ(places.folder.digest("there", Detail::contents), empty);
        EXPECT_EQ(places.folder.digest("here", Detail::times), before);
    });
    if (isSkipped) {
        GTEST_SKIP() << noMounts;
    }
}

TEST(OtherFileSystems, thatAreFullTakeWhatHasRoomOfABatch) {
    const TwoFileSystems places;
    places.folder.file("here/batch/large.log", std::string(tooLarge, 'x'));
    places.folder.file("here/batch/small.log", "small");
    const bool isSkipped = skippedWithoutMounts(places, "size=128k", [&] {
        const auto codes = scene::migrateFiles("log", places / "here/batch", places / "there/batch",
                                               scene::DotFiles::included, creating);
        EXPECT_EQ(codes.condensedDescription(), "{ large.log = 35; small.log = 0; }");
        EXPECT_EQ(scene::contentsOf(places / "here/batch/large.log"), std::string(tooLarge, 'x'));
        // The large one, whose turn may have come first, has given its room back.
        EXPECT_EQ(scene::contentsOf(places / "there/batch/small.log"), "small");
        EXPECT_EQ(places.folder.digest("there/batch").size(), 2U);
    });
    if (isSkipped) {
        GTEST_SKIP() << noMounts;
    }
}

TEST(OtherFileSystems, withoutAttributesGetNothingThatHasThem) {
    const std::string list = scene::listForUser(6);
    const Attribute attributes[] = {{"user.note", "kept"}, {scene::accessList, list}};
    for (const Attribute& attribute : attributes) {
        const TwoFileSystems places;
        for (const char* const name : {"here/one.log", "here/two.log", "here/tree/sub/deeper/three"}) {
            places.folder.file(name, name);
        }
        // Another user's entry and the group's right to read; the mask shows in the mode as the group's.
        ::chmod((places / "here/one.log").c_str(), 0640);
        if (!attribute.isGivenTo(places / "here/one.log") ||
            !attribute.isGivenTo(places / "here/tree/sub/deeper/three")) {
            GTEST_SKIP() << "this file system holds no " << attribute.name;
        }
        const bool isSkipped = skippedWithoutAttributes(places, [&] { expectRefused(places, attribute); });
        if (isSkipped) {
            GTEST_SKIP() << noMounts;
        }
    }
}

TEST(OtherFileSystems, withoutAttributesGetNoFolderThatHasThem) {
    const std::string list = scene::listForUser(6);
    const Attribute attributes[] = {
        {"user.note", "kept"}, {scene::accessList, list}, {scene::listForNewItems, list}};
    for (const Attribute& attribute : attributes) {
        for (const char* const folder : {"here/tree", "here/tree/sub"}) {
            const TwoFileSystems places;
            if (!attribute.isGivenTo(places / folder)) {
                GTEST_SKIP() << "this file system holds no " << attribute.name;
            }
            const bool isSkipped = skippedWithoutAttributes(places, [&] {
                const Digest before = places.folder.digest("here", Detail::times);
                EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree"), 37U) << folder;
                EXPECT_EQ(places.folder.digest("there").size(), 1U);
                EXPECT_EQ(places.folder.digest("here", Detail::times), before);
                EXPECT_EQ(scene::attribute(places / folder, attribute.name), attribute.value);
            });
            if (isSkipped) {
                GTEST_SKIP() << noMounts;
            }
        }
    }
}

TEST(OtherFileSystems, thatMayOnlyBeReadKeepTheSourceBesideItsCopy) {
    const TwoFileSystems places;
    const bool isSkipped = skippedWithoutMounts(places, "size=4m", [&] {
        if (!places.forbidChanges("here")) {
            scene::leave(77);
        }
        const Digest before = places.folder.digest("here", Detail::times);
        EXPECT_EQ(migrateFile(places / "here/single.txt", places / "there/single.txt"), 15U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/tree"), 15U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/copy", copying), 0U);
        EXPECT_EQ(places.folder.digest("here", Detail::times), before);
        EXPECT_EQ(scene::contentsOf(places / "there/single.txt"), "a file");
        EXPECT_EQ(places.folder.digest("there/tree", Detail::times),
                  places.folder.digest("here/tree", Detail::times));
    });
    if (isSkipped) {
        GTEST_SKIP() << noMounts;
    }
}

TEST(OtherFileSystems, thatMayOnlyBeReadAreNoDestination) {
    const TwoFileSystems places;
    const bool isSkipped = skippedWithoutMounts(places, "size=4m", [&] {
        places.folder.file("there/old.txt", "old");
        places.folder.file("there/old/inside", "old");
        if (::mount(nullptr, (places / "there").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
            scene::leave(77);
        }
        const Digest before = places.folder.digest();
        EXPECT_EQ(migrateFile(places / "here/single.txt", places / "there/new.txt"), 35U);
        EXPECT_EQ(migrateFile(places / "here/single.txt", places / "there/x/new.txt", creating), 22U);
        EXPECT_EQ(migrateFile(places / "here/single.txt", places / "there/old.txt", overwriting), 34U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/new"), 37U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/x/new", creating), 22U);
        EXPECT_EQ(migrateFolder(places / "here/tree", places / "there/old", overwriting), 36U);
        EXPECT_EQ(places.folder.digest(), before);
    });
    if (isSkipped) {
        GTEST_SKIP() << noMounts;
    }
}
