// SPDX-License-Identifier: MIT
// Offsets as texts.
#include "foundation/time/OffsetText.h"

#include <string>

#include <gtest/gtest.h>

namespace ZQFoundation::detail {
namespace {

std::string written(char* (*write)(std::int32_t, char*) noexcept, std::int32_t offset) {
    char out[offsetTextCapacity];
    return std::string(out, write(offset, out));
}

TEST(OffsetText, hasThreeNotations) {
    const struct {
        std::int32_t offset;
        const char* basic;
        const char* extended;
        const char* withGMT;
    } rows[] = {
        {0, "+0000", "+00:00", "GMT"},
        {3600, "+0100", "+01:00", "GMT+1"},
        {-3600, "-0100", "-01:00", "GMT-1"},
        {19800, "+0530", "+05:30", "GMT+5:30"},
        {-12600, "-0330", "-03:30", "GMT-3:30"},
        {43200, "+1200", "+12:00", "GMT+12"},
        {3208, "+005328", "+00:53:28", "GMT+0:53:28"},
        {-1, "-000001", "-00:00:01", "GMT-0:00:01"},
        {93599, "+255959", "+25:59:59", "GMT+25:59:59"},
        {-93599, "-255959", "-25:59:59", "GMT-25:59:59"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(written(writeBasicOffset, row.offset), row.basic);
        EXPECT_EQ(written(writeExtendedOffset, row.offset), row.extended);
        EXPECT_EQ(written(writeShortOffsetWithGMT, row.offset), row.withGMT);
    }
}

} // namespace
} // namespace ZQFoundation::detail
