// SPDX-License-Identifier: MIT
// The truth of texts, numbers and objects with a string or an integer form.
#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <string_view>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSSet.h"
#include "foundation/objects/NSURL.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_view_literals;

namespace {

void expectTruth(std::initializer_list<NSString> texts, bool truth) {
    for (const NSString& text : texts) {
        EXPECT_EQ(text.boolValue(), truth) << '"' << text.utf8() << '"';
        EXPECT_EQ(NSObject(text).boolValue(), truth) << '"' << text.utf8() << "\", by the general handle";
    }
}

TEST(NSObjectExtensions, truthOfStringsIsYesInAnyCaseOrALeadingInteger) {
    expectTruth({"YES", "yes", "Yes", "yEs"}, true);
    expectTruth({"ye\u017F"}, true); // the long s has the capital S
    expectTruth({"1", "12", "-3", "+1", "42abc", " 7", "\t\n7", "\u00a07", "\u30007", "007", "1.0", "1e5",
                 "1\u0663", "1 YES"},
                true);
    // The whole integer decides, not its low bits; it saturates and does not wrap to 0.
    expectTruth({"256", "4294967296", "99999999999999999999", "-99999999999999999999"}, true);
    expectTruth({"", "0", "no", "NO"}, false);
    // The platform's own rule would say true for these.
    expectTruth({"true", "TRUE", "T", "Y", "yep"}, false);
    expectTruth({" yes", "yes ", "yes\n", "YES\0"sv, "y\u0435s", "\uFF39\uFF25\uFF33", "ja", "on"}, false);
    expectTruth({"0x10", "0b1", "00", "-0", "+0", "-", "+", "--5", "+-5", "- 5", "0.9", ".5", "abc1",
                 "\u0663", "\uFF11", "\u200b7", "inf", "nan"},
                false);
    expectTruth({"\0"
                 "7"sv},
                false);
}

TEST(NSObjectExtensions, truthOfAnObjectWithAnIntegerFormKeepsItsLowEightBits) {
    const struct {
        int integer;
        bool truth;
    } rows[] = {
        {0, false},   {1, true},     {2, true},        {-1, true},      {255, true},    {256, false},
        {257, true},  {512, false},  {-256, false},    {-255, true},    {65536, false}, {128, true},
        {1000, true}, {1024, false}, {INT_MIN, false}, {INT_MAX, true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(makeObject<Offering>(std::nullopt, row.integer).boolValue(), row.truth) << row.integer;
    }
}

TEST(NSObjectExtensions, truthOfAnObjectWithAStringFormIsTheTruthOfThatString) {
    const struct {
        const char* name;
        NSObject object;
        bool truth;
    } rows[] = {
        {"YES", makeObject<Offering>(NSString("yes"), std::nullopt), true},
        {"a number as text", makeObject<Offering>(NSString("256"), std::nullopt), true},
        {"true", makeObject<Offering>(NSString("true"), std::nullopt), false},
        {"empty", makeObject<Offering>(NSString(""), std::nullopt), false},
        {"the string wins over the integer", makeObject<Offering>(NSString("0"), 2), false},
        {"and over 256", makeObject<Offering>(NSString("256"), 256), true},
        {"a nil string leaves it to the integer", makeObject<Offering>(NSString(), 2), true},
        {"a nil string and 256", makeObject<Offering>(NSString(), 256), false},
        {"a nil string and no integer", makeObject<Offering>(NSString(), std::nullopt), false},
        {"a float only", makeObject<Offering>(std::nullopt, std::nullopt, 1.0F), false},
        {"nothing at all", makeObject<Offering>(), false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.object.boolValue(), row.truth) << row.name;
    }
}

TEST(NSObjectExtensions, truthOfValuesWithoutAnyFormIsFalse) {
    const NSObject values[] = {NSDate::dateWithTimeIntervalSinceReferenceDate(1),
                               NSData::dataWithBytes_length("1", 1),
                               NSArray{1, "YES"},
                               NSDictionary{{"YES", 1}},
                               NSSet{1},
                               NSNull::null(),
                               NSURL::URLWithString("1"),
                               classOf<Offering>(),
                               NSObject()};
    for (const NSObject& value : values) {
        EXPECT_FALSE(value.boolValue()) << shown(value);
    }
    EXPECT_FALSE(NSString().boolValue());
    EXPECT_FALSE(NSNumber().boolValue());
}

} // namespace
