// SPDX-License-Identifier: MIT
// Formatters of values for the standard library's <format>.
#include <ZQFoundation/Std.h>
#include <gtest/gtest.h>

#include <format>

using namespace ZQFoundation;

TEST(Format, formatsValues) {
    EXPECT_EQ(std::format("{}|{:>6}|{:*^8}", NSString("caf\u00e9"), NSString("caf\u00e9"), NSNumber(1.5)),
              "caf\u00e9|  caf\u00e9|**1.5***");
    EXPECT_EQ(std::format("{} {} {}", NSArray{1, "a"}, NSDate::dateWithTimeIntervalSince1970(0), NSString()),
              "( 1, a ) 1970-01-01 00:00:00 +0000 (nil)");
    EXPECT_EQ(std::format("{:.2} {:8}.", NSString("abc"), NSObject(5)), "ab 5       .");
}

TEST(Format, refusesAtRunTimeWhatNoTextTakes) {
    const NSNumber number(5);
    EXPECT_THROW(static_cast<void>(std::vformat("{:d}", std::make_format_args(number))), std::format_error);
}
