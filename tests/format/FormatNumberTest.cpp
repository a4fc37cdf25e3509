// SPDX-License-Identifier: MIT
// Widths, signs, precisions, groups and limits of numbers.
#include "foundation/format/FormatNumber.h"

#include <climits>
#include <cstdint>
#include <string>

#include "tests/format/FormatTesting.h"
#include "tests/format/SnprintfComparison.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

const long long integers[] = {0,        1,         -1,        7,         8,
                              9,        10,        -10,       127,       128,
                              -128,     255,       256,       32767,     32768,
                              65535,    99999,     100000,    INT_MAX,   INT_MIN,
                              UINT_MAX, 1LL << 32, LLONG_MAX, LLONG_MIN, 1234567890123456789};

void compareInteger(Comparison& comparison, const std::string& start, char letter, long long value) {
    comparison.compare(start + letter, static_cast<int>(value));
    comparison.compare(start + "hh" + letter, static_cast<int>(value));
    comparison.compare(start + "h" + letter, static_cast<int>(value));
    comparison.compare(start + "l" + letter, static_cast<long>(value));
    comparison.compare(start + "ll" + letter, value);
    comparison.compare(start + "q" + letter, value);
    comparison.compare(start + "z" + letter, static_cast<std::size_t>(value));
    comparison.compare(start + "t" + letter, static_cast<std::ptrdiff_t>(value));
    comparison.compare(start + "j" + letter, static_cast<std::intmax_t>(value));
}

TEST(FormatNumber, widthAndSignOfIntegers) {
    EXPECT_EQ(text(NSString::stringWithFormat("%5d|%-5d|%05d|%+d", 3, 3, 3, 3)), "    3|3    |00003|+3");
    expectRows({
        ROW("%i", "-7", -7),
        ROW("%+ d", "+7", 7),
        ROW("%-05d|", "7    |", 7),
        ROW("%+05d", "+0007", 7),
        ROW("%u", "4294967295", -1),
        ROW("%+u", "5", 5),
        ROW("%lu", "18446744073709551615", -1),
    });
}

TEST(FormatNumber, lengthModifiersCutTheArgumentOfAFormatKnownOnlyAtRunTime) {
    EXPECT_EQ(unchecked("%hhd %hd %d %ld", 300, 70000, 2147483648, 2147483648),
              "44 4464 -2147483648 2147483648");
    expectRows({
        ROW("%hhd", "-1", 255),
        ROW("%hd", "-32768", 32768),
        ROW("%hhx", "ff", -1),
        ROW("%o", "37777777777", -1),
        ROW("%d", "705032704", 5000000000),
        ROW("%lld", "5000000000", 5000000000),
        ROW("%qd", "5000000000", 5000000000),
        ROW("%zd", "5000000000", 5000000000),
        ROW("%td", "5000000000", 5000000000),
        ROW("%jd", "5000000000", 5000000000),
        ROW("%zu", "18446744073709551615", ULLONG_MAX),
        // A narrow argument is widened by its own sign.
        ROW("%lld", "-1", static_cast<signed char>(-1)),
        ROW("%lld", "255", static_cast<unsigned char>(255)),
        ROW("%d", "-1", UINT_MAX),
        ROW("%ld", "4294967295", UINT_MAX),
    });
}

TEST(FormatNumber, precisionOfIntegersIsAMinimumOfDigitsAndCancelsZero) {
    expectRows({
        ROW("%08.3d", "     005", 5),
        ROW("%.0d", "", 0),
        ROW("%5.0d|", "     |", 0),
        ROW("%+.0d", "+", 0),
        ROW("%#.4x", "0x00ff", 255),
    });
}

TEST(FormatNumber, alternateFormOfOctalAndHexadecimal) {
    EXPECT_EQ(text(NSString::stringWithFormat("%#x %#o %X", 255, 8, 255)), "0xff 010 FF");
    expectRows({
        ROW("%#x", "0", 0),
        ROW("%#o", "0", 0),
        ROW("%#.3o", "010", 8),
        ROW("%#06x", "0x00ff", 255),
    });
}

TEST(FormatNumber, widthAndPrecisionHaveALimit) {
    const std::size_t limit = detail::maxFormatField;
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

// With a locale

TEST(FormatNumber, groupsDecimalIntegers) {
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

TEST(FormatNumber, groupsMayDifferInSize) {
    const detail::FormatLocale indian{".", ",", 3, 2};
    EXPECT_EQ(withLocale(indian, "%d %d %d", 123456789, 1234, 12345), "12,34,56,789 1,234 12,345");
    const detail::FormatLocale quads{".", " ", 4, 0};
    EXPECT_EQ(withLocale(quads, "%d", 123456789), "1 2345 6789");
}

TEST(FormatNumber, separatorsMayBeAnyText) {
    const detail::FormatLocale french{",", "\u202F", 3, 0};
    EXPECT_EQ(withLocale(french, "%d|%.1f|%7d|", 1234567, 1234.5, 1234),
              "1\u202F234\u202F567|1\u202F234,5|  1\u202F234|");
    const detail::FormatLocale arabic{u"\u066B", u"\u066C", 3, 0};
    EXPECT_EQ(withLocale(arabic, "%.1f|%8.1f|", 1234.5, 1234.5), "1\u066C234\u066B5| 1\u066C234\u066B5|");
    const detail::FormatLocale wordy{"<point>", "<group>", 3, 0};
    EXPECT_EQ(withLocale(wordy, "%20.1f|", 1234.5), " 1<group>234<point>5|");
}

TEST(FormatNumber, missingSeparatorsMeanNone) {
    const detail::FormatLocale decimalOnly{",", nullptr, 0, 0};
    EXPECT_EQ(withLocale(decimalOnly, "%.1f %d", 1234.5, 1234567), "1234,5 1234567");
    const detail::FormatLocale nothing{nullptr, nullptr, 3, 0};
    EXPECT_EQ(withLocale(nothing, "%.1f %d", 1234.5, 1234567), "1234.5 1234567");
}

TEST(FormatNumber, zerosUpToTheWidthAreNotGrouped) {
    const detail::FormatLocale american{".", ",", 3, 0};
    EXPECT_EQ(withLocale(american, "%09d|%010.1f", -1234, 1234.5), "-0001,234|0001,234.5");
}

TEST(FormatNumber, integersInEveryCombination) {
    Comparison comparison;
    for (const std::string& start : starts({"", "1", "7", "30"}, {"", ".", ".0", ".1", ".5", ".25"})) {
        for (const char letter : {'d', 'i', 'u', 'o', 'x', 'X'}) {
            for (const long long value : integers) {
                compareInteger(comparison, start, letter, value);
            }
        }
    }
    EXPECT_GE(comparison.count(), 1000000U);
}

} // namespace
