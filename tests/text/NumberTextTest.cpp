// SPDX-License-Identifier: MIT
// Numbers to text and text to numbers, independent of the locale.
#include "foundation/text/NumberText.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/kit/Values.h"

namespace {

using namespace ZQFoundation::detail;
using ZQFoundation::kit::infinity;

constexpr std::int64_t int64Min = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t int64Max = std::numeric_limits<std::int64_t>::max();

/// A copy that ends where its block ends, so that a memory checker sees every unit too many.
template <class Unit>
std::vector<Unit> exact(std::string_view text) {
    std::vector<Unit> units;
    for (const char byte : text) {
        units.push_back(static_cast<Unit>(byte));
    }
    return units;
}

struct ReadingRow {
    std::string_view text;
    std::int32_t int32;
    std::int64_t int64;
    double real;
};

constexpr ReadingRow readingRows[] = {
    {"", 0, 0, 0},
    {"-", 0, 0, 0},
    {"--5", 0, 0, 0},
    {"+-5", 0, 0, 0},
    {".", 0, 0, 0},
    {"-.", 0, 0, 0},
    {".e5", 0, 0, 0},
    {"\t\n\v\f\r 12", 12, 12, 12},
    {"-12", -12, -12, -12},
    {"12.9", 12, 12, 12.9},
    {"-12.9", -12, -12, -12.9},
    {"0x10", 0, 0, 0},
    {"1e3", 1, 1, 1000},
    {"1E3", 1, 1, 1000},
    {"1e-3", 1, 1, 0.001},
    {"1e", 1, 1, 1},
    {"1e+", 1, 1, 1},
    {"1e3.5", 1, 1, 1000},
    {".5", 0, 0, 0.5},
    {"-.5", 0, 0, -0.5},
    {"5.", 5, 5, 5},
    {"5.e2", 5, 5, 500},
    {"1.2.3", 1, 1, 1.2},
    {"1,234", 1, 1, 1},
    {"2147483647", 2147483647, 2147483647, 2147483647.0},
    {"2147483648", 2147483647, 2147483648, 2147483648.0},
    {"-2147483648", -2147483647 - 1, -2147483648, -2147483648.0},
    {"-2147483649", -2147483647 - 1, -2147483649, -2147483649.0},
    {"9223372036854775807", 2147483647, int64Max, 9223372036854775808.0},
    {"9223372036854775808", 2147483647, int64Max, 9223372036854775808.0},
    {"-9223372036854775808", -2147483647 - 1, int64Min, -9223372036854775808.0},
    {"-9223372036854775809", -2147483647 - 1, int64Min, -9223372036854775808.0},
    {"99999999999999999999", 2147483647, int64Max, 1e20},
    {"-18446744073709551617", -2147483647 - 1, int64Min, -18446744073709551616.0},
    {"00000000000000000000000012", 12, 12, 12},
    {"1e400", 1, 1, infinity},
    {"1e-400", 1, 1, 0},
    {"1e99999999999999999999999", 1, 1, infinity},
    {"1e-99999999999999999999999", 1, 1, 0},
    {"0e99999999999999999999999", 0, 0, 0},
    {"inf", 0, 0, 0},
    {"-infinity", 0, 0, 0},
    {"- 5", 0, 0, 0},
    {"\xD9\xA3", 0, 0, 0},    // U+0663 in UTF-8
    {"1\xD9\xA3", 1, 1, 1},   //
    {"\xC2\xA0 7", 0, 0, 0},  // white space above ASCII is none among bytes
    {{"1\0002", 3}, 1, 1, 1}, // NUL is a unit like others
    {{"\0001", 2}, 0, 0, 0},  //
    {"1.7976931348623157e308", 1, 1, 1.7976931348623157e308},
    {"1.7976931348623159e308", 1, 1, infinity},
    {"4.9e-324", 4, 4, 4.9e-324},
    {"2.4e-324", 2, 2, 0},
    {"2.2250738585072011e-308", 2, 2, 2.2250738585072011e-308},
    {"9007199254740993", 2147483647, 9007199254740993, 9007199254740992.0},
};

template <class Unit>
void testReadings() {
    for (const ReadingRow& row : readingRows) {
        SCOPED_TRACE(row.text);
        const std::vector<Unit> text = exact<Unit>(row.text);
        EXPECT_EQ(readInt32(text.data(), text.size()), row.int32);
        EXPECT_EQ(readInt64(text.data(), text.size()), row.int64);
        EXPECT_EQ(readDouble(text.data(), text.size()), row.real);
    }
}

TEST(NumberText, readsBytesLeniently) { testReadings<char>(); }

TEST(NumberText, readsUnitsLeniently) { testReadings<char16_t>(); }

TEST(NumberText, takesNoDigitsBeyondAscii) {
    const std::u16string_view arabic = u"\x663";
    const std::u16string_view fullWidth = u"\xFF11";
    const std::u16string_view mixed = u"1\x663";
    const std::u16string_view lowByteOfADigit = u"\x131";
    for (const auto text : {arabic, fullWidth, lowByteOfADigit}) {
        EXPECT_EQ(readInt32(text.data(), text.size()), 0);
        EXPECT_EQ(readDouble(text.data(), text.size()), 0);
    }
    EXPECT_EQ(readInt64(mixed.data(), mixed.size()), 1);
    EXPECT_EQ(readDouble(mixed.data(), mixed.size()), 1);
}

TEST(NumberText, skipsTheListedWhiteSpace) {
    std::vector<char16_t> expected = {0x20,   0x85,   0xA0,   0x1680, 0x202F, 0x205F, 0x3000, 0x9,
                                      0xA,    0xB,    0xC,    0xD,    0x2000, 0x2001, 0x2002, 0x2003,
                                      0x2004, 0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A};
    std::vector<bool> isListed(0x10000);
    for (const char16_t unit : expected) {
        isListed[unit] = true;
    }
    for (unsigned number = 0; number < 0x10000; ++number) {
        const char16_t text[2] = {static_cast<char16_t>(number), u'7'};
        ASSERT_EQ(whiteSpacePrefix(text, 2), isListed[number] ? 1u : 0u) << number;
        if (number < '0' || number > '9') {
            ASSERT_EQ(readInt32(text, 2), isListed[number] ? 7 : number == '+' ? 7 : number == '-' ? -7 : 0);
        }
        if (number < 0x100) {
            const char bytes[2] = {static_cast<char>(number), '7'};
            ASSERT_EQ(whiteSpacePrefix(bytes, 2), number < 0x80 && isListed[number] ? 1u : 0u) << number;
        }
    }
    EXPECT_EQ(whiteSpacePrefix(expected.data(), expected.size()), expected.size());
    EXPECT_EQ(whiteSpacePrefix(u"", 0), 0u);
}

struct ScanRow {
    std::string_view text;
    double value;
    std::size_t length;
};

constexpr ScanRow scanRows[] = {
    {"", 0, 0},
    {" 1", 0, 0},
    {"-", 0, 0},
    {"-.e1", 0, 0},
    {"-1", -1, 2},
    {"+1.5x", 1.5, 4},
    {"1e+", 1, 1},
    {"1e+5", 1e5, 4},
    {"1E-2,", 0.01, 4},
    {"5.x", 5, 2},
    {"5.e", 5, 2},
    {".5.", 0.5, 2},
    {"1e400", infinity, 5},
    {"-1e400 ", -infinity, 6},
    {"00", 0, 2},
};

TEST(NumberText, saysHowMuchANumberTook) {
    for (const ScanRow& row : scanRows) {
        SCOPED_TRACE(row.text);
        const auto bytes = exact<char>(row.text);
        const auto units = exact<char16_t>(row.text);
        const DoubleReading ofBytes = scanDouble(bytes.data(), bytes.size());
        const DoubleReading ofUnits = scanDouble(units.data(), units.size());
        EXPECT_EQ(ofBytes.value, row.value);
        EXPECT_EQ(ofBytes.length, row.length);
        EXPECT_EQ(ofUnits.value, row.value);
        EXPECT_EQ(ofUnits.length, row.length);
    }
}

TEST(NumberText, keepsTheSignOfZero) {
    EXPECT_TRUE(std::signbit(readDouble("-0", 2)));
    EXPECT_TRUE(std::signbit(readDouble("-1e-999", 7)));
    EXPECT_FALSE(std::signbit(readDouble("0", 1)));
    EXPECT_FALSE(std::signbit(readDouble("-", 1)));
}

double readText(const std::string& text) {
    const auto bytes = exact<char>(text);
    const auto units = exact<char16_t>(text);
    const double value = readDouble(bytes.data(), bytes.size());
    EXPECT_EQ(value, readDouble(units.data(), units.size()));
    return value;
}

TEST(NumberText, roundsLongDigitStringsCorrectly) {
    const std::string zeros(2000, '0');
    const std::string halfWay = "9007199254740993"; // between ...992 (even) and ...994
    EXPECT_EQ(readText(halfWay + "." + zeros), 9007199254740992.0);
    EXPECT_EQ(readText(halfWay + "." + zeros + "1"), 9007199254740994.0);
    EXPECT_EQ(readText(zeros + halfWay + "." + zeros + "1" + zeros), 9007199254740994.0);
    EXPECT_EQ(readText(halfWay + zeros + "1e-2001"), 9007199254740994.0);
    EXPECT_EQ(readText("0." + zeros + halfWay + zeros + "1e2016"), 9007199254740994.0);
    EXPECT_EQ(readText("0." + zeros + "25e2000"), 0.25);
    EXPECT_EQ(readText("1" + zeros + "e-2000"), 1.0);
    EXPECT_EQ(readText("1" + zeros), infinity);
    EXPECT_EQ(readText("0." + zeros + "1"), 0.0);
    EXPECT_EQ(readText(zeros), 0.0);
    EXPECT_EQ(readText("0." + zeros + "e5"), 0.0);
    const std::string manyZeros(700000, '0');
    EXPECT_EQ(readText("1" + manyZeros + "e-700000"), 1.0);
    EXPECT_EQ(readText("0." + manyZeros + "1e700001"), 1.0);
}

/// The exact decimal digits of a finite value; as many as the smallest ones need.
std::string exactDecimal(double value) {
    std::vector<char> text(2000);
    const int length = std::snprintf(text.data(), text.size(), "%.1074f", value);
    return {text.data(), static_cast<std::size_t>(length)};
}

TEST(NumberText, readsTheLongestExactValues) {
    constexpr double smallest = std::numeric_limits<double>::denorm_min();
    constexpr double largestSubnormal = 2.2250738585072009e-308;
    for (const double value :
         {smallest, largestSubnormal, 0.1, 1.0 / 3, std::numeric_limits<double>::max()}) {
        const std::string text = exactDecimal(value);
        EXPECT_EQ(readText(text), value);
        EXPECT_EQ(readText("-" + text + "000"), -value);
        EXPECT_EQ(readText(text + "0000000000000000000000000000000000001"), value);
    }
}

/// The decimal half of the sum of two texts of the same form, one digit longer than they are.
std::string halfOfSum(const std::string& a, const std::string& b) {
    std::string half;
    int rest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] == '.') {
            half += '.';
            continue;
        }
        const int sum = rest * 10 + (a[i] - '0') + (b[i] - '0');
        half += static_cast<char>('0' + sum / 2);
        rest = sum % 2;
    }
    half += rest == 0 ? '0' : '5';
    for (std::size_t i = half.size() - 1; i > 0; --i) {
        if (half[i] > '9') {
            half[i] = static_cast<char>(half[i] - 10);
            ++half[half[i - 1] == '.' ? i - 2 : i - 1];
        }
    }
    return half;
}

// Below the largest subnormal number, halfway points have 768 significant digits, the most that there are.
TEST(NumberText, decidesHalfWayPointsByTheirLastDigit) {
    const double upper = 2.2250738585072009e-308;
    const double lower = std::nextafter(upper, 0.0);
    std::string half = halfOfSum(exactDecimal(lower), exactDecimal(upper));
    EXPECT_EQ(half.size() - half.find_first_not_of("0."), 768u);
    const bool lowerIsEven = std::bit_cast<std::uint64_t>(lower) % 2 == 0;
    EXPECT_EQ(readText(half), lowerIsEven ? lower : upper);
    EXPECT_EQ(readText(half + "000000000000000000001"), upper);
    half.back() = '4';
    EXPECT_EQ(readText(half + "999999999999999999999"), lower);
}

// ---- Writing

template <class Value>
std::string written(char* (*write)(Value, char*) noexcept, Value value) {
    std::vector<char> buffer(numberTextCapacity);
    const char* const end = write(value, buffer.data());
    return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

TEST(NumberText, writesIntegersAroundEveryPowerOfTen) {
    std::uint64_t power = 1;
    for (int digits = 1; digits <= 20; ++digits) {
        for (const std::uint64_t value : {power - 1, power, power + 1, power * 9 / 8}) {
            EXPECT_EQ(written(writeUInt64, value), std::to_string(value));
            const auto number = static_cast<std::int64_t>(value);
            EXPECT_EQ(written(writeInt64, number), std::to_string(number));
            EXPECT_EQ(written(writeInt64, static_cast<std::int64_t>(0 - value)),
                      std::to_string(static_cast<std::int64_t>(0 - value)));
        }
        power *= 10;
    }
    EXPECT_EQ(written(writeUInt64, std::uint64_t{0}), "0");
    EXPECT_EQ(written(writeUInt64, ~std::uint64_t{0}), "18446744073709551615");
    EXPECT_EQ(written(writeInt64, int64Max), "9223372036854775807");
    EXPECT_EQ(written(writeInt64, int64Min), "-9223372036854775808");
}

TEST(NumberText, writesRandomIntegersAsTheSystemDoes) {
    std::mt19937_64 random(6);
    for (int round = 0; round < 1000000; ++round) {
        const std::uint64_t value = random() >> random() % 64;
        ASSERT_EQ(written(writeUInt64, value), std::to_string(value));
    }
}

struct DoubleRow {
    double value;
    std::string_view text;
};

constexpr DoubleRow doubleRows[] = {
    {0.0, "0"},
    {-0.0, "-0"},
    {1.0, "1"},
    {0.1 + 0.2, "0.3"},
    {1.0 / 3, "0.3333333333333333"},
    {1e15, "1000000000000000"},
    {9999999999999998, "9999999999999998"},
    {1e16, "1e+16"},
    {12345678901234567890.0, "1.234567890123457e+19"},
    {1e-4, "0.0001"},
    {1e-5, "1e-05"},
    {-1.7976931348623157e308, "-1.797693134862316e+308"},
    {-2.2250738585072014e-308, "-2.225073858507201e-308"},
    {4.9e-324, "4.940656458412465e-324"},
    {infinity, "inf"},
    {-infinity, "-inf"},
};

TEST(NumberText, writesDoublesWithSixteenDigits) {
    for (const DoubleRow& row : doubleRows) {
        EXPECT_EQ(written(writeDouble16g, row.value), row.text);
    }
}

struct SingleRow {
    float value;
    std::string_view text;
};

constexpr SingleRow singleRows[] = {
    {-0.0F, "-0"},
    {1.1F, "1.1"},
    {9999999.0F, "9999999"},
    {10000000.0F, "1e+07"},
    {16777216.0F, "1.677722e+07"},
    {0.0001F, "0.0001"},
    {1e-5F, "1e-05"},
    {1.4e-45F, "1.401298e-45"},
    {-3.4028235e38F, "-3.402823e+38"},
    {std::numeric_limits<float>::infinity(), "inf"},
    {-std::numeric_limits<float>::infinity(), "-inf"},
};

TEST(NumberText, writesSinglesWithSevenDigits) {
    for (const SingleRow& row : singleRows) {
        EXPECT_EQ(written(writeSingle7g, row.value), row.text);
    }
}

TEST(NumberText, writesEveryNotANumberAlike) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const float single = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(written(writeDouble16g, nan), "nan");
    EXPECT_EQ(written(writeDouble16g, std::copysign(nan, -1.0)), "nan");
    EXPECT_EQ(written(writeSingle7g, single), "nan");
    EXPECT_EQ(written(writeSingle7g, std::copysign(single, -1.0F)), "nan");
}

std::string printed(const char* format, double value) {
    char buffer[64];
    const int length = std::snprintf(buffer, sizeof buffer, format, value);
    return {buffer, static_cast<std::size_t>(length)};
}

/// Values of all magnitudes, and values as people write them: short decimals and whole numbers.
double randomDouble(std::mt19937_64& random, int kind) {
    switch (kind % 4) {
    case 0:
        return std::bit_cast<double>(random());
    case 1:
        return static_cast<double>(static_cast<std::int64_t>(random()) >> random() % 64);
    case 2:
        return static_cast<double>(random() % 10000000) / 1000;
    default:
        return std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 100));
    }
}

TEST(NumberText, writesRandomDoublesAsTheSystemDoes) {
    std::mt19937_64 random(7);
    for (int round = 0; round < 1000000; ++round) {
        const double value = randomDouble(random, round);
        if (!std::isnan(value)) {
            ASSERT_EQ(written(writeDouble16g, value), printed("%.16g", value));
        }
    }
}

TEST(NumberText, writesRandomSinglesAsTheSystemDoes) {
    std::mt19937_64 random(8);
    for (int round = 0; round < 1000000; ++round) {
        const float value = round % 4 == 0 ? std::bit_cast<float>(static_cast<std::uint32_t>(random()))
                                           : static_cast<float>(randomDouble(random, round));
        if (!std::isnan(value)) {
            ASSERT_EQ(written(writeSingle7g, value), printed("%.7g", static_cast<double>(value)));
        }
    }
}

} // namespace
