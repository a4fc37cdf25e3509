// SPDX-License-Identifier: MIT
// How formats are read: positions, stars, what is cut off or unknown.
#include "foundation/format/Format.h"

#include <cerrno>
#include <climits>
#include <limits>
#include <string>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "tests/format/FormatTesting.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

struct Money {
    long cents;
};
enum class Coin : short { penny = 1, dime = 10 };
struct Missing {};

int timesAsked = 0;

} // namespace

template <>
struct ZQFoundation::ObjectConversion<Money> {
    static NSDictionary object(const Money& money) {
        ++timesAsked;
        return {{"cents", money.cents}};
    }
    static Money fromObject(const NSObject& object) {
        return {object.as<NSDictionary>().objectForKey("cents").as<NSNumber>().longLongValue()};
    }
};

template <>
struct ZQFoundation::ObjectConversion<Coin> {
    static NSString object(const Coin& coin) { return coin == Coin::penny ? "penny" : "dime"; }
};

template <>
struct ZQFoundation::ObjectConversion<Missing> {
    static NSString object(const Missing&) { return nullptr; }
};

namespace {

TEST(Format, positionsRepeatAndComeInAnyOrder) {
    EXPECT_EQ(text(NSString::stringWithFormat("%2$@ %1$d %2$@", 5, "x")), "x 5 x");
    EXPECT_EQ(text(NSString::stringWithFormat("%2$*1$d|%3$.*1$f", 4, 7, 0.5)), "   7|0.5000");
    EXPECT_EQ(text(NSString::stringWithFormat("%1$05d", 7)), "00007");
    EXPECT_EQ(unchecked("%12$d", 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11), "11");
}

TEST(Format, positionsWithoutDefinedResultReadNoMemoryThatIsNotThere) {
    expectRows({
        ROW("%3$d", "0", 1),
        ROW("%2147483647$d %99999999999$@", "0 (null)", 1),
        ROW("%2$d %d %d", "2 1 2", 1, 2),
        ROW("%1$*9$d|", "5|", 5),
    });
}

TEST(Format, starTakesWidthAndPrecisionFromTheArguments) {
    EXPECT_EQ(text(NSString::stringWithFormat("%*d|%*d|", 5, 3, -5, 3)), "    3|3    |");
    expectRows({
        ROW("%.*f", "3.14", 2, 3.14159),
        ROW("%.*f", "3.141590", -1, 3.14159),
        ROW("%.*d", "5", -1, 5),
        ROW("%0*d", "00005", 5, 5),
        ROW("%-*d|", "5    |", -5, 5),
        ROW("%*.*f|", "   3.14|", 7, 2, 3.14159),
        ROW("%.*s", "hel", 3, "hello"),
        ROW("%.*s", "hello", -3, "hello"),
        ROW("%*d", "5", 0L, 5),
    });
}

TEST(Format, typesWithAConversionAreArguments) {
    const Money money{5};
    EXPECT_EQ(text(NSString::stringWithFormat("%@|%@|%d|%hd|%@", money, Coin::dime, Coin::dime, Coin::penny,
                                              Missing())),
              "{\n    cents = 5;\n}|dime|10|1|(null)");
    EXPECT_EQ(unchecked("%s|%S|%5s|%d|%f|%@", Coin::dime, Coin::dime, Missing(), money, money, Coin::penny),
              "dime|dime|(null)|0|0.000000|penny");
}

TEST(Format, aConversionIsAskedOnlyWhenItsArgumentIsUsed) {
    timesAsked = 0;
    const Money money{5};
    EXPECT_EQ(unchecked("%d", 1, money), "1");
    EXPECT_EQ(timesAsked, 0);
    EXPECT_EQ(unchecked("%1$@%1$@", money).size(), 2 * unchecked("%@", money).size());
    EXPECT_EQ(timesAsked, 3);
}

TEST(Format, percentSignAndN) {
    EXPECT_EQ(text(NSString::stringWithFormat("100%%|%d%%", 5)), "100%|5%");
    int stored = 77;
    EXPECT_EQ(unchecked("a%nb%d", &stored, 5), "ab5");
    EXPECT_EQ(stored, 77);
    EXPECT_EQ(unchecked("%n%hhn%lln%@", &stored, &stored, &stored, "x"), "x");
    EXPECT_EQ(stored, 77);
}

TEST(Format, conversionsCutOffByTheEndYieldNothing) {
    for (const char* const format :
         {"%", "%l", "%-", "%5", "%5.", "%.3", "%*", "%1$", "%hh", "%ll", "%#0+ -", "%1$*"}) {
        EXPECT_EQ(unchecked(format), "") << format;
    }
    expectRows({
        ROW("100%", "100"),
        ROW("a%", "a"),
        ROW("%d%", "5", 5),
        ROW("%%%", "%"),
    });
}

TEST(Format, unknownConversionsYieldTheirLetterAndTakeNoArgument) {
    expectRows({
        ROW("%y", "y"),
        ROW("x%yz", "xyz"),
        ROW("%!", "!"),
        ROW("%k%d", "k5", 5),
        ROW("%\u00e9%d", "\u00e95", 5),
        ROW("%D%d", "D5", 5),
        ROW("%'d%d", "'d5", 5),
    });
    EXPECT_EQ(unchecked(u"%\u00e9%\U0001F600%d", 5), "\u00e9\U0001F6005");
}

TEST(Format, theFormatMayContainAnyUnits) {
    EXPECT_EQ(unchecked("\u00e9%d\u20ac%@\U0001F600", 5, "x"), "\u00e95\u20acx\U0001F600");
    EXPECT_EQ(unchecked(u"\u00e9%d\u20ac%@\U0001F600", 5, "x"), "\u00e95\u20acx\U0001F600");
    EXPECT_EQ(unchecked(StringView("a\0%d", 4), 5), std::string("a\0005", 3));
    EXPECT_EQ(unchecked("\xff%d\xc3", 5), "\uFFFD5\uFFFD");
    EXPECT_EQ(NSString::stringWithFormat(u"\xD83D%d", 1).characterAtIndex(0), 0xD83D);
    EXPECT_EQ(text(NSString::stringWithFormat(NSString("%d items"), 3)), "3 items");
    EXPECT_EQ(text(NSString::stringWithFormat("")), "");
    // A fullwidth percent sign is not a conversion, and a fullwidth digit is not a width.
    EXPECT_EQ(unchecked(u"\uFF05d %\uFF15", 1), "\uFF05d \uFF15");
}

TEST(Format, numbersFollowTextThatIsNotAscii) {
    EXPECT_EQ(unchecked("\u20ac%5d|%-5d|%05.1f|%x|%5s|%c|%p|%e", 1, 2, 3.25, 255, "s", 'c', nullptr, 1.0),
              "\u20ac    1|2    |003.2|ff|    s|c|0x0|1.000000e+00");
}

TEST(Format, longTextsAndManyArguments) {
    const std::string piece(1000, 'p');
    EXPECT_EQ(text(NSString::stringWithFormat("%@%@%@\u20ac%@", piece, piece, piece, piece)),
              piece + piece + piece + "\u20ac" + piece);
    const std::string longFormat = piece + "%d" + piece + "%d";
    EXPECT_EQ(unchecked(longFormat, 1, 2), piece + "1" + piece + "2");
}

TEST(Format, leavesErrnoAlone) {
    errno = 4711;
    unchecked("%d %f %e %g %s %@ %a %.5000Lf", INT_MAX, 1e300, 1e-320, 5e-324, "\xff", "x", 1.0,
              std::numeric_limits<long double>::min());
    EXPECT_EQ(errno, 4711);
}

TEST(Format, leavesOtherConversionsAlone) {
    const detail::FormatLocale german{",", ".", 3, 0};
    EXPECT_EQ(withLocale(german, "%x %o %X %c %s %@ %p", 0x12345, 01234567, 0xABCDE, 'c', "1234.5", "1234.5",
                         reinterpret_cast<void*>(0x12345)),
              "12345 1234567 ABCDE c 1234.5 1234.5 0x12345");
}

} // namespace
