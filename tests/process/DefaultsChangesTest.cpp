// SPDX-License-Identifier: MIT
// Changes of user defaults that are not saved yet, also in forked children.
#include "foundation/process/DefaultsChanges.h"

#include "foundation/objects/NSNumber.h"
#include "tests/kit/Child.h"

using namespace ZQFoundation;
using detail::DefaultsChanges;

TEST(DefaultsChanges, areMadeToTheValuesOfAFile) {
    const NSDictionary changes{{"Set", 2}, {"Removed", NSNull::null()}, {"Absent", NSNull::null()}};
    EXPECT_EQ(detail::withChanges({{"Set", 1}, {"Removed", 1}, {"Kept", 1}}, changes),
              (NSDictionary{{"Set", 2}, {"Kept", 1}}));
    EXPECT_EQ(detail::withChanges(nullptr, changes), (NSDictionary{{"Set", 2}}));
    EXPECT_FALSE(detail::withChanges(nullptr, NSDictionary::dictionary()))
        << "a file that is not there stays so";
}

TEST(DefaultsChanges, areForgottenOnceSavedUnlessTheyWereMadeAgain) {
    static constinit DefaultsChanges changes; // never destroyed
    changes.add("a", "Saved");
    changes.add("b", "Again");
    changes.add("c", "Same");
    const DefaultsChanges::Record saved = changes.own();
    EXPECT_EQ(saved.values, (NSDictionary{{"Saved", "a"}, {"Again", "b"}, {"Same", "c"}}));
    changes.add("later", "Again");
    changes.add("c", "Same");
    changes.add("new", "New");
    changes.forget(saved);
    EXPECT_EQ(changes.values(), (NSDictionary{{"Again", "later"}, {"Same", "c"}, {"New", "new"}}));
    changes.forget(changes.own());
    EXPECT_EQ(changes.own().values.count(), 0U);
}

TEST(DefaultsChanges, ofAParentAreSeenInAForkedChildAndNotItsOwn) {
    static constinit DefaultsChanges changes; // never destroyed
    changes.add("parent's", "Key");
    changes.add("parent's", "Other");
    kit::expectInChild([] {
        EXPECT_EQ(changes.values().count(), 2U);
        EXPECT_EQ(changes.own().values.count(), 0U);
        changes.add("child's", "Key");
        EXPECT_EQ(changes.own().values, (NSDictionary{{"Key", "child's"}}));
    });
    EXPECT_EQ(changes.own().values.count(), 2U);
}
