// SPDX-License-Identifier: MIT
#include "foundation/format/Format.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/TextBuilder.h"

using namespace ZQFoundation;

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

/// Formats with a format that the compiler does not check, so that misfits get through.
template <class... Arguments>
std::string unchecked(StringView format, const Arguments&... arguments) {
    const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
    return NSString::stringWithFormat_arguments(format, packed.list()).utf8();
}

template <class... Arguments>
std::string withLocale(const detail::FormatLocale& locale, StringView format, const Arguments&... arguments) {
    const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
    return detail::formatted(format, packed.list(), &locale).utf8();
}

std::string text(const NSString& string) { return string.utf8(); }

const char* const nullText = nullptr;

class Parcel : public NSObjectProtocol {
public:
    explicit Parcel(NSString text) : text_(std::move(text)) {}
    NSString description() const override { return text_; }

private:
    NSString text_;
};

class Stamped {
public:
    virtual ~Stamped() = default;
    int stamp = 0;
};

class StampedParcel : public Stamped, public NSObjectProtocol {};

enum class Colour : unsigned char { red = 7 };
enum Old { oldest = -3 };

std::string hexadecimal(const void* pointer) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(pointer)));
    return buffer;
}

struct Row {
    const char* format;
    std::string result;
    const char* expected;
};

void expectRows(std::initializer_list<Row> rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(row.result, row.expected) << row.format;
    }
}

#define ROW(format, expected, ...)                                                                           \
    Row { format, unchecked(format __VA_OPT__(, ) __VA_ARGS__), expected }

} // namespace

TEST(Format, widthAndSignOfIntegers) {
    EXPECT_EQ(text(NSString::stringWithFormat("%5d|%-5d|%05d|%+d", 3, 3, 3, 3)), "    3|3    |00003|+3");
    expectRows({
        ROW("%d", "0", 0),
        ROW("%i", "-7", -7),
        ROW("% d", " 7", 7),
        ROW("% d", "-7", -7),
        ROW("%+ d", "+7", 7),
        ROW("% +d", "+7", 7),
        ROW("%-05d|", "7    |", 7),
        ROW("%0-5d|", "7    |", 7),
        ROW("%05d", "-0007", -7),
        ROW("%+05d", "+0007", 7),
        ROW("%2d", "12345", 12345),
        ROW("%u", "4294967295", -1),
        ROW("%+u", "5", 5),
        ROW("% u", "5", 5),
        ROW("%lu", "18446744073709551615", -1),
        ROW("%ld", "-9223372036854775808", INT64_MIN),
    });
}

TEST(Format, lengthModifiersCutTheArgumentOfAFormatKnownOnlyAtRunTime) {
    EXPECT_EQ(unchecked("%hhd %hd %d %ld", 300, 70000, 2147483648, 2147483648),
              "44 4464 -2147483648 2147483648");
    expectRows({
        ROW("%hhd", "-1", 255),
        ROW("%hhu", "255", -1),
        ROW("%hd", "-32768", 32768),
        ROW("%hu", "65535", -1),
        ROW("%hhx", "ff", -1),
        ROW("%hx", "ffff", -1),
        ROW("%x", "ffffffff", -1),
        ROW("%o", "37777777777", -1),
        ROW("%d", "705032704", 5000000000),
        ROW("%lld", "5000000000", 5000000000),
        ROW("%qd", "5000000000", 5000000000),
        ROW("%zd", "5000000000", 5000000000),
        ROW("%td", "5000000000", 5000000000),
        ROW("%jd", "5000000000", 5000000000),
        ROW("%lx", "ffffffffffffffff", -1),
        ROW("%zu", "18446744073709551615", ULLONG_MAX),
        // A narrow argument is widened by its own sign.
        ROW("%lld", "-1", static_cast<signed char>(-1)),
        ROW("%lld", "255", static_cast<unsigned char>(255)),
        ROW("%d", "-1", UINT_MAX),
        ROW("%ld", "4294967295", UINT_MAX),
    });
}

TEST(Format, precisionOfIntegersIsAMinimumOfDigitsAndCancelsZero) {
    expectRows({
        ROW("%08.3d", "     005", 5),
        ROW("%.0d", "", 0),
        ROW("%.d", "", 0),
        ROW("%5.0d|", "     |", 0),
        ROW("%+.0d", "+", 0),
        ROW("%.3d", "-005", -5),
        ROW("%.3x", "0ff", 255),
        ROW("%#.4x", "0x00ff", 255),
        ROW("%-8.3d|", "005     |", 5),
    });
}

TEST(Format, alternateFormOfOctalAndHexadecimal) {
    EXPECT_EQ(text(NSString::stringWithFormat("%#x %#o %X", 255, 8, 255)), "0xff 010 FF");
    expectRows({
        ROW("%#X", "0XFF", 255),
        ROW("%#x", "0", 0),
        ROW("%#o", "0", 0),
        ROW("%#.0o", "0", 0),
        ROW("%#.3o", "010", 8),
        ROW("%#06x", "0x00ff", 255),
        ROW("%#d", "5", 5),
    });
}

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

TEST(Format, cStringsAreCutByBytesAndPaddedWithBlanks) {
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

TEST(Format, cStringsAreUtf8) {
    expectRows({
        ROW("%s", "caf\u00e9", "caf\u00e9"),
        ROW("%6s|", " caf\u00e9|", "caf\u00e9"), // counts as 5 bytes
        ROW("%.4s|", "caf\uFFFD|", "caf\u00e9"), // half a character
        ROW("%.5s|", "caf\u00e9|", "caf\u00e9"),
        ROW("%.2s|", "\uFFFD|", "\u20ac"), // two bytes of three are one piece
        ROW("%s|", "\uFFFD\uFFFDx|", "\xff\xfex"),
    });
}

TEST(Format, precisionKeepsABufferWithoutNulFromBeingReadTooFar) {
    const char bytes[] = {'a', 'b', 'c', 'd'};
    const char16_t units[] = {u'a', u'b', u'c', u'd'};
    EXPECT_EQ(text(NSString::stringWithFormat("%.4s|%.3s|%.*s", bytes, bytes, 2, bytes)), "abcd|abc|ab");
    EXPECT_EQ(text(NSString::stringWithFormat("%.4S|%.3S", units, units)), "abcd|abc");
}

TEST(Format, sAndCapitalSTakeAnyWholeText) {
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

TEST(Format, emptyTextsWithoutAnAddress) {
    const std::string_view empty;
    const std::u16string_view emptyUnits;
    EXPECT_EQ(
        text(NSString::stringWithFormat("%@|%s|%2s|%@|%S|", empty, empty, empty, emptyUnits, emptyUnits)),
        "||  |||");
    EXPECT_EQ(unchecked(StringView(empty)), "");
    const detail::FormatLocale locale{empty, empty, 3, 0};
    EXPECT_EQ(withLocale(locale, "%.1f %d", 0.5, 1000), "05 1000");
}

TEST(Format, capitalSCountsUnits) {
    expectRows({
        ROW("%S", "\u00e9t\u00e9", u"\u00e9t\u00e9"),
        ROW("%5S|", "  \u00e9t\u00e9|", u"\u00e9t\u00e9"),
        ROW("%-5S|", "\u00e9t\u00e9  |", u"\u00e9t\u00e9"),
        ROW("%05S|", "  \u00e9t\u00e9|", u"\u00e9t\u00e9"),
        ROW("%.2S|", "\u00e9t|", u"\u00e9t\u00e9"),
        ROW("%9S|", "(null)|", static_cast<const char16_t*>(nullptr)),
    });
}

TEST(Format, charactersAreTheLow8BitsAndUnitsThe16) {
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
    EXPECT_EQ(text(NSString::stringWithFormat("%C%C", u'\xD83D', u'\xDE00')), "\U0001F600");
    EXPECT_EQ(NSString::stringWithFormat("%C", u'\xD83D').characterAtIndex(0), 0xD83D);
    EXPECT_EQ(unchecked("%c", 0), std::string(1, '\0'));
}

TEST(Format, realsAreCorrectlyRounded) {
    EXPECT_EQ(text(NSString::stringWithFormat("%.0f %.0f %.2f %g", 0.5, 1.5, 3.14159, 1e-5)),
              "0 2 3.14 1e-05");
    expectRows({
        ROW("%f", "0.100000", 0.1),
        ROW("%f", "-0.000000", -0.0),
        ROW("%.f", "2", 2.5),
        ROW("%#.0f", "2.", 2.5),
        ROW("%e", "1.234500e+03", 1234.5),
        ROW("%E", "1.234500E+03", 1234.5),
        ROW("%.0e", "2e+00", 1.5),
        ROW("%e", "0.000000e+00", 0.0),
        ROW("%g", "100000", 100000.0),
        ROW("%g", "1e+06", 1000000.0),
        ROW("%G", "1E+06", 1000000.0),
        ROW("%#g", "1.00000", 1.0),
        ROW("%.3g", "0.000123", 0.000123),
        ROW("%g", "0", 0.0),
        ROW("%.20f", "0.10000000000000000555", 0.1),
        ROW("%f", "9.999999", 9.9999994),
        ROW("%.2f", "10.00", 9.999),
        ROW("%.3e", "1.000e+01", 9.9996),
        ROW("%.1f", "0.2", 0.25),
        ROW("%.1f", "0.1", 0.05000000000000001),
        ROW("%lf", "1.500000", 1.5),
        ROW("%.1f", "1.5", 1.5f),
        ROW("%F", "1.500000", 1.5),
        ROW("%08.2f|%-8.2f|%+.1f|% .1f", "00001.50|1.50    |+1.5| 1.5", 1.5, 1.5, 1.5, 1.5),
        ROW("%08.2f", "-0001.50", -1.5),
        ROW("%.0f", "99999999999999991611392", 1e23),
        ROW("%.0f", "1180591620717411303424", 1180591620717411303424.0),
    });
}

TEST(Format, infinitiesAndNanAreNeverPaddedWithZeros) {
    const double infinity = std::numeric_limits<double>::infinity();
    expectRows({
        ROW("%f %f", "inf -inf", infinity, -infinity),
        ROW("%e %g %a", "inf inf inf", infinity, infinity, infinity),
        ROW("%F %E %G %A", "INF -INF INF INF", infinity, -infinity, infinity, infinity),
        ROW("%f %F", "nan NAN", std::nan(""), std::nan("")),
        ROW("%f", "nan", -std::nan("")),
        ROW("%08f|%-8f|", "     inf|-inf    |", infinity, -infinity),
        ROW("%08f|", "     nan|", std::nan("")),
        ROW("%+f % f", "+inf  inf", infinity, infinity),
    });
}

TEST(Format, hexadecimalFloatingForm) {
    expectRows({
        ROW("%a", "0x1p+0", 1.0),
        ROW("%A", "0X1P+0", 1.0),
        ROW("%a", "0x0p+0", 0.0),
        ROW("%a", "-0x1.8p+1", -3.0),
        ROW("%.1a", "0x1.8p+1", 3.0),
        ROW("%.0a", "0x2p+0", 1.5),
        ROW("%.3a", "0x1.000p+0", 1.0),
        ROW("%#.0a", "0x1.p+0", 1.0),
        ROW("%012a|%12a|%-12a|", "0x0000001p+0|      0x1p+0|0x1p+0      |", 1.0, 1.0, 1.0),
        ROW("%a", "0x1.921fb54442d18p+1", 3.141592653589793),
    });
}

TEST(Format, longDoubleKeepsItsPrecision) {
    const long double third = 1.0L / 3.0L;
    char expected[128];
    std::snprintf(expected, sizeof expected, "%.25Lf %Le %Lg %La", third, third, third, third);
    EXPECT_EQ(unchecked("%.25Lf %Le %Lg %La", third, third, third, third), expected);
    // Without the L it is cut to double, as an int is without ll.
    EXPECT_EQ(unchecked("%.25f", third), unchecked("%.25f", static_cast<double>(third)));
    EXPECT_EQ(unchecked("%.3Lf", 1.5), "1.500");
}

TEST(Format, pointers) {
    const int value = 0;
    const Parcel parcel("x");
    const StampedParcel stamped;
    expectRows({
        ROW("%p", "0x0", static_cast<void*>(nullptr)),
        ROW("%p", "0x0", nullptr),
        ROW("%8p|%-8p|%08p|", "     0x0|0x0     |     0x0|", nullptr, nullptr, nullptr),
        ROW("%p", "0xff", reinterpret_cast<const void*>(255)),
        ROW("%p", hexadecimal(&value).c_str(), &value),
        ROW("%p", hexadecimal(&parcel).c_str(), &parcel),
        // The address as the caller knows it, not that of the part inside.
        ROW("%p", hexadecimal(&stamped).c_str(), &stamped),
        ROW("%p", hexadecimal(nullText).c_str(), nullText),
    });
    const char* const bytes = "bytes";
    volatile int changing = 0;
    EXPECT_EQ(text(NSString::stringWithFormat("%p", bytes)), hexadecimal(bytes));
    EXPECT_EQ(text(NSString::stringWithFormat("%p", &changing)), hexadecimal(const_cast<int*>(&changing)));
    EXPECT_EQ(text(NSString::stringWithFormat("%p", &hexadecimal)),
              hexadecimal(reinterpret_cast<const void*>(&hexadecimal)));
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

TEST(Format, atInsertsDescriptions) {
    const NSString name = "caf\u00e9";
    const Parcel parcel("parcel");
    const Parcel nameless{NSString()};
    const Parcel* const noParcel = nullptr;
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
        ROW("%@", "Parcel", classOf<Parcel>()),
        ROW("%@", "counted", makeObject<Parcel>("counted")),
    });
    EXPECT_EQ(text(NSString::stringWithFormat("%@ %@ %@", parcel, &parcel, name)), "parcel parcel caf\u00e9");
}

TEST(Format, atIgnoresFlagsWidthAndPrecision) {
    EXPECT_EQ(text(NSString::stringWithFormat("%10@|%-10@|%.2@|%010@|%+@|%*@", "abc", "abc", "abc", "abc",
                                              "abc", 9, "abc")),
              "abc|abc|abc|abc|abc|abc");
    EXPECT_EQ(unchecked("%10@|%l@", nullptr, "x"), "(null)|x");
}

TEST(Format, integersOfEveryKindServe) {
    EXPECT_EQ(text(NSString::stringWithFormat("%d %d %d %u %x %c", true, Colour::red, oldest, Colour::red,
                                              static_cast<short>(16), 'c')),
              "1 7 -3 7 10 c");
    struct Bits {
        unsigned three : 3;
    };
    const Bits bits{5};
    EXPECT_EQ(text(NSString::stringWithFormat("%u", bits.three + 0)), "5");
}

TEST(Format, misfitsHaveADefinedResult) {
    const Parcel parcel("parcel");
    expectRows({
        ROW("%d", "0"),
        ROW("%d %d", "1 0", 1),
        ROW("%f %g %a", "0.000000 0 0x0p+0"),
        ROW("%@ %s %S %p", "(null) (null) (null) 0x0"),
        ROW("%*d", "0"),
        ROW("%d %d", "2 -2", 2.9, -2.9),
        ROW("%ld %ld", "9223372036854775807 -9223372036854775808", 1e300, -1e300),
        ROW("%lu %lu", "10000000000000000000 18446744073709551615", 1e19, 1e30),
        ROW("%d", "0", std::nan("")),
        ROW("%d", "1410065408", 1e10),
        ROW("%d", "3", 3.5L),
        ROW("%f %.0f", "5.000000 18446744073709551616", 5, UINT64_MAX),
        ROW("%Lf", "5.000000", 5),
        ROW("%d %f %s", "0 0.000000 (null)", "text", "text", 5),
        ROW("%d %f", "0 0.000000", NSString("12"), NSString("12")),
        ROW("%d %f %.1f", "5 5.000000 0.5", NSNumber(5), NSNumber(5), NSNumber(0.5)),
        ROW("%d %lu", "2 18446744073709551615", NSNumber(2.5), NSNumber(UINT64_MAX)),
        ROW("%s %S", "(null) (null)", 5, 5.5),
        ROW("%s %S", "(null) (null)", static_cast<const void*>(&parcel), static_cast<const void*>(&parcel)),
        ROW("%s %S %6s|", "5 5      5|", NSNumber(5), NSNumber(5), NSNumber(5)),
        ROW("%s %S", "parcel parcel", parcel, &parcel),
        ROW("%d %f", "0 0.000000", &parcel, &parcel),
        ROW("%@ %@ %@ %@", "5 18446744073709551615 0.5 0.25", 5, UINT64_MAX, 0.5, 0.25L),
        ROW("%@", "0xff", reinterpret_cast<void*>(255)),
        ROW("%20@", "0xff", reinterpret_cast<void*>(255)),
        ROW("%p %p %p", "0xff 0x0 0x0", 255, 0.5, NSNumber(5)),
        ROW("%p %p", "0x0 0x0", NSObject(), NSString()),
        ROW("%*d", "5", "x", 5),
        ROW("%*d|", "5|", 2.5, 5),
        ROW("%d", "1", 1, 2, 3),
    });
}

TEST(Format, widthAndPrecisionHaveALimit) {
    const std::size_t limit = detail::largestFormatField;
    const auto length = [](StringView format, auto... arguments) {
        return unchecked(format, arguments...).size();
    };
    EXPECT_EQ(length("%2147483647d", 3), limit);
    EXPECT_EQ(length("%99999999999999999999d", 3), limit);
    EXPECT_EQ(length("%-2147483648d", 3), limit);
    EXPECT_EQ(length("%*d", INT_MAX, 3), limit);
    EXPECT_EQ(length("%*d", INT_MIN, 3), limit);
    EXPECT_EQ(length("%*d", INT64_MIN, 3), limit);
    EXPECT_EQ(length("%*d", UINT64_MAX, 3), limit);
    EXPECT_EQ(length("%.2147483647d", 3), limit);
    EXPECT_EQ(length("%.1000000f", 0.1), limit + 2);
    EXPECT_EQ(length("%.2147483647f", 1e300), limit + 302);
    EXPECT_EQ(length("%.2147483647e", 0.1), limit + 6);
    EXPECT_EQ(length("%#.2147483647g", 0.1), limit + 2);
    EXPECT_EQ(length("%.2147483647g", 0.5), 3U);
    EXPECT_EQ(length("%.2147483647a", 1.0), limit + 7);
    EXPECT_EQ(length("%2147483647s", "x"), limit);
    EXPECT_EQ(length("%2147483647c", 'x'), limit);
    EXPECT_EQ(length("%2147483647p", nullptr), limit);
}

TEST(Format, precisionOfATextHasNoLimit) {
    const std::string longText(3 * detail::largestFormatField, 'x');
    EXPECT_EQ(unchecked("%.2147483647s", longText.c_str()).size(), longText.size());
    EXPECT_EQ(unchecked("%.*s", 2 * detail::largestFormatField, longText.c_str()).size(),
              2U * detail::largestFormatField);
}

TEST(Format, theFormatMayHoldAnyUnits) {
    EXPECT_EQ(unchecked("\u00e9%d\u20ac%@\U0001F600", 5, "x"), "\u00e95\u20acx\U0001F600");
    EXPECT_EQ(unchecked(u"\u00e9%d\u20ac%@\U0001F600", 5, "x"), "\u00e95\u20acx\U0001F600");
    EXPECT_EQ(unchecked(StringView("a\0%d", 4), 5), std::string("a\0005", 3));
    EXPECT_EQ(unchecked("\xff%d\xc3", 5), "\uFFFD5\uFFFD");
    EXPECT_EQ(NSString::stringWithFormat(u"\xD83D%d", 1).characterAtIndex(0), 0xD83D);
    EXPECT_EQ(text(NSString::stringWithFormat(NSString("%d items"), 3)), "3 items");
    EXPECT_EQ(text(NSString::stringWithFormat("")), "");
    // A fullwidth percent sign is no conversion, and a fullwidth digit no width.
    EXPECT_EQ(unchecked(u"\uFF05d %\uFF15", 1), "\uFF05d \uFF15");
}

TEST(Format, numbersGoOnBehindTextThatIsNotAscii) {
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

TEST(Format, nilFormatRaises) {
    try {
        NSString::stringWithFormat(nullptr);
        FAIL() << "nothing raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    }
    EXPECT_THROW(NSString::stringWithFormat(NSString(), 5), NSException);
    NSMutableString builder;
    EXPECT_THROW(builder.appendFormat(nullptr), NSException);
}

TEST(Format, appendsToAMutableString) {
    NSMutableString builder(StringView("a"));
    builder.appendFormat("%d%@", 5, "\u00e9");
    builder.appendFormat(NSString("%s"), "z");
    EXPECT_EQ(text(builder.string()), "a5\u00e9z");
}

TEST(Format, raisesWithAFormattedReason) {
    try {
        NSException::raise_format("Broken", "%d of %@", 3, "parts");
        FAIL() << "nothing raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(text(exception.name()), "Broken");
        EXPECT_EQ(text(exception.reason()), "3 of parts");
    }
}

TEST(Format, leavesErrnoAlone) {
    errno = 4711;
    unchecked("%d %f %e %g %s %@ %a %.5000Lf", INT_MAX, 1e300, 1e-320, 5e-324, "\xff", "x", 1.0,
              std::numeric_limits<long double>::min());
    EXPECT_EQ(errno, 4711);
}

// With a locale

TEST(FormatWithLocale, groupsDecimalIntegers) {
    const detail::FormatLocale german{",", ".", 3, 0};
    const detail::FormatLocale american{".", ",", 3, 0};
    const detail::FormatLocale plain{".", "", 0, 0};
    EXPECT_EQ(withLocale(german, "%d", 1234567), "1.234.567");
    EXPECT_EQ(withLocale(american, "%d", 1234567), "1,234,567");
    EXPECT_EQ(withLocale(plain, "%d", 1234567), "1234567");
    EXPECT_EQ(withLocale(american, "%i %u %ld", -1234567, 4294967295U, INT64_MIN),
              "-1,234,567 4,294,967,295 -9,223,372,036,854,775,808");
    EXPECT_EQ(withLocale(american, "%d %d %d %d", 0, 999, 1000, -999), "0 999 1,000 -999");
    EXPECT_EQ(withLocale(american, "%8d|%-8d|%.5d|", 1234, 1234, 12), "   1,234|1,234   |00,012|");
}

TEST(FormatWithLocale, groupsRealsAndUsesTheDecimalSeparator) {
    const detail::FormatLocale german{",", ".", 3, 0};
    EXPECT_EQ(withLocale(german, "%.2f", 1234.5), "1.234,50");
    EXPECT_EQ(withLocale(german, "%f %F", 0.5, 1234567.25), "0,500000 1.234.567,250000");
    EXPECT_EQ(withLocale(german, "%e %E", 1234.5, 0.25), "1,234500e+03 2,500000E-01");
    EXPECT_EQ(withLocale(german, "%g %g %g", 1234.5, 0.1, 1e10), "1.234,5 0,1 1e+10");
    EXPECT_EQ(withLocale(german, "%.0f %#.0f", 1e6, 1.0), "1.000.000 1,");
    EXPECT_EQ(withLocale(german, "%10.2f|%-10.2f|", 1234.5, 1234.5), "  1.234,50|1.234,50  |");
    EXPECT_EQ(withLocale(german, "%.0f", 1e24), "999.999.999.999.999.983.222.784");
    EXPECT_EQ(withLocale(german, "%f %a", std::numeric_limits<double>::infinity(), 1.5), "inf 0x1.8p+0");
}

TEST(FormatWithLocale, leavesOtherConversionsAlone) {
    const detail::FormatLocale german{",", ".", 3, 0};
    EXPECT_EQ(withLocale(german, "%x %o %X %c %s %@ %p", 0x12345, 01234567, 0xABCDE, 'c', "1234.5", "1234.5",
                         reinterpret_cast<void*>(0x12345)),
              "12345 1234567 ABCDE c 1234.5 1234.5 0x12345");
}

TEST(FormatWithLocale, numbersGivenToAtAreLocalized) {
    const detail::FormatLocale british{".", ",", 3, 0};
    const detail::FormatLocale german{",", ".", 3, 0};
    EXPECT_EQ(withLocale(british, "%@", NSNumber(1000)), "1,000");
    EXPECT_EQ(withLocale(german, "%@ %@ %@", NSNumber(-1234567.5), NSNumber(0.1), NSNumber(1.5e20)),
              "-1.234.567,5 0,1 1,5e+20");
    EXPECT_EQ(withLocale(german, "%@ %@", NSNumber(true), NSNumber(UINT64_MAX)),
              "1 18.446.744.073.709.551.615");
    EXPECT_EQ(withLocale(german, "%@ %@", 1000, 1000.5), "1.000 1.000,5");
}

TEST(FormatWithLocale, groupsMayDifferInSize) {
    const detail::FormatLocale indian{".", ",", 3, 2};
    EXPECT_EQ(withLocale(indian, "%d %d %d", 123456789, 1234, 12345), "12,34,56,789 1,234 12,345");
    const detail::FormatLocale quads{".", " ", 4, 0};
    EXPECT_EQ(withLocale(quads, "%d", 123456789), "1 2345 6789");
}

TEST(FormatWithLocale, separatorsMayBeAnyText) {
    const detail::FormatLocale french{",", "\u202F", 3, 0};
    EXPECT_EQ(withLocale(french, "%d|%.1f|%7d|", 1234567, 1234.5, 1234),
              "1\u202F234\u202F567|1\u202F234,5|  1\u202F234|");
    const detail::FormatLocale arabic{u"\u066B", u"\u066C", 3, 0};
    EXPECT_EQ(withLocale(arabic, "%.1f|%8.1f|", 1234.5, 1234.5), "1\u066C234\u066B5| 1\u066C234\u066B5|");
    const detail::FormatLocale wordy{"<point>", "<group>", 3, 0};
    EXPECT_EQ(withLocale(wordy, "%20.1f|", 1234.5), " 1<group>234<point>5|");
}

TEST(FormatWithLocale, missingSeparatorsMeanNone) {
    const detail::FormatLocale decimalOnly{",", nullptr, 0, 0};
    EXPECT_EQ(withLocale(decimalOnly, "%.1f %d", 1234.5, 1234567), "1234,5 1234567");
    const detail::FormatLocale nothing{nullptr, nullptr, 3, 0};
    EXPECT_EQ(withLocale(nothing, "%.1f %d", 1234.5, 1234567), "1234.5 1234567");
}

TEST(FormatWithLocale, zerosUpToTheWidthAreNotGrouped) {
    const detail::FormatLocale american{".", ",", 3, 0};
    EXPECT_EQ(withLocale(american, "%09d|%010.1f", -1234, 1234.5), "-0001,234|0001,234.5");
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
