// SPDX-License-Identifier: MIT
#include "foundation/files/PathResolution.h"

#include <initializer_list>

#include <gtest/gtest.h>

#include "foundation/files/HomeFolder.h"
#include "tests/files/FileScene.h"

using namespace ZQFoundation;
using scene::bytesOf;
using scene::fromBytes;

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
    const scene::Variable home("HOME", "/h/u");
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
    };
    for (const Row& row : rows) {
        EXPECT_EQ(expanded(row.path), row.result) << row.path;
    }
    const std::string root = detail::homeFolderOfAccount("root");
    EXPECT_EQ(expanded("~root"), root);
    EXPECT_EQ(expanded("~root/x"), root + "/x");
}

TEST(PathResolution, aHomeFolderMayEndWithASlashOrBeTheRoot) {
    {
        const scene::Variable home("HOME", "/h/");
        EXPECT_EQ(expanded("~"), "/h");
        EXPECT_EQ(expanded("~/x"), "/h/x");
    }
    const scene::Variable home("HOME", "/");
    EXPECT_EQ(expanded("~"), "/");
    EXPECT_EQ(expanded("~/x"), "/x");
}

TEST(PathResolution, aHomeFolderOfAnyBytesRoundTrips) {
    const scene::Variable home("HOME", "/h/\xFF\xC3");
    EXPECT_EQ(expanded("~/\xA9x"), "/h/\xFF\xC3/\xA9x");
}

TEST(PathResolution, standardizesByText) {
    const scene::Variable home("HOME", "/h/u");
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
    };
    for (const Row& row : rows) {
        EXPECT_EQ(standardized(row.path), row.result) << row.path;
    }
}

/// A folder whose own path holds no link.
class PathResolutionOnDisk : public testing::Test {
protected:
    void link(const std::string& target, const std::string& name) {
        ASSERT_EQ(::symlink(target.c_str(), (folder / name).c_str()), 0) << std::strerror(errno);
    }
    std::string in(const std::string& name) const { return folder / name; }

    scene::Folder folder;
};

TEST_F(PathResolutionOnDisk, standardizingKeepsLinksUnlessThereIsADoubleDot) {
    folder.makeFolder("a/b");
    folder.write("a/f", "");
    link("a/b", "l");
    EXPECT_EQ(standardized(in("l")), in("l"));
    EXPECT_EQ(standardized(in("l/.")), in("l"));
    EXPECT_EQ(standardized(in("l/../f")), in("a/f"));
    EXPECT_EQ(standardized(in("l/..")), in("a"));
    EXPECT_EQ(standardized(in("l/../no such")), in("no such")) << "by its text, as not everything is there";
}

TEST_F(PathResolutionOnDisk, replacesLinks) {
    folder.makeFolder("a/b");
    folder.write("a/f", "");
    link("a", "relative");
    link(in("a/b"), "absolute");
    link("relative", "chain");
    link("../f", "a/b/up");
    link("./b/.", "a/dotted");
    EXPECT_EQ(resolved(in("relative")), in("a"));
    EXPECT_EQ(resolved(in("relative/f")), in("a/f"));
    EXPECT_EQ(resolved(in("absolute/")), in("a/b"));
    EXPECT_EQ(resolved(in("chain//b")), in("a/b"));
    EXPECT_EQ(resolved(in("a/b/up")), in("a/f"));
    EXPECT_EQ(resolved(in("a/dotted/up")), in("a/f"));
    EXPECT_EQ(resolved(in("absolute/../f")), in("a/f")) << "above the target, not above the link";
    EXPECT_EQ(resolved(in("a/./b")), in("a/b"));
    EXPECT_EQ(resolved("/"), "/");
    EXPECT_EQ(resolved("/.."), "/");
    EXPECT_EQ(resolved(""), "");
}

TEST_F(PathResolutionOnDisk, expandsTheTildeFirst) {
    folder.makeFolder("a");
    link("a", "l");
    const scene::Variable home("HOME", in("l").c_str());
    EXPECT_EQ(resolved("~"), in("a"));
    EXPECT_EQ(resolved("~/x"), in("a/x"));
}

TEST_F(PathResolutionOnDisk, aDanglingLinkStays) {
    link("no such", "dangling");
    link("dangling", "to-dangling");
    EXPECT_EQ(resolved(in("dangling")), in("dangling"));
    EXPECT_EQ(resolved(in("dangling/x")), in("dangling/x"));
    EXPECT_EQ(resolved(in("to-dangling")), in("to-dangling"));
}

TEST_F(PathResolutionOnDisk, aLinkWhoseTextDoesNotLeadToItsTargetStays) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string folderOfLinks = "/proc/" + std::to_string(::getpid()) + "/fd/";
    EXPECT_EQ(resolved(folderOfLinks + std::to_string(ends[0])), folderOfLinks + std::to_string(ends[0]));
    link("/proc/self/fd/" + std::to_string(ends[0]), "l");
    EXPECT_EQ(resolved(in("l")), folderOfLinks + std::to_string(ends[0]));
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(PathResolutionOnDisk, theRestBehindAMissingItemIsText) {
    folder.makeFolder("a");
    folder.write("f", "");
    link("a", "l");
    EXPECT_EQ(resolved(in("l/no such/x/./../y")), in("a/no such/y"));
    EXPECT_EQ(resolved(in("f/x")), in("f/x"));
}

TEST_F(PathResolutionOnDisk, aLoopLeavesThePathStandardized) {
    folder.makeFolder("a");
    link("a", "l");
    link("two", "a/one");
    link("one", "a/two");
    link("self", "self");
    EXPECT_EQ(resolved(in("a/one")), in("a/one"));
    EXPECT_EQ(resolved(in("l//one/./x/")), in("l/one/x"));
    EXPECT_EQ(resolved(in("self/../x")), in("x"));
}

TEST_F(PathResolutionOnDisk, followsThirtyTwoLinksAndNoMore) {
    folder.write("0", "");
    for (int number = 1; number <= 33; ++number) {
        link(std::to_string(number - 1), std::to_string(number));
    }
    EXPECT_EQ(resolved(in("32")), in("0"));
    EXPECT_EQ(resolved(in("33")), in("33"));
}

TEST_F(PathResolutionOnDisk, relativePathsStayRelative) {
    folder.makeFolder("a/b");
    folder.write("f", "");
    link("b", "a/l");
    link("../f", "a/up");
    link(in("a"), "absolute");
    link(".", "here");
    const scene::CurrentFolder current(folder.path());
    EXPECT_EQ(resolved("a/l/x"), "a/b/x");
    EXPECT_EQ(resolved("a/l"), "a/b");
    EXPECT_EQ(resolved("./a/l"), "./a/b");
    EXPECT_EQ(resolved("a/b/.."), "a/b/..");
    EXPECT_EQ(resolved("a/up"), "a/../f");
    EXPECT_EQ(resolved("absolute/l"), in("a/b"));
    EXPECT_EQ(resolved("here"), ".");
    EXPECT_EQ(resolved("here/f"), "f");
    EXPECT_EQ(resolved("no such/../f"), "no such/../f");
}

TEST_F(PathResolutionOnDisk, anyBytesRoundTrip) {
    const std::string name = "\xFF\xC3\x28\xF0\x9F";
    folder.write(name, "");
    link(name, "l\x80");
    EXPECT_EQ(resolved(in("l\x80")), in(name));
    EXPECT_EQ(standardized(in("l\x80/../" + name)), in(name));
    link("\xC3\xA9\xFE", "dangling");
    EXPECT_EQ(resolved(in("dangling")), in("dangling"));
}

TEST_F(PathResolutionOnDisk, unitsWithoutAFileNameStayText) {
    const std::u16string odd = u"/a//\xD800/../b\xD801/";
    const NSString path = NSString::stringWithCharacters_length(odd.data(), odd.size());
    EXPECT_EQ(path.stringByResolvingSymlinksInPath().utf16(), u"/a/b\xD801");
    EXPECT_EQ(path.stringByStandardizingPath().utf16(), u"/a/b\xD801");
    const std::u16string zero(u"~/\0/", 4);
    const scene::Variable home("HOME", "/h");
    EXPECT_EQ(NSString::stringWithCharacters_length(zero.data(), 4).stringByResolvingSymlinksInPath().utf16(),
              std::u16string(u"/h/\0", 4));
}

TEST_F(PathResolutionOnDisk, pathsMayBeLongerThanTheSystemTakes) {
    constexpr int depth = 200;
    const std::string name(100, 'n');
    const std::string deep = scene::makeChain(folder.path(), name, depth);
    ASSERT_GT(deep.size(), 20'000u);
    link(name, "l");
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
    scene::removeChain(folder.path(), name, depth);
}

TEST_F(PathResolutionOnDisk, aLinkDeepDownLeadsAnywhere) {
    constexpr int depth = 200;
    const std::string name(100, 'n');
    const std::string deep = scene::makeChain(folder.path(), name, depth);
    const std::string inner = scene::makeChain(folder.path(), "m", 40);
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
    scene::removeChain(folder.path(), name, depth);
}

TEST_F(PathResolutionOnDisk, keepsTheErrorNumberAndEveryDescriptor) {
    link("no such", "dangling");
    const int before = scene::openDescriptors();
    errno = 4711;
    resolved(in("dangling/x"));
    standardized(in("no such/../x"));
    expanded("~no such account");
    EXPECT_EQ(errno, 4711);
    EXPECT_EQ(scene::openDescriptors(), before);
}

constexpr uid_t stranger = 54321;

TEST_F(PathResolutionOnDisk, anOwnLinkInAStickyFolderIsFollowed) {
    folder.makeFolder("shared");
    ::chmod(in("shared").c_str(), 01777);
    link("..", "shared/own");
    EXPECT_EQ(resolved(in("shared/own")), folder.path());
}

TEST_F(PathResolutionOnDisk, aStrangersLinkInAStickyFolderStays) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << "only root can give links to another user";
    }
    folder.makeFolder("shared");
    folder.makeFolder("target/x");
    ::chmod(in("shared").c_str(), 01777);
    link("../target", "shared/own");
    link("../target", "shared/foreign");
    link("shared/foreign", "outside");
    ASSERT_EQ(::lchown(in("shared/foreign").c_str(), stranger, stranger), 0);
    EXPECT_EQ(resolved(in("shared/own/x")), in("target/x"));
    EXPECT_EQ(resolved(in("shared/foreign/x")), in("shared/foreign/x"));
    EXPECT_EQ(resolved(in("shared/foreign")), in("shared/foreign"));
    EXPECT_EQ(resolved(in("outside/x")), in("shared/foreign/x"));
    EXPECT_EQ(standardized(in("shared/foreign/../x")), in("shared/x"));

    ASSERT_EQ(::chown(in("shared").c_str(), stranger, stranger), 0);
    EXPECT_EQ(resolved(in("shared/foreign/x")), in("target/x")) << "the folder's owner may";
    ASSERT_EQ(::chown(in("shared").c_str(), 0, 0), 0);
    for (const mode_t mode : std::initializer_list<mode_t>{0777u, 01775u, 01755u}) {
        ASSERT_EQ(::chmod(in("shared").c_str(), mode), 0);
        EXPECT_EQ(resolved(in("shared/foreign/x")), in("target/x")) << std::oct << mode;
    }
}

TEST_F(PathResolutionOnDisk, whatMayNotBeSearchedIsText) {
    folder.makeFolder("closed/a");
    link("a", "closed/l");
    ASSERT_EQ(::chmod(in("closed").c_str(), 0), 0);
    const int answer = scene::inUnprivilegedChild(
        [this] { return resolved(in("closed/l/./x")) == in("closed/l/x") ? 0 : 1; });
    ::chmod(in("closed").c_str(), 0755);
    EXPECT_EQ(answer, 0);
}

} // namespace
