// SPDX-License-Identifier: MIT
// The forms of reals, by themselves and against the C library.
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "tests/format/FormatTesting.h"
#include "tests/format/SnprintfComparison.h"
#include "tests/kit/Environment.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

TEST(FormatReal, realsAreCorrectlyRounded) {
    EXPECT_EQ(text(NSString::stringWithFormat("%.0f %.0f %.2f %g", 0.5, 1.5, 3.14159, 1e-5)),
              "0 2 3.14 1e-05");
    expectRows({
        ROW("%f", "0.100000", 0.1),
        ROW("%#.0f", "2.", 2.5),
        ROW("%e", "1.234500e+03", 1234.5),
        ROW("%g", "1e+06", 1000000.0),
        ROW("%#g", "1.00000", 1.0),
        ROW("%.20f", "0.10000000000000000555", 0.1),
        ROW("%.2f", "10.00", 9.999),
        ROW("%.1f", "0.2", 0.25),
        ROW("%lf", "1.500000", 1.5),
        ROW("%.1f", "1.5", 1.5f),
        ROW("%08.2f|%-8.2f|%+.1f|% .1f", "00001.50|1.50    |+1.5| 1.5", 1.5, 1.5, 1.5, 1.5),
        ROW("%.0f", "99999999999999991611392", 1e23),
    });
}

TEST(FormatReal, infinitiesAndNanAreNeverPaddedWithZeros) {
    const double infinity = std::numeric_limits<double>::infinity();
    expectRows({
        ROW("%f %f", "inf -inf", infinity, -infinity),
        ROW("%e %g %a", "inf inf inf", infinity, infinity, infinity),
        ROW("%F %E %G %A", "INF -INF INF INF", infinity, -infinity, infinity, infinity),
        ROW("%f %F", "nan NAN", std::nan(""), std::nan("")),
        ROW("%08f|%-8f|", "     inf|-inf    |", infinity, -infinity),
        ROW("%+f % f", "+inf  inf", infinity, infinity),
    });
}

TEST(FormatReal, hexadecimalFloatingForm) {
    expectRows({
        ROW("%a", "0x1p+0", 1.0),
        ROW("%a", "-0x1.8p+1", -3.0),
        ROW("%.0a", "0x2p+0", 1.5),
        ROW("%#.0a", "0x1.p+0", 1.0),
        ROW("%012a|%12a|%-12a|", "0x0000001p+0|      0x1p+0|0x1p+0      |", 1.0, 1.0, 1.0),
        ROW("%a", "0x1.921fb54442d18p+1", 3.141592653589793),
    });
}

TEST(FormatReal, longDoubleKeepsItsPrecision) {
    const long double third = 1.0L / 3.0L;
    char expected[128];
    std::snprintf(expected, sizeof expected, "%.25Lf %Le %Lg %La", third, third, third, third);
    EXPECT_EQ(unchecked("%.25Lf %Le %Lg %La", third, third, third, third), expected);
    // Without the L it is cut to double, as an int is without ll.
    EXPECT_EQ(unchecked("%.25f", third), unchecked("%.25f", static_cast<double>(third)));
    EXPECT_EQ(unchecked("%.3Lf", 1.5), "1.500");
}

TEST(FormatReal, groupsRealsAndUsesTheDecimalSeparator) {
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

TEST(FormatReal, realsInEveryCombination) {
    Comparison comparison;
    const std::vector<double> values = reals();
    for (const std::string& start :
         starts({"", "1", "9", "40"}, {"", ".", ".0", ".1", ".2", ".13", ".20", ".45"})) {
        for (const char letter : {'e', 'E', 'f', 'F', 'g', 'G', 'a', 'A'}) {
            for (const double value : values) {
                comparison.compare(start + letter, value);
            }
        }
    }
    EXPECT_GE(comparison.count(), 450000U);
}

TEST(FormatReal, lengthLChangesNothingForReals) {
    Comparison comparison;
    for (const double value : reals()) {
        for (const char letter : {'e', 'f', 'g', 'a'}) {
            comparison.compare(std::string("%.3l") + letter, value);
        }
    }
    EXPECT_GE(comparison.count(), 200U);
}

TEST(FormatReal, longDoubles) {
    Comparison comparison;
    std::vector<long double> values = {LDBL_MAX, LDBL_MIN, LDBL_TRUE_MIN,      LDBL_EPSILON,
                                       0.1L,     1.0L / 3, 9.9999999999999999L};
    for (const double value : reals()) {
        values.push_back(value);
    }
    std::mt19937_64 random(20010101);
    for (int exponent = LDBL_MIN_EXP - LDBL_MANT_DIG; exponent < LDBL_MAX_EXP; exponent += 211) {
        values.push_back(std::ldexp(static_cast<long double>(random() | 1U << 31), exponent - 63));
    }
    for (const char* const start : {"%", "%.0", "%.1", "%.17", "%.30", "%+#.3", "%-25.2", "%025"}) {
        for (const char letter : {'e', 'f', 'g', 'a'}) {
            for (const long double value : values) {
                comparison.compare(std::string(start) + "L" + letter, value);
            }
        }
    }
    for (const long double value : {LDBL_MAX, LDBL_MIN, LDBL_TRUE_MIN, 0.1L}) {
        comparison.compare("%.17000Lf", value);
        comparison.compare("%.11600Le", value);
    }
    EXPECT_GE(comparison.count(), 6000U);
}

TEST(FormatReal, listedDifferences) {
    const double negative = -std::numeric_limits<double>::quiet_NaN();
    detail::TextBuilder builder;
    const Argument arguments[] = {negative, negative, negative, 99.999, 999999.5};
    detail::appendFormat(builder, "%f %G %+a %#.2g %#G", ArgumentList(arguments, 5));
    EXPECT_EQ(std::string(builder.asciiData(), builder.length()), "nan NAN +nan 1.0e+02 1.00000E+06");
}

TEST(FormatReal, decimalCommaOfSetlocaleDoesNotShow) {
    const kit::DecimalCommaLocale locale;
    ASSERT_TRUE(locale.isSet());
    Comparison comparison;
    comparison.expectComma();
    for (const std::string& start : starts({"", "9"}, {"", ".0", ".2", ".13", ".30"})) {
        for (const char letter : {'e', 'f', 'g', 'a'}) {
            for (const double value : reals()) {
                comparison.compare(start + letter, value);
                comparison.compare(start + "L" + letter, static_cast<long double>(value));
            }
        }
        for (const char letter : {'d', 'u', 'x'}) {
            comparison.compare(start + letter, 1234567);
        }
    }
    EXPECT_GE(comparison.count(), 100000U);
    EXPECT_GE(comparison.commas(), 50000U) << "the C library printed no commas: the comparison shows nothing";
}

} // namespace
