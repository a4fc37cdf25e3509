// SPDX-License-Identifier: MIT
// The numeric conversions against the C library's own, which print the same but for the differences listed
// here:
//
//     a negative NaN     "nan", where the C library may print "-nan"
//     setlocale()        never shows, where the C library takes its decimal point from it
//     %#g                keeps its zeros, as the standard wants, when rounding carries into the style with an
//                        exponent: "%#.2g" of 99.999 is "1.0e+02", where GNU's library prints "1.e+02"
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "foundation/format/Format.h"
#include "foundation/objects/TextBuilder.h"
#include "tests/kit/Environment.h"

using namespace ZQFoundation;

namespace {

/// Counts its comparisons and prints the first differences only, there may be very many.
class Comparison {
public:
    ~Comparison() {
        EXPECT_EQ(differences_, 0U) << "of " << count_ << " comparisons";
        EXPECT_LE(listed_, count_ / 100);
        testing::Test::RecordProperty("comparisons", std::to_string(count_));
    }

    /// The C library's decimal comma, which ours must not have.
    void expectComma() { comma_ = true; }

    template <class Value>
    void compare(const std::string& format, Value value) {
        const int length = std::snprintf(expected_.data(), expected_.size(), format.c_str(), value);
        ASSERT_GE(length, 0);
        ASSERT_LT(static_cast<std::size_t>(length), expected_.size());
        if (comma_) {
            if (char* const comma = std::strchr(expected_.data(), ',')) {
                *comma = '.';
                ++commas_;
            }
        }
        detail::TextBuilder builder;
        const Argument argument(value);
        detail::appendFormat(builder, StringView::ascii(format.data(), format.size()),
                             ArgumentList(&argument, 1));
        ++count_;
        const auto size = static_cast<std::size_t>(length);
        if (!builder.isAscii() || builder.length() != size ||
            std::memcmp(builder.asciiData(), expected_.data(), size) != 0) {
            if (isListed(format)) {
                ++listed_;
            } else if (++differences_ <= 20) {
                ADD_FAILURE() << '"' << format << "\" of " << value << ": \""
                              << std::string(builder.asciiData(), builder.length()) << "\" instead of \""
                              << expected_.data() << '"';
            }
        }
    }

    std::size_t count() const { return count_; }
    std::size_t commas() const { return commas_; }

private:
    /// Whether the C library lost the zeros of "%#g".
    bool isListed(const std::string& format) const {
        const char letter = format.back();
        return (letter == 'g' || letter == 'G') && format.find('#') != std::string::npos &&
               std::strstr(expected_.data(), letter == 'g' ? "1.e+" : "1.E+") != nullptr;
    }

    std::vector<char> expected_ = std::vector<char>(40000);
    std::size_t count_ = 0;
    std::size_t differences_ = 0;
    std::size_t listed_ = 0;
    std::size_t commas_ = 0;
    bool comma_ = false;
};

std::vector<std::string> flagCombinations() {
    std::vector<std::string> all;
    for (unsigned mask = 0; mask < 32; ++mask) {
        std::string flags;
        for (unsigned bit = 0; bit < 5; ++bit) {
            if (mask >> bit & 1) {
                flags += "-+ 0#"[bit];
            }
        }
        all.push_back(flags);
    }
    return all;
}

/// "%" with every combination of flags, these widths and these precisions; a length and a letter are to
/// follow.
std::vector<std::string> starts(std::initializer_list<const char*> widths,
                                std::initializer_list<const char*> precisions) {
    std::vector<std::string> all;
    for (const std::string& flags : flagCombinations()) {
        for (const char* const width : widths) {
            for (const char* const precision : precisions) {
                all.push_back("%" + flags + width + precision);
            }
        }
    }
    return all;
}

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

std::vector<double> reals() {
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> all = {0.0,
                               0.5,
                               1.0,
                               1.5,
                               2.5,
                               0.05,
                               0.1,
                               0.125,
                               0.25,
                               9.5,
                               9.995,
                               99.99999999,
                               123.456,
                               999999.5,
                               1234567.0,
                               0.0001,
                               0.00009999995,
                               1e15,
                               1e16,
                               123456789012345678.0,
                               9007199254740993.0,
                               1e22,
                               1e23,
                               1e100,
                               3.3e-100,
                               DBL_MAX,
                               DBL_MIN,
                               DBL_TRUE_MIN,
                               DBL_MIN / 3,
                               infinity};
    const std::size_t positive = all.size();
    for (std::size_t i = 0; i < positive; ++i) {
        all.push_back(-all[i]);
    }
    all.push_back(std::numeric_limits<double>::quiet_NaN());
    return all;
}

/// Numbers of every magnitude, and those next to a power of ten or halfway between two short decimals.
std::vector<double> manyReals() {
    std::vector<double> all;
    for (int exponent = DBL_MIN_EXP - DBL_MANT_DIG; exponent < DBL_MAX_EXP; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        all.insert(all.end(), {power, std::nextafter(power, 0.0), power * 1.3333333333333333});
    }
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        all.insert(all.end(),
                   {power, std::nextafter(power, 0.0), std::nextafter(power, DBL_MAX), power * 9.5});
    }
    for (int i = 0; i < 2000; ++i) {
        all.insert(all.end(), {i / 8.0, i / 1000.0, i * 1.005, i + 0.5, i * 12345.0 / 64.0});
    }
    std::mt19937_64 random(20010101); // always the same numbers
    while (all.size() < 25000) {
        double value;
        const std::uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) {
            all.push_back(value);
        }
    }
    return all;
}

} // namespace

TEST(FormatAgainstSnprintf, integersInEveryCombination) {
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

TEST(FormatAgainstSnprintf, realsInEveryCombination) {
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

TEST(FormatAgainstSnprintf, lengthLChangesNothingForReals) {
    Comparison comparison;
    for (const double value : reals()) {
        for (const char letter : {'e', 'f', 'g', 'a'}) {
            comparison.compare(std::string("%.3l") + letter, value);
        }
    }
    EXPECT_GE(comparison.count(), 200U);
}

TEST(FormatAgainstSnprintf, realsOfEveryMagnitude) {
    Comparison comparison;
    const std::vector<double> values = manyReals();
    for (const char* const precision :
         {"", ".0", ".1", ".2", ".3", ".6", ".15", ".16", ".17", ".18", ".19", ".20", ".30"}) {
        for (const char letter : {'e', 'f', 'g', 'a'}) {
            for (const double value : values) {
                comparison.compare(std::string("%") + precision + letter, value);
            }
        }
    }
    EXPECT_GE(comparison.count(), 1000000U);
}

TEST(FormatAgainstSnprintf, allDigitsOfTheLongestNumbers) {
    Comparison comparison;
    for (const char letter : {'e', 'f', 'g'}) {
        for (const char* const precision : {".308", ".767", ".1074", ".1100", ".3000"}) {
            for (const double value : reals()) {
                comparison.compare(std::string("%#") + precision + letter, value);
                comparison.compare(std::string("%") + precision + letter, value);
            }
        }
    }
}

TEST(FormatAgainstSnprintf, longDoubles) {
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

TEST(FormatAgainstSnprintf, listedDifferences) {
    const double negative = -std::numeric_limits<double>::quiet_NaN();
    detail::TextBuilder builder;
    const Argument arguments[] = {negative, negative, negative, 99.999, 999999.5};
    detail::appendFormat(builder, "%f %G %+a %#.2g %#G", ArgumentList(arguments, 5));
    EXPECT_EQ(std::string(builder.asciiData(), builder.length()), "nan NAN +nan 1.0e+02 1.00000E+06");
}

TEST(FormatAgainstSnprintf, decimalCommaOfSetlocaleDoesNotShow) {
    const ZQFoundation::kit::DecimalCommaLocale locale;
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
