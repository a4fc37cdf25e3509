// SPDX-License-Identifier: MIT
// Equality and hashing of collections that are hard to compare: nested, shared and much alike.
#include <gtest/gtest.h>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSSet.h"

using namespace ZQFoundation;

namespace {

NSSet sharedSets(int depth) {
    NSSet set{"leaf"};
    for (int i = 0; i < depth; ++i) {
        set = NSSet{NSArray{set, 1}, NSArray{set, 2}};
    }
    return set;
}

} // namespace

TEST(Equality, comparesSetsWhoseMembersShareElements) {
    EXPECT_TRUE(sharedSets(2000).isEqual(sharedSets(2000)));
    EXPECT_FALSE(sharedSets(2000).isEqual(sharedSets(1999)));
}

TEST(Equality, hashesEqualCollectionsAlikeInEveryOrderOfEntering) {
    const NSDictionary forward{{"a", 1}, {"b", NSArray{1, 2}}, {"c", NSSet{3, 4}}};
    const NSDictionary backward{{"c", NSSet{4, 3}}, {"b", NSArray{1.0, 2U}}, {"a", true}};
    EXPECT_TRUE(forward.isEqual(backward));
    EXPECT_EQ(forward.hash(), backward.hash());
    EXPECT_NE(forward.hash(), (NSDictionary{{"a", 2}, {"b", NSArray{1, 2}}, {"c", NSSet{3, 4}}}).hash());
}

namespace {

class Link : public NSObjectProtocol {
public:
    explicit Link(NSObject next) : next_(static_cast<NSObject&&>(next)) {}

private:
    NSObject next_;
};

void overwrite(NSObject& object) { object = 5; }

} // namespace

TEST(Release, needsNoStackForChainsOfHostObjects) {
    NSObject chain;
    for (int i = 0; i < 1000000; ++i) {
        chain = makeObject<Link>(chain);
    }
    chain = nullptr;
    EXPECT_FALSE(chain);
}

TEST(TypedHandle, answersAsNilWhenAnotherTypeWasAssignedThroughItsBase) {
    NSString string("text");
    overwrite(string);
    EXPECT_EQ(string.length(), 0U);
    EXPECT_EQ(string.intValue(), 0);
    NSArray array{1, 2};
    overwrite(array);
    EXPECT_EQ(array.count(), 0U);
    EXPECT_EQ(array.begin(), array.end());
    NSDictionary dictionary{{"a", 1}};
    overwrite(dictionary);
    EXPECT_FALSE(dictionary.objectForKey("a"));
    EXPECT_FALSE(dictionary.boolForKey("a"));
}
