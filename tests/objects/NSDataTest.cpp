// SPDX-License-Identifier: MIT
// Bytes as values: creating, reading, comparing and describing them.
#include "foundation/objects/NSData.h"

#include <gtest/gtest.h>

#include <string_view>

#include "foundation/objects/NSDictionary.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

constexpr std::string_view thirtyTwo = "\xd3\xd9\x97\xaf\x96\x7d\x1f\x43\xb4\x05\x37\x4a\x13\x39\x4d\x2f"
                                       "\x00\x01\x02\x03\x04\x05\x06\x07\x28\xf1\x02\x82\x14\xaf\x51\x5f"sv;

TEST(NSData, describesUpToTwentyFourBytesInFullAndMoreByBothEnds) {
    const struct {
        const char* name;
        NSData data;
        const char* text;
    } rows[] = {
        {"empty", NSData::data(), "{length = 0, bytes = 0x}"},
        {"one byte", dataOf("\x0f"sv), "{length = 1, bytes = 0x0f}"},
        {"three bytes", dataOf("\x01\x02\x03"sv), "{length = 3, bytes = 0x010203}"},
        {"a zero byte", dataOf("\0"sv), "{length = 1, bytes = 0x00}"},
        {"twenty-four bytes", dataOf(thirtyTwo.substr(0, 24)),
         "{length = 24, bytes = 0xd3d997af967d1f43b405374a13394d2f0001020304050607}"},
        {"twenty-five bytes", dataOf(thirtyTwo.substr(0, 25)),
         "{length = 25, bytes = 0xd3d997af 967d1f43 b405374a 13394d2f ... 01020304 05060728 }"},
        {"thirty-two bytes", dataOf(thirtyTwo),
         "{length = 32, bytes = 0xd3d997af 967d1f43 b405374a 13394d2f ... 28f10282 14af515f }"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(row.data), row.text) << row.name;
        EXPECT_EQ(utf8Of(row.data.condensedDescription()), row.text) << row.name;
    }
}

TEST(NSData, keepsACopyOfItsBytes) {
    char bytes[] = {'a', '\0', 'c'};
    const NSData data = NSData::dataWithBytes_length(bytes, 3);
    bytes[0] = 'z';
    ASSERT_EQ(data.length(), 3U);
    EXPECT_EQ(data.bytes()[0], 'a');
    EXPECT_EQ(data.bytes()[1], 0);
    EXPECT_EQ(data.bytes()[2], 'c');
    EXPECT_EQ(NSData::dataWithBytes_length(nullptr, 0).length(), 0U);
    EXPECT_TRUE(NSData::dataWithBytes_length(nullptr, 0));
}

TEST(NSData, isEqualByContentAndHashesAlike) {
    EXPECT_TRUE(dataOf("a\0b"sv).isEqualToData(dataOf("a\0b"sv)));
    EXPECT_FALSE(dataOf("a\0b"sv).isEqualToData(dataOf("a\0c"sv)));
    EXPECT_FALSE(dataOf("ab").isEqualToData(dataOf("abc")));
    EXPECT_TRUE(NSData::data().isEqualToData(dataOf("")));
    EXPECT_FALSE(NSData::data().isEqualToData(nullptr));
    EXPECT_TRUE(dataOf(thirtyTwo).isEqual(dataOf(thirtyTwo)));
    EXPECT_FALSE(dataOf("abc").isEqual("abc")) << "a string of the same bytes";
    EXPECT_EQ(dataOf(thirtyTwo).hash(), dataOf(thirtyTwo).hash());
    EXPECT_EQ((NSDictionary{{dataOf("k"), 1}}).objectForKey(dataOf("k")), 1);
}

TEST(NSData, aMessageToNilDataGivesNothing) {
    const NSData none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.bytes(), nullptr);
    EXPECT_EQ(none.length(), 0U);
    EXPECT_FALSE(none.isEqualToData(none));
    EXPECT_FALSE(none.isEqualToData(NSData::data()));
    EXPECT_FALSE(none.description());
    EXPECT_FALSE(NSData(NSObject("bytes")));
}

} // namespace
