// SPDX-License-Identifier: MIT
// Path operations case by case: what is text alone, and what looks into a folder of the test's own.
#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"
#include "tests/process/ItemFacts.h"

using namespace ZQFoundation;

namespace {

using scene::insideFolder;
using scene::realPath;

using Words = std::vector<std::string>;

std::string text(const NSString& value) { return value ? value.utf8() : std::string("(nil)"); }

Words words(const NSArray& values) {
    Words all;
    for (const NSObject& value : values) {
        all.push_back(text(NSString(value)));
    }
    return all;
}

NSArray arrayOf(const Words& pieces) {
    NSMutableArray array;
    for (const std::string& piece : pieces) {
        array.addObject(NSString(piece));
    }
    return array.array();
}

NSString path(const std::string& value) { return NSString(value); }

/// real/sub/file, other/, and links to them: everything that resolving and standardizing meet.
struct Tree {
    Tree() : base(realPath(folder.path())) {
        folder.write("real/sub/file", "");
        folder.makeFolder("other");
        link("real/sub", "link");
        link("link", "chained");
        link(base + "/real", "absolute");
        link("../other", "real/up");
        link("real/sub/file", "fileLink");
        link("nosuch", "dangling");
        link("loopB", "loopA");
        link("loopA", "loopB");
        link(".", "here");
    }

    void link(const std::string& target, const std::string& name) const {
        EXPECT_EQ(::symlink(target.c_str(), (folder / name).c_str()), 0) << name;
    }

    scene::Folder folder;
    std::string base;
};

std::string resolved(const std::string& value) { return text(path(value).stringByResolvingSymlinksInPath()); }
std::string standardized(const std::string& value) { return text(path(value).stringByStandardizingPath()); }

} // namespace

// Taking apart.

TEST(PathTables, takePathsApart) {
    const struct {
        const char* path;
        const char* last;
        const char* front;
        Words components;
    } rows[] = {
        {"", "", "", {}},
        {"/", "/", "/", {"/"}},
        {"//", "/", "/", {"/", "/"}},
        {"///", "/", "/", {"/", "/"}},
        {"a", "a", "", {"a"}},
        {"a/", "a", "", {"a", "/"}},
        {"a//", "a", "", {"a", "/"}},
        {"/a", "a", "/", {"/", "a"}},
        {"/a/", "a", "/", {"/", "a", "/"}},
        {"//a", "a", "/", {"/", "a"}},
        {"a/b", "b", "a", {"a", "b"}},
        {"a//b", "b", "a", {"a", "b"}},
        {"a/b/", "b", "a", {"a", "b", "/"}},
        {"/a//b/", "b", "/a", {"/", "a", "b", "/"}},
        {"//a///b//", "b", "/a", {"/", "a", "b", "/"}},
        {"a//b//c", "c", "a/b", {"a", "b", "c"}},
        {".", ".", "", {"."}},
        {"..", "..", "", {".."}},
        {"x/..", "..", "x", {"x", ".."}},
        {"./x", "x", ".", {".", "x"}},
        {"~", "~", "", {"~"}},
        {"~/x", "x", "~", {"~", "x"}},
        {"http://h/x.y", "x.y", "http:/h", {"http:", "h", "x.y"}},
        {" / ", " ", " ", {" ", " "}},
        {"/\u00E4/\U0001F600", "\U0001F600", "/\u00E4", {"/", "\u00E4", "\U0001F600"}},
    };
    for (const auto& row : rows) {
        const NSString whole = path(row.path);
        EXPECT_EQ(text(whole.lastPathComponent()), row.last) << row.path;
        EXPECT_EQ(text(whole.stringByDeletingLastPathComponent()), row.front) << row.path;
        EXPECT_EQ(words(whole.pathComponents()), row.components) << row.path;
        EXPECT_TRUE(whole.pathComponents()) << "nil for " << row.path;
    }
}

TEST(PathTables, keepUnitsThatNoFileNameHolds) {
    const char16_t units[] = u"/\xD800\0/\xDC01";
    const NSString odd = NSString::stringWithCharacters_length(units, 5);
    EXPECT_EQ(odd.lastPathComponent().utf16(), std::u16string(u"\xDC01"));
    EXPECT_EQ(odd.stringByDeletingLastPathComponent().utf16(), std::u16string(units, 3));
    EXPECT_EQ(odd.pathComponents().count(), 3U);
    EXPECT_EQ(odd.stringByAppendingPathComponent("x").utf16(), std::u16string(units, 5) + u"/x");
}

TEST(PathTables, findExtensions) {
    const struct {
        const char* path;
        const char* extension;
        const char* without;
    } rows[] = {
        {"/tmp/a.tiff", "tiff", "/tmp/a"},
        {"a.b.c", "c", "a.b"},
        {"/a/b.txt/", "txt", "/a/b"},
        {"scratch..tiff", "tiff", "scratch."},
        {"a.", "", "a"},
        {"/x/Data 1.", "", "/x/Data 1"},
        {".a", "", ".a"},
        {"/x/.profile", "", "/x/.profile"},
        {".", "", "."},
        {"..", "", ".."},
        {"/", "", "/"},
        {"", "", ""},
        {"/tmp/", "", "/tmp"},
        {".a.b", "b", ".a"},
        {"a.b/c", "", "a.b/c"},
        {"a.b/c.d", "d", "a.b/c"},
        {"a.b/.c", "", "a.b/.c"},
        {"/x/..", "", "/x/.."},
        {"~/a.b", "b", "~/a"},
        {"a.\u00E4", "\u00E4", "a"},
        {"MyApp.20240305-1407.1234.log", "log", "MyApp.20240305-1407.1234"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text(path(row.path).pathExtension()), row.extension) << row.path;
        EXPECT_EQ(text(path(row.path).stringByDeletingPathExtension()), row.without) << row.path;
    }
}

// Putting together.

TEST(PathTables, appendWithExactlyOneSlash) {
    const struct {
        const char* path;
        const char* component;
        const char* whole;
    } rows[] = {
        {"/", "x", "/x"},
        {"a/", "/x", "a/x"},
        {"", "x", "x"},
        {"a", "..", "a/.."},
        {"~", "Library", "~/Library"},
        {"a", "x", "a/x"},
        {"a//", "//x", "a/x"},
        {"/a", "b/c", "/a/b/c"},
        {"a", "b//c", "a/b/c"},
        {"a", "b/", "a/b"},
        {"a", "", "a"},
        {"a//b/", "", "a/b"},
        {"/", "", "/"},
        {"//", "", "/"},
        {"", "", ""},
        {"/", "/", "/"},
        {"a", "/", "a"},
        {"", "/x", "/x"},
        {"/a", ".", "/a/."},
        {"//a//b", "c", "/a/b/c"},
        {"/", "~", "/~"},
        {"a", " ", "a/ "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text(path(row.path).stringByAppendingPathComponent(row.component)), row.whole)
            << row.path << " + " << row.component;
    }
}

TEST(PathTables, joinComponents) {
    const struct {
        Words components;
        const char* whole;
    } rows[] = {
        {{}, ""},
        {{"/"}, "/"},
        {{"/", "/"}, "/"},
        {{"a"}, "a"},
        {{"/", "a", "b"}, "/a/b"},
        {{"a", "b"}, "a/b"},
        {{"/", "a", "/"}, "/a"},
        {{"a", "/"}, "a"},
        {{"a", "/", "b"}, "a/b"},
        {{"", "a"}, "a"},
        {{""}, ""},
        {{"a", "", "b"}, "a/b"},
        {{"/", "", "b"}, "/b"},
        {{"a/b", "c"}, "a/b/c"},
        {{"~", "x"}, "~/x"},
        {{"a", ".."}, "a/.."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text(NSString::pathWithComponents(arrayOf(row.components))), row.whole)
            << ::testing::PrintToString(row.components);
    }
}

TEST(PathTables, joinAgainWhatTheyTookApart) {
    for (const char* const whole : {"/", "a", "/a", "a/b", "/a/b/c", "~/x", "../x", "/a/..", ""}) {
        EXPECT_EQ(text(NSString::pathWithComponents(path(whole).pathComponents())), whole);
    }
}

TEST(PathTables, callPathsAbsoluteThatBeginWithASlashOrATilde) {
    for (const char* const whole : {"/", "/a", "//", "~", "~/a", "~nobody/a", "~~"}) {
        EXPECT_TRUE(path(whole).isAbsolutePath()) << whole;
    }
    for (const char* const whole : {"", "a", "a/b", "./a", "../a", " /a", " ~", "a/~", "file:///a"}) {
        EXPECT_FALSE(path(whole).isAbsolutePath()) << whole;
    }
}

TEST(PathTables, giveNilAndFalseForNil) {
    const NSString none;
    EXPECT_FALSE(none.lastPathComponent());
    EXPECT_FALSE(none.stringByDeletingLastPathComponent());
    EXPECT_FALSE(none.pathComponents());
    EXPECT_FALSE(none.pathExtension());
    EXPECT_FALSE(none.stringByDeletingPathExtension());
    EXPECT_FALSE(none.stringByAppendingPathComponent("x"));
    EXPECT_FALSE(none.isAbsolutePath());
    EXPECT_FALSE(none.stringByExpandingTildeInPath());
    EXPECT_FALSE(none.stringByStandardizingPath());
    EXPECT_FALSE(none.stringByResolvingSymlinksInPath());
}

// The tilde.

TEST(PathTables, expandALeadingTildeAlone) {
    const scene::Variable home("HOME", "/zq/home of somebody");
    const struct {
        const char* path;
        const char* expanded;
    } rows[] = {
        {"~", "/zq/home of somebody"},
        {"~/", "/zq/home of somebody"},
        {"~/a", "/zq/home of somebody/a"},
        {"~/a/b/", "/zq/home of somebody/a/b"},
        {"~/~", "/zq/home of somebody/~"},
        {"~/..", "/zq/home of somebody/.."},
        {"a/~", "a/~"},
        {"/~", "/~"},
        {" ~", " ~"},
        {"~nosuchaccount-zq", "~nosuchaccount-zq"},
        {"~nosuchaccount-zq/a", "~nosuchaccount-zq/a"},
        {"", ""},
        {"/a", "/a"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text(path(row.path).stringByExpandingTildeInPath()), row.expanded) << row.path;
    }
}

TEST(PathTables, expandTheTildeOfANamedAccount) {
    const scene::Variable home("HOME", "/zq/home");
    const passwd* const root = ::getpwnam("root");
    ASSERT_NE(root, nullptr);
    const std::string folder = root->pw_dir;
    EXPECT_EQ(text(path("~root").stringByExpandingTildeInPath()), folder);
    EXPECT_EQ(text(path("~root/").stringByExpandingTildeInPath()), folder);
    EXPECT_EQ(text(path("~root/a").stringByExpandingTildeInPath()), folder + "/a");
}

TEST(PathTables, askTheUserDatabaseWithoutAHomeSetting) {
    const scene::Variable home("HOME", nullptr);
    const passwd* const user = ::getpwuid(::getuid());
    // An account that the database does not know has no home: the path stays.
    const std::string expected = user != nullptr ? user->pw_dir : "~";
    EXPECT_EQ(text(path("~").stringByExpandingTildeInPath()), expected);
    EXPECT_EQ(text(path("~/a").stringByExpandingTildeInPath()), expected + "/a");
}

// Standardizing.

TEST(PathTables, standardizeByText) {
    const struct {
        const char* path;
        const char* standard;
    } rows[] = {
        {"", ""},
        {"/", "/"},
        {"//", "/"},
        {"//zq-nosuch//b/", "/zq-nosuch/b"},
        {"a//b/", "a/b"},
        {"/./zq-nosuch", "/zq-nosuch"},
        {"/zq-nosuch/./b", "/zq-nosuch/b"},
        {"/zq-nosuch/.", "/zq-nosuch"},
        {"/zq-nosuch/././b/./", "/zq-nosuch/b"},
        {"/.", "/"},
        {"a/./b", "a/b"},
        {"a/.", "a"},
        {"./a", "./a"},
        {".", "."},
        {"..", ".."},
        {"../a", "../a"},
        {"tmp/ABC/..", "tmp/ABC/.."},
        {"a/../b", "a/../b"},
        {"a/./../b/", "a/../b"},
        {"/..", "/"},
        {"/../..", "/"},
        {"/../zq-nosuch", "/zq-nosuch"},
        {"/zq-nosuch/../x", "/x"},
        {"/zq-nosuch/a/../../b", "/b"},
        {"/zq-nosuch/a/../../../../b", "/b"},
        {"/zq-nosuch/a/./../b", "/zq-nosuch/b"},
        {"/zq-nosuch/..a", "/zq-nosuch/..a"},
        {"/zq-nosuch/...", "/zq-nosuch/..."},
        {"/zq-nosuch/.a", "/zq-nosuch/.a"},
        {"/private/zq-nosuch", "/private/zq-nosuch"},
        {"/private/tmp/zq-nosuch", "/private/tmp/zq-nosuch"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(standardized(row.path), row.standard) << row.path;
    }
}

TEST(PathTables, standardizeBehindTheTilde) {
    const scene::Variable home("HOME", "/zq-nosuch/home");
    EXPECT_EQ(standardized("~"), "/zq-nosuch/home");
    EXPECT_EQ(standardized("~/../x"), "/zq-nosuch/x");
    EXPECT_EQ(standardized("~//a/./b/"), "/zq-nosuch/home/a/b");
    EXPECT_EQ(standardized("a/~"), "a/~");
    EXPECT_EQ(standardized("~nosuchaccount-zq/../x"), "~nosuchaccount-zq/../x");
}

TEST(PathTables, standardizeParentsThroughTheFileSystemWhenAllOfThePathExists) {
    const Tree tree;
    const struct {
        const char* path;
        const char* standard;
    } rows[] = {
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
    for (const auto& row : rows) {
        EXPECT_EQ(standardized(tree.base + row.path), tree.base + row.standard) << row.path;
    }
}

// Resolving.

TEST(PathTables, resolveLinks) {
    const Tree tree;
    const struct {
        const char* path;
        const char* resolved;
    } rows[] = {
        {"", ""},
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
    };
    for (const auto& row : rows) {
        EXPECT_EQ(resolved(tree.base + row.path), tree.base + row.resolved) << row.path;
    }
    EXPECT_EQ(resolved("/"), "/");
    EXPECT_EQ(resolved(""), "");
    EXPECT_EQ(resolved("/zq-nosuch/../zq-other/"), "/zq-other");
}

TEST(PathTables, resolveChainsOfUpTo32Links) {
    const Tree tree;
    // chain1 leads to real, chain2 to chain1, and so on.
    for (int i = 1; i <= 40; ++i) {
        tree.link(i == 1 ? "real" : "chain" + std::to_string(i - 1), "chain" + std::to_string(i));
    }
    EXPECT_EQ(resolved(tree.base + "/chain1"), tree.base + "/real");
    EXPECT_EQ(resolved(tree.base + "/chain32"), tree.base + "/real");
    EXPECT_EQ(resolved(tree.base + "/chain33"), tree.base + "/chain33");
    EXPECT_EQ(resolved(tree.base + "/chain40/sub"), tree.base + "/chain40/sub");
}

TEST(PathTables, resolveBehindTheTilde) {
    const Tree tree;
    const std::string home = tree.base + "/link";
    const scene::Variable variable("HOME", home.c_str());
    EXPECT_EQ(resolved("~"), tree.base + "/real/sub");
    EXPECT_EQ(resolved("~/"), tree.base + "/real/sub");
    EXPECT_EQ(resolved("~/file"), tree.base + "/real/sub/file");
    EXPECT_EQ(resolved("~/missing/x"), tree.base + "/real/sub/missing/x");
}

TEST(PathTables, keepRelativePathsRelative) {
    const Tree tree;
    EXPECT_TRUE(insideFolder(tree.base, [] {
        const struct {
            const char* path;
            const char* resolved;
        } rows[] = {
            {"real/sub", "real/sub"}, {"link", "real/sub"},     {"link/file", "real/sub/file"},
            {"chained", "real/sub"},  {"dangling", "dangling"}, {"missing/x/", "missing/x"},
            {"loopA", "loopA"},
        };
        for (const auto& row : rows) {
            if (resolved(row.path) != row.resolved) {
                std::printf("%s gives %s\n", row.path, resolved(row.path).c_str());
                std::fflush(stdout);
                return false;
            }
        }
        return standardized("real/../link") == "real/../link" && standardized("link/..") == "link/..";
    }));
}

TEST(PathTables, leaveErrnoAlone) {
    const Tree tree;
    errno = EDOM;
    resolved(tree.base + "/loopA");
    resolved(tree.base + "/missing/x");
    standardized(tree.base + "/missing/..");
    path("~nosuchaccount-zq").stringByExpandingTildeInPath();
    EXPECT_EQ(errno, EDOM);
}
