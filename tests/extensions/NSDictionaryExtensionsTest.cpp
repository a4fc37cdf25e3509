// SPDX-License-Identifier: MIT
// Typed lookups, and dictionaries out of text.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

const double nan = std::numeric_limits<double>::quiet_NaN();
const float singleInfinity = std::numeric_limits<float>::infinity();
const int leastInt = std::numeric_limits<int>::lowest();

static_assert(std::is_same_v<decltype(NSDictionary().boolForKey("k")), bool>);
static_assert(std::is_same_v<decltype(NSDictionary().floatForKey("k")), float>);
static_assert(std::is_same_v<decltype(NSDictionary().integerForKey("k")), std::int64_t>);

// What the three lookups return for each value.
struct LookupRow {
    const char* name;
    NSObject value;
    bool truth;
    float real;
    std::int64_t integer;
};

void expectLookups(const LookupRow& row) {
    const NSDictionary dictionary{{"other", 77}, {"key", row.value}};
    EXPECT_EQ(dictionary.boolForKey("key"), row.truth) << row.name;
    EXPECT_EQ(dictionary.floatForKey("key"), row.real) << row.name;
    EXPECT_EQ(dictionary.integerForKey("key"), row.integer) << row.name;
}

TEST(NSDictionaryExtensions, lookupsOfStrings) {
    const LookupRow rows[] = {
        {"Yes", "Yes", true, 0, 0},
        {"true", "true", false, 0, 0},
        {"1", "1", true, 1, 1},
        {"0", "0", false, 0, 0},
        {"-7", "-7", true, -7, -7},
        {"0.25", "0.25", false, 0.25F, 0},
        {"2.5kg", "2.5kg", true, 2.5F, 2},
        {"text saturates", "5000000000", true, 5e9F, 2147483647},
        {"text saturates below", "-5000000000", true, -5e9F, leastInt},
        {"1e3", "1e3", true, 1000, 1},
        {"1e400", "1e400", true, singleInfinity, 1},
    };
    for (const LookupRow& row : rows) {
        expectLookups(row);
    }
}

// Truth goes through the number's decimal text here, unlike the number's own truth; integers are narrowed.
TEST(NSDictionaryExtensions, lookupsOfNumbers) {
    const LookupRow rows[] = {
        {"0", 0, false, 0, 0},
        {"256", 256, true, 256, 256},
        {"true", true, true, 1, 1},
        {"false", false, false, 0, 0},
        {"0.5 is false", 0.5, false, 0.5F, 0},
        {"0.0001 is false", 0.0001, false, 0.0001F, 0},
        {"0.00001 is true, by its text 1e-05", 0.00001, true, 0.00001F, 0},
        {"-2.9", -2.9, true, -2.9F, -2},
        {"single", 1.5F, true, 1.5F, 1},
        {"5000000000 is narrowed", 5000000000, true, 5e9F, 705032704},
        {"2^31 changes its sign", INT64_C(2147483648), true, 2147483648.0F, leastInt},
        {"2^32 becomes 0 and stays true", INT64_C(4294967296), true, 4294967296.0F, 0},
        {"the greatest unsigned", UINT64_MAX, true, 18446744073709551616.0F, -1},
        {"a real beyond 32 bits", 3e9, true, 3e9F, -1294967296},
        {"a real beyond 64 bits", 1e20, true, 1e20F, -1},
        {"a real beyond single", 1e300, true, singleInfinity, -1},
        {"infinity is false", infinity, false, singleInfinity, -1},
        {"zeros of both signs", -0.0, false, 0, 0},
    };
    for (const LookupRow& row : rows) {
        expectLookups(row);
    }
    EXPECT_FALSE((NSDictionary{{"key", nan}}).boolForKey("key"));
    EXPECT_EQ((NSDictionary{{"key", nan}}).integerForKey("key"), 0);
    EXPECT_NE((NSDictionary{{"key", nan}}).floatForKey("key"),
              (NSDictionary{{"key", nan}}).floatForKey("key"));
}

TEST(NSDictionaryExtensions, lookupsOfValuesWithoutTheForm) {
    const LookupRow rows[] = {
        {"date", NSDate::dateWithTimeIntervalSinceReferenceDate(1), false, 0, 0},
        {"data", NSData::dataWithBytes_length("1", 1), false, 0, 0},
        {"array", NSArray{1, 2}, false, 0, 0},
        {"dictionary", NSDictionary{{"key", 1}}, false, 0, 0},
        {"set", NSSet{1}, false, 0, 0},
        {"null", NSNull::null(), false, 0, 0},
        {"an object without forms", makeObject<Offering>(), false, 0, 0},
    };
    for (const LookupRow& row : rows) {
        expectLookups(row);
    }
}

TEST(NSDictionaryExtensions, lookupsOfHostObjects) {
    const LookupRow rows[] = {
        {"integer only", makeObject<Offering>(std::nullopt, 7), true, 0, 7},
        {"low bits", makeObject<Offering>(std::nullopt, 256), false, 0, 256},
        {"text first", makeObject<Offering>(NSString("0"), 7), false, 0, 7},
        {"text only", makeObject<Offering>(NSString("YES"), std::nullopt), true, 0, 0},
        {"text gives no number", makeObject<Offering>(NSString("12"), std::nullopt), true, 0, 0},
        {"real only", makeObject<Offering>(std::nullopt, std::nullopt, 2.5F), false, 2.5F, 0},
        {"nil text", makeObject<Offering>(NSString(), 2), true, 0, 2},
    };
    for (const LookupRow& row : rows) {
        expectLookups(row);
    }
}

TEST(NSDictionaryExtensions, lookupsOfAMissingKeyOrDictionaryAreNeutral) {
    const NSDictionary dictionary{{"key", 1}, {"", 2}};
    const NSDictionary none;
    const char* const noKey = nullptr;
    for (const char* key : {"Key", "missing", "key ", noKey}) {
        EXPECT_FALSE(dictionary.boolForKey(key)) << (key != nullptr ? key : "nil");
        EXPECT_EQ(dictionary.floatForKey(key), 0.0F) << (key != nullptr ? key : "nil");
        EXPECT_EQ(dictionary.integerForKey(key), 0) << (key != nullptr ? key : "nil");
    }
    EXPECT_EQ(dictionary.integerForKey(""), 2);
    EXPECT_FALSE(none.boolForKey("key"));
    EXPECT_EQ(none.floatForKey("key"), 0.0F);
    EXPECT_EQ(none.integerForKey("key"), 0);
}

TEST(NSDictionaryExtensions, lookupsAllocateNothing) {
    const NSDictionary dictionary{
        {"TraceNetwork", "YES"}, {"TraceLevel", 3}, {"TraceRate", "2.5"}, {"Half", 0.5}};
    const std::size_t before = kit::AllocationCount::now();
    const bool network = dictionary.boolForKey("TraceNetwork");
    const bool missing = dictionary.boolForKey("TraceFiles");
    const std::int64_t level = dictionary.integerForKey("TraceLevel");
    const bool levelIsTrue = dictionary.boolForKey("TraceLevel");
    const bool halfIsTrue = dictionary.boolForKey("Half");
    const float rate = dictionary.floatForKey("TraceRate");
    const std::size_t after = kit::AllocationCount::now();
    EXPECT_TRUE(network);
    EXPECT_FALSE(missing);
    EXPECT_EQ(level, 3);
    EXPECT_TRUE(levelIsTrue);
    EXPECT_FALSE(halfIsTrue);
    EXPECT_EQ(rate, 2.5F);
    EXPECT_EQ(after, before);
}

NSDictionary read(StringView text) { return NSDictionary::dictionaryWithContentsOfString(text); }

TEST(NSDictionaryExtensions, readsTextInEachForm) {
    const struct {
        StringView text;
        NSDictionary expected;
    } rows[] = {
        {"{ a = 1; b = (x, y); }",
         NSDictionary{{"a", "1"}, {"b", NSArray{"x", "y"}}}}, // every scalar is a string
        {"<plist><dict><key>k</key><real>0.5</real></dict></plist>", NSDictionary{{"k", 0.5}}},
        {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><dict><key>k</key><string>\u20AC</string></dict>",
         NSDictionary{{"k", "\u20AC"}}}, // the declared encoding of a string does not matter
        {u"{ a = \"\xD83D\"; }", NSDictionary{{"a", NSString("\U0001F600").substringToIndex(1)}}},
        {"{ a = \"x\xFFy\"; }", NSDictionary{{"a", "x\uFFFDy"}}},
    };
    for (const auto& row : rows) {
        const NSDictionary found = read(row.text);
        EXPECT_TRUE(found.isEqualToDictionary(row.expected)) << utf8Of(found.condensedDescription());
    }
    EXPECT_TRUE(read("{ a = YES; }").boolForKey("a"));
}

TEST(NSDictionaryExtensions, givesNilForAnyOtherTextWithoutRaising) {
    std::string brackets;
    for (int i = 0; i < 1000000; ++i) {
        brackets += "{a=";
    }
    const std::string xmlHead = "<plist version=\"1.0\">";
    for (const std::string& text :
         {std::string(""), std::string("( 1, 2 )"), std::string("{ a = 1"), std::string("abc"),
          std::string("-5"), std::string("<0fbd77>"), std::string("{} {}"), std::string("\uFEFF{ a = 1; }"),
          std::string(1, '\0'), xmlHead + "<array/></plist>", xmlHead + "<string>x</string></plist>",
          xmlHead + "</plist>", xmlHead + "<dict><key>k</key></dict></plist>", xmlHead + "<dict><key>k</key>",
          "<!DOCTYPE plist [<!ENTITY x \"y\">]>" + xmlHead + "<dict/></plist>", brackets}) {
        NSDictionary found;
        EXPECT_EQ(raised([&] { found = read(text); }), "nothing") << text.substr(0, 80);
        EXPECT_FALSE(found) << text.substr(0, 80);
    }
    EXPECT_FALSE(read(nullptr));
    EXPECT_FALSE(read(NSString()));
}

} // namespace
