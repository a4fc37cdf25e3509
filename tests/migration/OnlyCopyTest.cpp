// SPDX-License-Identifier: MIT
// Overwriting removes before it copies, and a move removes after it copied. Wherever source and destination
// are the same item, or one lies in the other, that would take the only copy: here it must not, in whatever
// way the two paths are spelled.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using scene::Detail;
using scene::Digest;
using scene::Flags;
using scene::migrateFile;
using scene::migrateFolder;
using scene::MigrationFolder;
using Paths = std::vector<std::string>;

namespace {

/// base/P/A with a tree in it, a file F, and links to the same places.
struct Places {
    Places() {
        folder.file("P/A/one", "the only copy");
        folder.file("P/A/sub/deeper/two", "another");
        folder.link("sub", "P/A/inside");
        folder.file("P/beside", "beside");
        folder.file("P/F.txt", "a file");
        folder.link("P", "toP");
        folder.link("P/A", "toA");
        folder.link("P/A/sub", "toSub");
        folder.link("toP", "toToP");
        folder.folder("other");
        folder.link("../P", "other/back");
    }
    std::string operator/(const std::string& name) const { return folder / name; }
    std::string base() const { return folder.path(); }
    Digest digest() const { return folder.digest("", Detail::times); }

    MigrationFolder folder;
};

/// Ways to name an item of the folder P.
Paths spellingsOf(const Places& places, const std::string& name) {
    return {places / ("P/" + name),
            places / ("P//" + name),
            places / ("P/./" + name),
            places / ("./P/" + name),
            places.base() + "///P/.//" + name,
            places / ("P/../P/" + name),
            places / ("P/A/../" + name),
            places / ("P/A/sub/../../" + name),
            places / ("toP/" + name),
            places / ("toToP/" + name),
            places / ("other/back/" + name),
            places / ("toA/../" + name),
            places / ("toSub/../../" + name),
            places / ("toP/../P/./" + name),
            "/proc/self/cwd/P/" + name,
            "/proc/self/root" + places.base() + "/P/" + name};
}

std::string shown(const std::string& from, const std::string& to, unsigned bits) {
    return from + " -> " + to + " " + scene::shownFlags(scene::flagsOf(bits));
}

/// Expects one of the codes, and that nothing at all has changed.
void expectUntouched(const Places& places, const Digest& before, unsigned code,
                     const std::vector<unsigned>& allowed, const std::string& what) {
    EXPECT_NE(std::find(allowed.begin(), allowed.end(), code), allowed.end()) << what << " gave " << code;
    const Digest after = places.digest();
    ASSERT_EQ(scene::shownDigest(after), scene::shownDigest(before)) << what;
}

} // namespace

// A folder into itself.

TEST(OnlyCopy, survivesAFolderMovedIntoItself) {
    const Places places;
    const scene::CurrentFolder current(places.base());
    const Digest before = places.digest();
    for (const std::string& from : spellingsOf(places, "A")) {
        for (const std::string& to : spellingsOf(places, "A")) {
            for (unsigned bits = 0; bits < 16; ++bits) {
                const std::string what = shown(from, to + "/new", bits);
                expectUntouched(places, before, migrateFolder(from, to + "/new", scene::flagsOf(bits)), {37},
                                what);
                if (::testing::Test::HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(OnlyCopy, survivesAFolderMovedFurtherDownIntoItself) {
    const Places places;
    const Digest before = places.digest();
    for (const char* to :
         {"P/A/sub/new", "P/A/sub/deeper/new", "toSub/new", "P/A/inside/new", "toA/sub/./new"}) {
        for (unsigned bits = 0; bits < 16; ++bits) {
            expectUntouched(places, before, migrateFolder(places / "P/A", places / to, scene::flagsOf(bits)),
                            {37}, shown("P/A", to, bits));
        }
    }
}

TEST(OnlyCopy, survivesAFolderMovedIntoFoldersThatWouldBeMadeInside) {
    const Places places;
    const Digest before = places.digest();
    for (const char* to : {"P/A/x/new", "P/A/x/y/z/new", "toSub/x/new", "P/A/inside/x/new", "toA//x/new"}) {
        for (unsigned bits = 0; bits < 16; ++bits) {
            const bool creates = scene::flagsOf(bits).createParent;
            expectUntouched(places, before, migrateFolder(places / "P/A", places / to, scene::flagsOf(bits)),
                            {creates ? 37U : 20U}, shown("P/A", to, bits));
        }
    }
}

TEST(OnlyCopy, survivesAFolderMovedOverAFolderInsideItself) {
    const Places places;
    const Digest before = places.digest();
    for (const char* to :
         {"P/A/sub", "P/A/sub/deeper", "toSub/deeper", "P/A/inside", "P/A/./sub/", "toA/sub"}) {
        for (unsigned bits = 0; bits < 16; ++bits) {
            const Flags flags = scene::flagsOf(bits);
            const std::string what = shown("P/A", to, bits);
            const unsigned code = migrateFolder(places / "P/A", places / to, flags);
            if (flags.overwrite) {
                // Removing what is there takes a piece of the source; copying would fail after it.
                expectUntouched(places, before, code, {36, 37}, what);
            } else {
                expectUntouched(places, before, code, {flags.rename ? 37U : 31U}, what);
            }
        }
    }
}

// A folder onto itself and onto what it lies in.

TEST(OnlyCopy, survivesAFolderMovedOntoItself) {
    const Places places;
    const scene::CurrentFolder current(places.base());
    const Digest before = places.digest();
    for (const std::string& from : spellingsOf(places, "A")) {
        for (const std::string& to : spellingsOf(places, "A")) {
            for (const unsigned bits : {4U, 5U, 6U, 7U, 12U, 15U}) {
                expectUntouched(places, before, migrateFolder(from, to, scene::flagsOf(bits)), {36},
                                shown(from, to, bits));
                if (::testing::Test::HasFatalFailure()) {
                    return;
                }
            }
            for (const unsigned bits : {0U, 1U, 2U, 3U}) {
                expectUntouched(places, before, migrateFolder(from, to, scene::flagsOf(bits)), {31},
                                shown(from, to, bits));
            }
        }
    }
}

TEST(OnlyCopy, survivesAFolderMovedOntoItselfBehindAFinalSlashOrAPeriod) {
    const Places places;
    const Digest before = places.digest();
    for (const char* from : {"P/A", "P/A/", "P/A/.", "P/A/sub/..", "toA/."}) {
        for (const char* to : {"P/A", "P/A/", "P/A/.", "P/A/sub/..", "toSub/.."}) {
            const unsigned code = migrateFolder(places / from, places / to, scene::overwriting);
            expectUntouched(places, before, code, {36, 37}, std::string(from) + " -> " + to);
        }
    }
}

TEST(OnlyCopy, survivesAFolderMovedOntoItsOwnAncestor) {
    const Places places;
    const scene::CurrentFolder current(places.base());
    const Digest before = places.digest();
    const Paths ancestors = {places / "P",           places / "./P",    places.base() + "//P/",
                             places / "P/../P",      places / "P/A/..", places / "toP/../P",
                             places / "toSub/../..", places / "toA/..", places / "other/../P",
                             "/proc/self/cwd/P",     places.base(),     places / "P/..",
                             "/proc/self/cwd"};
    for (const std::string& from : spellingsOf(places, "A")) {
        for (const std::string& to : ancestors) {
            for (const unsigned bits : {4U, 5U, 6U, 15U}) {
                expectUntouched(places, before, migrateFolder(from, to, scene::flagsOf(bits)), {36},
                                shown(from, to, bits));
                if (::testing::Test::HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(OnlyCopy, survivesADeepFolderMovedOntoADistantAncestor) {
    const Places places;
    const Digest before = places.digest();
    for (const char* to : {"P/A", "P", "toSub/..", "P/A/sub"}) {
        expectUntouched(places, before,
                        migrateFolder(places / "P/A/sub/deeper", places / to, scene::overwriting), {36}, to);
    }
}

TEST(OnlyCopy, survivesAFolderMovedOntoALinkToIt) {
    for (const char* to : {"toA", "other/../toA", "./toA"}) {
        for (const bool keeps : {false, true}) {
            const Places places;
            const Digest tree = places.folder.digest("P/A", Detail::times);
            const unsigned code = migrateFolder(places / "P/A", places / to, {keeps, false, true, false});
            // The link may be taken for the folder itself, or be replaced by a true copy: nothing is lost.
            EXPECT_TRUE(code == 36 || code == 0) << to << code;
            if (code == 0) {
                EXPECT_EQ(places.folder.digest("toA", Detail::times), tree);
            }
            if (code != 0 || keeps) {
                EXPECT_EQ(places.folder.digest("P/A", Detail::times), tree);
            }
        }
    }
}

TEST(OnlyCopy, survivesALinkToAFolderMovedOntoThatFolder) {
    const Places places;
    const Digest before = places.digest();
    for (const unsigned bits : {4U, 5U, 12U}) {
        const unsigned code = migrateFolder(places / "toA", places / "P/A", scene::flagsOf(bits));
        expectUntouched(places, before, code, {36}, shown("toA", "P/A", bits));
    }
}

TEST(OnlyCopy, survivesALinkMovedOntoAFolderAboveWhatItLeadsTo) {
    const Places places;
    const Digest before = places.digest();
    // The link would be dangling, and what it referred to would be gone.
    const unsigned code = migrateFolder(places / "toSub", places / "P/A", scene::overwriting);
    EXPECT_TRUE(code == 36 || code == 0) << code;
    if (code != 0) {
        EXPECT_EQ(scene::shownDigest(places.digest()), scene::shownDigest(before));
    } else {
        EXPECT_EQ(scene::linkText(places / "P/A"), "P/A/sub") << "the link itself was the source";
    }
}

TEST(OnlyCopy, letsAFolderGoBesideItselfAndItsAncestors) {
    const Places places;
    const Digest tree = places.folder.digest("P/A", Detail::times);
    EXPECT_EQ(migrateFolder(places / "P/A", places / "P/A", {true, false, false, true}), 0U);
    EXPECT_EQ(places.folder.digest("P/A 1.", Detail::times), tree);
    EXPECT_EQ(migrateFolder(places / "P/A", places / "P", {true, false, false, true}), 0U);
    EXPECT_EQ(places.folder.digest("P 1.", Detail::times), tree);
    EXPECT_EQ(migrateFolder(places / "P/A", places / "P/AB", scene::copying), 0U);
    EXPECT_EQ(places.folder.digest("P/AB", Detail::times), tree);
    EXPECT_EQ(places.folder.digest("P/A", Detail::times), tree);
}

// A file onto itself.

TEST(OnlyCopy, survivesAFileMovedOntoItself) {
    const Places places;
    const scene::CurrentFolder current(places.base());
    const Digest before = places.digest();
    for (const std::string& from : spellingsOf(places, "F.txt")) {
        for (const std::string& to : spellingsOf(places, "F.txt")) {
            for (const unsigned bits : {4U, 5U, 6U, 12U, 15U}) {
                expectUntouched(places, before, migrateFile(from, to, scene::flagsOf(bits)), {34},
                                shown(from, to, bits));
                if (::testing::Test::HasFatalFailure()) {
                    return;
                }
            }
            for (const unsigned bits : {0U, 1U}) {
                expectUntouched(places, before, migrateFile(from, to, scene::flagsOf(bits)), {30},
                                shown(from, to, bits));
            }
        }
    }
}

TEST(OnlyCopy, survivesAFileMovedOntoItselfThroughTheDescriptorsOfTheProcess) {
    const Places places;
    const Digest before = places.digest();
    const int file = ::open((places / "P/F.txt").c_str(), O_RDONLY | O_CLOEXEC);
    const int parent = ::open((places / "P").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::string other = "/proc/self/fd/" + std::to_string(parent) + "/F.txt";
    expectUntouched(places, before, migrateFile(places / "P/F.txt", other, scene::overwriting), {34}, other);
    expectUntouched(places, before, migrateFile(other, places / "P/F.txt", scene::overwriting), {34}, other);
    ::close(file);
    ::close(parent);
}

TEST(OnlyCopy, survivesAFileMovedOntoAHardLinkOfIt) {
    for (const char* second : {"P/G.txt", "other/F.txt", "P/A/F.txt"}) {
        for (const unsigned bits : {4U, 5U, 12U}) {
            const Places places;
            const Digest file = places.folder.digest("P/F.txt", Detail::times);
            ASSERT_EQ(::link((places / "P/F.txt").c_str(), (places / second).c_str()), 0);
            const unsigned code = migrateFile(places / "P/F.txt", places / second, scene::flagsOf(bits));
            // One of the two names may go, the contents must not.
            EXPECT_TRUE(code == 34 || code == 0) << code;
            EXPECT_EQ(places.folder.digest(second, Detail::times), file) << second;
            if (code != 0 || scene::flagsOf(bits).keepOriginal) {
                EXPECT_EQ(places.folder.digest("P/F.txt", Detail::times), file);
            }
        }
    }
}

TEST(OnlyCopy, survivesAFileMovedOntoALinkToIt) {
    for (const char* text : {"F.txt", "../P/F.txt", "../toP/F.txt"}) {
        for (const unsigned bits : {4U, 5U, 12U}) {
            const Places places;
            const Digest file = places.folder.digest("P/F.txt", Detail::times);
            places.folder.link(text, "P/L.txt");
            const unsigned code = migrateFile(places / "P/F.txt", places / "P/L.txt", scene::flagsOf(bits));
            // Either the link is taken for the file, or it is replaced by a true copy.
            EXPECT_TRUE(code == 34 || code == 0) << code;
            if (code != 0 || scene::flagsOf(bits).keepOriginal) {
                EXPECT_EQ(places.folder.digest("P/F.txt", Detail::times), file);
            }
            if (code == 0) {
                EXPECT_EQ(places.folder.digest("P/L.txt", Detail::times), file);
            } else {
                EXPECT_EQ(scene::linkText(places / "P/L.txt"), text);
            }
        }
    }
}

TEST(OnlyCopy, survivesALinkMovedOntoTheFileThatItLeadsTo) {
    for (const char* text : {"F.txt", "../P/F.txt", "../toP/./F.txt", "second"}) {
        const Places places;
        places.folder.link(text, "P/L.txt");
        places.folder.link("F.txt", "P/second");
        const Digest before = places.digest();
        for (const unsigned bits : {4U, 5U, 12U}) {
            // Removing the file and copying the link would leave a link to itself.
            const unsigned code = migrateFile(places / "P/L.txt", places / "P/F.txt", scene::flagsOf(bits));
            expectUntouched(places, before, code, {34}, text);
        }
    }
}

TEST(OnlyCopy, survivesALinkMovedOntoItself) {
    const Places places;
    places.folder.link("F.txt", "P/L.txt");
    const Digest before = places.digest();
    for (const char* to : {"P/L.txt", "toP/L.txt", "P/./L.txt", "other/back/L.txt"}) {
        expectUntouched(places, before, migrateFile(places / "P/L.txt", places / to, scene::overwriting),
                        {34}, to);
    }
    expectUntouched(places, before,
                    migrateFolder(places / "toA", places / "other/../toA", scene::overwriting), {36},
                    "a link to a folder onto itself");
}

TEST(OnlyCopy, survivesABatchOntoItselfInAnySpelling) {
    const Places places;
    const scene::CurrentFolder current(places.base());
    const Digest before = places.digest();
    for (const std::string& to : spellingsOf(places, "A")) {
        scene::migrateFiles(nullptr, places / "P/A", to, scene::DotFiles::included,
                            {false, true, true, false});
        ASSERT_EQ(scene::shownDigest(places.digest()), scene::shownDigest(before)) << to;
    }
}

// The same places under other mount points.

TEST(OnlyCopy, survivesTheSameFolderMountedElsewhere) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << "only root may mount";
    }
    const Places places;
    places.folder.folder("mountedP");
    places.folder.folder("mountedA");
    const int answer = scene::inOwnMounts([&] {
        const auto mounted = [&](const char* what, const char* where) {
            return ::mount((places / what).c_str(), (places / where).c_str(), nullptr, MS_BIND, nullptr) == 0;
        };
        if (!mounted("P", "mountedP") || !mounted("P/A", "mountedA")) {
            scene::leave(77);
        }
        const Digest before = places.digest();
        const auto unchanged = [&](const char* from, const char* to, const std::vector<unsigned>& codes) {
            for (const unsigned bits : {4U, 5U, 6U, 15U}) {
                const unsigned code = migrateFolder(places / from, places / to, scene::flagsOf(bits));
                expectUntouched(places, before, code, codes, shown(from, to, bits));
            }
        };
        unchanged("P/A", "mountedP/A", {36});
        unchanged("mountedP/A", "P/A", {36});
        unchanged("P/A", "mountedA", {36});
        unchanged("mountedA", "P/A", {36});
        unchanged("P/A", "mountedP", {36});
        unchanged("mountedP/A", "P", {36});
        unchanged("P/A/sub", "mountedA", {36});
        unchanged("P/A", "mountedA/new", {37});
        unchanged("P/A", "mountedP/A/sub/new", {37});
        unchanged("mountedA", "P/A/sub/new", {37});
        for (const unsigned bits : {4U, 5U, 15U}) {
            const unsigned code =
                migrateFile(places / "P/F.txt", places / "mountedP/F.txt", scene::flagsOf(bits));
            expectUntouched(places, before, code, {34}, "P/F.txt");
        }
    });
    if (answer == 77) {
        GTEST_SKIP() << "this machine allows no mounts of one's own";
    }
    EXPECT_EQ(answer, 0);
}

TEST(OnlyCopy, survivesAFolderMovedIntoAMountOfAFolderInsideIt) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << "only root may mount";
    }
    const Places places;
    places.folder.folder("other/mountedSub");
    const int answer = scene::inOwnMounts([&] {
        if (::mount((places / "P/A/sub").c_str(), (places / "other/mountedSub").c_str(), nullptr, MS_BIND,
                    nullptr) != 0) {
            scene::leave(77);
        }
        const Digest before = places.folder.digest("P/A", Detail::contents);
        // No way upwards from the destination comes past the source; only on the way down does it show.
        for (const unsigned bits : {0U, 1U, 6U}) {
            EXPECT_EQ(migrateFolder(places / "P/A", places / "other/mountedSub/new", scene::flagsOf(bits)),
                      37U);
            const Digest after = places.folder.digest("P/A", Detail::contents);
            for (const auto& [path, what] : before) {
                EXPECT_EQ(after.count(path) == 1 ? after.at(path) : "lost", what) << path;
            }
            scene::removeTree(places / "other/mountedSub/new");
        }
    });
    if (answer == 77) {
        GTEST_SKIP() << "this machine allows no mounts of one's own";
    }
    EXPECT_EQ(answer, 0);
}
