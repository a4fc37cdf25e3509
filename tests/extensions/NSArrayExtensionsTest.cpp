// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation;

namespace {

TEST(NSArrayExtensions, tellWhatIsEmptyAndFirst) {
    EXPECT_TRUE(NSArray::array().isEmpty());
    EXPECT_FALSE(NSArray{1}.isEmpty());
    EXPECT_FALSE(NSArray().isEmpty());
    EXPECT_FALSE(NSArray::array().firstObject());
    EXPECT_FALSE(NSArray().firstObject());
    const NSArray two{"a", 2};
    EXPECT_TRUE(two.firstObject().isEqual(NSString("a")));
}

TEST(NSArrayExtensions, putLargerArraysFirst) {
    const NSArray three{1, 2, 3};
    const NSArray two{4, 5};
    EXPECT_EQ(three.compareCount(two), NSOrderedAscending);
    EXPECT_EQ(two.compareCount(three), NSOrderedDescending);
    EXPECT_EQ(two.compareCount(NSArray{1, 2}), NSOrderedSame);
    EXPECT_EQ(NSArray::array().compareCount(nullptr), NSOrderedSame);
    EXPECT_EQ(two.compareCount(nullptr), NSOrderedAscending);
    EXPECT_EQ(NSArray().compareCount(two), NSOrderedSame);
}

TEST(NSArrayExtensions, keepTheFirstOfEqualElements) {
    kit::Numbers numbers(43);
    for (int round = 0; round < 500; ++round) {
        NSMutableArray elements;
        std::vector<std::u16string> expected;
        for (std::size_t i = numbers.below(60); i > 0; --i) {
            const std::u16string text = numbers.text(u"ab\u20ac", numbers.below(4));
            elements.addObject(kit::stringOf(text));
            if (std::find(expected.begin(), expected.end(), text) == expected.end()) {
                expected.push_back(text);
            }
        }
        NSMutableArray distinct = elements.array().arrayByRemovingDuplicateObjects();
        distinct.addObject("added");
        expected.push_back(u"added");
        ASSERT_EQ(kit::textsOf(distinct.array()), expected);
    }
    EXPECT_EQ(NSArray().arrayByRemovingDuplicateObjects().count(), 0U);
}

TEST(NSArrayExtensions, removeDuplicatesOfManyElementsInLinearTime) {
    NSMutableArray many;
    for (int i = 0; i < 400000; ++i) {
        many.addObject(i % 200000);
    }
    EXPECT_EQ(many.array().arrayByRemovingDuplicateObjects().count(), 200000U);
}

} // namespace
