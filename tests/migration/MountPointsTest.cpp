// SPDX-License-Identifier: MIT
// Mount points at or inside what is overwritten or removed: they are recognized before anything goes, and
// what is mounted there is never emptied.
#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "tests/kit/Mounts.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Leftovers.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

/// What is mounted: a file system of its own, or another folder of the same one.
enum class Volume { own, bound };

/// from/tree, to/tree, single files, and "volume" with two files in it, which is mounted somewhere.
struct MountedPlaces {
    MountedPlaces() {
        folder.writeFiles({"from/tree/one", "from/tree/sub/two", "from/tree/at/three", "from/file",
                           "from/batch/a.log", "from/batch/sub/b.log", "to/tree/old", "to/tree/sub/old",
                           "to/tree/at/old", "to/file", "to/batch/a.log", "to/batch/sub/b.log"});
        fillVolume();
    }
    std::string operator/(const std::string& name) const { return folder / name; }
    Digest volume() const { return folder.digest("volume", Detail::times); }

    /// False where mounts are forbidden.
    bool mountVolume(Volume kind, const std::string& place) const {
        if (kind == Volume::own) {
            if (::mount("none", (folder / "volume").c_str(), "tmpfs", 0, "size=1m") != 0) {
                return false;
            }
            fillVolume();
        }
        return kit::bindMount(folder / "volume", folder / place);
    }

    void expectUnchanged(const Operation& migrate, const std::string& name, const Flags& flags,
                         unsigned code) const {
        const Digest before = folder.digest();
        EXPECT_EQ(migrate(folder / ("from/" + name), folder / ("to/" + name), flags), code);
        EXPECT_EQ(shownDigest(folder.digest()), shownDigest(before));
    }
    /// Moves of "from/tree" to "to/new" that cannot remove it leave the source and its copy whole.
    void expectKept() const {
        const Digest before = folder.digest("from/tree", Detail::times);
        const Digest onVolume = volume();
        for (const Flags& flags : {nothingAllowed, overwriting}) {
            EXPECT_EQ(migrateFolder(folder / "from/tree", folder / "to/new", flags), 15U);
            EXPECT_EQ(shownDigest(folder.digest("from/tree", Detail::times)), shownDigest(before));
            EXPECT_EQ(shownDigest(folder.digest("to/new", Detail::contents)),
                      shownDigest(folder.digest("from/tree", Detail::contents)));
            EXPECT_EQ(shownDigest(volume()), shownDigest(onVolume));
            EXPECT_EQ(Words{}, faults::leftoversBelow(folder.path()));
        }
    }

    MigrationFolder folder;

private:
    void fillVolume() const { folder.writeFiles({"file", "sub/file"}, "volume/"); }
};

/// The body with each kind of volume at each of these places.
template <class Body>
void withVolumeAt(const Words& mountPoints, const Body& body) {
    for (const Volume kind : {Volume::own, Volume::bound}) {
        for (const std::string& place : mountPoints) {
            SCOPED_TRACE(place + (kind == Volume::own ? " is another file system" : " is a bound folder"));
            const MountedPlaces places;
            kit::withOwnMounts([&] { return places.mountVolume(kind, place) && (body(places), true); });
        }
    }
}

/// The body with a file of the volume mounted at these files.
template <class Body>
void withFileAt(const Words& mountPoints, const Body& body) {
    const MountedPlaces places;
    kit::withOwnMounts([&] {
        for (const std::string& place : mountPoints) {
            if (!kit::bindMount(places / "volume/file", places / place)) {
                return false;
            }
        }
        body(places);
        return true;
    });
}

} // namespace

TEST(MountPoints, thatWouldBeOverwrittenAreNotEmptied) {
    withVolumeAt({"to/tree", "to/tree/at", "to/tree/sub"}, [](const MountedPlaces& places) {
        places.expectUnchanged(ofFolders, "tree", overwriting, 36);
        places.expectUnchanged(ofFolders, "tree", {true, false, true, false}, 36);
        places.expectUnchanged(ofFolders, "tree", nothingAllowed, 31);
    });
}

TEST(MountPoints, ofFilesAreNotOverwritten) {
    withFileAt({"to/file", "to/batch/sub/b.log", "to/tree/old"}, [](const MountedPlaces& places) {
        places.expectUnchanged(ofFiles, "file", overwriting, 34);
        places.expectUnchanged(ofFolders, "tree", overwriting, 36);
        EXPECT_EQ(places.folder.migrateLogs("from/batch", "to/batch", overwriting),
                  "{ a.log = 0; sub/b.log = 34; }");
        EXPECT_EQ(places.folder.contents("from/batch/sub/b.log"), "from/batch/sub/b.log");
        EXPECT_EQ(places.folder.contents("to/batch/sub/b.log"), "file");
        EXPECT_EQ(places.folder.contents("to/batch/a.log"), "from/batch/a.log");
    });
}

TEST(MountPoints, atOrInsideASourceKeepItWhole) {
    withVolumeAt({"from/tree", "from/tree/at", "from/tree/sub"},
                 [](const MountedPlaces& places) { places.expectKept(); });
}

TEST(MountPoints, ofFilesKeepTheSourceWhole) {
    withFileAt({"from/file", "from/batch/sub/b.log", "from/tree/sub/two"}, [](const MountedPlaces& places) {
        places.expectKept();
        EXPECT_EQ(migrateFile(places / "from/file", places / "to/newFile"), 15U);
        EXPECT_EQ(places.folder.migrateLogs("from/batch", "to/newBatch", creating),
                  "{ a.log = 0; sub/b.log = 15; }");
        for (const char* const name :
             {"to/newFile", "to/newBatch/sub/b.log", "from/file", "from/batch/sub/b.log", "volume/file"}) {
            EXPECT_EQ(places.folder.contents(name), "file") << name;
        }
        EXPECT_EQ(Words{}, faults::leftoversBelow(places.folder.path()));
    });
}

TEST(MountPoints, thatLookLikeLeftoversAreNotEmptied) {
    for (const char* const mark : {faults::setAside, faults::givenUp, faults::unfinished}) {
        for (const char* const inside : {"", "/at"}) {
            const MountedPlaces places;
            const std::string leftover = std::string("from/") + mark + "0123456789abcdef" + inside;
            places.folder.makeFolder(leftover);
            kit::withOwnMounts([&] {
                if (!places.mountVolume(Volume::own, leftover)) {
                    return false;
                }
                const Digest before = places.volume();
                EXPECT_EQ(migrateFile(places / "from/file", places / "to/new"), 0U);
                EXPECT_EQ(migrateFile(places / "to/new", places / "from/file"), 0U);
                EXPECT_EQ(shownDigest(places.volume()), shownDigest(before));
                return true;
            });
        }
    }
}

TEST(MountPoints, aboveWhatIsMigratedAreNoHindrance) {
    withVolumeAt({"to/tree"}, [](const MountedPlaces& places) {
        const Digest before = places.folder.digest("from/tree", Detail::contents);
        EXPECT_EQ(migrateFolder(places / "from/tree", places / "to/tree/new"), 0U);
        EXPECT_FALSE(places.folder.has("from/tree"));
        EXPECT_EQ(places.folder.digest("to/tree/new", Detail::contents), before);
        EXPECT_EQ(migrateFolder(places / "to/tree/new", places / "from/back"), 0U);
        EXPECT_EQ(places.folder.digest("from/back", Detail::contents), before);
        EXPECT_EQ(places.folder.migrateLogs("from/batch", "to/tree", creating),
                  "{ a.log = 0; sub/b.log = 0; }");
        EXPECT_EQ(places.folder.contents("to/tree/file"), "file");
    });
}
