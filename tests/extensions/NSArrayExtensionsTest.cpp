// SPDX-License-Identifier: MIT
// Emptiness, the first object, duplicates and sizes of arrays.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

NSArray withoutDuplicates(const NSArray& array) { return array.arrayByRemovingDuplicateObjects().array(); }

TEST(NSArrayExtensions, onlyTheArrayWithoutElementsIsEmpty) {
    EXPECT_TRUE(NSArray::array().isEmpty());
    EXPECT_FALSE(NSArray{1}.isEmpty());
    EXPECT_FALSE(NSArray{""}.isEmpty());
    EXPECT_FALSE(NSArray{NSNull::null()}.isEmpty());
    EXPECT_FALSE(NSArray::arrayWithObject(NSArray::array()).isEmpty());
    EXPECT_TRUE(NSMutableArray().array().isEmpty());
}

TEST(NSArrayExtensions, theFirstObjectOfAnEmptyArrayIsNil) {
    EXPECT_FALSE(NSArray::array().firstObject());
    EXPECT_EQ(NSArray{"a"}.firstObject(), NSObject("a"));
    EXPECT_EQ((NSArray{"b", "a"}.firstObject()), NSObject("b"));
    EXPECT_EQ((NSArray{0, "a"}.firstObject()), NSObject(0));
    EXPECT_EQ((NSArray{NSNull::null(), "a"}.firstObject()), NSObject(NSNull::null()));
    EXPECT_TRUE(NSArray(NSArray::arrayWithObject(NSArray::array()).firstObject()).isEmpty());
}

TEST(NSArrayExtensions, aNilArrayAnswersNothing) {
    const NSArray none;
    EXPECT_FALSE(none.isEmpty());
    EXPECT_FALSE(none.firstObject());
    EXPECT_EQ(none.arrayByRemovingDuplicateObjects().count(), 0U);
    EXPECT_EQ(none.compareCount(nullptr), NSOrderedSame);
    EXPECT_EQ(none.compareCount(NSArray{1}), NSOrderedSame);
}

// MARK: Duplicates

TEST(NSArrayExtensions, theFirstOfEqualElementsIsKept) {
    const struct {
        const char* name;
        NSArray array;
        NSArray expected;
    } rows[] = {
        {"letters", NSArray{"b", "a", "b", "c", "a"}, NSArray{"b", "a", "c"}},
        {"empty", NSArray::array(), NSArray::array()},
        {"one", NSArray{"a"}, NSArray{"a"}},
        {"no duplicate", NSArray{"a", "b", "c"}, NSArray{"a", "b", "c"}},
        {"all the same", NSArray{"a", "a", "a"}, NSArray{"a"}},
        {"numbers equal by value", NSArray{1, 1.0, true, 2}, NSArray{1, 2}},
        {"numbers, the other way", NSArray{true, 1.0, 1, 0, false, 0.0}, NSArray{true, 0}},
        {"single and double", NSArray{0.5F, 0.5}, NSArray{0.5F}},
        {"a number and its text", NSArray{1, "1", 1, "1"}, NSArray{1, "1"}},
        {"other case", NSArray{"a", "A", "a"}, NSArray{"a", "A"}},
        {"canonical equivalents differ", NSArray{"\u00e9", "e\u0301", "\u00e9"},
         NSArray{"\u00e9", "e\u0301"}},
        {"empty strings", NSArray{"", "a", ""}, NSArray{"", "a"}},
        {"null", NSArray{NSNull::null(), "a", NSNull::null()}, NSArray{NSNull::null(), "a"}},
        {"arrays", NSArray{NSArray{1, 2}, NSArray{1, 2}, NSArray{2, 1}},
         NSArray{NSArray{1, 2}, NSArray{2, 1}}},
        {"dictionaries", NSArray{NSDictionary{{"k", 1}}, NSDictionary{{"k", 1.0}}, NSDictionary{{"k", 2}}},
         NSArray{NSDictionary{{"k", 1}}, NSDictionary{{"k", 2}}}},
        {"data", NSArray{NSData::dataWithBytes_length("x", 1), NSData::dataWithBytes_length("x", 1), "x"},
         NSArray{NSData::dataWithBytes_length("x", 1), "x"}},
        {"dates",
         NSArray{NSDate::dateWithTimeIntervalSinceReferenceDate(1),
                 NSDate::dateWithTimeIntervalSinceReferenceDate(1), 1},
         NSArray{NSDate::dateWithTimeIntervalSinceReferenceDate(1), 1}},
        {"kinds mixed", NSArray{"a", 1, NSArray{"a"}, "a", NSArray{"a"}, 1, NSArray{1}},
         NSArray{"a", 1, NSArray{"a"}, NSArray{1}}},
        {"large integers apart", NSArray{9007199254740993, 9007199254740992, 9007199254740993},
         NSArray{9007199254740993, 9007199254740992}},
    };
    for (const auto& row : rows) {
        const NSArray found = withoutDuplicates(row.array);
        EXPECT_TRUE(found.isEqualToArray(row.expected)) << row.name << " gave " << shown(found);
        EXPECT_EQ(found.count(), row.expected.count()) << row.name;
    }
}

TEST(NSArrayExtensions, itIsTheFirstOfEqualElementsAndNoneOfTheOthers) {
    EXPECT_EQ(shown(withoutDuplicates(NSArray{-0.0, 0})[0]), "-0");
}

TEST(NSArrayExtensions, textsMadeInDifferentWaysAreDuplicates) {
    const std::u16string wide = u"abc";
    const NSArray array{"abc",
                        wide,
                        std::string("abc"),
                        NSString("xabc").substringFromIndex(1),
                        NSString("ab").stringByAppendingString("c"),
                        NSString("abc\u20ac").substringToIndex(3)};
    EXPECT_EQ(withoutDuplicates(array).count(), 1U);
}

TEST(NSArrayExtensions, theResultCanGrowAndTheReceiverStays) {
    const NSArray array{"a", "b", "a"};
    NSMutableArray result = array.arrayByRemovingDuplicateObjects();
    ASSERT_EQ(result.count(), 2U);
    result.addObject("a");
    EXPECT_EQ(result.count(), 3U);
    result.removeObjectAtIndex(0);
    EXPECT_TRUE(array.isEqualToArray(NSArray{"a", "b", "a"}));
    EXPECT_EQ(array.arrayByRemovingDuplicateObjects().count(), 2U);
    NSMutableArray none = NSArray::array().arrayByRemovingDuplicateObjects();
    none.addObject(1);
    EXPECT_EQ(none.count(), 1U);
}

TEST(NSArrayExtensions, manyElementsTakeNoQuadraticTime) {
    constexpr int distinct = 200000;
    NSMutableArray array;
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < distinct; ++i) {
            array.addObject(i);
        }
    }
    EXPECT_EQ(withoutDuplicates(array.array()).count(), std::size_t{distinct});
}

// MARK: Ordering by size

TEST(NSArrayExtensions, largerArraysOrderFirst) {
    const struct {
        const char* name;
        NSArray array;
        NSArray other;
        NSComparisonResult order;
    } rows[] = {
        {"larger", NSArray{1, 2, 3}, NSArray{1, 2}, NSOrderedAscending},
        {"smaller", NSArray{1, 2}, NSArray{1, 2, 3}, NSOrderedDescending},
        {"as large", NSArray{1, 2}, NSArray{"a", "b"}, NSOrderedSame},
        {"both empty", NSArray::array(), NSArray::array(), NSOrderedSame},
        {"against empty", NSArray{1}, NSArray::array(), NSOrderedAscending},
        {"empty", NSArray::array(), NSArray{1}, NSOrderedDescending},
        {"against nil", NSArray{1}, nullptr, NSOrderedAscending},
        {"empty against nil", NSArray::array(), nullptr, NSOrderedSame},
        {"elements inside do not count", NSArray{NSArray{1, 2, 3}, 1}, NSArray{1, 2, 3}, NSOrderedDescending},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.array.compareCount(row.other), row.order) << row.name;
    }
}

TEST(NSArrayExtensions, aSortByCountPutsLargerArraysFirst) {
    const NSArray arrays{NSArray{1}, NSArray{1, 2, 3}, NSArray::array(), NSArray{1, 2}};
    const NSArray sorted = arrays.sortedArrayUsingComparator([](const NSObject& left, const NSObject& right) {
        return NSArray(left).compareCount(NSArray(right));
    });
    std::vector<std::size_t> counts;
    for (const NSObject& element : sorted) {
        counts.push_back(NSArray(element).count());
    }
    EXPECT_EQ(counts, (std::vector<std::size_t>{3, 2, 1, 0}));
}

} // namespace
