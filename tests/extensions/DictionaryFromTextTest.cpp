// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_view_literals;

namespace {

NSDictionary read(StringView text) { return NSDictionary::dictionaryWithContentsOfString(text); }

std::string inXML(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>\n";
}

// MARK: Old-style text

TEST(DictionaryFromText, readsOldStyleText) {
    const struct {
        const char* text;
        NSDictionary expected;
    } rows[] = {
        {"{ a = 1; b = (x, y); }", NSDictionary{{"a", "1"}, {"b", NSArray{"x", "y"}}}},
        {"{}", NSDictionary::dictionary()},
        {" { } ", NSDictionary::dictionary()},
        {"{a=1;}", NSDictionary{{"a", "1"}}},
        {"{a;b=2;}", NSDictionary{{"a", "a"}, {"b", "2"}}},
        {"{a=1;a=2;}", NSDictionary{{"a", "2"}}},
        {"{ \"\" = \"\"; }", NSDictionary{{"", ""}}},
        {"{ \"a b\" = 'c d'; }", NSDictionary{{"a b", "c d"}}},
        {"{ a = { b = { c = d; }; }; }", NSDictionary{{"a", NSDictionary{{"b", NSDictionary{{"c", "d"}}}}}}},
        {"{ a = (); b = (x,); }", NSDictionary{{"a", NSArray::array()}, {"b", NSArray{"x"}}}},
        {"{ a = -5; b = http://x/y; c = a//b; }",
         NSDictionary{{"a", "-5"}, {"b", "http://x/y"}, {"c", "a//b"}}},
        {"// first\n{ /* inside */ a = 1; // end\n} /* open", NSDictionary{{"a", "1"}}},
        {"{ a = \"\\U00e9\\341\\101\\q\"; }", NSDictionary{{"a", "\u00e9\u00c6Aq"}}},
        {"{ a = \"two\\nlines\\\n\"; }", NSDictionary{{"a", "two\nlines\n"}}},
        {"{ a = <0fbd 77>; }", NSDictionary{{"a", NSData::dataWithBytes_length("\x0f\xbd\x77", 3)}}},
        {"{ a = <>; }", NSDictionary{{"a", NSData::data()}}},
        {"a = b; c;", NSDictionary{{"a", "b"}, {"c", "c"}}},
        {"\"k\" = \"v\"; // x", NSDictionary{{"k", "v"}}},
        {"a = b; }", NSDictionary{{"a", "b"}}},
        {"a = b;; ", NSDictionary{{"a", "b"}}},
        {" \n ", NSDictionary::dictionary()},
        {"// only a comment", NSDictionary::dictionary()},
    };
    for (const auto& row : rows) {
        const NSDictionary found = read(row.text);
        EXPECT_TRUE(found.isEqualToDictionary(row.expected))
            << row.text << " gave " << utf8Of(found.condensedDescription());
    }
}

TEST(DictionaryFromText, everyOldStyleScalarIsAString) {
    const NSDictionary dictionary = read("{ a = 1; b = YES; c = 2.5; d = 0; }");
    for (const char* key : {"a", "b", "c", "d"}) {
        EXPECT_TRUE(dictionary.objectForKey(key).as<NSString>()) << key;
    }
    EXPECT_TRUE(dictionary.boolForKey("a"));
    EXPECT_TRUE(dictionary.boolForKey("b"));
    EXPECT_EQ(dictionary.floatForKey("c"), 2.5F);
    EXPECT_FALSE(dictionary.boolForKey("d"));
}

TEST(DictionaryFromText, givesNilForAnythingElseWithoutRaising) {
    const std::string_view texts[] = {
        "",
        "( 1, 2 )",
        "{ a = 1",
        "{a=1}",
        "{a=;}",
        "{=1;}",
        "{a 1;}",
        "{(a)=1;}",
        "{;}",
        "{a=1;;}",
        "abc",
        "\"a b\"",
        "-5",
        "a b",
        "\"abc",
        "@",
        "a+b",
        "\u00e9",
        "/ /",
        "(",
        "{",
        "}",
        ")",
        "(a",
        "(,)",
        "a = b",
        "\"a\" \"b\";",
        "<0fbd77>",
        "<0fbd7>",
        "{ a = <0 f>; }",
        "{ a = (x y); }",
        "{ a = 1; } x",
        "{} {}",
        "{ a = \"\\376\"; }",
        "\uFEFF{ a = 1; }",
        "\u00a0{ a = 1; }",
        "{ a = 1; \0 }"sv,
        "\0"sv,
        "<",
        "<?xml",
        "<plist>",
        "<plist/>",
        "<dict>",
    };
    for (const std::string_view text : texts) {
        NSDictionary found;
        EXPECT_EQ(raised([&] { found = read(text); }), "nothing") << text;
        EXPECT_FALSE(found) << text << " gave " << utf8Of(found.condensedDescription());
    }
    EXPECT_FALSE(read(nullptr));
    EXPECT_FALSE(read(NSString()));
}

TEST(DictionaryFromText, readsUnitsAsWell) {
    EXPECT_EQ(read(u"{ \"caf\u00e9\" = \"\u20ac\"; }").objectForKey("caf\u00e9"), "\u20ac");
    EXPECT_EQ(read(u"{ a = 1; }").objectForKey("a"), "1");
    EXPECT_EQ(read(NSString("{ a = 1; }")).objectForKey("a"), "1");
    const NSDictionary half = read(u"{ a = \"\xD83D\"; }");
    EXPECT_EQ(half.objectForKey("a").as<NSString>().utf16(), u"\xD83D");
}

// MARK: XML

TEST(DictionaryFromText, readsXML) {
    const NSDictionary dictionary = read(inXML("<dict>"
                                               "<key>text</key><string> a &lt;b&gt; &#233;</string>"
                                               "<key>integer</key><integer>-5000000000</integer>"
                                               "<key>greatest</key><integer>18446744073709551615</integer>"
                                               "<key>real</key><real>0.5</real>"
                                               "<key>yes</key><true/>"
                                               "<key>no</key><false/>"
                                               "<key>date</key><date>2001-01-01T00:00:01Z</date>"
                                               "<key>data</key><data>AQID</data>"
                                               "<key>array</key><array><string>x</string><array/></array>"
                                               "<key>dict</key><dict/>"
                                               "</dict>"));
    ASSERT_EQ(dictionary.count(), 10U);
    EXPECT_EQ(dictionary.objectForKey("text"), " a <b> \u00e9");
    EXPECT_EQ(dictionary.objectForKey("integer"), -5000000000);
    EXPECT_EQ(dictionary.objectForKey("greatest"), UINT64_MAX);
    EXPECT_EQ(dictionary.objectForKey("real"), 0.5);
    EXPECT_TRUE(dictionary.objectForKey("yes").as<NSNumber>().isBoolean());
    EXPECT_TRUE(dictionary.boolForKey("yes"));
    EXPECT_FALSE(dictionary.boolForKey("no"));
    EXPECT_EQ(dictionary.objectForKey("date"), NSDate::dateWithTimeIntervalSinceReferenceDate(1));
    EXPECT_EQ(dictionary.objectForKey("data"), NSData::dataWithBytes_length("\x01\x02\x03", 3));
    EXPECT_EQ(dictionary.objectForKey("array"), (NSArray{"x", NSArray::array()}));
    EXPECT_EQ(dictionary.objectForKey("dict"), NSDictionary::dictionary());
}

TEST(DictionaryFromText, ignoresTheDeclaredEncodingOfAString) {
    const NSDictionary dictionary = read(
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><dict><key>k</key><string>\u20ac</string></dict>");
    EXPECT_EQ(dictionary.objectForKey("k"), "\u20ac");
}

TEST(DictionaryFromText, givesNilForXMLThatIsNoDictionaryOrMalformed) {
    const std::string texts[] = {
        inXML("<array><string>x</string></array>"),
        inXML("<string>x</string>"),
        inXML("<integer>1</integer>"),
        inXML("<true/>"),
        inXML(""),
        inXML("<dict><key>k</key></dict>"),
        inXML("<dict><string>v</string></dict>"),
        inXML("<dict><key>k</key><string>v</string>"),
        inXML("<dict><key>k</key><unknown/></dict>"),
        inXML("<dict><key>k</key><integer>1 </integer></dict>"),
        inXML("<dict><key>k</key><string>&unknown;</string></dict>"),
        inXML("<dict><key>k</key><string>a & b</string></dict>"),
        inXML("<dict>text</dict>"),
        "<!DOCTYPE plist [<!ENTITY x \"y\">]>" + inXML("<dict/>"),
    };
    for (const std::string& text : texts) {
        NSDictionary found;
        EXPECT_EQ(raised([&] { found = read(text); }), "nothing") << text;
        EXPECT_FALSE(found) << text;
    }
}

// MARK: Hostile text

TEST(DictionaryFromText, givesNilForEveryTruncation) {
    const std::string oldStyle = "{ a = \"x\\U00e9\"; b = (1, <0fbd77>, { c = 'd'; }); /* e */ f; }";
    const std::string xml =
        inXML("<dict><key>k</key><array><date>2001-01-01T00:00:00Z</date><data>AQID</data>"
              "<string>&amp;<![CDATA[x]]></string></array></dict>");
    ASSERT_TRUE(read(oldStyle));
    ASSERT_TRUE(read(xml));
    for (std::size_t length = 0; length < oldStyle.size(); ++length) {
        EXPECT_FALSE(read(std::string_view(oldStyle).substr(0, length))) << length;
    }
    // What follows the outermost element is not looked at, and the plist element is one of its own.
    const std::size_t whole = xml.rfind("</plist>") + std::string_view("</plist>").size();
    for (std::size_t length = 0; length < whole; ++length) {
        EXPECT_FALSE(read(std::string_view(xml).substr(0, length))) << length;
    }
}

TEST(DictionaryFromText, survivesMillionsOfOpenBrackets) {
    const std::string pieces[] = {"(", "{a=", "<", "<dict>", "<array>", "/*", "\"", "{(\"'<"};
    for (const std::string& piece : pieces) {
        std::string text;
        text.reserve(piece.size() * 2000000);
        for (int i = 0; i < 2000000; ++i) {
            text += piece;
        }
        EXPECT_EQ(raised([&] { read(text); }), "nothing") << piece;
        if (piece != "/*") {
            EXPECT_FALSE(read(text)) << piece;
        }
    }
}

TEST(DictionaryFromText, nestsAtLeastFiveHundredLevelsAndNoMoreThanItsLimit) {
    const auto nested = [](int levels) {
        std::string text;
        for (int i = 0; i < levels; ++i) {
            text += "{ a = ";
        }
        text += "b";
        for (int i = 0; i < levels; ++i) {
            text += "; }";
        }
        return text;
    };
    EXPECT_TRUE(read(nested(500)));
    EXPECT_FALSE(read(nested(514)));
    EXPECT_FALSE(read(nested(100000)));
}

TEST(DictionaryFromText, readsIllFormedBytesAsReplacementCharacters) {
    EXPECT_EQ(read("{ a = \"x\xFFy\"; }").objectForKey("a"), "x\uFFFDy");
}

} // namespace
