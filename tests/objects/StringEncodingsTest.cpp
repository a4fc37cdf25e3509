// SPDX-License-Identifier: MIT
// Texts to bytes and back in each encoding.
#include <gtest/gtest.h>

#include "foundation/objects/NSData.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::dataOf;

namespace {

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

TEST(StringEncodings, readTheSameTextFromBothForms) {
    EXPECT_EQ(NSString::initWithData_encoding(dataOf("abc"), NSWindowsCP1252StringEncoding), NSString("abc"));
    EXPECT_EQ(NSString::initWithData_encoding(dataOf("a\0b\0"s), NSUTF16LittleEndianStringEncoding).hash(),
              NSString("ab").hash());
    EXPECT_EQ(NSString::initWithData_encoding(dataOf("\\141"), NSNonLossyASCIIStringEncoding), NSString("a"));
}

} // namespace
