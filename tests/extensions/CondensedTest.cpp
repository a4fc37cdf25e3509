// SPDX-License-Identifier: MIT
// The condensed description of every kind of value.
#include <gtest/gtest.h>

#include <string>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"
#include "foundation/objects/NSURL.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

std::string condensed(const NSObject& value) { return utf8Of(value.condensedDescription()); }

TEST(Condensed, ofArraysIsOneLine) {
    const struct {
        const char* name;
        NSArray array;
        const char* text;
    } rows[] = {
        {"empty, with both blanks", NSArray::array(), "(  )"},
        {"one element", NSArray{"x"}, "( x )"},
        {"nested", NSArray{1, "a", NSArray{2, 3}}, "( 1, a, ( 2, 3 ) )"},
        {"an empty one inside", NSArray{1, NSArray::array()}, "( 1, (  ) )"},
        {"dictionaries inside", NSArray{NSDictionary{{"k", "v"}}, NSDictionary::dictionary()},
         "( { k = v; }, { } )"},
        {"numbers", NSArray{1, true, false, 2.5, 1.0, -1, 1.5F}, "( 1, 1, 0, 2.5, 1, -1, 1.5 )"},
        {"empty strings", NSArray{"", ""}, "( ,  )"},
        {"strings are neither quoted nor escaped", NSArray{"a b", "caf\u00e9", "\"", "x, y"},
         "( a b, caf\u00e9, \", x, y )"},
        {"null", NSArray{NSNull::null(), 1}, "( <null>, 1 )"},
        {"date", NSArray{NSDate::dateWithTimeIntervalSinceReferenceDate(0), 1},
         "( 2001-01-01 00:00:00 +0000, 1 )"},
        {"data", NSArray{NSData::dataWithBytes_length("\x01", 1), 1}, "( {length = 1, bytes = 0x01}, 1 )"},
        {"URL", NSArray{NSURL::URLWithString("http://h/"), 1}, "( http://h/, 1 )"},
        {"line feeds stay", NSArray{"a\nb", 1}, "( a\nb, 1 )"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(row.array.condensedDescription()), row.text) << row.name;
        EXPECT_EQ(condensed(row.array), row.text) << row.name << ", by the general handle";
    }
}

TEST(Condensed, ofDictionariesIsOneLineAndEndsEachEntryWithASemicolon) {
    const struct {
        const char* name;
        NSDictionary dictionary;
        const char* text;
    } rows[] = {
        {"empty, with one blank", NSDictionary::dictionary(), "{ }"},
        {"one entry", NSDictionary{{"k", "v"}}, "{ k = v; }"},
        {"sorted, an array inside", NSDictionary{{"b", 2}, {"A", NSArray{"x"}}}, "{ A = ( x ); b = 2; }"},
        {"sorted without regard to case", NSDictionary{{"b", 1}, {"a", 2}, {"C", 3}},
         "{ a = 2; b = 1; C = 3; }"},
        {"underscore before letters", NSDictionary{{"B", 1}, {"_", 2}, {"a", 3}}, "{ _ = 2; a = 3; B = 1; }"},
        {"digits by code point", NSDictionary{{"a2", 1}, {"A10", 2}}, "{ A10 = 2; a2 = 1; }"},
        {"dictionaries inside", NSDictionary{{"k", NSDictionary{{"l", NSDictionary::dictionary()}}}},
         "{ k = { l = { }; }; }"},
        {"nothing is quoted", NSDictionary{{"a b", "c = d;"}, {"", ""}}, "{  = ; a b = c = d;; }"},
        {"numbers", NSDictionary{{"n", 2.5}, {"t", true}}, "{ n = 2.5; t = 1; }"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(row.dictionary.condensedDescription()), row.text) << row.name;
        EXPECT_EQ(condensed(row.dictionary), row.text) << row.name << ", by the general handle";
    }
}

TEST(Condensed, keysThatDifferOnlyInCaseComeInEitherOrder) {
    const std::string text = condensed(NSDictionary{{"b", 3}, {"a", 1}, {"A", 2}});
    EXPECT_TRUE(text == "{ a = 1; A = 2; b = 3; }" || text == "{ A = 2; a = 1; b = 3; }") << text;
}

TEST(Condensed, ofADictionaryWithOtherKeysDoesNotFail) {
    EXPECT_EQ(condensed(NSDictionary{{1, 2}}), "{ 1 = 2; }");
    EXPECT_EQ(condensed(NSDictionary{{NSArray{1, 2}, "v"}}), "{ ( 1, 2 ) = v; }")
        << "keys are condensed as well";
    const std::string text = condensed(NSDictionary{{2, "two"}, {"k", "text"}, {1.5, "real"}});
    EXPECT_EQ(text.size(), std::string("{ 2 = two; k = text; 1.5 = real; }").size()) << text;
    EXPECT_NE(text.find(" 2 = two; "), std::string::npos) << text;
    EXPECT_NE(text.find(" k = text; "), std::string::npos) << text;
    EXPECT_NE(text.find(" 1.5 = real; "), std::string::npos) << text;
}

TEST(Condensed, ofAnyOtherValueIsItsDescription) {
    const NSObject values[] = {"a \"b\"\n",
                               "",
                               1,
                               2.5,
                               true,
                               NSNull::null(),
                               NSDate::dateWithTimeIntervalSinceReferenceDate(-0.5),
                               NSData::dataWithBytes_length("\x01\x02", 2),
                               NSURL::URLWithString("http://h/"),
                               makeObject<Offering>(),
                               makeObject<Described>("my text")};
    for (const NSObject& value : values) {
        EXPECT_EQ(condensed(value), shown(value));
    }
    EXPECT_FALSE(NSObject().condensedDescription());
    EXPECT_FALSE(NSArray().condensedDescription());
    EXPECT_FALSE(NSDictionary().condensedDescription());
}

// Only arrays and dictionaries have a rendering of their own; a set keeps its lines, wherever it is.
TEST(Condensed, ofASetKeepsTheIndentedLines) {
    EXPECT_EQ(condensed(NSSet{1}), "{(\n    1\n)}");
    EXPECT_EQ(condensed(NSArray{NSSet{1}, 2}), "( {(\n    1\n)}, 2 )");
    EXPECT_EQ(condensed(NSDictionary{{"k", NSSet{NSArray{"a b"}}}}),
              "{ k = {(\n        (\n        \"a b\"\n    )\n)}; }");
}

class Bracketed : public NSObjectProtocol {
public:
    NSString description() const override { return "described"; }
    NSString condensedDescription() const override { return "[condensed]"; }
};

TEST(Condensed, usesTheOneOfAHostObjectForKeysAndValues) {
    EXPECT_EQ(condensed(makeObject<Bracketed>()), "[condensed]");
    EXPECT_EQ(condensed(NSArray{makeObject<Bracketed>(), 1}), "( [condensed], 1 )");
    EXPECT_EQ(condensed(NSDictionary{{"k", makeObject<Bracketed>()}}), "{ k = [condensed]; }");
    EXPECT_EQ(condensed(NSDictionary{{makeObject<Bracketed>(), "v"}}), "{ [condensed] = v; }");
    EXPECT_EQ(condensed(NSDictionary{{"k", makeObject<Described>("mine")}}), "{ k = mine; }");
}

TEST(Condensed, keepsUnitsAsTheyAre) {
    const NSString half = NSString("\U0001F600").substringToIndex(1);
    const NSString text = (NSArray{half, "\u00e9"}).condensedDescription();
    EXPECT_EQ(text.utf16(), u"( \xD83D, \u00e9 )");
    const std::string_view zero("a\0b", 3);
    EXPECT_EQ((NSArray{zero, 1}).condensedDescription().length(), 10U);
}

} // namespace
