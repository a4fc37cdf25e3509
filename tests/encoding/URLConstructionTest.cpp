// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "foundation/objects/NSURL.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using TestValues::utf8Of;

namespace {

std::string made(StringView scheme, StringView authority, StringView path, StringView query = nullptr,
                 StringView fragment = nullptr) {
    return utf8Of(NSURL::URLWithScheme_authority_path_query_fragment(scheme, authority, path, query, fragment)
                      .absoluteString());
}

TEST(URLConstruction, putsThePartsTogether) {
    EXPECT_EQ(made("ftp", "srv:2121", "/a b"), "ftp://srv:2121/a%20b");
    EXPECT_EQ(made("tel", nullptr, "1234"), "tel:1234");
    EXPECT_EQ(made("file", "", "/tmp/x"), "file:/tmp/x");
    EXPECT_EQ(made("http", "h", ""), "http://h");
    EXPECT_EQ(made("http", "h", nullptr, "a b", "f"), "http://h?a%20b#f");
    EXPECT_EQ(made("http", "h", "/", "", ""), "http://h/");
    EXPECT_EQ(made("x", nullptr, nullptr), "x:");
}

TEST(URLConstruction, refusesPathsThatWouldBeReadAsSomethingElse) {
    EXPECT_EQ(made("http", "h", "a/b"), "(nil)");
    EXPECT_EQ(made("http", "h", " /a"), "(nil)");
    EXPECT_EQ(made("x", nullptr, "//h"), "(nil)");
    EXPECT_EQ(made("x", "", "//h"), "(nil)");
    EXPECT_EQ(made("x", "h", "//h"), "x://h//h");
    EXPECT_EQ(made("x", "", "/h//"), "x:/h//");
}

TEST(URLConstruction, takesTextsInEveryForm) {
    EXPECT_EQ(made(u"x", u"h", u"/\u00E9", u"\u20AC", u"f"), "x://h/%C3%A9?%E2%82%AC#f");
    EXPECT_EQ(made(NSString("x"), NSString("h"), NSString(u"/\u00E9"), NSString("q"), NSString("f")),
              "x://h/%C3%A9?q#f");
    EXPECT_EQ(made(u"x", u"", u"//h"), "(nil)");
    EXPECT_EQ(made(u"x", u"h", u"a"), "(nil)");
    EXPECT_EQ(made("x", "h", u"/\u2F2F"), "x://h/%E2%BC%AF") << "its bytes are slashes";
    EXPECT_EQ(made("x", "h", u"\u2F2F"), "(nil)");
}

TEST(URLConstruction, hasNoFormForUnpairedSurrogates) {
    EXPECT_EQ(made("x", "h", u"/\xD800"), "(nil)");
    EXPECT_EQ(made("x", "h", "/", u"\xDC00"), "(nil)");
    EXPECT_EQ(made("x", "h", "/", "q", u"\xD800"), "(nil)");
    EXPECT_EQ(made("x", u"\xD800", "/"), "(nil)");
}

TEST(URLConstruction, passesOverSchemesThatAreNone) {
    for (const StringView scheme : {StringView(), StringView(""), StringView("1x"), StringView(u"\u00E9")}) {
        EXPECT_EQ(made(scheme, "h", "/"), "(nil)");
    }
    EXPECT_EQ(made("HtTp", "h", "/"), "HtTp://h/");
}

TEST(URLConstruction, writesPathAndQueryAsTheyAreWhereItSaysSo) {
    EXPECT_EQ(utf8Of(NSURL::URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded_fragment(
                         "x", "h", "/%20", "%41=b", "%43")
                         .absoluteString()),
              "x://h/%20?%41=b#%43");
    EXPECT_FALSE(NSURL::URLWithScheme_authority_pathNotToBeEncoded("ftp", "srv:2121", "/a b"));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path_queryNotToBeEncoded("x", "h", "/", "a b"));
}

} // namespace
