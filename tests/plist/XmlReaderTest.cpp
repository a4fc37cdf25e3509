// SPDX-License-Identifier: MIT
// Reading property lists in XML.
#include "foundation/plist/XmlReader.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;

std::string readXml(std::string_view text, std::string* errorText = nullptr) {
    return readWithBoth([](const auto* start, std::size_t count,
                           auto& error) { return detail::readXml(start, count, error); },
                        text, errorText);
}

void expectXmlRows(std::initializer_list<ReadingRow> rows) { expectReadings(readXml, rows); }

TEST(XmlReader, prologIsOptional) {
    expectXmlRows({
        {"<true/>", "true"},
        {" \t\r\n<true/>", "true"},
        {"<?xml version=\"1.0\"?><true/>", "true"},
        {"<?a?><!-- b --><?c?><!-- d --><true/>", "true"},
        {"<?xml version='1.0' encoding='nonsense'?><true/>", "true"},
        {"<!DOCTYPE plist><true/>", "true"},
        {"<!DOCTYPE plist PUBLIC \"a>b\" 'c>d' ><true/>", "true"},
        {"<!DOCTYPE plist SYSTEM \"file:///etc/passwd\">\n<!-- x --> <true/>", "true"},
        {"<!DOCTYPE plist [ ]><true/>", "nil"},
        {"<!DOCTYPE plist [<!ENTITY a \"b\">]><string>&a;</string>", "nil"},
        {"<!doctype plist><true/>", "nil"},
        {"\v<true/>", "nil"},
        {"\u00A0<true/>", "nil"},
        {"\uFEFF<true/>", "nil"},
        {"x<true/>", "nil"},
        {"", "nil"},
        {"<!-- x -->", "nil"},
    });
}

TEST(XmlReader, commentsAndInstructionsMustBeClosed) {
    expectXmlRows({
        {"<!-- - -- > ---><true/>", "true"},
        {"<!--><true/>", "nil"},
        {"<!---><true/>", "nil"},
        {"<!----><true/>", "true"},
        {"<!-- ><true/>", "nil"},
        {"<?><true/>", "nil"},
        {"<?"
         "?><true/>",
         "true"},
        {"<?a", "nil"},
        {"<", "nil"},
    });
}

TEST(XmlReader, whatFollowsTheElementIsIgnored) {
    expectXmlRows({
        {"<true/>x", "true"},
        {"<true/><false/>", "true"},
        {"<plist><true/></plist></nonsense", "true"},
    });
}

TEST(XmlReader, plistHoldsExactlyOneElement) {
    expectXmlRows({
        {"<plist version=\"1.0\"><true/></plist>", "true"},
        {"<plist>\n<!-- a --><true/><?b?>\n</plist >", "true"},
        {"<plist/>", "nil"},
        {"<plist> <!-- a --> </plist>", "nil"},
        {"<plist><true/><true/></plist>", "nil"},
        {"<plist><true/>x</plist>", "nil"},
        {"<plist><true/>", "nil"},
        {"<plist><plist><true/></plist></plist>", "nil"},
        {"<array><plist><true/></plist></array>", "nil"},
        {"<Plist><true/></Plist>", "nil"},
    });
}

TEST(XmlReader, attributesAreIgnored) {
    expectXmlRows({
        {"<string a=\"b\">x</string>", "'x'"},
        {"<string a='>'>x</string>", "'x'"},
        {"<string\na = \"/\" >x</string>", "'x'"},
        {"<dict a='/'><key b='c'>k</key><true x='y'/></dict>", "{'k': true}"},
        {"<true a=\"b/>", "nil"},
        {"<array <string>x</string></array>", "nil"},
        {"<string a", "nil"},
    });
}

TEST(XmlReader, namesAreExact) {
    for (const std::string& text :
         piecesOf("<String>x</String>|<TRUE/>|< true/>|<strin>x</strin>|<strings>x</strings>|<>x</>|<a/>|"
                  "<arr\u00E9/>|<ke>a</ke>|<dictionary/>|<d/>|<dat/>|<set/>|</true>|</>|<string>x</String>|"
                  "<string>x</strings>|<string>x</ string>|<string>x</string x>|<string>x</string/>|"
                  "<string>x</string|<string>x</|<string>x<|<string>x")) {
        EXPECT_EQ(readXml(text), "nil") << text;
    }
    EXPECT_EQ(readXml("<string>x</string \t\r\n>"), "'x'");
    EXPECT_EQ(readXml("<true />"), "true");
}

TEST(XmlReader, readsDictionaries) {
    expectXmlRows({
        {"<dict/>", "{}"},
        {"<dict><key>a</key><integer>1</integer><key>b</key><dict/></dict>", "{'a': 1, 'b': {}}"},
        {"<dict><!-- a --><key>a</key><!-- b --><true/><?c?></dict>", "{'a': true}"},
        {"<dict><key>a</key><true/><key>a</key><false/></dict>", "{'a': false}"},
        {"<dict><key/><true/></dict>", "{'': true}"},
        {"<dict><key>a</key><key>b</key></dict>", "{'a': 'b'}"},
        {"<dict><key>&amp;<![CDATA[<]]></key><true/></dict>", "{'&<': true}"},
        {"<dict><key>a</key></dict>", "nil"},
        {"<dict><key>a</key><true/><key>b</key></dict>", "nil"},
        {"<dict><string>a</string><true/></dict>", "nil"},
        {"<dict>x<key>a</key><true/></dict>", "nil"},
        {"<dict><key>a</key>x<true/></dict>", "nil"},
        {"<dict><key>a</key><true/>x</dict>", "nil"},
        {"<dict><key>a</key><true/></array>", "nil"},
        {"<dict><key>a</key>", "nil"},
    });
}

TEST(XmlReader, readsArrays) {
    expectXmlRows({
        {"<array/>", "[]"},
        {"<array>\n\t<array/>\n\t<array><true/></array>\n</array>", "[[], [true]]"},
        {"<array><string>a</string><!-- b --><key>c</key></array>", "['a', 'c']"},
        {"<array>x</array>", "nil"},
        {"<array>&lt;</array>", "nil"},
        {"<array><![CDATA[]]></array>", "nil"},
        {"<array>", "nil"},
    });
}

TEST(XmlReader, readsStrings) {
    expectXmlRows({
        {"<string/>", "''"},
        {"<string> a\r\n\tb </string>", "' a%000D%000A%0009b '"},
        {"<key>a</key>", "'a'"},
        {"<string>\u00E9\u20AC\U0001F600</string>", "'%00E9%20AC%D83D%DE00'"},
        {"<string>a>b]]>\"'</string>", "'a>b]]>\"''"},
        {"<string>a<!-- b --></string>", "nil"},
        {"<string>a<?b?></string>", "nil"},
        {"<string><true/></string>", "nil"},
    });
}

TEST(XmlReader, keepsUnpairedSurrogatesOfAText) {
    std::u16string text = u"<string>";
    text += {0xD800, 'a', 0xDC00};
    text += u"</string>";
    detail::PropertyListError error;
    EXPECT_EQ(show(detail::readXml(text.data(), text.size(), error)), "'%D800a%DC00'");
}

TEST(XmlReader, knowsFiveReferencesAndNumbers) {
    expectXmlRows({
        {"<string>&lt;&gt;&amp;&apos;&quot;</string>", "'<>&'\"'"},
        {"<string>a&lt;b&amp;amp;</string>", "'a<b&amp;'"},
        {"<string>&#65;&#x41;&#xe9;&#xE9;&#x1F600;&#128512;</string>", "'AA%00E9%00E9%D83D%DE00%D83D%DE00'"},
        {"<string>&#0;&#1;&#xFFFF;&#x10FFFF;</string>", "'%0000%0001%FFFF%DBFF%DFFF'"},
        {"<string>&#xD800;a&#xDC00;</string>", "'%D800a%DC00'"},
        {"<string>&#000000000000000000000000000065;</string>", "'A'"},
    });
    for (const std::string_view reference :
         {"&", "& ", "&;", "&lt", "&LT;", "&nbsp;", "&l t;", "&#;", "&#x;", "&#X41;", "&#65", "&#x110000;",
          "&#99999999999999999999;", "&#-1;", "&#6 5;", "&#g;", "&#xg;", "&#\u0661;", "&a\u00E9;"}) {
        EXPECT_EQ(readXml("<string>" + std::string(reference) + "</string>"), "nil") << reference;
        EXPECT_EQ(readXml("<dict><key>" + std::string(reference) + "</key><true/></dict>"), "nil")
            << reference;
    }
}

TEST(XmlReader, readsLiteralSections) {
    expectXmlRows({
        {"<string><![CDATA[a<b>&amp;]]></string>", "'a<b>&amp;'"},
        {"<string>x<![CDATA[a]]>&lt;<![CDATA[]]><![CDATA[]]]]>y</string>", "'xa<]]y'"},
        {"<string><![CDATA[]]]></string>", "']'"},
        {"<string><![CDATA[>]>]]></string>", "'>]>'"},
        {"<string><![CDATA[a]]</string>", "nil"},
        {"<string><![CDATA[a</string>", "nil"},
        {"<string><![CDATA[a]]>", "nil"},
        {"<string><![CDATA[]></string>", "nil"},
        {"<string><![cdata[a]]></string>", "nil"},
    });
}

TEST(XmlReader, readsTruthValues) {
    expectXmlRows({
        {"<true/>", "true"},
        {"<false/>", "false"},
        {"<true></true>", "true"},
        {"<true>x</true>", "nil"},
        {"<true></false>", "nil"},
        {"<true", "nil"},
    });
}

TEST(XmlReader, readsIntegers) {
    expectXmlRows({
        {"<integer>-0</integer>", "0"},
        {"<integer> \t\r\n42</integer>", "42"},
        {"<integer> - \n 42</integer>", "-42"},
        {"<integer>007</integer>", "7"},
        {"<integer>0x1F</integer>", "31"},
        {"<integer>0XfF</integer>", "255"},
        {"<integer>-0x10</integer>", "-16"},
        {"<integer>9223372036854775807</integer>", "9223372036854775807"},
        {"<integer>18446744073709551615</integer>", "18446744073709551615"},
        {"<integer>0xffffffffffffffff</integer>", "18446744073709551615"},
        {"<integer>-9223372036854775808</integer>", "-9223372036854775808"},
        {"<integer>-0x8000000000000000</integer>", "-9223372036854775808"},
        {"<integer>00000000000000000000000000000001</integer>", "1"},
    });
}

TEST(XmlReader, refusesOtherIntegers) {
    for (const std::string& text :
         piecesOf("| |-|+|0x|1 |1\n|1.5|1e3|0b1|abc|--1|+-1|0x1g|ff|1,000|18446744073709551616|"
                  "0x10000000000000000|-9223372036854775809|-0x8000000000000001|99999999999999999999999999|"
                  "&#49;|<![CDATA[1]]>|\v1|\u00A01|\u0661|1<!-- -->")) {
        EXPECT_EQ(readXml("<integer>" + text + "</integer>"), "nil") << text;
    }
    EXPECT_EQ(readXml("<integer/>"), "nil");
    EXPECT_EQ(readXml("<integer>1</real>"), "nil");
    EXPECT_EQ(readXml("<integer>1"), "nil");
}

TEST(XmlReader, readsReals) {
    expectXmlRows({
        {"<real>-0</real>", "r-0"},
        {"<real> \t\n\v\f\r1.5</real>", "r1.5"},
        {"<real>+.5</real>", "r0.5"},
        {"<real>5.</real>", "r5"},
        {"<real>-1e3</real>", "r-1000"},
        {"<real>1E-2</real>", "r0.01"},
        {"<real>1e400</real>", "rinf"},
        {"<real>1e-400</real>", "r0"},
        {"<real>nan</real>", "rnan"},
        {"<real>-nan</real>", "rnan"},
        {"<real>inf</real>", "rinf"},
        {"<real>+INF</real>", "rinf"},
        {"<real> -Infinity</real>", "r-inf"},
    });
    for (const std::string_view text :
         {"",      " ",     ".",    "-",   "e3",      "1e",    "1e+",          "1 ",
          "1.5\n", "1.5.5", "0x10", "1,5", "infinit", "infi",  "nan ",         "nan(1)",
          "--1",   "- 1",   "1f",   "i",   "\u00A01", "&#49;", "<![CDATA[1]]>"}) {
        EXPECT_EQ(readXml("<real>" + std::string(text) + "</real>"), "nil") << text;
    }
    EXPECT_EQ(readXml("<real/>"), "nil");
}

TEST(XmlReader, readsDates) {
    expectXmlRows({
        {"<date>2001-01-01T00:00:00Z</date>", "d0"},
        {"<date>1970-01-01T00:00:00Z</date>", "d-978307200"},
        {"<date>2024-02-29T23:59:59Z</date>", "d730943999"},
        {"<date>2000-02-29T12:30:00Z</date>", "d-26479800"},
        {"<date>0000-01-01T00:00:00Z</date>", "d-63145526400"},
        {"<date>-0001-01-01T00:00:00Z</date>", "d-63177062400"},
        {"<date>9999-12-31T23:59:59Z</date>", "d252423993599"},
    });
    for (const std::string& text : piecesOf(
             "|2001-01-01|2001-01-01T00:00:00|2001-01-01T00:00:00.0Z|2001-01-01T00:00:00+00:00|"
             "2001-01-01T00:00:00z| 2001-01-01T00:00:00Z|2001-01-01T00:00:00Z |2001-1-01T00:00:00Z|"
             "20001-01-01T00:00:00Z|+2001-01-01T00:00:00Z|--001-01-01T00:00:00Z|2001-00-01T00:00:00Z|"
             "2001-13-01T00:00:00Z|2001-01-00T00:00:00Z|2001-01-32T00:00:00Z|2001-02-29T00:00:00Z|"
             "1900-02-29T00:00:00Z|2001-04-31T00:00:00Z|2001-01-01T24:00:00Z|2001-01-01T00:60:00Z|"
             "2001-01-01T00:00:60Z|2001-01-01 00:00:00Z|2001/01/01T00:00:00Z|2001-01-01T00:00:00ZZ|now")) {
        EXPECT_EQ(readXml("<date>" + text + "</date>"), "nil") << text;
    }
    EXPECT_EQ(readXml("<date/>"), "nil");
}

TEST(XmlReader, readsData) {
    expectXmlRows({
        {"<data></data>", "<>"},
        {"<data>\n</data>", "<>"},
        {"<data>AAEC</data>", "<000102>"},
        {"<data>AAE=</data>", "<0001>"},
        {"<data>AA==</data>", "<00>"},
        {"<data>\n\tAA EC\n\tAw==\n</data>", "<00010203>"},
        {"<data>A-A*E.C</data>", "<000102>"},
        {"<data>+/+/</data>", "<fbffbf>"},
        {"<data>AAECAw</data>", "<000102>"},
        {"<data>AAECAwQ</data>", "<000102>"},
        {"<data>AA==AAEC</data>", "<00000102>"},
        {"<data>====</data>", "<>"},
        {"<data/>", "nil"},
        {"<data>AA\u00E9EC</data>", "nil"},
        {"<data>AA<!-- -->EC</data>", "nil"},
        {"<data>AAEC", "nil"},
    });
}

TEST(XmlReader, nestsTo512Levels) {
    const auto nested = [](std::size_t depth, std::string_view open, std::string_view close) {
        return "<plist>" + nestedText(depth, open, "<true/>", close) + "</plist>";
    };
    EXPECT_NE(readXml(nested(512, "<array>", "</array>")), "nil");
    EXPECT_NE(readXml(nested(512, "<dict><key>a</key>", "</dict>")), "nil");
    std::string errorText;
    EXPECT_EQ(readXml(nested(513, "<array>", "</array>"), &errorText), "nil");
    EXPECT_EQ(errorText, "Values are nested too deeply (line 1, column 3592)");
    EXPECT_EQ(readXml(nested(513, "<dict><key>a</key>", "</dict>")), "nil");
}

TEST(XmlReader, namesLineAndColumn) {
    expectFailures(
        readXml,
        {
            {"", "The text ends where an element is expected (line 1, column 1)"},
            {"x", "Text where an element is expected (line 1, column 1)"},
            {"<plist>\n<foo/></plist>", "The element is not known (line 2, column 1)"},
            {"<plist/>", "The property list contains no value (line 1, column 1)"},
            {"<array>\r\n\t</dict>", "The close tag does not match the open tag (line 2, column 2)"},
            {"<dict><true/></dict>", "A dictionary's value must follow a key (line 1, column 7)"},
            {"<dict>\n<key>a</key>\n</dict>", "The value of a key is missing (line 3, column 1)"},
            {"<string>\u00E9\U0001F600&x;</string>", "The reference is not known (line 1, column 12)"},
            {"<string>&#x110000;</string>", "The reference is beyond the last character (line 1, column 9)"},
            {"<string>&#x;</string>", "The numeric reference is malformed (line 1, column 9)"},
            {"<string>a<b/></string>", "Only text is allowed here (line 1, column 10)"},
            {"<integer>1 </integer>", "The integer is malformed (line 1, column 10)"},
            {"<integer>18446744073709551616</integer>", "The integer is out of range (line 1, column 10)"},
            {"<real>x</real>", "The real number is malformed (line 1, column 7)"},
            {"<date>x</date>", "The date is malformed (line 1, column 7)"},
            {"<data>\u00E9</data>", "The data contains a character beyond ASCII (line 1, column 7)"},
            {"<data/>", "The element must not be empty (line 1, column 1)"},
            {"<!DOCTYPE a [", "Definitions inside the document type are not allowed (line 1, column 13)"},
            {"<!-- ", "A comment is not closed (line 1, column 6)"},
            {"<array>", "The text ends where an element is expected (line 1, column 8)"},
            {"<array", "A tag is not closed (line 1, column 1)"},
            {"<array a='", "A quoted value in a tag is not closed (line 1, column 10)"},
            {"<string>a", "An element is not closed (line 1, column 1)"},
            {"<true>x</true>", "The close tag is missing (line 1, column 7)"},
            {"<array>x", "Text where an element is expected (line 1, column 8)"},
        });
}

TEST(XmlReader, keysOfOneTextMayBeShared) {
    std::string text = "<array>";
    for (int index = 0; index < 1000; ++index) {
        text += "<dict><key>Name</key><string>" + std::to_string(index) + "</string><key>\u00E9" +
                std::to_string(index % 7) + "</key><true/></dict>";
    }
    detail::PropertyListError error;
    const NSArray array(detail::readXml((text + "</array>").c_str(), text.size() + 8, error));
    ASSERT_EQ(array.count(), 1000U);
    for (std::size_t index = 0; index < 1000; ++index) {
        const std::string expected =
            "{'Name': '" + std::to_string(index) + "', '%00E9" + std::to_string(index % 7) + "': true}";
        EXPECT_EQ(show(array[index]), expected);
    }
}

} // namespace
