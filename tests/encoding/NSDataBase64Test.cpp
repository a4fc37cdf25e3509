// SPDX-License-Identifier: MIT
// Base64 of data, and data of Base64: the model's results, and texts that have none.
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/Base64.h"

using namespace ZQFoundation;
using kit::bytesOf;
using kit::utf8Of;

namespace {

std::string dataOf(const NSString& text) { return bytesOf(NSData::dataFromBase64String(text)); }

TEST(NSDataBase64, followsTheModelBothWays) {
    kit::Numbers numbers(1);
    for (std::size_t length = 0; length < 300; ++length) {
        std::string bytes(length, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(numbers.below(256));
        }
        const NSData data = NSData::dataWithBytes_length(bytes.data(), length);
        const std::string line = models::base64Encoded(bytes, false);
        const std::string lines = models::base64Encoded(bytes, true);
        ASSERT_EQ(utf8Of(data.base64EncodedStringInSingleLine()), line);
        ASSERT_EQ(utf8Of(data.base64EncodedStringInSeparateLines()), lines);
        ASSERT_EQ(dataOf(line), bytes);
        ASSERT_EQ(dataOf(lines), bytes);
    }
}

TEST(NSDataBase64, readsEverySmallTextAsTheModelDoes) {
    std::vector<std::string> texts{""};
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const std::string text = texts[index];
        ASSERT_EQ(dataOf(text), models::base64Decoded(text).kept()) << testing::PrintToString(text);
        const std::string longText = std::string(models::base64Alphabet) + text;
        ASSERT_EQ(dataOf(longText), models::base64Decoded(longText).kept()) << testing::PrintToString(text);
        for (const char character : text.size() < 5 ? std::string_view("AB=\n -") : std::string_view()) {
            texts.push_back(text + character);
        }
    }
    ASSERT_EQ(texts.size(), 1U + 6 + 36 + 216 + 1296 + 7776);
}

TEST(NSDataBase64, readsStringsToTheirEndAndNotToAZero) {
    EXPECT_EQ(dataOf(NSString::stringWithCharacters_length(u"QU\0JD", 5)), "ABC");
}

TEST(NSDataBase64, givesEmptyDataForAStringThatIsNotAscii) {
    for (const NSString& text : {NSString(u"\u00E9"), NSString(u"QUJD\u00E9"), NSString(u"QU\u0080JD"),
                                 NSString(u"\uFF31UJD"), NSString(u"QUJD\u2028"), NSString(u"\U0001F600QUJD"),
                                 NSString::stringWithCharacters_length(u"QUJD\xD800", 5)}) {
        EXPECT_EQ(dataOf(text), "") << utf8Of(text);
    }
    EXPECT_EQ(dataOf("QU\x7FJD"), "ABC") << "the last of ASCII";
}

TEST(NSDataBase64, takesNilForNothing) {
    EXPECT_EQ(dataOf(nullptr), "");
    EXPECT_FALSE(NSData().base64EncodedStringInSingleLine());
    EXPECT_FALSE(NSData().base64EncodedStringInSeparateLines());
    EXPECT_EQ(utf8Of(NSData::data().base64EncodedStringInSingleLine()), "");
    EXPECT_EQ(utf8Of(NSData::data().base64EncodedStringInSeparateLines()), "");
}

} // namespace
