// SPDX-License-Identifier: MIT
// Writing property lists in XML.
#include "foundation/plist/XmlWriter.h"

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"
#include "foundation/plist/XmlReader.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;

/// The text between the plist tags, or the reason why there is none.
std::string xmlOf(const NSObject& value) {
    std::string text;
    if (const char* refusal = detail::writeXml(value, text)) {
        return refusal;
    }
    const std::string before = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
    const std::string after = "</plist>\n";
    EXPECT_TRUE(text.starts_with(before) && text.ends_with(after)) << text;
    return text.substr(before.size(), text.size() - before.size() - after.size());
}

NSObject throughXml(const NSObject& value) {
    std::string text;
    EXPECT_EQ(detail::writeXml(value, text), nullptr);
    detail::PropertyListError error;
    NSObject result = detail::readXml(text.data(), text.size(), error);
    EXPECT_EQ(error.message, nullptr) << error.message << " in " << text;
    return result;
}

TEST(XmlWriter, writesContainersIndentedWithSortedKeys) {
    const NSObject value = NSDictionary{{"b", NSArray{1, NSArray::array(), NSArray::arrayWithObject("x")}},
                                        {"a", NSDictionary::dictionary()},
                                        {"A", true}};
    EXPECT_EQ(xmlOf(value), "<dict>\n"
                            "\t<key>A</key>\n"
                            "\t<true/>\n"
                            "\t<key>a</key>\n"
                            "\t<dict/>\n"
                            "\t<key>b</key>\n"
                            "\t<array>\n"
                            "\t\t<integer>1</integer>\n"
                            "\t\t<array/>\n"
                            "\t\t<array>\n"
                            "\t\t\t<string>x</string>\n"
                            "\t\t</array>\n"
                            "\t</array>\n"
                            "</dict>\n");
}

TEST(XmlWriter, writesScalars) {
    EXPECT_EQ(xmlOf(""), "<string></string>\n");
    EXPECT_EQ(xmlOf("a\n\tb"), "<string>a\n\tb</string>\n");
    EXPECT_EQ(xmlOf("<a & \"b\">"), "<string>&lt;a &amp; \"b\"&gt;</string>\n");
    EXPECT_EQ(xmlOf("\u00E9\u20AC\U0001F600"), "<string>\u00E9\u20AC\U0001F600</string>\n");
    EXPECT_EQ(xmlOf(false), "<false/>\n");
    EXPECT_EQ(xmlOf(0), "<integer>0</integer>\n");
    EXPECT_EQ(xmlOf(INT64_MIN), "<integer>-9223372036854775808</integer>\n");
    EXPECT_EQ(xmlOf(UINT64_MAX), "<integer>18446744073709551615</integer>\n");
    EXPECT_EQ(xmlOf(NSDate::dateWithTimeIntervalSinceReferenceDate(0)),
              "<date>2001-01-01T00:00:00Z</date>\n");
    EXPECT_EQ(xmlOf(NSDate::dateWithTimeIntervalSinceReferenceDate(-0.25)),
              "<date>2000-12-31T23:59:59Z</date>\n");
    EXPECT_EQ(xmlOf(NSData::data()), "<data>\n</data>\n");
    EXPECT_EQ(xmlOf(NSData::dataWithBytes_length("abcd", 4)), "<data>\nYWJjZA==\n</data>\n");
}

TEST(XmlWriter, writesRealsInTheirShortestForm) {
    EXPECT_EQ(xmlOf(0.1), "<real>0.1</real>\n");
    EXPECT_EQ(xmlOf(1.0), "<real>1</real>\n");
    EXPECT_EQ(xmlOf(-0.0), "<real>-0</real>\n");
    EXPECT_EQ(xmlOf(1e300), "<real>1e+300</real>\n");
    EXPECT_EQ(xmlOf(0.1F), "<real>0.10000000149011612</real>\n");
    EXPECT_EQ(xmlOf(std::numeric_limits<double>::infinity()), "<real>inf</real>\n");
    EXPECT_EQ(xmlOf(-std::numeric_limits<double>::infinity()), "<real>-inf</real>\n");
    EXPECT_EQ(xmlOf(-std::numeric_limits<double>::quiet_NaN()), "<real>nan</real>\n");
    EXPECT_TRUE(std::isnan(NSNumber(throughXml(std::numeric_limits<double>::quiet_NaN())).doubleValue()));
}

TEST(XmlWriter, breaksDataIntoLines) {
    const std::string bytes(60, 'a');
    const NSObject value = NSArray{NSData::dataWithBytes_length(bytes.data(), 60)};
    EXPECT_EQ(xmlOf(value), "<array>\n\t<data>\n"
                            "\tYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFh\n"
                            "\tYWFh\n"
                            "\t</data>\n</array>\n");
}

TEST(XmlWriter, writesWhatXmlHasNoPlaceForAsNumbers) {
    const char16_t units[] = {0, 1, '\r', 0x7F, 0x85, 0xD800, 'a', 0xDC00, 0xFFFE, 0xFFFF};
    const NSString string = NSString::stringWithCharacters_length(units, 10);
    EXPECT_EQ(xmlOf(string),
              "<string>&#x0;&#x1;&#xd;&#x7f;&#x85;&#xd800;a&#xdc00;&#xfffe;&#xffff;</string>\n");
    EXPECT_EQ(throughXml(string), string);
}

TEST(XmlWriter, keysTakeTheSameEscapes) {
    EXPECT_EQ(xmlOf(NSDictionary{{"<\x01", 1}}),
              "<dict>\n\t<key>&lt;&#x1;</key>\n\t<integer>1</integer>\n</dict>\n");
}

TEST(XmlWriter, writesTheYearsThatTheFormHas) {
    constexpr double first = -378683424000; // -9999-01-01
    constexpr double last = 252423993599;   // 9999-12-31 23:59:59
    EXPECT_EQ(xmlOf(NSDate::dateWithTimeIntervalSinceReferenceDate(first)),
              "<date>-9999-01-01T00:00:00Z</date>\n");
    EXPECT_EQ(xmlOf(NSDate::dateWithTimeIntervalSinceReferenceDate(last + 0.5)),
              "<date>9999-12-31T23:59:59Z</date>\n");
    for (const double seconds : {first - 1, last + 1, 1e300, -1e300, std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(xmlOf(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds)),
                  "The date is too far away for a property list");
    }
}

TEST(XmlWriter, refusesWhatNoPropertyListHolds) {
    const char* kinds =
        "A property list contains only strings, numbers, dates, data, arrays and dictionaries";
    EXPECT_EQ(xmlOf(nullptr), "A property list cannot contain nil");
    EXPECT_EQ(xmlOf(NSNull::null()), kinds);
    EXPECT_EQ(xmlOf(NSArray{"a", NSNull::null()}), kinds);
    EXPECT_EQ(xmlOf(NSDictionary{{"a", NSArray{NSNull::null()}}}), kinds);
    EXPECT_EQ(xmlOf(NSDictionary{{1, "a"}}), "A key of a property list's dictionary must be a string");
}

TEST(XmlWriter, nestsTo512Levels) {
    EXPECT_EQ(throughXml(nestedArrays(512)), nestedArrays(512));
    EXPECT_EQ(xmlOf(nestedArrays(513)), "The value is nested too deeply for a property list");
    EXPECT_EQ(xmlOf(nestedArrays(100'000)), "The value is nested too deeply for a property list");
}

TEST(XmlWriter, keepsKindsOfNumbers) {
    const NSArray again(throughXml(NSArray{true, 1, 1.0, 1.0F}));
    EXPECT_EQ(show(again), "[true, 1, r1, r1]");
    const NSObject all =
        NSDictionary{{"", NSArray{UINT64_MAX, INT64_MIN, -1e-300, NSData::data()}},
                     {"<\r\xEF\xBF\xBE", NSDate::dateWithTimeIntervalSinceReferenceDate(-1e9)}};
    EXPECT_EQ(throughXml(all), all);
}

} // namespace
