// SPDX-License-Identifier: MIT
// Mount points at or inside what is overwritten or removed: they are recognized before anything goes, and
// what is mounted there is never emptied.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Leftovers.h"

using scene::Detail;
using scene::Digest;
using scene::Flags;
using scene::migrateFile;
using scene::migrateFolder;
using scene::overwriting;

namespace {

/// What is mounted: a file system of its own, or another folder of the same one.
enum class Volume { own, bound };

/// from/tree, to/tree, single files, and "volume" with two files in it, which is mounted somewhere.
struct Places {
    Places() {
        for (const char* const name :
             {"from/tree/one", "from/tree/sub/two", "from/tree/at/three", "from/file", "from/batch/a.log",
              "from/batch/sub/b.log", "to/tree/old", "to/tree/sub/old", "to/tree/at/old", "to/file",
              "to/batch/a.log", "to/batch/sub/b.log"}) {
            folder.file(name, std::string("contents of ") + name);
        }
        fillVolume();
    }
    std::string operator/(const std::string& name) const { return folder / name; }
    Digest all() const { return folder.digest(); }
    Digest volume() const { return folder.digest("volume", Detail::times); }

    /// False where mounts are forbidden.
    bool mountVolume(Volume kind, const std::string& place) const {
        if (kind == Volume::own) {
            if (::mount("none", (folder / "volume").c_str(), "tmpfs", 0, "size=1m") != 0) {
                return false;
            }
            fillVolume();
        }
        return bind("volume", place);
    }
    bool bind(const std::string& what, const std::string& place) const {
        return ::mount((folder / what).c_str(), (folder / place).c_str(), nullptr, MS_BIND, nullptr) == 0;
    }

    scene::MigrationFolder folder;

private:
    void fillVolume() const {
        folder.file("volume/file", "on the volume");
        folder.file("volume/sub/file", "deep on the volume");
    }
};

/// The body in a child that may mount; the test is skipped where nobody may.
template <class Body>
void inMounts(const Places& places, const Body& body) {
    const int answer = scene::inOwnMounts([&] { body(places); });
    if (answer == 77) {
        GTEST_SKIP() << "this machine allows no mounts of one's own";
    }
    EXPECT_EQ(answer, 0);
}

/// The body with each kind of volume at each of these places.
template <class Body>
void withVolumeAt(const std::vector<std::string>& mountPoints, const Body& body) {
    for (const Volume kind : {Volume::own, Volume::bound}) {
        for (const std::string& place : mountPoints) {
            SCOPED_TRACE(place + (kind == Volume::own ? " is another file system" : " is a bound folder"));
            inMounts(Places(), [&](const Places& places) {
                if (!places.mountVolume(kind, place)) {
                    scene::leave(77);
                }
                body(places);
            });
        }
    }
}

void expectUnchanged(const Places& places, const Digest& before, unsigned code, unsigned wanted) {
    EXPECT_EQ(code, wanted);
    EXPECT_EQ(scene::shownDigest(places.all()), scene::shownDigest(before));
}

/// The source is whole, and so is its copy.
void expectBothWhole(const Digest& before, const std::string& source, const std::string& copy) {
    EXPECT_EQ(scene::shownDigest(scene::digestOf(source, Detail::times)), scene::shownDigest(before));
    EXPECT_EQ(scene::shownDigest(scene::digestOf(copy, Detail::contents)),
              scene::shownDigest(scene::digestOf(source, Detail::contents)));
}

} // namespace

TEST(MountPoints, thatWouldBeOverwrittenAreNotEmptied) {
    withVolumeAt({"to/tree"}, [](const Places& places) {
        const Digest before = places.all();
        for (const bool keeps : {false, true}) {
            const Flags flags{keeps, false, true, false};
            expectUnchanged(places, before, migrateFolder(places / "from/tree", places / "to/tree", flags),
                            36);
        }
        expectUnchanged(places, before, migrateFolder(places / "from/tree", places / "to/tree"), 31);
    });
}

TEST(MountPoints, insideWhatWouldBeOverwrittenAreNotEmptied) {
    withVolumeAt({"to/tree/at", "to/tree/sub"}, [](const Places& places) {
        const Digest before = places.all();
        expectUnchanged(places, before, migrateFolder(places / "from/tree", places / "to/tree", overwriting),
                        36);
    });
}

TEST(MountPoints, ofFilesAreNotOverwritten) {
    inMounts(Places(), [](const Places& places) {
        for (const char* const place : {"to/file", "to/batch/sub/b.log", "to/tree/old"}) {
            if (!places.bind("volume/file", place)) {
                scene::leave(77);
            }
        }
        const Digest before = places.all();
        expectUnchanged(places, before, migrateFile(places / "from/file", places / "to/file", overwriting),
                        34);
        expectUnchanged(places, before, migrateFolder(places / "from/tree", places / "to/tree", overwriting),
                        36);
        const auto codes = scene::migrateFiles("log", places / "from/batch", places / "to/batch",
                                               scene::DotFiles::included, overwriting);
        EXPECT_EQ(codes.condensedDescription(), "{ a.log = 0; sub/b.log = 34; }");
        EXPECT_EQ(scene::contentsOf(places / "from/batch/sub/b.log"), "contents of from/batch/sub/b.log");
        EXPECT_EQ(scene::contentsOf(places / "to/batch/sub/b.log"), "on the volume");
        EXPECT_EQ(scene::contentsOf(places / "to/batch/a.log"), "contents of from/batch/a.log");
    });
}

TEST(MountPoints, insideASourceKeepItWhole) {
    withVolumeAt({"from/tree/at", "from/tree/sub"}, [](const Places& places) {
        const Digest before = places.folder.digest("from/tree", Detail::times);
        const Digest volume = places.volume();
        for (const Flags& flags : {scene::nothingAllowed, overwriting}) {
            EXPECT_EQ(migrateFolder(places / "from/tree", places / "to/new", flags), 15U);
            expectBothWhole(before, places / "from/tree", places / "to/new");
            EXPECT_EQ(scene::shownDigest(places.volume()), scene::shownDigest(volume));
            EXPECT_EQ(scene::Words{}, faults::leftoversBelow(places.folder.path()));
        }
    });
}

TEST(MountPoints, thatAreTheSourceStayWhole) {
    withVolumeAt({"from/tree"}, [](const Places& places) {
        const Digest before = places.folder.digest("from/tree", Detail::times);
        for (const Flags& flags : {scene::nothingAllowed, overwriting}) {
            EXPECT_EQ(migrateFolder(places / "from/tree", places / "to/new", flags), 15U);
            expectBothWhole(before, places / "from/tree", places / "to/new");
            EXPECT_EQ(scene::Words{}, faults::leftoversBelow(places.folder.path()));
        }
    });
}

TEST(MountPoints, ofFilesKeepTheSourceWhole) {
    inMounts(Places(), [](const Places& places) {
        for (const char* const place : {"from/file", "from/batch/sub/b.log", "from/tree/sub/two"}) {
            if (!places.bind("volume/file", place)) {
                scene::leave(77);
            }
        }
        const Digest tree = places.folder.digest("from/tree", Detail::times);
        EXPECT_EQ(migrateFile(places / "from/file", places / "to/new"), 15U);
        EXPECT_EQ(migrateFolder(places / "from/tree", places / "to/newTree"), 15U);
        expectBothWhole(tree, places / "from/tree", places / "to/newTree");
        const auto codes = scene::migrateFiles("log", places / "from/batch", places / "to/newBatch",
                                               scene::DotFiles::included, scene::creating);
        EXPECT_EQ(codes.condensedDescription(), "{ a.log = 0; sub/b.log = 15; }");
        for (const char* const name :
             {"to/new", "to/newBatch/sub/b.log", "from/file", "from/batch/sub/b.log", "volume/file"}) {
            EXPECT_EQ(scene::contentsOf(places / name), "on the volume") << name;
        }
        EXPECT_EQ(scene::Words{}, faults::leftoversBelow(places.folder.path()));
    });
}

TEST(MountPoints, thatLookLikeLeftoversAreNotEmptied) {
    for (const char* const mark : {faults::setAside, faults::givenUp, faults::unfinished}) {
        for (const char* const inside : {"", "/at"}) {
            inMounts(Places(), [&](const Places& places) {
                const std::string leftover = std::string("from/") + mark + "1" + inside;
                places.folder.folder(leftover);
                if (!places.mountVolume(Volume::own, leftover)) {
                    scene::leave(77);
                }
                const Digest before = places.volume();
                EXPECT_EQ(migrateFile(places / "from/file", places / "to/new"), 0U);
                EXPECT_EQ(migrateFile(places / "to/new", places / "from/file"), 0U);
                EXPECT_EQ(scene::shownDigest(places.volume()), scene::shownDigest(before));
            });
        }
    }
}

TEST(MountPoints, aboveWhatIsMigratedAreNoHindrance) {
    withVolumeAt({"to/tree"}, [](const Places& places) {
        const Digest before = places.folder.digest("from/tree", Detail::contents);
        EXPECT_EQ(migrateFolder(places / "from/tree", places / "to/tree/new"), 0U);
        EXPECT_FALSE(scene::stands(places / "from/tree"));
        EXPECT_EQ(places.folder.digest("to/tree/new", Detail::contents), before);
        EXPECT_EQ(migrateFolder(places / "to/tree/new", places / "from/back"), 0U);
        EXPECT_EQ(places.folder.digest("from/back", Detail::contents), before);
        const auto codes = scene::migrateFiles("log", places / "from/batch", places / "to/tree",
                                               scene::DotFiles::included, scene::creating);
        EXPECT_EQ(codes.condensedDescription(), "{ a.log = 0; sub/b.log = 0; }");
        EXPECT_EQ(scene::contentsOf(places / "to/tree/file"), "on the volume");
    });
}
