// SPDX-License-Identifier: MIT
// Writing texts as XML, and what XML cannot contain.
#include "foundation/plist/XmlText.h"

#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDate.h"
#include "foundation/plist/XmlReader.h"

namespace {

using namespace ZQFoundation;

/// The reason why the dictionary is refused; what was written for one that is not.
std::string refusal(const NSDictionary& dictionary) {
    std::string bytes = "before";
    NSString error;
    if (detail::getXmlText(dictionary, bytes, &error)) {
        return "written: " + bytes;
    }
    std::string ignored = bytes;
    EXPECT_FALSE(detail::getXmlText(dictionary, ignored, nullptr));
    EXPECT_EQ(bytes, "before");
    return error.utf8();
}

TEST(XmlText, isReadBackAsItWas) {
    const NSDictionary dictionary{{"text", u"tab\t line\n return\r \u00E9 \U0001F600 \uFFFD <&>"},
                                  {"", NSArray{1, 2.5, true, NSDictionary{{"a", ""}}}}};
    std::string bytes;
    NSString error;
    ASSERT_TRUE(detail::getXmlText(dictionary, bytes, &error)) << error;
    detail::PropertyListError readError;
    EXPECT_EQ(detail::readXml(bytes.data(), bytes.size(), readError), dictionary);
}

TEST(XmlText, namesThePlaceOfACharacterThatXmlCannotHold) {
    const std::string tail = ", which cannot be written to a property list";
    const auto text = [](char16_t unit) {
        const char16_t units[] = {u'a', unit, u'b'};
        return NSString::stringWithCharacters_length(units, 3);
    };
    EXPECT_EQ(refusal({{"Key", text(0)}}), "Key holds the character U+0000" + tail);
    EXPECT_EQ(refusal({{"Key", text(0x1F)}}), "Key holds the character U+001F" + tail);
    EXPECT_EQ(refusal({{"Key", text(0xD800)}}), "Key holds the character U+D800" + tail);
    EXPECT_EQ(refusal({{"Key", text(0xDC00)}}), "Key holds the character U+DC00" + tail);
    EXPECT_EQ(refusal({{"Key", text(0xFFFE)}}), "Key holds the character U+FFFE" + tail);
    EXPECT_EQ(refusal({{"Key", text(0xFFFF)}}), "Key holds the character U+FFFF" + tail);
    EXPECT_EQ(refusal({{"Names", NSArray{"x", NSDictionary{{"first", text(1)}}}}}),
              "Names[1].first holds the character U+0001" + tail);
    EXPECT_NE(refusal({{text(2), "value"}}).find("holds the character U+0002" + tail), std::string::npos);
}

TEST(XmlText, namesThePlaceOfWhatNoPropertyListHolds) {
    EXPECT_TRUE(refusal({{"Key", NSNull::null()}}).starts_with("Key cannot be written: "));
    EXPECT_TRUE(
        refusal({{"A", "text"},
                 {"Key",
                  NSArray{1, NSDictionary{{"when", NSDate::dateWithTimeIntervalSinceReferenceDate(1e15)}}}}})
            .starts_with("Key[1].when cannot be written: "));
    NSArray deep{"text"};
    for (int level = 0; level < 600; ++level) {
        deep = NSArray::arrayWithObject(deep);
    }
    EXPECT_TRUE(refusal({{"A", "text"}, {"Deep", deep}}).starts_with("Deep cannot be written: "));
}

} // namespace
