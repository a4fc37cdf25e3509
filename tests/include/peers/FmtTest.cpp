// SPDX-License-Identifier: MIT
// Formatters of values for {fmt}, whose header may come before or after ours.
#include <ZQFoundation/Std.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
// Once more below {fmt}.
#include <ZQFoundation/Std.h>

using namespace ZQFoundation;

TEST(Fmt, formatsValues) {
    EXPECT_EQ(fmt::format("{}|{:>6}|{:*^8}", NSString("caf\u00e9"), NSString("caf\u00e9"), NSNumber(1.5)),
              "caf\u00e9|  caf\u00e9|**1.5***");
    EXPECT_EQ(fmt::format("{} {} {}", NSArray{1, "a"}, NSDate::dateWithTimeIntervalSince1970(0), NSString()),
              "( 1, a ) 1970-01-01 00:00:00 +0000 (nil)");
}
