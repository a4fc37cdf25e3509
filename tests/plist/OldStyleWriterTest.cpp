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
std::string write(const NSObject& value) {
    std::string text;
    if (const char* refusal = detail::writeOldStyle(value, text)) {
        return refusal;
    }
    EXPECT_TRUE(text.ends_with('\n')) << text;
    text.pop_back();
    return text;
}

NSObject writeAndRead(const NSObject& value) {
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
    EXPECT_EQ(write(value), "{\n"
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
    EXPECT_EQ(writeAndRead(value), value);
}

TEST(OldStyleWriter, quotesOnlyWhereNeeded) {
    EXPECT_EQ(write("abc"), "abc");
    EXPECT_EQ(write("a//b_$/:.-9"), "a//b_$/:.-9");
    EXPECT_EQ(write("/"), "/");
    EXPECT_EQ(write(""), "\"\"");
    EXPECT_EQ(write("//x"), "\"//x\"");
    EXPECT_EQ(write("a b"), "\"a b\"");
    EXPECT_EQ(write("it's"), "\"it's\"");
    EXPECT_EQ(write("(,\n"), "\"(,\\n\"");
}

TEST(OldStyleWriter, escapes) {
    EXPECT_EQ(write("\"\\"), R"("\"\\")");
    EXPECT_EQ(write("\a\b\f\n\r\t\v"), R"("\a\b\f\n\r\t\v")");
    EXPECT_EQ(write("\x01\x7F"), R"("\U0001\U007f")");
    EXPECT_EQ(write("\u00E9\U0001F600"), R"("\U00e9\Ud83d\Ude00")");
    const char16_t units[] = {0, 0xD800, 'a', 0xFFFF};
    const NSString string = NSString::stringWithCharacters_length(units, 4);
    EXPECT_EQ(write(string), R"("\U0000\Ud800a\Uffff")");
    EXPECT_EQ(writeAndRead(string), string);
}

TEST(OldStyleWriter, otherScalarsBecomeStrings) {
    EXPECT_EQ(write(1), "1");
    EXPECT_EQ(write(-1.5), "-1.5");
    EXPECT_EQ(write(1e300), "\"1e+300\"");
    EXPECT_EQ(write(true), "1");
    EXPECT_EQ(write(NSDate::dateWithTimeIntervalSinceReferenceDate(0)), "\"2001-01-01 00:00:00 +0000\"");
}

TEST(OldStyleWriter, writesData) {
    EXPECT_EQ(write(NSData::data()), "<>");
    EXPECT_EQ(write(NSData::dataWithBytes_length("\x0F\xBD\x77\x00\xFF", 5)), "<0fbd7700 ff>");
}

TEST(OldStyleWriter, refusesWhatNoPropertyListHolds) {
    EXPECT_EQ(write(nullptr), "A property list cannot contain nil");
    EXPECT_EQ(write(NSArray{NSNull::null()}),
              "A property list contains only strings, numbers, dates, data, arrays and dictionaries");
    EXPECT_EQ(write(NSDictionary{{1.5, "a"}}), "A key of a property list's dictionary must be a string");
}

TEST(OldStyleWriter, nestsTo512Levels) {
    const NSArray array = nestedArrays(512);
    EXPECT_EQ(writeAndRead(array), array);
    EXPECT_EQ(write(NSArray::arrayWithObject(array)), "The value is nested too deeply for a property list");
}

} // namespace
