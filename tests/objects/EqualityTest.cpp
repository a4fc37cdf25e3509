// SPDX-License-Identifier: MIT
// Equality and hashing of collections that are hard to compare: nested, shared and much alike.
#include <gtest/gtest.h>

#include <ctime>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSSet.h"

using namespace ZQFoundation;

namespace {

double secondsOf(void (*work)(int), int size) {
    timespec start{};
    timespec end{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &start);
    work(size);
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
    return static_cast<double>(end.tv_sec - start.tv_sec) +
           static_cast<double>(end.tv_nsec - start.tv_nsec) * 1e-9;
}

/// Four times the work takes about four times as long; sixteen would be quadratic.
void expectLinear(void (*work)(int), int size) {
    double growth = 0;
    for (int attempt = 0; attempt < 5; ++attempt) {
        growth = secondsOf(work, 4 * size) / secondsOf(work, size);
        if (growth < 9) {
            return;
        }
    }
    ADD_FAILURE() << "four times the size took " << growth << " times as long";
}

NSSet nestedSets(int depth) {
    NSSet set{"leaf"};
    for (int i = 0; i < depth; ++i) {
        set = NSSet{NSArray{set, 1}, NSArray{set, 2}};
    }
    return set;
}

} // namespace

TEST(Equality, comparesSetsWhoseMembersShareElements) {
    EXPECT_TRUE(nestedSets(2000).isEqual(nestedSets(2000)));
    EXPECT_FALSE(nestedSets(2000).isEqual(nestedSets(1999)));
}

TEST(Equality, distinguishesRecordsInASetInLinearTime) {
    expectLinear(
        [](int size) {
            NSMutableArray records;
            for (int i = 0; i < size; ++i) {
                records.addObject(NSDictionary{{"id", i}, {"name", "x"}});
            }
            EXPECT_EQ(NSSet::setWithArray(records.array()).count(), static_cast<std::size_t>(size));
        },
        2000);
}

TEST(Equality, distinguishesNestedArraysAsKeysInLinearTime) {
    expectLinear(
        [](int size) {
            NSMutableDictionary dictionary;
            for (int i = 0; i < size; ++i) {
                dictionary.setObject_forKey(i, NSArray::arrayWithObject(NSArray{i, i}));
            }
            EXPECT_EQ(dictionary.count(), static_cast<std::size_t>(size));
        },
        2000);
}

TEST(Equality, hashesEqualCollectionsAlikeInEveryOrderOfEntering) {
    const NSDictionary forward{{"a", 1}, {"b", NSArray{1, 2}}, {"c", NSSet{3, 4}}};
    const NSDictionary backward{{"c", NSSet{4, 3}}, {"b", NSArray{1.0, 2U}}, {"a", true}};
    EXPECT_TRUE(forward.isEqual(backward));
    EXPECT_EQ(forward.hash(), backward.hash());
    EXPECT_NE(forward.hash(), (NSDictionary{{"a", 2}, {"b", NSArray{1, 2}}, {"c", NSSet{3, 4}}}).hash());
}

TEST(Equality, sortsByAnOrderThatContradictsItself) {
    NSMutableArray builder;
    for (int i = 0; i < 2000; ++i) {
        builder.addObject(i);
    }
    unsigned state = 1;
    const NSArray shuffled =
        builder.array().sortedArrayUsingComparator([&](const NSObject&, const NSObject&) {
            state = state * 1664525U + 1013904223U;
            return static_cast<int>(state >> 16) % 3 - 1;
        });
    EXPECT_EQ(NSSet::setWithArray(shuffled).count(), 2000U);
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
