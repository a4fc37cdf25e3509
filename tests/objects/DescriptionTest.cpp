// SPDX-License-Identifier: MIT
// The indented description of collections, and what it quotes.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

TEST(Description, indentsEachLevelByFourBlanks) {
    const NSArray value{
        "a",
        NSArray{1, "1.5"},
        NSDictionary{{"k", "v"}, {"a b", NSArray{"x"}}},
    };
    EXPECT_EQ(shown(value), "(\n"
                            "    a,\n"
                            "        (\n"
                            "        1,\n"
                            "        \"1.5\"\n"
                            "    ),\n"
                            "        {\n"
                            "        \"a b\" =         (\n"
                            "            x\n"
                            "        );\n"
                            "        k = v;\n"
                            "    }\n"
                            ")");
}

TEST(Description, ofSmallAndEmptyCollections) {
    const struct {
        const char* name;
        NSObject value;
        const char* text;
    } rows[] = {
        {"empty array", NSArray::array(), "(\n)"},
        {"empty set", NSSet::set(), "{(\n)}"},
        {"empty dictionary", NSDictionary::dictionary(), "{\n}"},
        {"one element", NSArray{"x"}, "(\n    x\n)"},
        {"two elements", NSArray{"x", "y"}, "(\n    x,\n    y\n)"},
        {"one member", NSSet{"x"}, "{(\n    x\n)}"},
        {"one entry", NSDictionary{{"k", "v"}}, "{\n    k = v;\n}"},
        {"empty array in an array", NSArray::arrayWithObject(NSArray::array()), "(\n        (\n    )\n)"},
        {"set in an array", NSArray::arrayWithObject(NSSet{1}), "(\n        {(\n        1\n    )}\n)"},
        {"array in a set", NSSet{NSArray{1}}, "{(\n        (\n        1\n    )\n)}"},
        {"empty dictionary in an array", NSArray::arrayWithObject(NSDictionary::dictionary()),
         "(\n        {\n    }\n)"},
        {"array in a dictionary", NSDictionary{{"key", NSArray{1}}},
         "{\n    key =     (\n        1\n    );\n}"},
        {"dictionary in a dictionary", NSDictionary{{"key", NSDictionary{{"k", 1}}}},
         "{\n    key =     {\n        k = 1;\n    };\n}"},
        {"three levels", NSArray::arrayWithObject(NSArray::arrayWithObject(NSArray{1})),
         "(\n        (\n                (\n            1\n        )\n    )\n)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(row.value), row.text) << row.name;
    }
}

TEST(Description, quotesWhatIsNotLettersAndDigitsOnly) {
    const struct {
        NSObject element;
        const char* text;
    } rows[] = {
        {"abc", "abc"},
        {"007", "007"},
        {"", "\"\""},
        {"a b", "\"a b\""},
        {"id_str", "\"id_str\""},
        {"a/b:c$", "\"a/b:c$\""},
        {"say \"x\"", "\"say \\\"x\\\"\""},
        {"back\\slash", "\"back\\\\slash\""},
        {"two\nlines", "\"two\\nlines\""},
        {"caf\u00e9", "\"caf\\U00e9\""},
        {"\u0080", "\"\\U0080\""},
        {"\U0001F600", "\"\\Ud83d\\Ude00\""},
        {"carriage\rreturn", "\"carriage\rreturn\""},
        {1, "1"},
        {-1, "\"-1\""},
        {true, "1"},
        {UINT64_MAX, "18446744073709551615"},
        {1.2, "\"1.2\""},
        {1e16, "\"1e+16\""},
        {std::numeric_limits<double>::infinity(), "inf"},
        {NSNull::null(), "\"<null>\""},
        {NSDate::dateWithTimeIntervalSinceReferenceDate(0), "\"2001-01-01 00:00:00 +0000\""},
        {NSData::dataWithBytes_length("\x01\x02\x03", 3), "{length = 3, bytes = 0x010203}"},
        {makeObject<Described>("bare"), "bare"},
        {makeObject<Described>("<My: 1>"), "\"<My: 1>\""},
    };
    for (const auto& row : rows) {
        const std::string text = row.text;
        EXPECT_EQ(shown(NSArray::arrayWithObject(row.element)), "(\n    " + text + "\n)");
        EXPECT_EQ(shown(NSSet{row.element}), "{(\n    " + text + "\n)}");
        EXPECT_EQ(shown(NSDictionary{{"k", row.element}}), "{\n    k = " + text + ";\n}");
        EXPECT_EQ(shown(NSDictionary{{row.element, "v"}}), "{\n    " + text + " = v;\n}");
    }
}

TEST(Description, anUnmarkedStringIsShownAsItIsOutsideCollections) {
    EXPECT_EQ(shown("a \"b\"\n\\caf\u00e9"), "a \"b\"\n\\caf\u00e9");
    EXPECT_EQ(shown(""), "");
}

TEST(Description, listsTheKeysOfADictionaryInTheirOrderByUnits) {
    const NSDictionary value{{"b", 1}, {"a", 2}, {"C", 3}, {"a10", 4}, {"a2", 5}};
    EXPECT_EQ(shown(value), "{\n    C = 3;\n    a = 2;\n    a10 = 4;\n    a2 = 5;\n    b = 1;\n}");
}

TEST(Description, ofADictionaryWithOtherKeysShowsEveryEntry) {
    const std::string text = shown(NSDictionary{{2, "two"}, {"k", "text"}, {NSArray{"e"}, "array"}});
    EXPECT_NE(text.find("    2 = two;\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    k = text;\n"), std::string::npos) << text;
    EXPECT_NE(text.find(" = array;\n"), std::string::npos) << text;
}

class Raising : public NSObjectProtocol {
public:
    NSString description() const override { throw NSException("Broken", "no text"); }
};

TEST(Description, passesOnWhatAnElementRaises) {
    const NSArray value{"a", NSArray{makeObject<Raising>(), "b"}, NSDictionary{{"k", makeObject<Raising>()}}};
    EXPECT_EQ(raised([&] { value.description(); }), "Broken");
    EXPECT_EQ(raised([&] { value.condensedDescription(); }), "Broken");
    EXPECT_EQ(raised([&] { value[2].description(); }), "Broken");
    EXPECT_EQ(value.count(), 3U);
    EXPECT_EQ(shown(value[0]), "a");
}

} // namespace
