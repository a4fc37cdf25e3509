// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using namespace TestValues;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

using Texts = std::vector<std::u16string>;

constexpr std::size_t million = 1000000;

NSString units(std::u16string_view text) {
    return NSString::stringWithCharacters_length(text.data(), text.size());
}

NSCharacterSet blanks() { return NSCharacterSet::whitespaceCharacterSet(); }

NSCharacterSet setOf(StringView characters) {
    return NSCharacterSet::characterSetWithCharactersInString(characters);
}

Texts textsOf(const NSArray& array) {
    Texts texts;
    for (const NSObject& element : array) {
        const NSString text(element);
        texts.push_back(text ? text.utf16() : u"(no string)");
    }
    return texts;
}

/// Units beyond ASCII and control characters as hexadecimal numbers, for messages.
std::string escaped(std::u16string_view text) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string shownText = "\"";
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F) {
            shownText += static_cast<char>(unit);
        } else {
            shownText += "<";
            for (int shift = 12; shift >= 0; shift -= 4) {
                shownText += digits[unit >> shift & 0xF];
            }
            shownText += ">";
        }
    }
    return shownText + "\"";
}

/// All texts over the alphabet up to a length, the empty one first.
Texts allTexts(std::u16string_view alphabet, std::size_t longest) {
    Texts texts{u""};
    std::size_t first = 0;
    for (std::size_t length = 1; length <= longest; ++length) {
        const std::size_t last = texts.size();
        for (std::size_t i = first; i < last; ++i) {
            for (const char16_t unit : alphabet) {
                texts.push_back(texts[i] + unit);
            }
        }
        first = last;
    }
    return texts;
}

std::u16string repeated(std::u16string_view piece, std::size_t count) {
    std::u16string text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

// MARK: Slow models, written down step by step

bool isNewline(char16_t unit) {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

std::u16string leftTrimmed(const std::u16string& text, std::u16string_view members) {
    if (text.empty()) {
        return text;
    }
    std::size_t start = 0;
    std::size_t rest = text.size();
    do {
        if (members.find(text[start]) == std::u16string_view::npos) {
            break;
        }
        ++start;
        --rest;
    } while (start < rest);
    return text.substr(start, rest);
}

std::u16string rightTrimmed(std::u16string text, std::u16string_view members) {
    while (!text.empty() && members.find(text.back()) != std::u16string_view::npos) {
        text.pop_back();
    }
    return text;
}

Texts lines(const std::u16string& text) {
    Texts result;
    std::size_t position = 0;
    while (position < text.size()) {
        std::u16string line;
        while (position < text.size() && !isNewline(text[position])) {
            line += text[position++];
        }
        result.push_back(line);
        if (position == text.size()) {
            break;
        }
        const char16_t newline = text[position++];
        if (position < text.size()) {
            const char16_t next = text[position];
            if ((newline == u'\n' && next == u'\r') || (newline == u'\r' && next == u'\n')) {
                ++position;
            }
        }
        if (position == text.size()) {
            result.push_back(u"");
        }
    }
    return result;
}

Texts pieces(const std::u16string& text, std::u16string_view separators) {
    const auto isSeparator = [separators](char16_t unit) {
        return separators.find(unit) != std::u16string_view::npos;
    };
    Texts result;
    std::size_t position = 0;
    while (position < text.size()) {
        std::u16string piece;
        while (position < text.size() && !isSeparator(text[position])) {
            piece += text[position++];
        }
        result.push_back(piece);
        bool wasRun = false;
        while (position < text.size() && isSeparator(text[position])) {
            wasRun = true;
            ++position;
        }
        if (wasRun && position == text.size()) {
            result.push_back(u"");
        }
    }
    return result;
}

std::u16string indented(const std::u16string& text, const std::u16string& indent) {
    std::u16string result = indent;
    bool isFirst = true;
    for (const std::u16string& line : lines(text)) {
        result += isFirst ? line : u"\n" + indent + line;
        isFirst = false;
    }
    return result;
}

// MARK: Defaults, emptiness, containment

TEST(StringOperations, theReceiverIsTheDefaultForAMissingArgument) {
    EXPECT_EQ(NSString("x").asDefaultOr(nullptr), "x");
    EXPECT_EQ(NSString("x").asDefaultOr("y"), "y");
    EXPECT_EQ(NSString("x").asDefaultOr(""), "");
    EXPECT_EQ(NSString("").asDefaultOr(nullptr), "");
    EXPECT_EQ(NSString("").asDefaultOr("y"), "y");
    EXPECT_EQ(NSString("caf\u00e9").asDefaultOr(NSString()), "caf\u00e9");
}

TEST(StringOperations, aNilStringAnswersNothing) {
    const NSString none;
    EXPECT_FALSE(none.asDefaultOr("y"));
    EXPECT_FALSE(none.asDefaultOr(nullptr));
    EXPECT_FALSE(none.isEmpty());
    EXPECT_FALSE(none.containsString("a"));
    EXPECT_FALSE(none.containsString(""));
    EXPECT_FALSE(none.containsString(nullptr));
    EXPECT_FALSE(none.containsString_caseInsensitiveSearch("a", true));
    EXPECT_FALSE(none.containsDecimalDigit());
    EXPECT_FALSE(none.trimLeftCharactersOfCharacterSet(blanks()));
    EXPECT_FALSE(none.trimRightCharactersOfCharacterSet(blanks()));
    EXPECT_FALSE(none.trimCharactersOfCharacterSet(blanks()));
    EXPECT_FALSE(none.trim());
    EXPECT_FALSE(none.substringFromEndOfString("a"));
    EXPECT_FALSE(none.substringFromEndOfString(nullptr));
    EXPECT_EQ(none.occurrenceCountOfCharacter(u'a'), 0U);
    EXPECT_FALSE(none.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(blanks(), "x"));
    EXPECT_FALSE(none.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(nullptr, nullptr));
    EXPECT_FALSE(none.stringByRemovingEveryOccurrenceOfCharactersFromSet(blanks()));
    EXPECT_EQ(none.componentsSeparatedByLineBreak().count(), 0U);
    EXPECT_EQ(none.componentsSeparatedByCharacterSet(blanks()).count(), 0U);
    EXPECT_EQ(none.componentsSeparatedByWhitespace().count(), 0U);
    EXPECT_EQ(none.componentsSeparatedByWhitespaces().count(), 0U);
    EXPECT_FALSE(none.stringByIndentingLinesWithString("> "));
    EXPECT_FALSE(none.stringByIndentingLinesWithString(nullptr));
    EXPECT_FALSE(none.addMissingNewline());
    EXPECT_EQ(none.compareLength(nullptr), NSOrderedSame);
    EXPECT_EQ(none.compareLength(""), NSOrderedSame);
}

TEST(StringOperations, onlyTheStringWithoutUnitsIsEmpty) {
    EXPECT_TRUE(NSString("").isEmpty());
    EXPECT_TRUE(NSString::string().isEmpty());
    EXPECT_TRUE(NSString("x").substringFromIndex(1).isEmpty());
    EXPECT_FALSE(NSString(" ").isEmpty());
    EXPECT_FALSE(NSString("\n").isEmpty());
    EXPECT_FALSE(NSString("\0"sv).isEmpty());
    EXPECT_FALSE(NSString("\u200B").isEmpty());
    EXPECT_FALSE(units(u"\xD83D").isEmpty());
}

TEST(StringOperations, containsStringComparesUnits) {
    const struct {
        const char* name;
        NSString text;
        NSString other;
        bool isContained;
    } rows[] = {
        {"at the start", "hello", "he", true},
        {"in the middle", "hello", "ell", true},
        {"at the end", "hello", "lo", true},
        {"the whole", "hello", "hello", true},
        {"one unit", "x", "x", true},
        {"longer than the receiver", "hell", "hello", false},
        {"absent", "hello", "hey", false},
        {"other case", "hello", "HE", false},
        {"the empty string", "hello", "", false},
        {"the empty string in the empty one", "", "", false},
        {"nil", "hello", nullptr, false},
        {"nil in the empty string", "", nullptr, false},
        {"in the empty string", "", "a", false},
        {"a match that begins after a false start", "aab", "ab", true},
        {"a longer false start", "aaaabaaab!", "aaab!", true},
        {"U+0000 inside", "a\0b"sv, "\0b"sv, true},
        {"U+0000 alone", "a\0b"sv, "\0"sv, true},
        {"text behind U+0000", "a\0b"sv, "b", true},
        {"Latin-1", "caf\u00e9", "f\u00e9", true},
        {"a base without its mark", "e\u0301x", "e", true},
        {"a mark without its base", "e\u0301x", u"\u0301", true},
        {"decomposed in composed", "\u00e9", "e\u0301", false},
        {"composed in decomposed", "e\u0301", "\u00e9", false},
        {"a surrogate pair", "a\U0001F600b", "\U0001F600", true},
        {"the first half of a pair", "a\U0001F600b", units(u"\xD83D"), true},
        {"the second half of a pair", "a\U0001F600b", units(u"\xDE00"), true},
        {"another pair with the same first half", "\U0001F600", "\U0001F601", false},
        {"the two units of CR LF", "a\r\nb", "\n", true},
        {"an invisible character", "a\u200Bb", "\u200B", true},
        {"an invisible character that is not there", "ab", "\u200B", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.containsString(row.other), row.isContained) << row.name;
        EXPECT_EQ(row.text.containsString_caseInsensitiveSearch(row.other, false), row.isContained)
            << row.name << ", case-sensitive by flag";
    }
}

TEST(StringOperations, containsStringFoldsCaseWhenAsked) {
    const struct {
        const char* name;
        NSString text;
        NSString other;
        bool isContained;
    } rows[] = {
        {"same case", "hello", "ell", true},
        {"upper case wanted", "hello", "ELL", true},
        {"upper case given", "HELLO", "ell", true},
        {"mixed", "HeLLo", "hEllO", true},
        {"absent", "hello", "HEY", false},
        {"nil", "hello", nullptr, false},
        {"empty", "hello", "", false},
        {"empty in empty", "", "", false},
        {"in empty", "", "A", false},
        {"Latin-1", "CAF\u00c9", "f\u00e9", true},
        {"Greek", "\u0391\u03b2\u0393", "\u03b1\u0392\u03b3", true},
        {"Cyrillic", "\u041f\u0440\u0438", "\u043f\u0420\u0418", true},
        {"sharp s", "stra\u00dfe", "STRASSE", true},
        {"supplementary letters", "x\U00010400y", "\U00010428", true},
        {"signs stay apart", "a[b", "A{B", false},
        {"the sign between the cases", "_", "?", false},
        {"U+0000 inside", "A\0B"sv, "\0b"sv, true},
        {"dotless i", "\u0131", "I", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.containsString_caseInsensitiveSearch(row.other, true), row.isContained)
            << row.name;
    }
}

TEST(StringOperations, decimalDigitsOfAllScriptsCount) {
    const struct {
        const char* name;
        NSString text;
        bool hasDigit;
    } rows[] = {
        {"none", "abc", false},
        {"empty", "", false},
        {"first", "1ab", true},
        {"last", "ab9", true},
        {"zero", "0", true},
        {"alone in a long text", std::string(5000, 'x').append("7"), true},
        {"Arabic", "x\u0663", true},
        {"Devanagari", "\u0966", true},
        {"full width", "\uFF11", true},
        {"superscript two", "\u00b2", false},
        {"one half", "\u00bd", false},
        {"Roman numeral one", "\u2160", false},
        {"circled one", "\u2460", false},
        {"a hexadecimal letter", "F", false},
        {"mathematical digit, two units", "\U0001D7CE", false},
        {"behind U+0000", "\0"s + "5", true},
        {"slash and colon around the digits", "/:", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.containsDecimalDigit(), row.hasDigit) << row.name;
    }
}

// MARK: Trimming

TEST(StringOperations, leftTrimRemovesAtMostAboutHalf) {
    const struct {
        NSString text;
        const char* trimmed;
    } rows[] = {
        {"", ""},
        {" ", ""},
        {"  ", " "},
        {"   ", " "},
        {"    ", "  "},
        {"     ", "  "},
        {"x", "x"},
        {" x", "x"},
        {"  x", "x"},
        {"   x", " x"},
        {"    x", " x"},
        {"  xx", "xx"},
        {"   xx", "xx"},
        {"    xx", " xx"},
        {"x  ", "x  "},
        {" x ", "x "},
        {"\t x", "x"},
        {" \t\u00a0x", "\u00a0x"},
        {"\nx", "\nx"},
        {" \u00e9", "\u00e9"},
        {"   \u00e9", " \u00e9"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.trimLeftCharactersOfCharacterSet(blanks()), row.trimmed)
            << escaped(row.text.utf16());
    }
}

TEST(StringOperations, rightTrimHasNoBound) {
    const struct {
        NSString text;
        const char* trimmed;
    } rows[] = {
        {"", ""},       {" ", ""},        {"    ", ""},
        {"x", "x"},     {"x ", "x"},      {"x     ", "x"},
        {" x ", " x"},  {"x y  ", "x y"}, {"x\t \u3000", "x"},
        {"x\n", "x\n"}, {"x\n ", "x\n"},  {"\u00e9  ", "\u00e9"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.trimRightCharactersOfCharacterSet(blanks()), row.trimmed)
            << escaped(row.text.utf16());
    }
}

TEST(StringOperations, trimsOfAllShortTextsFollowTheSteps) {
    for (const std::u16string& text : allTexts(u" x", 10)) {
        const NSString string = units(text);
        const std::u16string left = leftTrimmed(text, u" ");
        const std::u16string both = rightTrimmed(left, u" ");
        ASSERT_EQ(string.trimLeftCharactersOfCharacterSet(blanks()).utf16(), left) << escaped(text);
        ASSERT_EQ(string.trimRightCharactersOfCharacterSet(blanks()).utf16(), rightTrimmed(text, u" "))
            << escaped(text);
        ASSERT_EQ(string.trimCharactersOfCharacterSet(blanks()).utf16(), both) << escaped(text);
        ASSERT_EQ(string.trim().utf16(), both) << escaped(text);
        ASSERT_GE(2 * left.size() + 1, text.size()) << escaped(text);
    }
}

TEST(StringOperations, trimsOfTextsBeyondAsciiFollowTheSteps) {
    constexpr std::u16string_view members = u" \u3000";
    const NSCharacterSet set = setOf(members);
    for (const std::u16string& text : allTexts(u" \u3000\u00e9\xD83D", 6)) {
        const NSString string = units(text);
        const std::u16string left = leftTrimmed(text, members);
        ASSERT_EQ(string.trimLeftCharactersOfCharacterSet(set).utf16(), left) << escaped(text);
        ASSERT_EQ(string.trimRightCharactersOfCharacterSet(set).utf16(), rightTrimmed(text, members))
            << escaped(text);
        ASSERT_EQ(string.trimCharactersOfCharacterSet(set).utf16(), rightTrimmed(left, members))
            << escaped(text);
    }
}

TEST(StringOperations, trimTakesWhiteSpaceAndControlCharacters) {
    const struct {
        const char* name;
        NSString text;
        NSString trimmed;
    } rows[] = {
        {"tabs and newlines", "\t\tab \n", "ab"},
        {"three blanks in front of one character", "   x", " x"},
        {"four blanks", "    ", ""},
        {"one blank", " ", ""},
        {"empty", "", ""},
        {"zero width space", "\u200Bab\u200B", "ab"},
        {"no-break space", "\u00a0ab\u00a0", "ab"},
        {"ideographic space", "\u3000ab\u3000", "ab"},
        {"byte-order mark", "\uFEFFab\uFEFF", "ab"},
        {"soft hyphen", "\u00ADab\u00AD", "ab"},
        {"U+0000", "\0ab\0"sv, "ab"},
        {"U+001C and U+007F", "\x1C"s + "ab\x7F", "ab"},
        {"U+0085", "\u0085ab\u0085", "ab"},
        {"CR LF", "\r\nab\r\n", "ab"},
        {"line separators stay", "\u2028ab\u2029", "\u2028ab\u2029"},
        {"inside stays", "a \t b", "a \t b"},
        {"the mark at the end stays", "e\u0301", "e\u0301"},
        {"a pair at either end stays", "\U0001F600x\U0001F600", "\U0001F600x\U0001F600"},
        {"a tag character is two units and stays", "ab\U000E0001", "ab\U000E0001"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.trim(), row.trimmed) << row.name;
    }
}

TEST(StringOperations, trimsTestUnits) {
    const NSString text = "\U0001F600x\U0001F600";
    const NSCharacterSet pair = setOf("\U0001F600");
    EXPECT_EQ(text.trimLeftCharactersOfCharacterSet(pair), text);
    EXPECT_EQ(text.trimRightCharactersOfCharacterSet(pair), text);
    const NSCharacterSet secondHalf = setOf(u"\xDE00"sv);
    EXPECT_EQ(text.trimRightCharactersOfCharacterSet(secondHalf).utf16(), u"\xD83D\xDE00x\xD83D");
    const NSCharacterSet firstHalf = setOf(u"\xD83D"sv);
    EXPECT_EQ(text.trimLeftCharactersOfCharacterSet(firstHalf).utf16(), u"\xDE00x\xD83D\xDE00");
}

TEST(StringOperations, trimsWithTheEmptySetChangeNothing) {
    const NSCharacterSet none = NSCharacterSet::emptyCharacterSet();
    for (const char* text : {"", " ", "  x  ", "\u00a0\u00e9"}) {
        EXPECT_EQ(NSString(text).trimLeftCharactersOfCharacterSet(none), text);
        EXPECT_EQ(NSString(text).trimRightCharactersOfCharacterSet(none), text);
        EXPECT_EQ(NSString(text).trimCharactersOfCharacterSet(none), text);
    }
}

TEST(StringOperations, trimsOfLongTextsKeepTheBound) {
    const NSString allBlank = units(std::u16string(million, u' '));
    EXPECT_EQ(allBlank.trimLeftCharactersOfCharacterSet(blanks()).length(), million / 2);
    EXPECT_EQ(allBlank.trimRightCharactersOfCharacterSet(blanks()), "");
    EXPECT_EQ(allBlank.trim(), "");
    const NSString oddBlank = units(std::u16string(million - 1, u' '));
    EXPECT_EQ(oddBlank.trimLeftCharactersOfCharacterSet(blanks()).length(), million / 2 - 1);
    const NSString aCharacterAtTheEnd = units(std::u16string(million - 1, u' ') + u"\u20ac");
    EXPECT_EQ(aCharacterAtTheEnd.trim().length(), million / 2);
    const NSString fewBlanks = units(u"   " + std::u16string(million, u'x') + u"   ");
    EXPECT_EQ(fewBlanks.trim().length(), million);
}

// MARK: Searching and counting

TEST(StringOperations, theTextBehindTheFirstMarkerIsFound) {
    const struct {
        const char* name;
        NSString text;
        NSString marker;
        NSString rest;
    } rows[] = {
        {"the first of two", "key=value=x", "=", "value=x"},
        {"at the end", "key=value=x", "x", ""},
        {"absent", "key=value=x", "?", nullptr},
        {"nil", "key=value=x", nullptr, nullptr},
        {"empty", "key=value=x", "", nullptr},
        {"empty in empty", "", "", nullptr},
        {"in the empty string", "", "=", nullptr},
        {"the whole", "abc", "abc", ""},
        {"longer than the string", "abc", "abcd", nullptr},
        {"several units", "a--b--c", "--", "b--c"},
        {"overlapping", "aaa", "aa", "a"},
        {"other case", "aXb", "x", nullptr},
        {"U+0000", "a\0b\0c"sv, "\0"sv, "b\0c"sv},
        {"behind U+0000", "a\0b=c"sv, "=", "c"},
        {"Latin-1", "caf\u00e9 noir", "\u00e9", " noir"},
        {"a pair", "a\U0001F600b", "\U0001F600", "b"},
        {"a pair follows", "a=\U0001F600", "=", "\U0001F600"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(row.text.substringFromEndOfString(row.marker)), utf8Of(row.rest)) << row.name;
    }
    const NSString longText = units(std::u16string(million, u'a') + u"b" + std::u16string(million, u'a'));
    EXPECT_EQ(longText.substringFromEndOfString("b").length(), million);
}

TEST(StringOperations, occurrencesAreCountedByUnit) {
    const struct {
        const char* name;
        NSString text;
        char16_t unit;
        std::size_t count;
    } rows[] = {
        {"commas", "a,b,,c", u',', 3},
        {"absent", "a,b,,c", u';', 0},
        {"empty", "", u',', 0},
        {"one", ",", u',', 1},
        {"all", ",,,,,,,", u',', 7},
        {"other case", "aAa", u'A', 1},
        {"U+0000", "\0a\0"sv, 0, 2},
        {"no U+0000", "abc", 0, 0},
        {"Latin-1", "\u00e9t\u00e9", u'\u00e9', 2},
        {"a byte of a longer character", "\u00e9t\u00e9", 0xC3, 0},
        {"not its low byte", u"\u0141\u0241", u'A', 0},
        {"no ASCII in a wide text", u"\u20ac,\u20ac,", u',', 2},
        {"a wide unit in an ASCII text", "abc", u'\u0161', 0},
        {"the first half of pairs", "\U0001F600\U0001F601", 0xD83D, 2},
        {"the second half of pairs", "\U0001F600\U0001F601", 0xDE01, 1},
        {"the last unit", u"\xFFFF\xFFFF", 0xFFFF, 2},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.occurrenceCountOfCharacter(row.unit), row.count) << row.name;
    }
}

TEST(StringOperations, occurrencesAreCountedAtEveryPlaceOfEveryLength) {
    for (std::size_t length = 1; length < 300; ++length) {
        for (const char16_t filling : {u'a', u'\u20ac'}) {
            std::u16string text(length, filling);
            text.front() = u',';
            text.back() = u',';
            text[length / 2] = u',';
            std::size_t expected = 0;
            for (const char16_t unit : text) {
                expected += unit == u',';
            }
            ASSERT_EQ(units(text).occurrenceCountOfCharacter(u','), expected) << length;
            ASSERT_EQ(units(text).occurrenceCountOfCharacter(filling), length - expected) << length;
        }
    }
    const NSString longText = units(repeated(u"a,", million / 2));
    EXPECT_EQ(longText.occurrenceCountOfCharacter(u','), million / 2);
}

// MARK: Replacing and removing

TEST(StringOperations, eachMemberIsReplacedByItself) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    const struct {
        const char* name;
        NSString text;
        NSCharacterSet set;
        NSString replacement;
        NSString result;
    } rows[] = {
        {"digits", "a1b22", digits, "#", "a#b##"},
        {"runs are not one", "a  b", blanks(), "_", "a__b"},
        {"at both ends", " a ", blanks(), "_", "_a_"},
        {"only members", "123", digits, "#", "###"},
        {"no member", "abc", digits, "#", "abc"},
        {"empty receiver", "", digits, "#", ""},
        {"by nothing", "a1b2", digits, "", "ab"},
        {"by several units", "a1b2", digits, "<n>", "a<n>b<n>"},
        {"by members of the set", "a1b", digits, "11", "a11b"},
        {"by a wide text", "a1b", digits, "\u20ac", "a\u20acb"},
        {"by U+0000", "a1b", digits, "\0"sv, "a\0b"sv},
        {"by a format", "a1b", digits, "%@%n", "a%@%nb"},
        {"of a wide text", "\u20ac1\u20ac", digits, "#", "\u20ac#\u20ac"},
        {"a wide text that becomes narrow", "a\u0663b", digits, "3", "a3b"},
        {"U+0000", "a\0b"sv, NSCharacterSet::nullByteCharacterSet(), "-", "a-b"},
        {"nil replacement", "a1b22", digits, nullptr, "a1b22"},
        {"nil set", "a1b22", nullptr, "#", "a1b22"},
        {"both nil", "a1b22", nullptr, nullptr, "a1b22"},
        {"the empty set", "a1b22", NSCharacterSet::emptyCharacterSet(), "#", "a1b22"},
        {"a digit of two units", "a\U0001D7CEb", digits, "#", "a\U0001D7CEb"},
        {"a member of two units", "a\U0001F600b", setOf("\U0001F600"), "#", "a\U0001F600b"},
        {"half a pair", "a\U0001F600b", setOf(u"\xDE00"sv), "#", units(u"a\xD83D#b")},
        {"a mark", "e\u0301", setOf("\u0301"), "'", "e'"},
        {"the base of a mark", "e\u0301", setOf("e"), "a", "a\u0301"},
    };
    for (const auto& row : rows) {
        const NSString found =
            row.text.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(row.set, row.replacement);
        EXPECT_EQ(found.utf16(), row.result.utf16()) << row.name;
        EXPECT_TRUE(found) << row.name;
    }
}

TEST(StringOperations, replacingAndRemovingFollowTheSteps) {
    for (const std::u16string& text : allTexts(u"a \u00e9\t", 6)) {
        std::u16string replaced;
        std::u16string removed;
        for (const char16_t unit : text) {
            const bool isMember = unit == u' ' || unit == u'\t';
            replaced += isMember ? u"<>"s : std::u16string(1, unit);
            removed += isMember ? u""s : std::u16string(1, unit);
        }
        const NSString string = units(text);
        ASSERT_EQ(
            string.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(blanks(), "<>").utf16(),
            replaced)
            << escaped(text);
        ASSERT_EQ(string.stringByRemovingEveryOccurrenceOfCharactersFromSet(blanks()).utf16(), removed)
            << escaped(text);
    }
}

TEST(StringOperations, removingDeletesEveryMember) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    EXPECT_EQ(NSString("a1b22").stringByRemovingEveryOccurrenceOfCharactersFromSet(digits), "ab");
    EXPECT_EQ(NSString("123").stringByRemovingEveryOccurrenceOfCharactersFromSet(digits), "");
    EXPECT_EQ(NSString("").stringByRemovingEveryOccurrenceOfCharactersFromSet(digits), "");
    EXPECT_EQ(NSString("abc").stringByRemovingEveryOccurrenceOfCharactersFromSet(digits), "abc");
    EXPECT_EQ(NSString("a1").stringByRemovingEveryOccurrenceOfCharactersFromSet(nullptr), "a1");
    EXPECT_EQ(NSString("    x").stringByRemovingEveryOccurrenceOfCharactersFromSet(blanks()), "x");
}

TEST(StringOperations, longTextsAreReplacedWhole) {
    const NSString text = units(repeated(u"a ", million / 2));
    const NSString replaced =
        text.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(blanks(), "\u20ac\u20ac");
    EXPECT_EQ(replaced.length(), million / 2 * 3);
    EXPECT_EQ(replaced.occurrenceCountOfCharacter(u'\u20ac'), million);
    EXPECT_EQ(text.stringByRemovingEveryOccurrenceOfCharactersFromSet(blanks()).length(), million / 2);
}

// MARK: Splitting

TEST(StringOperations, splitsAtLineBreaks) {
    const struct {
        NSString text;
        Texts expected;
    } rows[] = {
        {"", {}},
        {"a", {u"a"}},
        {"a\n", {u"a", u""}},
        {"\n", {u"", u""}},
        {"a\r\nb", {u"a", u"b"}},
        {"a\n\rb", {u"a", u"b"}},
        {"a\n\nb", {u"a", u"", u"b"}},
        {"a\r\rb", {u"a", u"", u"b"}},
        {"a\n\r\nb", {u"a", u"", u"b"}},
        {"a\r\n\rb", {u"a", u"", u"b"}},
        {"\r\n", {u"", u""}},
        {"\n\r", {u"", u""}},
        {"\r\n\r\n", {u"", u"", u""}},
        {"a\r\n", {u"a", u""}},
        {"a\u2028b", {u"a", u"b"}},
        {"a\u2029b", {u"a", u"b"}},
        {"a\u0085b", {u"a", u"b"}},
        {"a\vb\fc", {u"a", u"b", u"c"}},
        {"a\r\u2028\nb", {u"a", u"", u"", u"b"}},
        {"a\v\r\nb", {u"a", u"", u"b"}},
        {"  a \t\n\t b  ", {u"  a \t", u"\t b  "}},
        {" \n ", {u" ", u" "}},
        {"a\x1C\x1D\x1E\x1F"s + "b", {u"a\x1C\x1D\x1E\x1F"s + u"b"}},
        {"a\0b\nc"sv, {u"a\0b"s, u"c"}},
        {"\u00e9\n\U0001F600", {u"\u00e9", u"\U0001F600"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(textsOf(row.text.componentsSeparatedByLineBreak()), row.expected)
            << escaped(row.text.utf16());
    }
}

TEST(StringOperations, linesOfAllShortTextsFollowTheSteps) {
    for (const std::u16string_view alphabet : {u"a\r\n\u2028"sv, u"a\r\n\v"sv}) {
        for (const std::u16string& text : allTexts(alphabet, 6)) {
            ASSERT_EQ(textsOf(units(text).componentsSeparatedByLineBreak()), lines(text)) << escaped(text);
        }
    }
    for (const std::u16string& text : allTexts(u"\r\n", 11)) {
        ASSERT_EQ(textsOf(units(text).componentsSeparatedByLineBreak()), lines(text)) << escaped(text);
    }
}

TEST(StringOperations, onlyTheSevenNewlineCharactersBreakLines) {
    for (std::uint32_t value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const std::size_t count = units(u"a"s + unit + u"b").componentsSeparatedByLineBreak().count();
        ASSERT_EQ(count, isNewline(unit) ? 2U : 1U) << std::hex << value;
    }
}

TEST(StringOperations, splitsAtRunsOfSeparators) {
    const struct {
        NSString text;
        Texts expected;
    } rows[] = {
        {"a b", {u"a", u"b"}},
        {"a   b", {u"a", u"b"}},
        {" a", {u"", u"a"}},
        {"   a", {u"", u"a"}},
        {"a ", {u"a", u""}},
        {"a   ", {u"a", u""}},
        {" ", {u"", u""}},
        {"   ", {u"", u""}},
        {"", {}},
        {"ab", {u"ab"}},
        {" a b ", {u"", u"a", u"b", u""}},
        {"a \t\u00a0\u3000b", {u"a", u"b"}},
        {"a\nb", {u"a\nb"}},
        {"a \n b", {u"a", u"\n", u"b"}},
        {"\r\n", {u"\r\n"}},
        {"a\u200Bb", {u"a\u200Bb"}},
        {"a\0 b"sv, {u"a\0"s, u"b"}},
        {"\u00e9 \U0001F600", {u"\u00e9", u"\U0001F600"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(textsOf(row.text.componentsSeparatedByCharacterSet(blanks())), row.expected)
            << escaped(row.text.utf16());
        EXPECT_EQ(textsOf(row.text.componentsSeparatedByWhitespace()), row.expected)
            << escaped(row.text.utf16());
        EXPECT_EQ(textsOf(row.text.componentsSeparatedByWhitespaces()), row.expected)
            << escaped(row.text.utf16());
    }
}

TEST(StringOperations, piecesOfAllShortTextsFollowTheSteps) {
    for (const std::u16string& text : allTexts(u"a \t", 8)) {
        const NSString string = units(text);
        const Texts expected = pieces(text, u" \t");
        ASSERT_EQ(textsOf(string.componentsSeparatedByWhitespace()), expected) << escaped(text);
        ASSERT_EQ(textsOf(string.componentsSeparatedByCharacterSet(setOf("a"))), pieces(text, u"a"))
            << escaped(text);
    }
    const NSCharacterSet marks = setOf(u",\u3001"sv);
    for (const std::u16string& text : allTexts(u"a,\u3001 ", 6)) {
        ASSERT_EQ(textsOf(units(text).componentsSeparatedByCharacterSet(marks)), pieces(text, u",\u3001"))
            << escaped(text);
    }
}

TEST(StringOperations, separatorsAreUnits) {
    const NSString text = "a\U0001F600b";
    EXPECT_EQ(textsOf(text.componentsSeparatedByCharacterSet(setOf("\U0001F600"))), (Texts{u"a\U0001F600b"}));
    EXPECT_EQ(textsOf(text.componentsSeparatedByCharacterSet(setOf(u"\xD83D"sv))),
              (Texts{u"a", u"\xDE00"s + u"b"}));
    EXPECT_EQ(textsOf(text.componentsSeparatedByCharacterSet(NSCharacterSet::emptyCharacterSet())),
              (Texts{u"a\U0001F600b"}));
    EXPECT_EQ(
        textsOf(
            NSString("a\0\0b"sv).componentsSeparatedByCharacterSet(NSCharacterSet::nullByteCharacterSet())),
        (Texts{u"a", u"b"}));
    EXPECT_EQ(NSString("").componentsSeparatedByCharacterSet(NSCharacterSet::emptyCharacterSet()).count(),
              0U);
}

TEST(StringOperations, theEmptyStringSplitsIntoAnEmptyArrayNotIntoNil) {
    EXPECT_TRUE(NSString("").componentsSeparatedByLineBreak());
    EXPECT_TRUE(NSString("").componentsSeparatedByCharacterSet(blanks()));
    EXPECT_TRUE(NSString("").componentsSeparatedByWhitespace());
    EXPECT_TRUE(NSString("").componentsSeparatedByWhitespaces());
}

TEST(StringOperations, longTextsAreSplitWhole) {
    const NSString breaks = units(std::u16string(million, u'\n'));
    EXPECT_EQ(breaks.componentsSeparatedByLineBreak().count(), million + 1);
    const NSString pairs = units(repeated(u"\r\n", million / 2));
    EXPECT_EQ(pairs.componentsSeparatedByLineBreak().count(), million / 2 + 1);
    const NSString words = units(repeated(u"\u20ac ", million / 2));
    EXPECT_EQ(words.componentsSeparatedByWhitespace().count(), million / 2 + 1);
    const NSString oneRun = units(std::u16string(million, u' '));
    EXPECT_EQ(textsOf(oneRun.componentsSeparatedByWhitespace()), (Texts{u"", u""}));
    const NSString oneLine = units(std::u16string(million, u'x'));
    EXPECT_EQ(textsOf(oneLine.componentsSeparatedByLineBreak()), (Texts{std::u16string(million, u'x')}));
}

// MARK: Indenting, final newline

TEST(StringOperations, everyLineIsIndented) {
    const struct {
        const char* name;
        NSString text;
        NSString indent;
        NSString result;
    } rows[] = {
        {"one line", "a", "> ", "> a"},
        {"two lines", "a\nb", "> ", "> a\n> b"},
        {"empty", "", "> ", "> "},
        {"a break at the end", "a\n", "> ", "> a\n> "},
        {"a break alone", "\n", "> ", "> \n> "},
        {"empty lines", "a\n\nb", "> ", "> a\n> \n> b"},
        {"CR LF becomes LF", "a\r\nb", "\t", "\ta\n\tb"},
        {"LF CR becomes LF", "a\n\rb", "\t", "\ta\n\tb"},
        {"CR becomes LF", "a\rb\r", "\t", "\ta\n\tb\n\t"},
        {"line separator becomes LF", "a\u2028b\u0085c", "-", "-a\n-b\n-c"},
        {"nothing in front", "a\r\nb", "", "a\nb"},
        {"nothing in front of nothing", "", "", ""},
        {"nil keeps the breaks", "a\r\nb\u2028", nullptr, "a\r\nb\u2028"},
        {"nil and empty", "", nullptr, ""},
        {"an indent with a newline", "a\nb", "\n", "\na\n\nb"},
        {"an indent like a format", "a\nb", "100%@ %d%%", "100%@ %d%%a\n100%@ %d%%b"},
        {"a text like a format", "%@\n%n", "> ", "> %@\n> %n"},
        {"a wide indent", "a\nb", "\u2192", "\u2192a\n\u2192b"},
        {"a wide text", "\u20ac\n\U0001F600", "> ", "> \u20ac\n> \U0001F600"},
        {"U+0000 in the indent", "a\nb", "\0"sv, "\0a\n\0b"sv},
        {"U+0000 in the text", "a\0\nb"sv, "> ", "> a\0\n> b"sv},
    };
    for (const auto& row : rows) {
        const NSString found = row.text.stringByIndentingLinesWithString(row.indent);
        EXPECT_TRUE(found) << row.name;
        EXPECT_EQ(found.utf16(), row.result.utf16()) << row.name;
    }
}

TEST(StringOperations, indentingAllShortTextsFollowsTheSteps) {
    for (const std::u16string& text : allTexts(u"a\r\n\u2029", 6)) {
        ASSERT_EQ(units(text).stringByIndentingLinesWithString("  ").utf16(), indented(text, u"  "))
            << escaped(text);
        ASSERT_EQ(units(text).stringByIndentingLinesWithString(u"\r").utf16(), indented(text, u"\r"))
            << escaped(text);
    }
    const NSString breaks = units(std::u16string(million, u'\n'));
    EXPECT_EQ(breaks.stringByIndentingLinesWithString("> ").length(), million + 2 * (million + 1));
}

TEST(StringOperations, aMissingNewlineIsAdded) {
    const struct {
        NSString text;
        NSString result;
    } rows[] = {
        {"", ""},
        {"a", "a\n"},
        {"a\n", "a\n"},
        {"a\r", "a\r"},
        {"a\r\n", "a\r\n"},
        {"a\n\r", "a\n\r"},
        {"a\u2028", "a\u2028"},
        {"a\nb", "a\nb\n"},
        {"\n", "\n"},
        {"\n ", "\n \n"},
        {" ", " \n"},
        {"a\t", "a\t\n"},
        {"a\x1C", "a\x1C\n"},
        {"a\0"sv, "a\0\n"sv},
        {"\u00e9", "\u00e9\n"},
        {"\U0001F600", "\U0001F600\n"},
        {"a\u200B", "a\u200B\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.addMissingNewline(), row.result) << escaped(row.text.utf16());
        EXPECT_EQ(row.result.addMissingNewline(), row.result) << escaped(row.text.utf16());
    }
}

TEST(StringOperations, onlyTheSevenNewlineCharactersCountAsAFinalNewline) {
    for (std::uint32_t value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const std::u16string text = u"a"s + unit;
        ASSERT_EQ(units(text).addMissingNewline().utf16(), isNewline(unit) ? text : text + u"\n")
            << std::hex << value;
    }
}

// MARK: Ordering by length, repeating

TEST(StringOperations, longerStringsOrderFirst) {
    const struct {
        const char* name;
        NSString text;
        NSString other;
        NSComparisonResult order;
    } rows[] = {
        {"longer", "abc", "ab", NSOrderedAscending},
        {"shorter", "ab", "abc", NSOrderedDescending},
        {"equal", "ab", "xy", NSOrderedSame},
        {"the same", "ab", "ab", NSOrderedSame},
        {"both empty", "", "", NSOrderedSame},
        {"against empty", "a", "", NSOrderedAscending},
        {"empty", "", "a", NSOrderedDescending},
        {"against nil", "a", nullptr, NSOrderedAscending},
        {"empty against nil", "", nullptr, NSOrderedSame},
        {"units, not characters", "\U0001F600", "ab", NSOrderedSame},
        {"units, not characters, longer", "\U0001F600", "a", NSOrderedAscending},
        {"units, not bytes", "\u20ac", "ab", NSOrderedDescending},
        {"units, not bytes, equal", "\u20ac", "a", NSOrderedSame},
        {"decomposed", "e\u0301", "\u00e9", NSOrderedAscending},
        {"U+0000 counts", "\0\0"sv, "a", NSOrderedAscending},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.compareLength(row.other), row.order) << row.name;
    }
    static_assert(NSOrderedAscending == -1 && NSOrderedSame == 0 && NSOrderedDescending == 1);
}

TEST(StringOperations, theLengthOfAPlainTextIsThatOfItsUnits) {
    EXPECT_EQ(NSString("ab").compareLength("\u20ac"), NSOrderedAscending);
    EXPECT_EQ(NSString("ab").compareLength("\U0001F600"), NSOrderedSame);
    EXPECT_EQ(NSString("ab").compareLength(u"\U0001F600"), NSOrderedSame);
    EXPECT_EQ(NSString("ab").compareLength("\u00e9\u00e9\u00e9"), NSOrderedDescending);
}

TEST(StringOperations, aSortByLengthPutsLongerStringsFirst) {
    const NSArray sorted = NSArray{"a", "ccc", "", "bb", "dddd", "x"}.sortedArrayUsingComparator(
        [](const NSObject& left, const NSObject& right) {
            return NSString(left).compareLength(NSString(right));
        });
    EXPECT_EQ(textsOf(sorted), (Texts{u"dddd", u"ccc", u"bb", u"a", u"x", u""}));
}

TEST(StringOperations, aPieceIsRepeated) {
    const struct {
        const char* name;
        NSString piece;
        std::int64_t count;
        NSString result;
    } rows[] = {
        {"three times", "ab", 3, "ababab"},
        {"once", "ab", 1, "ab"},
        {"never", "ab", 0, ""},
        {"less than never", "ab", -1, nullptr},
        {"far less than never", "ab", std::numeric_limits<std::int64_t>::lowest(), nullptr},
        {"empty", "", 5, ""},
        {"empty, never", "", 0, ""},
        {"empty, as often as can be", "", std::numeric_limits<std::int64_t>::max(), ""},
        {"empty, less than never", "", -1, nullptr},
        {"nil", nullptr, 3, nullptr},
        {"nil, never", nullptr, 0, nullptr},
        {"nil, less than never", nullptr, -1, nullptr},
        {"one unit", "x", 5, "xxxxx"},
        {"Latin-1", "\u00e9", 2, "\u00e9\u00e9"},
        {"a pair", "\U0001F600", 2, "\U0001F600\U0001F600"},
        {"U+0000", "\0"sv, 2, "\0\0"sv},
        {"like a format", "%@", 2, "%@%@"},
    };
    for (const auto& row : rows) {
        const NSString found = NSString::stringByRepeating_count(row.piece, row.count);
        EXPECT_EQ(static_cast<bool>(found), static_cast<bool>(row.result)) << row.name;
        EXPECT_EQ(found.utf16(), row.result.utf16()) << row.name;
    }
    EXPECT_EQ(NSString::stringByRepeating_count("ab", million).utf16(), repeated(u"ab", million));
    EXPECT_EQ(NSString::stringByRepeating_count(u"\u20ac", million).length(), million);
}

TEST(StringOperations, repeatingBeyondAllMemoryRaises) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    for (const std::int64_t count : {most, most / 2, most / 2 + 1, most / 4 + 1, std::int64_t{1} << 61}) {
        EXPECT_EQ(raised([count] { NSString::stringByRepeating_count("abcd", count); }), "NSMallocException")
            << count;
        EXPECT_EQ(raised([count] { NSString::stringByRepeating_count(u"\u20ac", count); }),
                  "NSMallocException")
            << count;
    }
}

} // namespace
