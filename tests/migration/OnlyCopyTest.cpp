// SPDX-License-Identifier: MIT
// Overwriting removes before it copies, and a move removes after it copied. Wherever source and destination
// are the same item, or one is in the other, that would take the only copy: here it must not, however
// the two paths are spelled.
#include <algorithm>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/kit/Items.h"
#include "tests/kit/Mounts.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;
using Bits = std::vector<unsigned>;

namespace {

const Bits anyFlags{4, 0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
const Bits refusing{0, 1, 2, 3};
const Bits overwritingSome{4, 5, 6, 7, 12, 15};

/// base/P/A with a tree in it, a file F, and links to the same places.
struct Places {
    Places() {
        folder.write("P/A/one", "the only copy");
        folder.write("P/A/sub/deeper/two", "another");
        folder.link("sub", "P/A/inside");
        folder.write("P/beside", "beside");
        folder.write("P/F.txt", "a file");
        folder.link("P", "toP");
        folder.link("P/A", "toA");
        folder.link("P/A/sub", "toSub");
        folder.link("toP", "toToP");
        folder.makeFolder("other");
        folder.link("../P", "other/back");
    }
    /// Relative to the base; an absolute path is one already.
    std::string operator/(const std::string& name) const { return name[0] == '/' ? name : folder / name; }
    Digest digest() const { return folder.digest("", Detail::times); }

    /// Expects one of the codes under each of these flags, and that nothing at all has changed.
    void expectUntouched(const Operation& migrate, const Words& sources, const Words& destinations,
                         const Bits& flags, const Bits& codes) const {
        const Digest before = digest();
        for (const std::string& from : sources) {
            for (const std::string& to : destinations) {
                for (const unsigned bits : flags) {
                    const unsigned code = migrate(*this / from, *this / to, flagsOf(bits));
                    ASSERT_TRUE(std::count(codes.begin(), codes.end(), code) == 1 && digest() == before)
                        << from << " -> " << to << " " << shownFlags(flagsOf(bits)) << " gave " << code
                        << " and\n"
                        << shownDigest(digest());
                }
            }
        }
    }

    /// The same for each pair of a source and a destination under the first of the flags, and under all of
    /// them for the first source and for the first destination.
    void expectPairsUntouched(const Operation& migrate, const Words& sources, const Words& destinations,
                              const Bits& flags, const Bits& codes) const {
        expectUntouched(migrate, sources, destinations, {flags.front()}, codes);
        expectUntouched(migrate, {sources.front()}, destinations, flags, codes);
        expectUntouched(migrate, sources, {destinations.front()}, flags, codes);
    }

    MigrationFolder folder;
};

/// Ways to name an item of the folder P, when the base is the current folder.
Words spellingsOf(const Places& places, const std::string& name, const std::string& after = "") {
    Words spellings;
    for (const char* const parent :
         {"P/", "P//", "P/./", "./P/", "//P/.//", "P/../P/", "P/A/../", "P/A/sub/../../", "toP/", "toToP/",
          "other/back/", "toA/../", "toSub/../../", "toP/../P/./"}) {
        spellings.push_back(parent[0] == '/' ? places.folder.path() + parent : parent);
    }
    spellings.push_back("/proc/self/cwd/P/");
    spellings.push_back("/proc/self/root" + (places / "P/"));
    for (std::string& spelling : spellings) {
        spelling += name + after;
    }
    return spellings;
}

} // namespace

TEST(OnlyCopy, survivesAFolderMovedIntoOrOntoItselfInAnySpelling) {
    const Places places;
    const kit::CurrentFolder current(places.folder.path());
    const Words spellings = spellingsOf(places, "A");
    places.expectPairsUntouched(ofFolders, spellings, spellingsOf(places, "A", "/new"), anyFlags, {37});
    places.expectPairsUntouched(ofFolders, spellings, spellings, overwritingSome, {36});
    places.expectPairsUntouched(ofFolders, spellings, spellings, refusing, {31});
    const Words withEnds{"P/A", "P/A/", "P/A/.", "P/A/sub/..", "toA/.", "toSub/.."};
    places.expectUntouched(ofFolders, withEnds, withEnds, {4}, {36, 37});
}

TEST(OnlyCopy, survivesAFolderMovedFurtherDownIntoItself) {
    const Places places;
    places.expectUntouched(
        ofFolders, {"P/A"},
        {"P/A/sub/new", "P/A/sub/deeper/new", "toSub/new", "P/A/inside/new", "toA/sub/./new"}, anyFlags,
        {37});
    // Into folders that would be made inside.
    const Words missing{"P/A/x/new", "P/A/x/y/z/new", "toSub/x/new", "P/A/inside/x/new", "toA//x/new"};
    places.expectUntouched(ofFolders, {"P/A"}, missing, {2, 3, 6, 7, 10, 11, 14, 15}, {37});
    places.expectUntouched(ofFolders, {"P/A"}, missing, {0, 1, 4, 5, 8, 9, 12, 13}, {20});
    // Over what is inside: removing that takes a piece of the source, and copying would fail after it.
    const Words inside{"P/A/sub", "P/A/sub/deeper", "toSub/deeper", "P/A/inside", "P/A/./sub/", "toA/sub"};
    places.expectUntouched(ofFolders, {"P/A"}, inside, {4, 5, 6, 7, 12, 13, 14, 15}, {36, 37});
    places.expectUntouched(ofFolders, {"P/A"}, inside, {8, 9, 10, 11}, {37});
    places.expectUntouched(ofFolders, {"P/A"}, inside, refusing, {31});
}

TEST(OnlyCopy, survivesAFolderMovedOntoItsOwnAncestor) {
    const Places places;
    const kit::CurrentFolder current(places.folder.path());
    const Words ancestors{"P",
                          "./P",
                          places.folder.path() + "//P/",
                          "P/../P",
                          "P/A/..",
                          "toP/../P",
                          "toA/..",
                          "toSub/../..",
                          "other/../P",
                          "P/..",
                          ".",
                          "/proc/self/cwd",
                          "/proc/self/cwd/P"};
    places.expectPairsUntouched(ofFolders, spellingsOf(places, "A"), ancestors, {4, 5, 6, 15}, {36});
    places.expectUntouched(ofFolders, {"P/A/sub/deeper"}, {"P/A", "P", "toSub/..", "P/A/sub"}, {4}, {36});
}

TEST(OnlyCopy, survivesAFolderMovedOntoALinkToItAndALinkOntoTheFolder) {
    for (const char* const to : {"toA", "other/../toA", "./toA"}) {
        for (const bool keeps : {false, true}) {
            const Places places;
            const Digest tree = places.folder.digest("P/A", Detail::times);
            const unsigned code = migrateFolder(places / "P/A", places / to, {keeps, false, true, false});
            // The link may be taken for the folder itself, or be replaced by a true copy: nothing is lost.
            EXPECT_TRUE(code == 36 || code == 0) << to << code;
            EXPECT_TRUE(code != 0 || places.folder.digest("toA", Detail::times) == tree);
            EXPECT_TRUE((code == 0 && !keeps) || places.folder.digest("P/A", Detail::times) == tree);
        }
    }
    const Places places;
    places.expectUntouched(ofFolders, {"toA"}, {"P/A", "other/../toA"}, {4, 5, 12}, {36});
    const Digest before = places.digest();
    // The link would be dangling, and what it referred to would be gone.
    const unsigned code = migrateFolder(places / "toSub", places / "P/A", overwriting);
    EXPECT_TRUE(code == 36 || code == 0) << code;
    EXPECT_TRUE(code == 0 ? linkText(places / "P/A") == "P/A/sub" : places.digest() == before);
}

TEST(OnlyCopy, letsAFolderGoBesideItselfAndItsAncestors) {
    const Places places;
    const Digest tree = places.folder.digest("P/A", Detail::times);
    const Flags renamingCopies{true, false, false, true};
    EXPECT_EQ(migrateFolder(places / "P/A", places / "P/A", renamingCopies), 0U);
    EXPECT_EQ(migrateFolder(places / "P/A", places / "P", renamingCopies), 0U);
    EXPECT_EQ(migrateFolder(places / "P/A", places / "P/AB", copying), 0U);
    for (const char* const copy : {"P/A 1.", "P 1.", "P/AB", "P/A"}) {
        EXPECT_EQ(places.folder.digest(copy, Detail::times), tree) << copy;
    }
}

TEST(OnlyCopy, survivesAFileMovedOntoItself) {
    const Places places;
    const kit::CurrentFolder current(places.folder.path());
    const Words spellings = spellingsOf(places, "F.txt");
    places.expectPairsUntouched(ofFiles, spellings, spellings, {4, 5, 6, 12, 15}, {34});
    places.expectPairsUntouched(ofFiles, spellings, spellings, {0, 1}, {30});
    // Also through a descriptor of the process.
    const int parent = ::open((places / "P").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::string other = "/proc/self/fd/" + std::to_string(parent) + "/F.txt";
    places.expectUntouched(ofFiles, {"P/F.txt"}, {other}, {4}, {34});
    places.expectUntouched(ofFiles, {other}, {"P/F.txt"}, {4}, {34});
    ::close(parent);
}

TEST(OnlyCopy, survivesAFileMovedOntoAnotherNameOfIt) {
    const struct {
        const char* path;
        const char* link; ///< what the symbolic link says; null for a hard link
    } rows[] = {{"P/G.txt", nullptr}, {"other/F.txt", nullptr},  {"P/A/F.txt", nullptr},
                {"P/L.txt", "F.txt"}, {"P/L.txt", "../P/F.txt"}, {"P/L.txt", "../toP/F.txt"}};
    for (const auto& row : rows) {
        for (const unsigned bits : {4U, 5U, 12U}) {
            const Places places;
            const Digest file = places.folder.digest("P/F.txt", Detail::times);
            if (row.link != nullptr) {
                places.folder.link(row.link, row.path);
            } else {
                ASSERT_EQ(::link((places / "P/F.txt").c_str(), (places / row.path).c_str()), 0);
            }
            const Digest other = places.folder.digest(row.path, Detail::times);
            const unsigned code = migrateFile(places / "P/F.txt", places / row.path, flagsOf(bits));
            // Either it is taken for the file, or it is replaced by a true copy: the contents never go.
            EXPECT_TRUE(code == 34 || code == 0) << code;
            EXPECT_EQ(places.folder.digest(row.path, Detail::times), code == 0 ? file : other) << row.path;
            EXPECT_TRUE((code == 0 && !flagsOf(bits).keepOriginal) ||
                        places.folder.digest("P/F.txt", Detail::times) == file);
        }
    }
}

TEST(OnlyCopy, survivesALinkMovedOntoItsFileOrItself) {
    for (const char* const text : {"F.txt", "../P/F.txt", "../toP/./F.txt", "second"}) {
        const Places places;
        places.folder.link(text, "P/L.txt");
        places.folder.link("F.txt", "P/second");
        // Removing the file and copying the link would leave a link to itself.
        places.expectUntouched(ofFiles, {"P/L.txt"},
                               {"P/F.txt", "P/L.txt", "toP/L.txt", "P/./L.txt", "other/back/L.txt"},
                               {4, 5, 12}, {34});
    }
}

TEST(OnlyCopy, survivesABatchOntoItselfInAnySpelling) {
    const Places places;
    const kit::CurrentFolder current(places.folder.path());
    const Digest before = places.digest();
    for (const std::string& to : spellingsOf(places, "A")) {
        migrateFiles(nullptr, places / "P/A", places / to, DotFiles::included, {false, true, true, false});
        ASSERT_EQ(shownDigest(places.digest()), shownDigest(before)) << to;
    }
}

TEST(OnlyCopy, survivesAFolderMovedOntoOneThatItsOwnPathGoesThrough) {
    for (const char* const to :
         {"e/../e", "e/sub/../../e", "e/./../e/", "toE/../e", "e/sub/../../toE/../e"}) {
        for (const bool keeps : {false, true}) {
            const MigrationFolder folder;
            folder.write("source/one", "the only copy");
            folder.write("e/sub/old", "old");
            folder.link("e", "toE");
            const Digest before = folder.digest();
            const Digest source = folder.digest("source", Detail::times);
            const unsigned code = migrateFolder(folder / "source", folder / to, {keeps, false, true, false});
            if (code == 0) {
                // Where the parent folder is found before anything goes, there is nothing to refuse.
                EXPECT_EQ(folder.digest("e", Detail::times), source) << to;
                EXPECT_EQ(folder.has("source"), keeps) << to;
            } else {
                EXPECT_TRUE(code == 36 || code == 37) << to << " gave " << code;
                EXPECT_EQ(shownDigest(folder.digest()), shownDigest(before)) << to;
            }
        }
    }
}

// The same places under other mount points.

TEST(OnlyCopy, survivesTheSameFolderMountedElsewhere) {
    const Places places;
    places.folder.makeFolder("mountedP");
    places.folder.makeFolder("mountedA");
    kit::withOwnMounts([&] {
        if (!kit::bindMount(places / "P", places / "mountedP") ||
            !kit::bindMount(places / "P/A", places / "mountedA")) {
            return false;
        }
        const Bits bits{4, 5, 6, 15};
        places.expectUntouched(ofFolders, {"P/A"}, {"mountedP/A", "mountedA", "mountedP"}, bits, {36});
        places.expectUntouched(ofFolders, {"mountedP/A"}, {"P/A", "P"}, bits, {36});
        places.expectUntouched(ofFolders, {"mountedA"}, {"P/A"}, bits, {36});
        places.expectUntouched(ofFolders, {"P/A/sub"}, {"mountedA"}, bits, {36});
        places.expectUntouched(ofFolders, {"P/A"}, {"mountedA/new", "mountedP/A/sub/new"}, bits, {37});
        places.expectUntouched(ofFolders, {"mountedA"}, {"P/A/sub/new"}, bits, {37});
        places.expectUntouched(ofFiles, {"P/F.txt"}, {"mountedP/F.txt"}, bits, {34});
        return true;
    });
}

TEST(OnlyCopy, survivesAFolderMovedIntoAMountOfAFolderInsideIt) {
    const Places places;
    places.folder.makeFolder("other/mountedSub");
    kit::withOwnMounts([&] {
        if (!kit::bindMount(places / "P/A/sub", places / "other/mountedSub")) {
            return false;
        }
        const Digest before = places.folder.digest("P/A", Detail::contents);
        // No way upwards from the destination comes past the source; only on the way down does it show.
        for (const unsigned bits : {0U, 1U, 6U}) {
            EXPECT_EQ(migrateFolder(places / "P/A", places / "other/mountedSub/new", flagsOf(bits)), 37U);
            const Digest after = places.folder.digest("P/A", Detail::contents);
            for (const auto& [path, what] : before) {
                EXPECT_EQ(after.count(path) == 1 ? after.at(path) : "lost", what) << path;
            }
            kit::removeTree(places / "other/mountedSub/new");
        }
        return true;
    });
}
