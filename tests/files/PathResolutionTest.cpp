// SPDX-License-Identifier: MIT
// Expanding a tilde, standardizing paths and replacing their links.
#include "foundation/files/PathResolution.h"

#include <cerrno>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/HomeFolder.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"

using namespace ZQFoundation;
using kit::bytesOf;
using kit::fromBytes;
using scene::stranger;

namespace {

std::string expanded(const std::string& path) {
    return bytesOf(fromBytes(path).stringByExpandingTildeInPath());
}
std::string standardized(const std::string& path) {
    return bytesOf(fromBytes(path).stringByStandardizingPath());
}
std::string resolved(const std::string& path) {
    return bytesOf(fromBytes(path).stringByResolvingSymlinksInPath());
}

struct Row {
    const char* path;
    const char* result;
};

TEST(PathResolution, expandsTheTilde) {
    const kit::Variable home("HOME", "/h/u");
    const Row rows[] = {
        {"~", "/h/u"},
        {"~/", "/h/u"},
        {"~/x", "/h/u/x"},
        {"~/x/", "/h/u/x"},
        {"a/~", "a/~"},
        {"/~", "/~"},
        {" ~", " ~"},
        {"", ""},
        {"/", "/"},
        {"/a/", "/a"},
        {"a", "a"},
        {"~no such account", "~no such account"},
        {"~no such account/x", "~no such account/x"},
        {"~/~", "/h/u/~"},
        {"~/..", "/h/u/.."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(expanded(row.path), row.result) << row.path;
    }
    const std::string root = detail::homeFolderOfAccount("root");
    EXPECT_EQ(root, ::getpwnam("root")->pw_dir);
    EXPECT_EQ(expanded("~root"), root);
    EXPECT_EQ(expanded("~root/"), root);
    EXPECT_EQ(expanded("~root/x"), root + "/x");
}

TEST(PathResolution, asksTheUserDatabaseWithoutAHomeSetting) {
    const kit::Variable home("HOME", nullptr);
    const passwd* const user = ::getpwuid(::getuid());
    // An account that the database does not know has no home: the path stays.
    const std::string expected = user != nullptr ? user->pw_dir : "~";
    EXPECT_EQ(expanded("~"), expected);
    EXPECT_EQ(expanded("~/a"), expected + "/a");
}

TEST(PathResolution, answersNilToNil) {
    const NSString none;
    EXPECT_FALSE(none.stringByExpandingTildeInPath());
    EXPECT_FALSE(none.stringByStandardizingPath());
    EXPECT_FALSE(none.stringByResolvingSymlinksInPath());
}

TEST(PathResolution, aHomeFolderMayEndWithASlashOrBeTheRoot) {
    {
        const kit::Variable home("HOME", "/h/");
        EXPECT_EQ(expanded("~"), "/h");
        EXPECT_EQ(expanded("~/x"), "/h/x");
    }
    const kit::Variable home("HOME", "/");
    EXPECT_EQ(expanded("~"), "/");
    EXPECT_EQ(expanded("~/x"), "/x");
}

TEST(PathResolution, aHomeFolderOfAnyBytesRoundTrips) {
    const kit::Variable home("HOME", "/h/\xFF\xC3");
    EXPECT_EQ(expanded("~/\xA9x"), "/h/\xFF\xC3/\xA9x");
}

TEST(PathResolution, standardizesByText) {
    const kit::Variable home("HOME", "/h/u");
    const Row rows[] = {
        {"", ""},
        {"/", "/"},
        {"//", "/"},
        {"/..", "/"},
        {"/../..", "/"},
        {"/../no such", "/no such"},
        {"/no such/../x", "/x"},
        {"/no such/a/b/../../x/", "/no such/x"},
        {"/no such/./a//b/.", "/no such/a/b"},
        {"/.", "/"},
        {"/./", "/"},
        {"~/./x", "/h/u/x"},
        {"~/../x", "/h/x"},
        {"tmp/ABC/..", "tmp/ABC/.."},
        {"../a", "../a"},
        {"a/./b/", "a/b"},
        {"./a", "./a"},
        {".", "."},
        {"a/.", "a"},
        {"/no such/..x", "/no such/..x"},
        {"/no such/x..", "/no such/x.."},
        {"~no such account/../x", "~no such account/../x"},
        {"~", "/h/u"},
        {"~//a/./b/", "/h/u/a/b"},
        {"a/~", "a/~"},
        {"..", ".."},
        {"a/../b", "a/../b"},
        {"a/./../b/", "a/../b"},
        {"/no such/a/../../../../b", "/b"},
        {"/no such/...", "/no such/..."},
        {"/no such/.a", "/no such/.a"},
        {"/private/no such", "/private/no such"},
        {"/private/tmp/no such", "/private/tmp/no such"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(standardized(row.path), row.result) << row.path;
    }
}

class PathResolutionOnDisk : public scene::FolderTest {};

/// real/sub/file, other/, and links to them: everything that resolving and standardizing meet.
class PathResolutionOfLinks : public PathResolutionOnDisk {
protected:
    PathResolutionOfLinks() {
        folder.write("real/sub/file", "");
        folder.makeFolder("other");
        folder.link("real/sub", "link");
        folder.link("link", "chained");
        folder.link(in("real"), "absolute");
        folder.link("../other", "real/up");
        folder.link("./sub/.", "real/dotted");
        folder.link("real/sub/file", "fileLink");
        folder.link("nosuch", "dangling");
        folder.link("dangling", "toDangling");
        folder.link("loopB", "loopA");
        folder.link("loopA", "loopB");
        folder.link("self", "self");
        folder.link(".", "here");
    }
};

TEST_F(PathResolutionOfLinks, goesThroughTheFileSystemForParentsWhenAllOfThePathExists) {
    const Row rows[] = {
        // Without ".." links stay.
        {"/link", "/link"},
        {"/link/file", "/link/file"},
        {"//link/./file/", "/link/file"},
        {"/absolute/sub", "/absolute/sub"},
        {"/dangling", "/dangling"},
        // Everything exists: ".." is where the links lead, and all links are resolved.
        {"/link/..", "/real"},
        {"/link/../sub", "/real/sub"},
        {"/link/../sub/file", "/real/sub/file"},
        {"/other/../link/file", "/real/sub/file"},
        {"/chained/../up", "/other"},
        {"/other/..", ""},
        // Something is missing: ".." is folded by its text, and links stay.
        {"/link/../missing", "/missing"},
        {"/link/missing/..", "/link"},
        {"/missing/../link", "/link"},
        {"/link/../other", "/other"},
        {"/other/../dangling", "/dangling"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(standardized(folder.path() + row.path), folder.path() + row.result) << row.path;
    }
}

TEST_F(PathResolutionOfLinks, replacesLinks) {
    const Row rows[] = {
        {"/real", "/real"},
        {"/real/", "/real"},
        {"//real//sub/", "/real/sub"},
        {"/link", "/real/sub"},
        {"/link/", "/real/sub"},
        {"/link/file", "/real/sub/file"},
        {"/chained/file", "/real/sub/file"},
        {"/absolute/sub/file", "/real/sub/file"},
        {"/real/up", "/other"},
        {"/absolute/up", "/other"},
        {"/fileLink", "/real/sub/file"},
        {"/here/here/link", "/real/sub"},
        {"/link/..", "/real"},
        {"/link/../up", "/other"},
        {"/link/./file", "/real/sub/file"},
        // A dangling link stays; what exists before a missing item is resolved, the rest is text.
        {"/dangling", "/dangling"},
        {"/dangling/x", "/dangling/x"},
        {"/absolute/missing", "/real/missing"},
        {"/link/missing/x", "/real/sub/missing/x"},
        {"/missing/link", "/missing/link"},
        {"/missing//x/./y/", "/missing/x/y"},
        // A loop leaves the whole path.
        {"/loopA", "/loopA"},
        {"/loopA/x", "/loopA/x"},
        {"/here/loopA", "/here/loopA"},
        {"/here//loopA/./x/", "/here/loopA/x"},
        {"/self/../x", "/x"},
        {"/toDangling", "/toDangling"},
        {"/real/dotted/file", "/real/sub/file"},
        {"/real/sub/file/x", "/real/sub/file/x"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(resolved(folder.path() + row.path), folder.path() + row.result) << row.path;
    }
    EXPECT_EQ(resolved("/"), "/");
    EXPECT_EQ(resolved("/.."), "/");
    EXPECT_EQ(resolved(""), "");
    EXPECT_EQ(resolved("/no such/../no other/"), "/no other");
}

TEST_F(PathResolutionOnDisk, expandsTheTildeFirst) {
    folder.makeFolder("a");
    folder.link("a", "l");
    const kit::Variable home("HOME", in("l").c_str());
    EXPECT_EQ(resolved("~"), in("a"));
    EXPECT_EQ(resolved("~/"), in("a"));
    EXPECT_EQ(resolved("~/x"), in("a/x"));
}

TEST_F(PathResolutionOnDisk, aLinkWhoseTextDoesNotLeadToItsTargetStays) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string folderOfLinks = "/proc/" + std::to_string(::getpid()) + "/fd/";
    EXPECT_EQ(resolved(folderOfLinks + std::to_string(ends[0])), folderOfLinks + std::to_string(ends[0]));
    folder.link("/proc/self/fd/" + std::to_string(ends[0]), "l");
    EXPECT_EQ(resolved(in("l")), folderOfLinks + std::to_string(ends[0]));
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(PathResolutionOnDisk, followsThirtyTwoLinksAndNoMore) {
    folder.write("0", "");
    for (int number = 1; number <= 33; ++number) {
        folder.link(std::to_string(number - 1), std::to_string(number));
    }
    EXPECT_EQ(resolved(in("32")), in("0"));
    EXPECT_EQ(resolved(in("33")), in("33"));
}

TEST_F(PathResolutionOnDisk, relativePathsStayRelative) {
    folder.makeFolder("a/b");
    folder.write("f", "");
    folder.link("b", "a/l");
    folder.link("../f", "a/up");
    folder.link(in("a"), "absolute");
    folder.link(".", "here");
    const kit::CurrentFolder current(folder.path());
    EXPECT_EQ(resolved("a/l/x"), "a/b/x");
    EXPECT_EQ(resolved("a/l"), "a/b");
    EXPECT_EQ(resolved("./a/l"), "./a/b");
    EXPECT_EQ(resolved("a/b/.."), "a/b/..");
    EXPECT_EQ(resolved("a/up"), "a/../f");
    EXPECT_EQ(resolved("absolute/l"), in("a/b"));
    EXPECT_EQ(resolved("here"), ".");
    EXPECT_EQ(resolved("here/f"), "f");
    EXPECT_EQ(resolved("no such/../f"), "no such/../f");
    EXPECT_EQ(resolved("no such/x/"), "no such/x");
    EXPECT_EQ(standardized("a/../here"), "a/../here");
    EXPECT_EQ(standardized("absolute/.."), "absolute/..");
}

TEST_F(PathResolutionOnDisk, anyBytesRoundTrip) {
    const std::string name = "\xFF\xC3\x28\xF0\x9F";
    folder.write(name, "");
    folder.link(name, "l\x80");
    EXPECT_EQ(resolved(in("l\x80")), in(name));
    EXPECT_EQ(standardized(in("l\x80/../" + name)), in(name));
    folder.link("\xC3\xA9\xFE", "dangling");
    EXPECT_EQ(resolved(in("dangling")), in("dangling"));
}

TEST_F(PathResolutionOnDisk, unitsWithoutAFileNameStayText) {
    const std::u16string odd = u"/a//\xD800/../b\xD801/";
    const NSString path = NSString::stringWithCharacters_length(odd.data(), odd.size());
    EXPECT_EQ(path.stringByResolvingSymlinksInPath().utf16(), u"/a/b\xD801");
    EXPECT_EQ(path.stringByStandardizingPath().utf16(), u"/a/b\xD801");
    const std::u16string zero(u"~/\0/", 4);
    const kit::Variable home("HOME", "/h");
    EXPECT_EQ(NSString::stringWithCharacters_length(zero.data(), 4).stringByResolvingSymlinksInPath().utf16(),
              std::u16string(u"/h/\0", 4));
}

TEST_F(PathResolutionOnDisk, pathsMayBeLongerThanTheSystemTakes) {
    constexpr int depth = 200;
    const std::string name(100, 'n');
    const std::string deep = kit::makeChain(folder.path(), name, depth);
    ASSERT_GT(deep.size(), 20'000u);
    folder.link(name, "l");
    std::string throughLink = in("l") + deep.substr(folder.path().size() + 1 + name.size());
    EXPECT_EQ(resolved(throughLink), deep);
    EXPECT_EQ(resolved(deep), deep);
    EXPECT_EQ(standardized(deep + "/.."), deep.substr(0, deep.rfind('/')));
    std::string up = deep;
    for (int level = 1; level < depth; ++level) {
        up += "/..";
    }
    EXPECT_EQ(resolved(up), in(name));
    EXPECT_EQ(standardized(throughLink + up.substr(deep.size())), in(name));
    EXPECT_EQ(resolved(deep + "/no such/../x"), deep + "/x");
}

TEST_F(PathResolutionOnDisk, aLinkDeepDownLeadsAnywhere) {
    constexpr int depth = 200;
    const std::string name(100, 'n');
    const std::string deep = kit::makeChain(folder.path(), name, depth);
    const std::string inner = kit::makeChain(folder.path(), "m", 40);
    {
        detail::PathHandle handle;
        const std::string far = deep + "/far";
        const std::string near = deep + "/near";
        ASSERT_TRUE(handle.reach(far));
        ASSERT_EQ(::symlinkat(inner.c_str(), handle.folder(), handle.name()), 0);
        ASSERT_TRUE(handle.reach(near));
        ASSERT_EQ(::symlinkat("..", handle.folder(), handle.name()), 0);
        EXPECT_EQ(resolved(far + "/x"), inner + "/x");
        EXPECT_EQ(resolved(near + "/x"), deep.substr(0, deep.rfind('/')) + "/x");
        ::unlinkat(handle.folder(), handle.name(), 0);
        ASSERT_TRUE(handle.reach(far));
        ::unlinkat(handle.folder(), handle.name(), 0);
    }
}

TEST_F(PathResolutionOnDisk, keepsTheErrorNumberAndEveryDescriptor) {
    folder.link("no such", "dangling");
    kit::expectNoTrace([this] {
        resolved(in("dangling/x"));
        standardized(in("no such/../x"));
        expanded("~no such account");
    });
}

TEST_F(PathResolutionOnDisk, anOwnLinkInAStickyFolderIsFollowed) {
    folder.makeFolder("shared");
    folder.setMode("shared", 01777);
    folder.link("..", "shared/own");
    EXPECT_EQ(resolved(in("shared/own")), folder.path());
}

TEST_F(PathResolutionOnDisk, aStrangersLinkInAStickyFolderStays) {
    if (!kit::isRoot()) {
        GTEST_SKIP() << "only root can give links to another user";
    }
    folder.makeFolder("shared");
    folder.makeFolder("target/x");
    folder.setMode("shared", 01777);
    folder.link("../target", "shared/own");
    folder.link("../target", "shared/foreign");
    folder.link("shared/foreign", "outside");
    folder.setOwner("shared/foreign", stranger);
    EXPECT_EQ(resolved(in("shared/own/x")), in("target/x"));
    EXPECT_EQ(resolved(in("shared/foreign/x")), in("shared/foreign/x"));
    EXPECT_EQ(resolved(in("shared/foreign")), in("shared/foreign"));
    EXPECT_EQ(resolved(in("outside/x")), in("shared/foreign/x"));
    EXPECT_EQ(standardized(in("shared/foreign/../x")), in("shared/x"));

    folder.setOwner("shared", stranger);
    EXPECT_EQ(resolved(in("shared/foreign/x")), in("target/x")) << "the folder's owner may";
    folder.setOwner("shared", 0);
    for (const mode_t mode : std::initializer_list<mode_t>{0777u, 01775u, 01755u}) {
        folder.setMode("shared", mode);
        EXPECT_EQ(resolved(in("shared/foreign/x")), in("target/x")) << std::oct << mode;
    }
}

TEST_F(PathResolutionOnDisk, whatMayNotBeSearchedIsText) {
    folder.makeFolder("closed/a");
    folder.link("a", "closed/l");
    folder.setMode("closed", 0);
    const int answer =
        kit::inUnprivilegedChild([this] { return resolved(in("closed/l/./x")) == in("closed/l/x") ? 0 : 1; });
    folder.setMode("closed", 0755);
    EXPECT_EQ(answer, 0);
}

} // namespace
