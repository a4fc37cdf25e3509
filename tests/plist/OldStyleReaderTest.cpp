// SPDX-License-Identifier: MIT
// Reading old-style property lists.
#include "foundation/plist/OldStyleReader.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;
using namespace std::string_view_literals;

std::string readOldStyle(std::string_view text, std::string* errorText = nullptr) {
    return readWithBoth([](const auto* start, std::size_t count,
                           auto& error) { return detail::readOldStyle(start, count, error); },
                        text, errorText);
}

void expectOldStyleRows(std::initializer_list<ReadingRow> rows) { expectReadings(readOldStyle, rows); }

TEST(OldStyleReader, readsDictionaries) {
    expectOldStyleRows({
        {"{ a = 1; b = (x, y); }", "{'a': '1', 'b': ['x', 'y']}"},
        {"{}", "{}"},
        {"{a={b={};};}", "{'a': {'b': {}}}"},
        {"{\"\"=x;}", "{'': 'x'}"},
        {"{'k'=\"v\";}", "{'k': 'v'}"},
        {"{a=<00>;b=();}", "{'a': <00>, 'b': []}"},
    });
}

TEST(OldStyleReader, refusesMalformedDictionaries) {
    for (const std::string_view text :
         {"{a=1}", "{a=1", "{a=;}", "{=1;}", "{a 1;}", "{(a)=1;}", "{;}", "{a=1;;}", "{", "}", "{a",
          "{a=", "{a;", "{a=1;b}", "{<00>=1;}", "{{}=1;}", "{a=1,}", "{a==1;}", "{a=1;}}"}) {
        EXPECT_EQ(readOldStyle(text), "nil") << text;
    }
}

TEST(OldStyleReader, aKeyAloneIsItsOwnValue) {
    expectOldStyleRows({
        {"{ k; }", "{'k': 'k'}"},
        {"{a;b=2;}", "{'a': 'a', 'b': '2'}"},
        {"{\"a b\";}", "{'a b': 'a b'}"},
    });
}

TEST(OldStyleReader, lastOfEqualKeysWins) {
    expectOldStyleRows({
        {"{a=1;a=2;}", "{'a': '2'}"},
        {"{a=1;b=3;\"a\"=2;}", "{'a': '2', 'b': '3'}"},
        {"a=1;a;", "{'a': 'a'}"},
    });
}

TEST(OldStyleReader, readsArrays) {
    expectOldStyleRows({
        {"(a,)", "['a']"},
        {"()", "[]"},
        {"( a , b\n)", "['a', 'b']"},
        {"((),({}))", "[[], [{}]]"},
        {"(a,(b,),)", "['a', ['b']]"},
    });
}

TEST(OldStyleReader, refusesMalformedArrays) {
    for (const std::string_view text :
         {"(,)", "(a,,b)", "(a b)", "(a", "(a)b", "(", ")", "(a;)", "(a,", "(a))", "(a=b)", "((a)"}) {
        EXPECT_EQ(readOldStyle(text), "nil") << text;
    }
}

TEST(OldStyleReader, scalarsAreStrings) {
    expectOldStyleRows({
        {"abc", "'abc'"},
        {"\"a b\"", "'a b'"},
        {"_$/:.-", "'_$/:.-'"},
        {"'say \"x\"'", "'say \"x\"'"},
        {"\"it's\"", "'it's'"},
        {"\"a\nb\"", "'a%000Ab'"},
    });
}

TEST(OldStyleReader, unquotedStringsKnowFewCharacters) {
    for (unsigned character = 0; character < 0x80; ++character) {
        const char text[] = {'(', 'x', static_cast<char>(character), 'y', ')'};
        const bool isBare = std::isalnum(static_cast<int>(character)) != 0 ||
                            std::strchr("_$/:.-", static_cast<int>(character)) != nullptr;
        const std::string expected = "['x" + std::string(1, static_cast<char>(character)) + "y']";
        const bool mayFollow = character == ',';
        if (!mayFollow) {
            EXPECT_EQ(readOldStyle(std::string_view(text, 5)), isBare && character != 0 ? expected : "nil")
                << character;
        }
    }
}

TEST(OldStyleReader, refusesWhatIsNoString) {
    for (const std::string_view text : {"a b", "\"abc", "@", "a+b", "\u00E9", "/ /", "'abc\"", "\"abc\\\"",
                                        "\"", "\"\\", "a\u00E9", "*", "~"}) {
        EXPECT_EQ(readOldStyle(text), "nil") << text;
    }
    EXPECT_EQ(readOldStyle("/"), "'/'");
}

TEST(OldStyleReader, blanksMaySeparateTokens) {
    expectOldStyleRows({
        {"\t\n\v\f\r (\ta\n,\vb\f,\rc )\u2028\u2029", "['a', 'b', 'c']"},
        {"\u2028{\u2029a\u2028=\u2029b\u2028;\u2029}", "{'a': 'b'}"},
        {"(a\u00A0)", "nil"},
        {"\uFEFF(a)", "nil"},
        {"(a\u2027)", "nil"},
        {"(a)\x1F", "nil"},
        {"\b(a)", "nil"},
        {"\x0E", "nil"},
    });
}

TEST(OldStyleReader, commentsMayBeWhereATokenMayStart) {
    expectOldStyleRows({
        {"(a, // b\nc)", "['a', 'c']"},
        {"(a, // b\u2028c)", "['a', 'c']"},
        {"(a, // b\vc\n)", "['a']"},
        {"/*x*/(/**/a/* , b */)/***/", "nil"}, // "a/" is the string, and "*" no separator
        {"/*x*/(/**/a /* , b */)/***/", "['a']"},
        {"(a, /* \n // */ b)", "['a', 'b']"},
        {"(/*/ a)", "nil"},
        {"(/*/ */ a)", "['a']"},
        {"(a) /* open", "['a']"},
        {"(a) /* open *", "['a']"},
        {"(a /* open", "nil"},
        {"a//b", "'a//b'"},
        {"http://x/y", "'http://x/y'"},
        {"\"/* a */\"", "'/* a */'"},
        {"a /* x */ = // y\n b /* z */ ;", "{'a': 'b'}"},
        {"/a", "'/a'"},
    });
}

TEST(OldStyleReader, readsData) {
    expectOldStyleRows({
        {"<0fbd77>", "<0fbd77>"},
        {"<0fbd 77>", "<0fbd77>"},
        {"<>", "<>"},
        {"< 0F\tBd\n77\r\u2028aA\u2029>", "<0fbd77aa>"},
        {"(<00>,<ff>)", "[<00>, <ff>]"},
        {"<0fbd7>", "nil"},
        {"<0 f>", "nil"},
        {"<0f", "nil"},
        {"<", "nil"},
        {"<0g>", "nil"},
        {"<0f/**/>", "nil"},
        {"<0f\u00E9>", "nil"},
        {"<<0f>>", "nil"},
    });
}

TEST(OldStyleReader, readsEscapes) {
    expectOldStyleRows({
        {R"("\a\b\f\n\r\t\v")", "'%0007%0008%000C%000A%000D%0009%000B'"},
        {R"("\"\'\\")", R"('"'\')"},
        {R"('\"\'\\')", R"('"'\')"},
        {"\"a\\\nb\"", "'a%000Ab'"},
        {R"("\U00e9\341\101\q")", "'%00E9%00C6Aq'"},
        {R"("\u0041")", "'u0041'"},
        {R"("\x41\8\9\.")", "'x4189.'"},
        {"\"\\\u00E9\\\u2028\\\U0001F600\"", "'%00E9%2028%D83D%DE00'"},
        {R"("\\\\n")", R"('\\n')"},
        {R"("tail\\")", R"('tail\')"},
        {R"({"a\tb" = "\"";})", R"({'a%0009b': '"'})"},
    });
}

TEST(OldStyleReader, octalEscapesAreBytesOfTheNextStepEncoding) {
    expectOldStyleRows({
        {R"("\1\12\101\0")", "'%0001%000AA%0000'"},
        {R"("\18\1018")", "'%00018A8'"},
        {R"("\200\375")", "'%00A0%00FF'"},
        {R"("\400\501")", "'%0000A'"}, // cut to 8 bits
        {R"("\777")", "nil"},
        {R"("\376")", "nil"},
        {R"("\377")", "nil"},
        {R"("\776")", "nil"},
        {R"("\775")", "'%00FF'"},
    });
}

TEST(OldStyleReader, hexadecimalEscapesAreUnits) {
    expectOldStyleRows({
        {R"("\U00E9\Ue9\U")", "'%00E9%00E9%0000'"},
        {R"("\U41 \U041g\U00041")", "'A Ag%00041'"},
        {R"("\Ud83d\Ude00")", "'%D83D%DE00'"},
        {R"("\Ud83d.\Ude00\UFFFF")", "'%D83D.%DE00%FFFF'"},
        {R"("\Ug")", "'%0000g'"},
    });
}

TEST(OldStyleReader, readsTextBeyondAscii) {
    expectOldStyleRows({
        {"\"\u00E9\u20AC\U0001F600\"", "'%00E9%20AC%D83D%DE00'"},
        {"{\"\u00E9\"='\u00FC\\n';}", "{'%00E9': '%00FC%000A'}"},
        {"// \u00E9\n(a)", "['a']"},
        {"/* \u00E9 */(a)", "['a']"},
    });
}

TEST(OldStyleReader, keepsUnpairedSurrogatesOfAText) {
    const char16_t text[] = {'(', '"', 0xD800, '"', ',', '"', 0xDC01, '\\', 'n', '"', ')'};
    detail::PropertyListError error;
    EXPECT_EQ(show(detail::readOldStyle(text, 11, error)), "['%D800', '%DC01%000A']");
}

TEST(OldStyleReader, textWithoutAValue) {
    EXPECT_EQ(readOldStyle(""), "nil");
    EXPECT_EQ(readOldStyle(" "), "{}");
    EXPECT_EQ(readOldStyle(" // only\n /* comments */ "), "{}");
    EXPECT_EQ(readOldStyle("/* open"), "{}");
    EXPECT_EQ(readOldStyle("//"), "{}");
}

TEST(OldStyleReader, readsTheStringsForm) {
    expectOldStyleRows({
        {"a = b; c;", "{'a': 'b', 'c': 'c'}"},
        {"\"k\" = \"v\"; // x", "{'k': 'v'}"},
        {"a = b", "nil"},
        {"a = b;; ", "{'a': 'b'}"},
        {"\"a\" \"b\";", "nil"},
        {"a = b; }", "{'a': 'b'}"},
        {"a = b; ) nonsense ((", "{'a': 'b'}"},
        {"a = b; <0>", "{'a': 'b'}"},
        {"a = b; c", "nil"},
        {"a = b; \"open", "nil"},
        {"a = (x); b = {c = d;}; e;", "{'a': ['x'], 'b': {'c': 'd'}, 'e': 'e'}"},
        {"a = (x; b", "nil"},
        {"a = {b = c; }", "nil"},
        {"/ = x;", "{'/': 'x'}"},
        {"a;", "{'a': 'a'}"},
        {"a,", "nil"},
    });
}

TEST(OldStyleReader, nothingFollowsAnotherValue) {
    for (const std::string_view text : {"{} x", "() ;", "<00> <00>", "{}{}", "{}=", "(a)b"}) {
        EXPECT_EQ(readOldStyle(text), "nil") << text;
    }
    EXPECT_EQ(readOldStyle("{} // x"), "{}");
}

TEST(OldStyleReader, nestsTo512Levels) {
    EXPECT_NE(readOldStyle(nestedText(512, "(", "", ")")), "nil");
    EXPECT_NE(readOldStyle(nestedText(512, "{a=", "x", ";}")), "nil");
    EXPECT_NE(readOldStyle(nestedText(512, "(", "x", ")")), "nil");
    std::string errorText;
    EXPECT_EQ(readOldStyle(nestedText(513, "(", "", ")"), &errorText), "nil");
    EXPECT_EQ(errorText, "Values are nested too deeply (line 1, column 513)");
    EXPECT_EQ(readOldStyle(nestedText(513, "{a=", "x", ";}")), "nil");
}

TEST(OldStyleReader, namesLineAndColumn) {
    expectFailures(
        readOldStyle,
        {
            {"", "The text is empty (line 1, column 1)"},
            {"(a b)", "An array's element must be followed by ',' or ')' (line 1, column 4)"},
            {"{\n  a = 1\n}", "A dictionary's entry must end with ';' (line 3, column 1)"},
            {"{\r\n\r\n  =;}", "A key must be a string (line 3, column 3)"},
            {"{\r\r  =;}", "A key must be a string (line 3, column 3)"},
            {"(\"\u00E9\U0001F600\", @)", "A value cannot start with this character (line 1, column 9)"},
            {"(\n\"open)", "A quoted string is not closed (line 2, column 1)"},
            {"{a 1;}", "A key must be followed by '=' or ';' (line 1, column 4)"},
            {"{a=1;", "A dictionary is not closed (line 1, column 6)"},
            {"(a) b", "More text follows the value (line 1, column 5)"},
            {"<0g>", "Data needs its hexadecimal digits in pairs (line 1, column 2)"},
            {"<00 g>", "Data contains a character that is not a hexadecimal digit (line 1, column 5)"},
            {"<00", "Data is not closed (line 1, column 4)"},
            {"\"ab\\377\"", "No character is assigned to an octal escape (line 1, column 4)"},
            {"(a,", "The text ends where a value is expected (line 1, column 4)"},
        });
}

TEST(OldStyleReader, keysMayBeUnlikeAndMany) {
    std::string text = "{";
    std::string expected;
    for (int index = 0; index < 3000; ++index) {
        const std::string key(static_cast<std::size_t>(index % 70), static_cast<char>('a' + index % 26));
        text += "\"" + key + std::to_string(index) + "\" = v;";
        expected += (index == 0 ? "'" : ", '") + key + std::to_string(index) + "': 'v'";
    }
    EXPECT_EQ(readOldStyle(text + "}"), "{" + expected + "}");
}

} // namespace
