// SPDX-License-Identifier: MIT
// Texts to bytes and back in each encoding.
#include <gtest/gtest.h>

#include "foundation/objects/NSData.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::stringOf;

namespace {

NSData dataOf(const std::string& bytes) { return NSData::dataWithBytes_length(bytes.data(), bytes.size()); }

TEST(StringEncodings, takeNilForNil) {
    for (const std::uint32_t number : {1U, 4U, 10U, 12U, 8U, 4711U}) {
        EXPECT_FALSE(NSString().dataUsingEncoding(NSStringEncoding(number)));
        EXPECT_FALSE(NSString::initWithData_encoding(nullptr, NSStringEncoding(number)));
        EXPECT_EQ(NSString().lengthOfBytesUsingEncoding(NSStringEncoding(number)), 0U);
    }
}

TEST(StringEncodings, takeNoValueOfAnotherTypeForAText) {
    NSString text;
    static_cast<NSObject&>(text) = NSData::data();
    EXPECT_FALSE(text.dataUsingEncoding(NSUTF8StringEncoding));
    NSData data;
    static_cast<NSObject&>(data) = NSString("text");
    EXPECT_FALSE(NSString::initWithData_encoding(data, NSUTF8StringEncoding));
}

TEST(StringEncodings, countWhatTheyWrite) {
    kit::Numbers numbers(41);
    const std::uint32_t encodings[] = {
        1,  2,  3,  4,          5,          6,          7,          8,          9,         10,
        12, 21, 30, 0x8C000100, 0x90000100, 0x94000100, 0x98000100, 0x9C000100, 0x80000632};
    int converted = 0;
    for (int round = 0; round < 2000; ++round) {
        const NSString text =
            stringOf(numbers.text(u"abcdefghij\\~\u00E9\u20AC\u65E5\xD83D\xDE00", numbers.below(5)));
        for (const std::uint32_t number : encodings) {
            const NSStringEncoding encoding{number};
            const NSData data = text.dataUsingEncoding(encoding);
            const std::size_t mark = number == 10 ? 2 : number == 0x8C000100 ? 4 : 0;
            ASSERT_EQ(text.lengthOfBytesUsingEncoding(encoding), data ? data.length() - mark : 0U) << number;
            if (data) {
                ASSERT_EQ(NSString::initWithData_encoding(data, encoding), text) << number;
                ++converted;
            }
        }
    }
    EXPECT_GT(converted, 10000);
}

TEST(StringEncodings, readTheSameTextFromBothForms) {
    EXPECT_EQ(NSString::initWithData_encoding(dataOf("abc"), NSWindowsCP1252StringEncoding), NSString("abc"));
    EXPECT_EQ(NSString::initWithData_encoding(dataOf("a\0b\0"s), NSUTF16LittleEndianStringEncoding).hash(),
              NSString("ab").hash());
    EXPECT_EQ(NSString::initWithData_encoding(dataOf("\\141"), NSNonLossyASCIIStringEncoding), NSString("a"));
}

} // namespace
