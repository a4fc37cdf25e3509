// SPDX-License-Identifier: MIT
// Writing old-style property lists.
#include "foundation/plist/OldStyleWriter.h"

#include <string>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"
#include "foundation/plist/OldStyleReader.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;

/// The text without its last line feed, or the reason why there is none.
std::string oldStyleOf(const NSObject& value) {
    std::string text;
    if (const char* refusal = detail::writeOldStyle(value, text)) {
        return refusal;
    }
    EXPECT_TRUE(text.ends_with('\n')) << text;
    text.pop_back();
    return text;
}

NSObject throughOldStyle(const NSObject& value) {
    std::string text;
    EXPECT_EQ(detail::writeOldStyle(value, text), nullptr);
    detail::PropertyListError error;
    NSObject result = detail::readOldStyle(text.data(), text.size(), error);
    EXPECT_EQ(error.message, nullptr) << error.message << " in " << text;
    return result;
}

TEST(OldStyleWriter, writesContainersIndentedWithSortedKeys) {
    const NSObject value =
        NSDictionary{{"b", NSArray{"x", NSArray::array(), NSArray{"y", NSDictionary{{"k", "v"}}}}},
                     {"a", NSDictionary::dictionary()},
                     {"A b", "c"}};
    EXPECT_EQ(oldStyleOf(value), "{\n"
                                 "    \"A b\" = c;\n"
                                 "    a = {\n"
                                 "    };\n"
                                 "    b = (\n"
                                 "        x,\n"
                                 "        (\n"
                                 "        ),\n"
                                 "        (\n"
                                 "            y,\n"
                                 "            {\n"
                                 "                k = v;\n"
                                 "            }\n"
                                 "        )\n"
                                 "    );\n"
                                 "}");
    EXPECT_EQ(throughOldStyle(value), value);
}

TEST(OldStyleWriter, quotesOnlyWhereNeeded) {
    EXPECT_EQ(oldStyleOf("abc"), "abc");
    EXPECT_EQ(oldStyleOf("a//b_$/:.-9"), "a//b_$/:.-9");
    EXPECT_EQ(oldStyleOf("/"), "/");
    EXPECT_EQ(oldStyleOf(""), "\"\"");
    EXPECT_EQ(oldStyleOf("//x"), "\"//x\"");
    EXPECT_EQ(oldStyleOf("a b"), "\"a b\"");
    EXPECT_EQ(oldStyleOf("it's"), "\"it's\"");
    EXPECT_EQ(oldStyleOf("(,\n"), "\"(,\\n\"");
}

TEST(OldStyleWriter, escapes) {
    EXPECT_EQ(oldStyleOf("\"\\"), R"("\"\\")");
    EXPECT_EQ(oldStyleOf("\a\b\f\n\r\t\v"), R"("\a\b\f\n\r\t\v")");
    EXPECT_EQ(oldStyleOf("\x01\x7F"), R"("\U0001\U007f")");
    EXPECT_EQ(oldStyleOf("\u00E9\U0001F600"), R"("\U00e9\Ud83d\Ude00")");
    const char16_t units[] = {0, 0xD800, 'a', 0xFFFF};
    const NSString string = NSString::stringWithCharacters_length(units, 4);
    EXPECT_EQ(oldStyleOf(string), R"("\U0000\Ud800a\Uffff")");
    EXPECT_EQ(throughOldStyle(string), string);
}

TEST(OldStyleWriter, otherScalarsBecomeStrings) {
    EXPECT_EQ(oldStyleOf(1), "1");
    EXPECT_EQ(oldStyleOf(-1.5), "-1.5");
    EXPECT_EQ(oldStyleOf(1e300), "\"1e+300\"");
    EXPECT_EQ(oldStyleOf(true), "1");
    EXPECT_EQ(oldStyleOf(NSDate::dateWithTimeIntervalSinceReferenceDate(0)), "\"2001-01-01 00:00:00 +0000\"");
}

TEST(OldStyleWriter, writesData) {
    EXPECT_EQ(oldStyleOf(NSData::data()), "<>");
    EXPECT_EQ(oldStyleOf(NSData::dataWithBytes_length("\x0F\xBD\x77\x00\xFF", 5)), "<0fbd7700 ff>");
}

TEST(OldStyleWriter, refusesWhatNoPropertyListHolds) {
    EXPECT_EQ(oldStyleOf(nullptr), "A property list cannot contain nil");
    EXPECT_EQ(oldStyleOf(NSArray{NSNull::null()}),
              "A property list contains only strings, numbers, dates, data, arrays and dictionaries");
    EXPECT_EQ(oldStyleOf(NSDictionary{{1.5, "a"}}), "A key of a property list's dictionary must be a string");
}

TEST(OldStyleWriter, nestsTo512Levels) {
    const NSArray array = nestedArrays(512);
    EXPECT_EQ(throughOldStyle(array), array);
    EXPECT_EQ(oldStyleOf(NSArray::arrayWithObject(array)),
              "The value is nested too deeply for a property list");
}

} // namespace
