// SPDX-License-Identifier: MIT
// Single digits, and numbers with a fixed count of them.
#include "foundation/text/Digits.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation::detail;

TEST(Digits, areTheAsciiOnesAlone) {
    for (int unit = 0; unit < 0x10000; ++unit) {
        const bool isDecimal = unit >= '0' && unit <= '9';
        const int letter = unit >= 'a' && unit <= 'f'   ? unit - 'a' + 10
                           : unit >= 'A' && unit <= 'F' ? unit - 'A' + 10
                                                        : -1;
        const int value = isDecimal ? unit - '0' : letter;
        ASSERT_EQ(isDigit(static_cast<char16_t>(unit)), isDecimal) << unit;
        ASSERT_EQ(hexDigitValue(static_cast<char16_t>(unit)), value) << unit;
        if (unit < 0x100) {
            ASSERT_EQ(isDigit(static_cast<char>(unit)), isDecimal) << unit;
            ASSERT_EQ(hexDigitValue(static_cast<char>(unit)), value) << unit;
        }
    }
}

TEST(Digits, areTakenUpToAnotherUnitTheEndOrTheCount) {
    const struct {
        const char* text;
        int maxCount;
        int value;
        int taken;
    } rows[] = {
        {"", 3, 0, 0},
        {"x", 3, 0, 0},
        {"0", 3, 0, 1},
        {"12x", 3, 12, 2},
        {"1234", 3, 123, 3},
        {"007", 2, 0, 2},
        {"-1", 3, 0, 0},
        {"12", 0, 0, 0},
        {"9:", 1, 9, 1},
        {"/:", 2, 0, 0},
        {"999999999", 9, 999999999, 9},
    };
    for (const auto& row : rows) {
        const std::string bytes = row.text;
        const std::u16string units(bytes.begin(), bytes.end());
        const char* byte = bytes.data();
        const char16_t* unit = units.data();
        EXPECT_EQ(takeDigits(byte, bytes.data() + bytes.size(), row.maxCount), row.value) << row.text;
        EXPECT_EQ(takeDigits(unit, units.data() + units.size(), row.maxCount), row.value) << row.text;
        EXPECT_EQ(byte - bytes.data(), row.taken) << row.text;
        EXPECT_EQ(unit - units.data(), row.taken) << row.text;
        int value = -1;
        byte = bytes.data();
        EXPECT_EQ(takeAllDigits(byte, bytes.data() + bytes.size(), row.maxCount, value),
                  row.taken == row.maxCount)
            << row.text;
    }
}

TEST(Digits, areWrittenWithLeadingZerosAndWithoutHigherOnes) {
    char text[20] = {};
    const auto written = [&](const char* end) {
        return std::string(static_cast<const char*>(text), end);
    };
    EXPECT_EQ(written(writeDigits<2>(7, text)), "07");
    EXPECT_EQ(written(writeDigits<3>(1234, text)), "234");
    EXPECT_EQ(written(writeDigits<9>(999999999, text)), "999999999");
    EXPECT_EQ(written(writeHexDigits(0xA0B, 4, text)), "0a0b");
    EXPECT_EQ(written(writeHexDigits(0xABCDE, 4, text, upperHexDigits)), "BCDE");
    EXPECT_EQ(written(writeHexDigits(UINT64_MAX, 16, text)), "ffffffffffffffff");
    EXPECT_EQ(written(writeHexDigits<3>(8, 3, text)), "010");
}

TEST(Digits, areWrittenBackwardsWithoutLeadingZeros) {
    char text[16];
    char* const end = text + sizeof text;
    EXPECT_EQ(std::string(writeHexBefore(0, end), end), "0");
    EXPECT_EQ(std::string(writeHexBefore(0x10, end), end), "10");
    EXPECT_EQ(std::string(writeHexBefore(UINT64_MAX, end), end), "ffffffffffffffff");
}

TEST(Digits, powersOfTenAreTenTimesThePowerBefore) {
    EXPECT_EQ(powersOfTen[0], 1u);
    for (std::size_t i = 1; i <= PowersOfTen::max; ++i) {
        EXPECT_EQ(powersOfTen[i] / 10, powersOfTen[i - 1]);
        EXPECT_EQ(powersOfTen[i] % 10, 0u);
    }
}

} // namespace
