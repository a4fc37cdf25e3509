// SPDX-License-Identifier: MIT
// The truth of texts, numbers and objects with a string or an integer form.
#include <gtest/gtest.h>

#include <limits>
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

const struct {
    NSString text;
    bool truth;
} truths[] = {
    {"YES", true},
    {"yes", true},
    {"Yes", true},
    {"yEs", true},
    {"ye\u017F", true}, // the long s has the capital S
    {"1", true},
    {"12", true},
    {"-3", true},
    {"+1", true},
    {"42abc", true},
    {" 7", true},
    {"\t\n7", true},
    {"\u00a07", true},
    {"\u30007", true},
    {"007", true},
    {"1.0", true},
    {"1e5", true},
    {"1\u0663", true},
    {"256", true},        // the whole integer decides, not its low bits
    {"4294967296", true}, // saturates, does not wrap to 0
    {"99999999999999999999", true},
    {"-99999999999999999999", true},
    {"1 YES", true},

    {"", false},
    {"0", false},
    {"no", false},
    {"NO", false},
    {"true", false}, // the platform's own rule would say true for these five
    {"TRUE", false},
    {"T", false},
    {"Y", false},
    {"yep", false},
    {" yes", false},
    {"yes ", false},
    {"yes\n", false},
    {"YES\0"sv, false},
    {"y\u0435s", false}, // a Cyrillic letter
    {"\uFF39\uFF25\uFF33", false},
    {"ja", false},
    {"on", false},
    {"0x10", false},
    {"0b1", false},
    {"00", false},
    {"-0", false},
    {"+0", false},
    {"-", false},
    {"+", false},
    {"--5", false},
    {"+-5", false},
    {"- 5", false},
    {"0.9", false},
    {".5", false},
    {"abc1", false},
    {"\u0663", false},
    {"\uFF11", false},
    {"\u200b7", false},
    {"\0"
     "7"sv,
     false},
    {"inf", false},
    {"nan", false},
};

TEST(NSObjectExtensions, truthOfStringsIsYesInAnyCaseOrALeadingInteger) {
    for (const auto& row : truths) {
        EXPECT_EQ(row.text.boolValue(), row.truth) << '"' << row.text.utf8() << '"';
        EXPECT_EQ(NSObject(row.text).boolValue(), row.truth)
            << '"' << row.text.utf8() << "\", by the general handle";
    }
}

TEST(NSObjectExtensions, truthOfNumbersAskedDirectlyIsTheirOwn) {
    EXPECT_TRUE(NSObject(0.5).boolValue());
    EXPECT_TRUE(NSNumber(0.5).boolValue());
    EXPECT_TRUE(NSObject(-0.25F).boolValue());
    EXPECT_TRUE(NSObject(256).boolValue());
    EXPECT_TRUE(NSObject(512).boolValue());
    EXPECT_TRUE(NSObject(true).boolValue());
    EXPECT_FALSE(NSObject(0).boolValue());
    EXPECT_FALSE(NSObject(false).boolValue());
    EXPECT_FALSE(NSObject(-0.0).boolValue());
}

TEST(NSObjectExtensions, truthOfAnObjectWithAnIntegerFormKeepsItsLowEightBits) {
    const struct {
        int integer;
        bool truth;
    } rows[] = {
        {0, false},
        {1, true},
        {2, true},
        {-1, true},
        {255, true},
        {256, false},
        {257, true},
        {512, false},
        {-256, false},
        {-255, true},
        {65536, false},
        {128, true},
        {1000, true},
        {1024, false},
        {std::numeric_limits<int>::lowest(), false},
        {std::numeric_limits<int>::max(), true},
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
