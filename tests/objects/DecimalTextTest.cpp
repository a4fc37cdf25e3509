// SPDX-License-Identifier: MIT
// Whole numbers appended to texts.
#include "foundation/objects/DecimalText.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation;

std::string appended(std::int64_t number, std::size_t digits) {
    detail::TextBuilder out;
    out.appendUnit(0x263A); // texts that are not ASCII too
    detail::appendDecimal(out, number, digits);
    return out.string().substringFromIndex(1).utf8();
}

TEST(DecimalText, putsZerosAfterTheSign) {
    EXPECT_EQ(appended(0, 1), "0");
    EXPECT_EQ(appended(7, 0), "7");
    EXPECT_EQ(appended(7, 4), "0007");
    EXPECT_EQ(appended(-7, 4), "-0007");
    EXPECT_EQ(appended(12345, 4), "12345");
    EXPECT_EQ(appended(INT64_MIN, 20), "-09223372036854775808");
    EXPECT_EQ(appended(3, 500), std::string(499, '0') + "3");
}

} // namespace
