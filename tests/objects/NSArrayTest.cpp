// SPDX-License-Identifier: MIT
#include "foundation/objects/NSArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();

// MARK: The indented description

TEST(NSArrayDescription, indentsEachLevelByFourBlanks) {
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

TEST(NSArrayDescription, ofSmallAndEmptyCollections) {
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

TEST(NSArrayDescription, quotesWhatIsNotLettersAndDigitsOnly) {
    const struct {
        NSObject element;
        const char* text;
    } rows[] = {
        {"abc", "abc"},
        {"AZaz09", "AZaz09"},
        {"007", "007"},
        {"", "\"\""},
        {"a b", "\"a b\""},
        {"id_str", "\"id_str\""},
        {"com.x", "\"com.x\""},
        {"-1", "\"-1\""},
        {"a/b:c$", "\"a/b:c$\""},
        {"say \"x\"", "\"say \\\"x\\\"\""},
        {"it's", "\"it's\""},
        {"back\\slash", "\"back\\\\slash\""},
        {"two\nlines", "\"two\\nlines\""},
        {"tab\there", "\"tab\\there\""},
        {"caf\u00e9", "\"caf\\U00e9\""},
        {"\u0080", "\"\\U0080\""},
        {"\u20acx", "\"\\U20acx\""},
        {"\U0001F600", "\"\\Ud83d\\Ude00\""},
        {"\uFEFF", "\"\\Ufeff\""},
        {"carriage\rreturn", "\"carriage\rreturn\""},
        {1, "1"},
        {-1, "\"-1\""},
        {true, "1"},
        {UINT64_MAX, "18446744073709551615"},
        {1.0, "1"},
        {1.2, "\"1.2\""},
        {-0.0, "\"-0\""},
        {1e16, "\"1e+16\""},
        {1e-5, "\"1e-05\""},
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

TEST(NSArrayDescription, anUnmarkedStringIsShownAsItIsOutsideCollections) {
    EXPECT_EQ(shown("a \"b\"\n\\caf\u00e9"), "a \"b\"\n\\caf\u00e9");
    EXPECT_EQ(shown(""), "");
}

TEST(NSArrayDescription, listsTheKeysOfADictionaryInTheirOrderByUnits) {
    const NSDictionary value{{"b", 1}, {"a", 2}, {"C", 3}, {"a10", 4}, {"a2", 5}};
    EXPECT_EQ(shown(value), "{\n    C = 3;\n    a = 2;\n    a10 = 4;\n    a2 = 5;\n    b = 1;\n}");
}

TEST(NSArrayDescription, ofADictionaryWithOtherKeysHoldsEveryEntry) {
    const std::string text = shown(NSDictionary{{2, "two"}, {"k", "text"}, {NSArray{"e"}, "array"}});
    EXPECT_NE(text.find("    2 = two;\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    k = text;\n"), std::string::npos) << text;
    EXPECT_NE(text.find(" = array;\n"), std::string::npos) << text;
}

class Raising : public NSObjectProtocol {
public:
    NSString description() const override { throw NSException("Broken", "no text"); }
};

TEST(NSArrayDescription, passesOnWhatAnElementRaises) {
    const NSArray value{"a", NSArray{makeObject<Raising>(), "b"}, NSDictionary{{"k", makeObject<Raising>()}}};
    EXPECT_EQ(raised([&] { value.description(); }), "Broken");
    EXPECT_EQ(raised([&] { value.condensedDescription(); }), "Broken");
    EXPECT_EQ(raised([&] { value[2].description(); }), "Broken");
    EXPECT_EQ(value.count(), 3U);
    EXPECT_EQ(shown(value[0]), "a");
}

// MARK: Elements

TEST(NSArray, holdsItsElementsInOrder) {
    const NSArray array{"a", 1, true, NSNull::null()};
    ASSERT_EQ(array.count(), 4U);
    EXPECT_EQ(array[0], "a");
    EXPECT_EQ(array.objectAtIndex(1), 1);
    EXPECT_EQ(array[3], NSNull::null());
    std::vector<std::string> walked;
    for (const NSObject& element : array) {
        walked.push_back(shown(element));
    }
    EXPECT_EQ(walked, (std::vector<std::string>{"a", "1", "1", "<null>"}));
}

TEST(NSArray, nestsOrCopiesAsNamed) {
    const NSArray inner{1, 2};
    EXPECT_EQ(NSArray::arrayWithObject(inner).count(), 1U);
    EXPECT_EQ(NSArray::arrayWithObjects(inner).count(), 1U);
    EXPECT_EQ(NSArray::arrayWithObjects(inner, "x", 3).count(), 3U);
    EXPECT_EQ(NSArray::arrayWithObjects().count(), 0U);
    EXPECT_TRUE(NSArray::arrayWithObjects());
    const NSObject objects[] = {"a", 2};
    EXPECT_TRUE(NSArray::arrayWithObjects_count(objects, 2).isEqualToArray(NSArray{"a", 2}));
    EXPECT_TRUE(NSArray::arrayWithObjects_count(nullptr, 0));
    EXPECT_TRUE(inner.arrayByAddingObject("x").isEqualToArray(NSArray{1, 2, "x"}));
    EXPECT_EQ(inner.count(), 2U);
}

TEST(NSArray, emptyBracesAreNilAndTheEmptyArrayIsAValue) {
    EXPECT_FALSE(NSArray{});
    EXPECT_TRUE(NSArray::array());
    EXPECT_EQ(NSArray::array().count(), 0U);
    const NSArray empty = NSArray::array();
    EXPECT_EQ(empty.begin(), empty.end());
}

TEST(NSArray, raisesForNilElements) {
    const NSObject none;
    const NSObject objects[] = {1, none};
    NSMutableArray builder;
    builder.addObject(1);
    const char* const noText = nullptr;
    EXPECT_EQ(raised([&] { NSArray a{1, nullptr}; }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSArray a{1, noText}; }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSArray a{1, NSString()}; }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSArray::arrayWithObject(none); }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSArray::arrayWithObjects(1, none); }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSArray::arrayWithObjects_count(objects, 2); }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSArray{1, 2}.arrayByAddingObject(none); }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { builder.addObject(none); }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { builder.replaceObjectAtIndex_withObject(0, none); }), NSInvalidArgumentException);
    EXPECT_TRUE(builder.array().isEqualToArray(NSArray::arrayWithObject(1))) << "unharmed";
}

TEST(NSArray, releasesTheElementsBeforeANilOne) {
    int destroyed = 0;
    EXPECT_EQ(raised([&] {
                  NSArray a{makeObject<Offering>(&destroyed), nullptr};
              }),
              NSInvalidArgumentException);
    EXPECT_EQ(destroyed, 1);
}

TEST(NSArray, raisesBeyondTheCount) {
    const NSArray array{1, 2};
    NSMutableArray builder(array);
    EXPECT_EQ(raised([&] { array.objectAtIndex(2); }), NSRangeException);
    EXPECT_EQ(raised([&] { array.objectAtIndex(huge); }), NSRangeException);
    EXPECT_EQ(raised([&] { array[2]; }), NSRangeException);
    EXPECT_EQ(raised([&] { NSArray::array().objectAtIndex(0); }), NSRangeException);
    EXPECT_EQ(raised([&] { builder.objectAtIndex(2); }), NSRangeException);
    EXPECT_EQ(raised([&] { builder.removeObjectAtIndex(2); }), NSRangeException);
    EXPECT_EQ(raised([&] { builder.replaceObjectAtIndex_withObject(2, 1); }), NSRangeException);
    EXPECT_EQ(raised([&] { NSMutableArray().objectAtIndex(0); }), NSRangeException);
    EXPECT_EQ(raised([&] { NSMutableArray().removeLastObject(); }), NSRangeException);
    EXPECT_EQ(builder.count(), 2U);
}

TEST(NSArray, findsElementsByEquality) {
    const NSArray array{"a", 1, "a", NSArray{2, 3}};
    EXPECT_TRUE(array.containsObject(1.0));
    EXPECT_TRUE(array.containsObject(true));
    EXPECT_TRUE(array.containsObject(NSArray{2.0, 3}));
    EXPECT_FALSE(array.containsObject("1"));
    EXPECT_FALSE(array.containsObject(nullptr));
    EXPECT_EQ(array.indexOfObject("a"), 0U);
    EXPECT_EQ(array.indexOfObject(1), 1U);
    EXPECT_EQ(array.indexOfObject("b"), NSArray::notFound);
    EXPECT_EQ(array.indexOfObject(nullptr), NSArray::notFound);
}

TEST(NSArray, isEqualElementByElement) {
    EXPECT_TRUE((NSArray{1, "a"}).isEqualToArray(NSArray{1.0, "a"}));
    EXPECT_FALSE((NSArray{1, "a"}).isEqualToArray(NSArray{"a", 1}));
    EXPECT_FALSE((NSArray{1, "a"}).isEqualToArray(NSArray{1}));
    EXPECT_FALSE((NSArray{1, "a"}).isEqualToArray(NSArray{1, "b"}));
    EXPECT_FALSE(NSArray::array().isEqualToArray(nullptr));
    EXPECT_TRUE(NSArray::array().isEqualToArray(NSArray::array()));
    EXPECT_FALSE(NSArray::array().isEqual(NSSet::set()));
    EXPECT_EQ((NSArray{1, NSArray{"x"}}).hash(), (NSArray{true, NSArray{u"x"}}).hash());
}

TEST(NSArray, sortsStablyByTheGivenOrder) {
    const NSArray words{"pear", "fig", "apple", "kiwi", "plum", "date"};
    const auto byLength = [](const NSObject& left, const NSObject& right) {
        const std::size_t l = left.as<NSString>().length();
        const std::size_t r = right.as<NSString>().length();
        return l < r ? NSOrderedAscending : l > r ? NSOrderedDescending : NSOrderedSame;
    };
    EXPECT_TRUE(words.sortedArrayUsingComparator(byLength).isEqualToArray(
        NSArray{"fig", "pear", "kiwi", "plum", "date", "apple"}));
    EXPECT_EQ(words[0], "pear");
    EXPECT_EQ(NSArray::array().sortedArrayUsingComparator(byLength).count(), 0U);
}

TEST(NSArray, survivesAnOrderThatContradictsItselfOrRaises) {
    NSMutableArray builder;
    for (int i = 0; i < 1000; ++i) {
        builder.addObject(i * 7919 % 1000);
    }
    const NSArray numbers = builder.array();
    const auto always = [](const NSObject&, const NSObject&) {
        return NSOrderedDescending;
    };
    const auto before = [](const NSObject&, const NSObject&) {
        return NSOrderedAscending;
    };
    const auto raises = [](const NSObject&, const NSObject&) -> NSComparisonResult {
        throw NSException("Broken", "no order");
    };
    for (const NSArray& sorted :
         {numbers.sortedArrayUsingComparator(always), numbers.sortedArrayUsingComparator(before)}) {
        EXPECT_EQ(sorted.count(), 1000U);
        EXPECT_EQ(NSSet::setWithArray(sorted).count(), 1000U) << "each element still there once";
    }
    EXPECT_EQ(raised([&] { numbers.sortedArrayUsingComparator(raises); }), "Broken");
}

TEST(NSArray, joinsTheDescriptionsOfItsElements) {
    EXPECT_EQ((NSArray{"a", 1, 2.5, NSNull::null()}).componentsJoinedByString(", "), "a, 1, 2.5, <null>");
    EXPECT_EQ((NSArray{"a", "b"}).componentsJoinedByString(""), "ab");
    EXPECT_EQ((NSArray{"a", "b"}).componentsJoinedByString("\u20ac"), "a\u20ac"
                                                                      "b");
    EXPECT_EQ((NSArray{"a"}).componentsJoinedByString("-"), "a");
    EXPECT_EQ(NSArray::array().componentsJoinedByString("-"), "");
}

TEST(NSArray, aMessageToANilArrayGivesNothing) {
    const NSArray none;
    EXPECT_EQ(none.count(), 0U);
    EXPECT_FALSE(none.objectAtIndex(5));
    EXPECT_FALSE(none.containsObject(1));
    EXPECT_EQ(none.begin(), none.end());
    EXPECT_FALSE(none.isEqualToArray(none));
    EXPECT_FALSE(none.arrayByAddingObject(1));
    EXPECT_FALSE(none.componentsJoinedByString("-"));
    EXPECT_FALSE(none.condensedDescription());
    EXPECT_FALSE(
        none.sortedArrayUsingComparator([](const NSObject&, const NSObject&) { return NSOrderedSame; }));
    EXPECT_FALSE(none.description());
    for (const NSObject& element : none) {
        ADD_FAILURE() << shown(element);
    }
    EXPECT_FALSE(NSArray(NSObject("text")));
}

// MARK: Builders

TEST(NSMutableArray, addsRemovesAndReplaces) {
    NSMutableArray builder;
    builder.addObject("a");
    builder.addObject(2);
    builder.addObjectsFromArray(NSArray{"c", "d"});
    builder.addObjectsFromArray(nullptr);
    builder.removeObjectAtIndex(1);
    builder.replaceObjectAtIndex_withObject(0, "A");
    builder.removeLastObject();
    EXPECT_EQ(builder.count(), 2U);
    EXPECT_EQ(builder[1], "c");
    EXPECT_EQ(builder.end() - builder.begin(), 2);
    EXPECT_TRUE(builder.array().isEqualToArray(NSArray{"A", "c"}));
}

TEST(NSMutableArray, isEmptyOnceTheElementsAreHandedOver) {
    NSMutableArray builder;
    EXPECT_TRUE(builder.array()) << "an untouched builder gives an empty array, not nil";
    builder.addObject(1);
    const NSArray first = builder.array();
    EXPECT_EQ(builder.count(), 0U);
    builder.addObject(2);
    EXPECT_TRUE(first.isEqualToArray(NSArray::arrayWithObject(1)));
    EXPECT_TRUE(builder.array().isEqualToArray(NSArray::arrayWithObject(2)));
}

TEST(NSMutableArray, handsItsElementsOverWithoutACopy) {
    NSMutableArray builder;
    for (int i = 0; i < 10000; ++i) {
        builder.addObject(i);
    }
    const NSObject* const elements = builder.begin();
    const NSArray array = builder.array();
    EXPECT_EQ(array.begin(), elements);
    EXPECT_EQ(array.count(), 10000U);
}

TEST(NSMutableArray, leavesTheArrayItWasMadeFromAlone) {
    const NSArray source{1, 2, 3};
    NSMutableArray builder(source);
    builder.replaceObjectAtIndex_withObject(0, "x");
    builder.removeLastObject();
    EXPECT_TRUE(source.isEqualToArray(NSArray{1, 2, 3}));
    EXPECT_TRUE(builder.array().isEqualToArray(NSArray{"x", 2}));
    EXPECT_EQ(NSMutableArray(NSArray()).array().count(), 0U);
}

TEST(NSMutableArray, mayAddItsOwnElements) {
    NSMutableArray builder;
    builder.addObject("a text that needs a body of its own");
    for (int i = 0; i < 100; ++i) {
        builder.addObject(builder[0]);
    }
    EXPECT_EQ(builder.array()[100], "a text that needs a body of its own");
}

TEST(NSMutableArray, movesWithItsElements) {
    int destroyed = 0;
    {
        NSMutableArray first;
        first.addObject(makeObject<Offering>(&destroyed));
        NSMutableArray second(std::move(first));
        NSMutableArray third;
        third.addObject(makeObject<Offering>(&destroyed));
        third = std::move(second);
        EXPECT_EQ(destroyed, 1) << "what it held before";
        EXPECT_EQ(third.count(), 1U);
    }
    EXPECT_EQ(destroyed, 2);
    static_assert(!std::is_copy_constructible_v<NSMutableArray>);
}

} // namespace
