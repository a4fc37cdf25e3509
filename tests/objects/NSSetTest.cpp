// SPDX-License-Identifier: MIT
// Creating and comparing sets.
#include "foundation/objects/NSSet.h"

#include <gtest/gtest.h>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

TEST(NSSet, containsEachValueOnce) {
    const NSSet set{"a", 1, 1.0, true, "a", "1", u"a"};
    EXPECT_EQ(set.count(), 3U);
    EXPECT_TRUE(set.containsObject("a"));
    EXPECT_TRUE(set.containsObject(1U));
    EXPECT_TRUE(set.containsObject("1"));
    EXPECT_FALSE(set.containsObject("b"));
    EXPECT_FALSE(set.containsObject(nullptr));
}

TEST(NSSet, keepsTheFirstOfEqualMembersInTheOrderOfEntering) {
    const NSSet set{"b", "a", 1, "b", 1.0};
    EXPECT_TRUE(set.allObjects().isEqualToArray(NSArray{"b", "a", 1}));
    EXPECT_FALSE(set.member(1.0).as<NSNumber>().isReal());
    EXPECT_FALSE(set.member("c"));
    EXPECT_FALSE(set.member(nullptr));
    EXPECT_TRUE(NSSet::setWithArray(NSArray{"b", "a", "b", 1}).isEqualToSet(set));
    EXPECT_FALSE(NSSet::setWithArray(NSArray::array()).containsObject(1));
    EXPECT_TRUE(NSSet::setWithArray(NSArray::array()));
}

TEST(NSSet, emptyBracesAreNilAndTheEmptySetIsAValue) {
    EXPECT_FALSE(NSSet{});
    EXPECT_TRUE(NSSet::set());
    EXPECT_EQ(NSSet::set().count(), 0U);
    EXPECT_EQ(NSSet::set().allObjects().count(), 0U);
}

TEST(NSSet, raisesForANilMember) {
    EXPECT_EQ(raised([] { NSSet s{1, nullptr}; }), NSInvalidArgumentException);
    EXPECT_EQ(raised([] { NSSet s{NSString(), 1}; }), NSInvalidArgumentException);
}

TEST(NSSet, isEqualByContentInAnyOrder) {
    const NSSet set{"a", 1, NSArray{2, 3}};
    EXPECT_TRUE(set.isEqualToSet(NSSet{NSArray{2.0, 3}, true, "a"}));
    EXPECT_EQ(set.hash(), (NSSet{NSArray{2.0, 3}, true, "a"}).hash());
    EXPECT_FALSE(set.isEqualToSet(NSSet{"a", 1}));
    EXPECT_FALSE(set.isEqualToSet(NSSet{"a", 1, 2}));
    EXPECT_FALSE(set.isEqualToSet(nullptr));
    EXPECT_FALSE(set.isEqual(set.allObjects()));
    EXPECT_TRUE(NSSet::set().isEqualToSet(NSSet::set()));
}

TEST(NSSet, comparesCollectionsByContent) {
    const NSSet set{NSSet{1, 2}, NSSet{2, 1}, NSDictionary{{"k", 1}}, NSDictionary{{"k", 1.0}}};
    EXPECT_EQ(set.count(), 2U);
    EXPECT_TRUE(set.containsObject(NSSet{2, 1}));
    EXPECT_FALSE(set.containsObject(NSSet{1}));
}

TEST(NSSet, aMessageToANilSetGivesNothing) {
    const NSSet none;
    EXPECT_EQ(none.count(), 0U);
    EXPECT_FALSE(none.containsObject(1));
    EXPECT_FALSE(none.member(1));
    EXPECT_FALSE(none.allObjects());
    EXPECT_FALSE(none.isEqualToSet(none));
    EXPECT_FALSE(none.description());
    EXPECT_FALSE(NSSet(NSObject(NSArray{1, 2})));
}

} // namespace
