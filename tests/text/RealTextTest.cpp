// SPDX-License-Identifier: MIT
// The replacement for a C++ library without conversions of real numbers writes and reads what those do.
#include "foundation/text/RealText.h"

#include <bit>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/kit/Environment.h"

using namespace ZQFoundation;

namespace {

std::string general(double value, int precision) {
    char text[64];
    return {text, detail::byCLibrary::writeGeneral(text, value, precision)};
}

std::string shortest(double value) {
    char text[64];
    return {text, detail::byCLibrary::writeShortest(text, value)};
}

double wholeDigits(const std::string& text) {
    double value = -1;
    EXPECT_TRUE(detail::byCLibrary::readWholeDigits(text.data(), text.data() + text.size(), value)) << text;
    return value;
}

TEST(RealText, byTheCLibraryReadsWholeDigitsWithAnExponent) {
    EXPECT_EQ(wholeDigits("15e-1"), 1.5);
    EXPECT_EQ(wholeDigits("0"), 0);
    EXPECT_EQ(wholeDigits("17976931348623157e292"), std::numeric_limits<double>::max());
    EXPECT_EQ(wholeDigits("5e-324"), std::numeric_limits<double>::denorm_min());
    errno = 7;
    EXPECT_EQ(wholeDigits("1e400"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(wholeDigits("1e-400"), 0);
    EXPECT_EQ(errno, 7);
    const std::string tooLong(detail::maxRealTextLength + 1, '1');
    double value = 3;
    EXPECT_FALSE(detail::byCLibrary::readWholeDigits(tooLong.data(), tooLong.data() + tooLong.size(), value));
    EXPECT_EQ(value, 3);
}

TEST(RealText, byTheCLibraryIsWrittenInThePlainerForm) {
    EXPECT_EQ(general(0.1, 16), "0.1");
    EXPECT_EQ(general(1e15, 16), "1000000000000000");
    EXPECT_EQ(general(1e16, 16), "1e+16");
    EXPECT_EQ(general(0.0001, 16), "0.0001");
    EXPECT_EQ(general(0.00001, 16), "1e-05");
    EXPECT_EQ(general(-2.5e-300, 16), "-2.5e-300");
    EXPECT_EQ(general(9.9999999, 7), "10");
    EXPECT_EQ(shortest(0.1), "0.1");
    EXPECT_EQ(shortest(1e22), "1e+22");
    EXPECT_EQ(shortest(123456), "123456");
    EXPECT_EQ(shortest(0.3), "0.3");
    EXPECT_EQ(shortest(5e-324), "5e-324");
}

TEST(RealText, byTheCLibraryIsWrittenWithoutDigitsWhereThereAreNone) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(shortest(0) + " " + shortest(-0.0) + " " + shortest(infinity) + " " + shortest(-infinity),
              "0 -0 inf -inf");
    EXPECT_EQ(general(0, 7) + " " + general(-0.0, 7) + " " + general(infinity, 7), "0 -0 inf");
    EXPECT_EQ(shortest(std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(RealText, byTheCLibraryHasAPointInALocaleWithADecimalComma) {
    const ZQFoundation::kit::DecimalCommaLocale locale;
    ASSERT_TRUE(locale.isSet());
    EXPECT_EQ(general(-1234.5, 16), "-1234.5");
    EXPECT_EQ(shortest(0.1), "0.1");
    EXPECT_EQ(shortest(1.5e300), "1.5e+300");
    EXPECT_EQ(wholeDigits("15e-1"), 1.5);
}

#ifdef __cpp_lib_to_chars

/// Bit patterns of all kinds, powers of two and of ten with their neighbors, short decimal fractions.
std::vector<double> manyNumbers() {
    std::mt19937_64 random(27);
    std::vector<double> numbers;
    for (int i = 0; i < 20000; ++i) {
        const auto pattern = std::bit_cast<double>(random());
        if (std::isfinite(pattern)) {
            numbers.push_back(pattern);
        }
        numbers.push_back(static_cast<double>(random() >> (i % 64)));
        numbers.push_back(static_cast<double>(random() % 100000) / 1000);
    }
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        numbers.insert(numbers.end(), {power, std::nextafter(power, 0.0), std::nextafter(power, 1e308)});
    }
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::pow(10.0, exponent);
        numbers.insert(numbers.end(), {power, -power, std::nextafter(power, 0.0), power * 123456789});
    }
    return numbers;
}

TEST(RealText, byTheCLibraryIsTheSameAsByTheCxxLibrary) {
    char text[64];
    for (const double number : manyNumbers()) {
        if (!std::isfinite(number)) {
            continue;
        }
        const std::string wanted(text, std::to_chars(text, text + sizeof text, number).ptr);
        ASSERT_EQ(shortest(number), wanted) << std::hexfloat << number;
        for (const int precision : {7, 16}) {
            char* const end =
                std::to_chars(text, text + sizeof text, number, std::chars_format::general, precision).ptr;
            ASSERT_EQ(general(number, precision), std::string(text, end)) << std::hexfloat << number;
        }
    }
}

TEST(RealText, byTheCLibraryReadsTheSameAsByTheCxxLibrary) {
    std::mt19937_64 random(4);
    for (int i = 0; i < 50000; ++i) {
        const std::string text = std::to_string(random() >> (i % 60)) + "e" +
                                 std::to_string(static_cast<int>(random() % 660) - 340);
        double wanted = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), wanted).ec == std::errc{}) {
            ASSERT_EQ(wholeDigits(text), wanted) << text;
        }
    }
}

#endif

} // namespace
