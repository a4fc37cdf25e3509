// SPDX-License-Identifier: MIT
// Taking paths apart and putting them together as texts.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace {

std::string joined(const NSArray& components) {
    std::string text;
    for (const NSObject& component : components) {
        text += "[" + utf8Of(component.as<NSString>()) + "]";
    }
    return text;
}

struct SplitRow {
    const char* path;
    const char* last;
    const char* front;
    const char* components;
};

const SplitRow splitRows[] = {
    {"", "", "", ""},
    {"/", "/", "/", "[/]"},
    {"//", "/", "/", "[/][/]"},
    {"///", "/", "/", "[/][/]"},
    {"a", "a", "", "[a]"},
    {"a/", "a", "", "[a][/]"},
    {"a//", "a", "", "[a][/]"},
    {"/a", "a", "/", "[/][a]"},
    {"/a/", "a", "/", "[/][a][/]"},
    {"//a", "a", "/", "[/][a]"},
    {"a/b", "b", "a", "[a][b]"},
    {"a//b", "b", "a", "[a][b]"},
    {"a//b//c", "c", "a/b", "[a][b][c]"},
    {"/a//b/", "b", "/a", "[/][a][b][/]"},
    {"a/b/", "b", "a", "[a][b][/]"},
    {"//a///b//", "b", "/a", "[/][a][b][/]"},
    {".", ".", "", "[.]"},
    {"./x", "x", ".", "[.][x]"},
    {"~", "~", "", "[~]"},
    {" / ", " ", " ", "[ ][ ]"},
    {"..", "..", "", "[..]"},
    {"x/..", "..", "x", "[x][..]"},
    {"~/x", "x", "~", "[~][x]"},
    {"http://h/x.y", "x.y", "http:/h", "[http:][h][x.y]"},
    {"/\u00E9/\u20AC", "\u20AC", "/\u00E9", "[/][\u00E9][\u20AC]"},
};

TEST(PathComponents, splitsEachSortOfPath) {
    for (const SplitRow& row : splitRows) {
        const NSString path(row.path);
        EXPECT_EQ(utf8Of(path.lastPathComponent()), row.last) << row.path;
        EXPECT_EQ(utf8Of(path.stringByDeletingLastPathComponent()), row.front) << row.path;
        EXPECT_EQ(joined(path.pathComponents()), row.components) << row.path;
    }
}

struct ExtensionRow {
    const char* path;
    const char* extension;
    const char* without;
};

const ExtensionRow extensionRows[] = {
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
    {"x/..", "", "x/.."},
    {"/", "", "/"},
    {"//", "", "/"},
    {"", "", ""},
    {"/tmp/", "", "/tmp"},
    {".a.b", "b", ".a"},
    {"a.b/c", "", "a.b/c"},
    {"\u00E9.\u00E9", "\u00E9", "\u00E9"},
    {"a.b/c.d", "d", "a.b/c"},
    {"a.b/.c", "", "a.b/.c"},
    {"~/a.b", "b", "~/a"},
    {"MyApp.20240305-1407.1234.log", "log", "MyApp.20240305-1407.1234"},
};

TEST(PathComponents, findsTheExtension) {
    for (const ExtensionRow& row : extensionRows) {
        EXPECT_EQ(utf8Of(NSString(row.path).pathExtension()), row.extension) << row.path;
        EXPECT_EQ(utf8Of(NSString(row.path).stringByDeletingPathExtension()), row.without) << row.path;
    }
}

TEST(PathComponents, dotsAtTheFrontOfANameStartNoExtension) {
    for (const char* const name : {"..zip", "...", "/x/..zip"}) {
        EXPECT_EQ(utf8Of(NSString(name).pathExtension()), "") << name;
        EXPECT_EQ(utf8Of(NSString(name).stringByDeletingPathExtension()), name);
    }
}

struct AppendRow {
    const char* path;
    const char* component;
    const char* result;
};

const AppendRow appendRows[] = {
    {"/", "x", "/x"},
    {"a/", "/x", "a/x"},
    {"", "x", "x"},
    {"a", "..", "a/.."},
    {"~", "Library", "~/Library"},
    {"a", "", "a"},
    {"a//b/", "", "a/b"},
    {"", "", ""},
    {"/", "/", "/"},
    {"", "/x//", "/x"},
    {"a", "b/c", "a/b/c"},
    {"a", "/", "a"},
    {"a//", "//b//", "a/b"},
    {"\u00E9", "\u20AC", "\u00E9/\u20AC"},
    {"a", "b//c", "a/b/c"},
    {"/", "", "/"},
    {"//", "", "/"},
    {"/a", ".", "/a/."},
    {"//a//b", "c", "/a/b/c"},
    {"/", "~", "/~"},
    {"a", " ", "a/ "},
};

TEST(PathComponents, appendsWithOneSlash) {
    for (const AppendRow& row : appendRows) {
        EXPECT_EQ(utf8Of(NSString(row.path).stringByAppendingPathComponent(row.component)), row.result)
            << row.path << " + " << row.component;
    }
    EXPECT_EQ(utf8Of(NSString("a/").stringByAppendingPathComponent(nullptr)), "a");
}

TEST(PathComponents, joinsComponents) {
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"/", "a", "/"})), "/a");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray::array())), "");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"", "a", "", "b"})), "a/b");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"/", "/"})), "/");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"a", "/b/"})), "a/b");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"a", "/", "b"})), "a/b");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"a", "/"})), "a");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"/", "", "b"})), "/b");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{""})), "");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"a/b", "c"})), "a/b/c");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"a", ".."})), "a/..");
    EXPECT_EQ(utf8Of(NSString::pathWithComponents(NSArray{"a", 1, "b"})), "a/b");
}

TEST(PathComponents, splittingAndJoiningGivesTheSqueezedPath) {
    for (const SplitRow& row : splitRows) {
        const NSString path(row.path);
        EXPECT_EQ(utf8Of(NSString::pathWithComponents(path.pathComponents())),
                  utf8Of(path.stringByAppendingPathComponent("")))
            << row.path;
    }
}

TEST(PathComponents, absolutePathsBeginWithASlashOrATilde) {
    for (const char* const path : {"/", "/a", "//", "~", "~x", "~/a", "~~"}) {
        EXPECT_TRUE(NSString(path).isAbsolutePath()) << path;
    }
    for (const char* const path : {"", "a", "a/b", "./a", "../a", " /", " ~", "a/~", "file:///a", "\u00E9"}) {
        EXPECT_FALSE(NSString(path).isAbsolutePath()) << path;
    }
}

TEST(PathComponents, nilAnswersNil) {
    const NSString none;
    EXPECT_FALSE(none.lastPathComponent());
    EXPECT_FALSE(none.stringByDeletingLastPathComponent());
    EXPECT_FALSE(none.stringByAppendingPathComponent("x"));
    EXPECT_FALSE(none.pathComponents());
    EXPECT_FALSE(none.pathExtension());
    EXPECT_FALSE(none.stringByDeletingPathExtension());
    EXPECT_FALSE(none.isAbsolutePath());
}

TEST(PathComponents, anyUnitsPass) {
    const NSString odd = NSString::stringWithCharacters_length(u"a\0b/\xD800.\xDC41/", 8);
    EXPECT_EQ(odd.lastPathComponent().utf16(), std::u16string(u"\xD800.\xDC41"));
    EXPECT_EQ(odd.pathExtension().utf16(), std::u16string(u"\xDC41"));
    EXPECT_EQ(odd.stringByDeletingLastPathComponent().utf16(), std::u16string(u"a\0b", 3));
    EXPECT_EQ(odd.stringByAppendingPathComponent("c").utf16(), std::u16string(u"a\0b/\xD800.\xDC41/c", 9));
}

TEST(PathComponents, aMillionComponentsTakeLinearTime) {
    std::string path;
    for (int index = 0; index < 1'000'000; ++index) {
        path += "/a";
    }
    const NSString text(path);
    const NSArray components = text.pathComponents();
    EXPECT_EQ(components.count(), 1'000'001u);
    EXPECT_TRUE(NSString::pathWithComponents(components).isEqualToString(text));
}

} // namespace
