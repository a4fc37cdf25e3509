// SPDX-License-Identifier: MIT
// Texts, characters and descriptions in formats.
#include "foundation/format/FormatText.h"

#include <string>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "tests/format/FormatTesting.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

TEST(FormatText, cStringsAreCutByBytesAndPaddedWithBlanks) {
    EXPECT_EQ(text(NSString::stringWithFormat("%.3s|%10s|%-10s|", "hello", "hi", "hi")),
              "hel|        hi|hi        |");
    expectRows({
        ROW("%010s", "        hi", "hi"),
        ROW("%s", "", ""),
        ROW("%.0s|", "|", "hello"),
        ROW("%.s|", "|", "hello"),
        ROW("%s", "(null)", nullText),
        ROW("%10s|", "(null)|", nullText),
        ROW("%-10s|", "(null)|", nullText),
        ROW("%s", "(null)", nullptr),
    });
}

TEST(FormatText, cStringsAreUtf8) {
    expectRows({
        ROW("%s", "caf\u00e9", "caf\u00e9"),
        ROW("%6s|", " caf\u00e9|", "caf\u00e9"), // counts as 5 bytes
        ROW("%.4s|", "caf\uFFFD|", "caf\u00e9"), // half a character
        ROW("%.5s|", "caf\u00e9|", "caf\u00e9"),
        ROW("%.2s|", "\uFFFD|", "\u20ac"), // two bytes of three are one piece
        ROW("%s|", "\uFFFD\uFFFDx|", "\xff\xfex"),
    });
}

TEST(FormatText, precisionKeepsABufferWithoutNulFromBeingReadTooFar) {
    const char bytes[] = {'a', 'b', 'c', 'd'};
    const char16_t units[] = {u'a', u'b', u'c', u'd'};
    EXPECT_EQ(text(NSString::stringWithFormat("%.4s|%.3s|%.*s", bytes, bytes, 2, bytes)), "abcd|abc|ab");
    EXPECT_EQ(text(NSString::stringWithFormat("%.4S|%.3S", units, units)), "abcd|abc");
}

TEST(FormatText, sAndCapitalSTakeAnyWholeText) {
    const std::string withNul("a\0b", 3);
    EXPECT_EQ(text(NSString::stringWithFormat("%s", withNul)), withNul);
    EXPECT_EQ(text(NSString::stringWithFormat("%s %s", std::string("abc"), std::string_view("def"))),
              "abc def");
    EXPECT_EQ(text(NSString::stringWithFormat("%S", std::u16string(u"\u00e9t\u00e9"))), "\u00e9t\u00e9");
    const NSString cafe = "caf\u00e9!";
    expectRows({
        ROW("%s|%S", "caf\u00e9!|caf\u00e9!", cafe, cafe),
        ROW("%7s|%7S", " caf\u00e9!|  caf\u00e9!", cafe, cafe),
        ROW("%-7s|%-7S|", "caf\u00e9! |caf\u00e9!  |", cafe, cafe),
        ROW("%.5s|%.4S", "caf\u00e9|caf\u00e9", cafe, cafe),
        ROW("%.4s|", "caf\uFFFD|", cafe),
        ROW("%6.4s|", "  caf\uFFFD|", cafe),
        ROW("%.3s|%.3S|", "caf|caf|", cafe, cafe),
        ROW("%.2s|%.5s|", "\uFFFD|\U0001F600\uFFFD|", u"\U0001F600", u"\U0001F600\u00e9"),
        ROW("%s|%S", "(null)|(null)", NSString(), NSString()),
        ROW("%.2S|%5S|", "\u00e9t|  \u00e9t\u00e9|", "\u00e9t\u00e9", "\u00e9t\u00e9"),
    });
}

TEST(FormatText, emptyTextsWithoutAnAddress) {
    const std::string_view empty;
    const std::u16string_view emptyUnits;
    EXPECT_EQ(
        text(NSString::stringWithFormat("%@|%s|%2s|%@|%S|", empty, empty, empty, emptyUnits, emptyUnits)),
        "||  |||");
    EXPECT_EQ(unchecked(StringView(empty)), "");
    const detail::FormatLocale locale{empty, empty, 3, 0};
    EXPECT_EQ(withLocale(locale, "%.1f %d", 0.5, 1000), "05 1000");
}

TEST(FormatText, capitalSCountsUnits) {
    expectRows({
        ROW("%S", "\u00e9t\u00e9", u"\u00e9t\u00e9"),
        ROW("%5S|", "  \u00e9t\u00e9|", u"\u00e9t\u00e9"),
        ROW("%-5S|", "\u00e9t\u00e9  |", u"\u00e9t\u00e9"),
        ROW("%05S|", "  \u00e9t\u00e9|", u"\u00e9t\u00e9"),
        ROW("%.2S|", "\u00e9t|", u"\u00e9t\u00e9"),
        ROW("%9S|", "(null)|", static_cast<const char16_t*>(nullptr)),
    });
}

TEST(FormatText, charactersAreTheLow8BitsAndUnitsThe16) {
    expectRows({
        ROW("%c", "A", 65),
        ROW("%c", "A", 'A'),
        ROW("%c", "A", 0x141),
        ROW("%3c|%-3c|", "  x|x  |", 'x', 'x'),
        ROW("%03c|", "  x|", 'x'),
        ROW("%C", "\u00e9", 0xe9),
        ROW("%C", "\u00e9", u'\u00e9'),
        ROW("%5C|", "\u00e9|", 0xe9),
        ROW("%C", "A", 0x10041),
    });
    EXPECT_EQ(text(NSString::stringWithFormat("%C%C", 0xD83D, 0xDE00)), "\U0001F600");
    EXPECT_EQ(NSString::stringWithFormat("%C", 0xD83D).characterAtIndex(0), 0xD83D);
    EXPECT_EQ(unchecked("%c", 0), std::string(1, '\0'));
}

TEST(FormatText, precisionOfATextHasNoLimit) {
    const std::string longText(3 * detail::maxFormatField, 'x');
    EXPECT_EQ(unchecked("%.2147483647s", longText.c_str()).size(), longText.size());
    EXPECT_EQ(unchecked("%.*s", 2 * detail::maxFormatField, longText.c_str()).size(),
              2U * detail::maxFormatField);
}

TEST(FormatText, atInsertsDescriptions) {
    const NSString name = "caf\u00e9";
    const Described parcel("parcel");
    const Described nameless{NSString()};
    const Described* const noParcel = nullptr;
    expectRows({
        ROW("%@", "caf\u00e9", name),
        ROW("%@", "(null)", NSString()),
        ROW("%@", "(null)", NSObject()),
        ROW("%@", "(null)", nullptr),
        ROW("%@", "(null)", nullText),
        ROW("%@", "", ""),
        ROW("%@ %@ %@ %@", "a b c d", "a", std::string("b"), std::string_view("c"), u"d"),
        ROW("%@ %@ %@", "5 1 0", NSNumber(5), NSNumber(true), NSNumber(false)),
        ROW("%@", "18446744073709551615", NSNumber(UINT64_MAX)),
        ROW("%@ %@ %@", "0.1 1 1e+16", NSNumber(0.1), NSNumber(1.0), NSNumber(1e16)),
        ROW("%@", "1.1", NSNumber(1.1f)),
        ROW("%@", "(\n    a\n)", NSArray{"a"}),
        ROW("%@ %@", "parcel parcel", parcel, &parcel),
        ROW("%@ %@", "(null) (null)", noParcel, nameless),
        ROW("%@", "Described", classOf<Described>()),
        ROW("%@", "counted", makeObject<Described>("counted")),
    });
    EXPECT_EQ(text(NSString::stringWithFormat("%@ %@ %@", parcel, &parcel, name)), "parcel parcel caf\u00e9");
}

TEST(FormatText, atIgnoresFlagsWidthAndPrecision) {
    EXPECT_EQ(text(NSString::stringWithFormat("%10@|%-10@|%.2@|%010@|%+@|%*@", "abc", "abc", "abc", "abc",
                                              "abc", 9, "abc")),
              "abc|abc|abc|abc|abc|abc");
    EXPECT_EQ(unchecked("%10@|%l@", nullptr, "x"), "(null)|x");
}

TEST(FormatText, numbersGivenToAtAreLocalized) {
    const detail::FormatLocale british{".", ",", 3, 0};
    const detail::FormatLocale german{",", ".", 3, 0};
    EXPECT_EQ(withLocale(british, "%@", NSNumber(1000)), "1,000");
    EXPECT_EQ(withLocale(german, "%@ %@ %@", NSNumber(-1234567.5), NSNumber(0.1), NSNumber(1.5e20)),
              "-1.234.567,5 0,1 1,5e+20");
    EXPECT_EQ(withLocale(german, "%@ %@", NSNumber(true), NSNumber(UINT64_MAX)),
              "1 18.446.744.073.709.551.615");
    EXPECT_EQ(withLocale(german, "%@ %@", 1000, 1000.5), "1.000 1.000,5");
}

} // namespace
