// SPDX-License-Identifier: MIT
// Creating, comparing and changing arrays.
#include "foundation/objects/NSArray.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "foundation/objects/NSSet.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();

// MARK: Elements

TEST(NSArray, containsItsElementsInOrder) {
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
    unsigned state = 1;
    const auto random = [&state](const NSObject&, const NSObject&) {
        state = state * 1664525U + 1013904223U;
        return static_cast<int>(state >> 16) % 3 - 1;
    };
    const auto raises = [](const NSObject&, const NSObject&) -> NSComparisonResult {
        throw NSException("Broken", "no order");
    };
    for (const NSArray& sorted :
         {numbers.sortedArrayUsingComparator(always), numbers.sortedArrayUsingComparator(before),
          numbers.sortedArrayUsingComparator(random)}) {
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
        EXPECT_EQ(destroyed, 1) << "what it referred to before";
        EXPECT_EQ(third.count(), 1U);
    }
    EXPECT_EQ(destroyed, 2);
    static_assert(!std::is_copy_constructible_v<NSMutableArray>);
}

} // namespace
