// SPDX-License-Identifier: MIT
// The table of dictionaries and sets while it grows, has holes, and has keys of one hash.
#include "foundation/objects/KeyTable.h"

#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::numbered;

namespace {

/// A key whose hash is always the same, so that everything depends on equality.
class Colliding : public NSObjectProtocol {
public:
    explicit Colliding(int number) : number_(number) {}
    bool isEqual(const NSObject& other) const override {
        const auto* that = dynamic_cast<const Colliding*>(other.hostObject());
        return that != nullptr && that->number_ == number_;
    }
    std::size_t hash() const override { return 42; }

private:
    int number_;
};

TEST(KeyTable, keepsKeysOfOneHashApart) {
    NSMutableDictionary builder;
    for (int i = 0; i < 200; ++i) {
        builder.setObject_forKey(i, makeObject<Colliding>(i));
    }
    for (int i = 0; i < 200; i += 2) {
        builder.removeObjectForKey(makeObject<Colliding>(i));
    }
    const NSDictionary dictionary = builder.dictionary();
    EXPECT_EQ(dictionary.count(), 100U);
    for (int i = 0; i < 200; ++i) {
        const NSObject found = dictionary.objectForKey(makeObject<Colliding>(i));
        EXPECT_TRUE(i % 2 == 0 ? !found : found.isEqual(i)) << i;
    }
}

TEST(KeyTable, growsFromACopyOfTheEmptyDictionary) {
    NSMutableDictionary builder(NSDictionary::dictionary());
    for (int i = 0; i < 100; ++i) {
        builder.setObject_forKey(i, i);
    }
    const NSDictionary dictionary = builder.dictionary();
    ASSERT_EQ(dictionary.count(), 100U);
    EXPECT_EQ(dictionary.objectForKey(99), NSObject(99));
}

TEST(KeyTable, growsWhileEntriesComeAndGo) {
    NSMutableDictionary builder;
    for (int i = 0; i < 1000; ++i) {
        builder.setObject_forKey(i, i);
        if (i % 3 != 0) {
            builder.removeObjectForKey(i - 1);
        }
    }
    const NSDictionary dictionary = builder.dictionary();
    for (const NSDictionaryEntry& entry : dictionary) {
        EXPECT_EQ(dictionary.objectForKey(entry.key), entry.value);
    }
    EXPECT_EQ(dictionary.objectForKey(999), NSObject(999));
    EXPECT_FALSE(dictionary.objectForKey(997));
}

TEST(KeyTable, staysRightThroughManyRemovals) {
    NSMutableDictionary builder(numbered(2000));
    for (int i = 0; i < 2000; ++i) {
        if (i % 3 != 0) {
            builder.removeObjectForKey(NSString("key" + std::to_string(i)));
        }
    }
    for (int i = 0; i < 2000; ++i) {
        const NSObject found = builder.objectForKey(NSString("key" + std::to_string(i)));
        ASSERT_EQ(static_cast<bool>(found), i % 3 == 0) << i;
    }
    const NSDictionary rest = builder.dictionary();
    ASSERT_EQ(rest.count(), 667U);
    int expected = 0;
    for (const NSDictionaryEntry& entry : rest) {
        ASSERT_EQ(entry.value, expected);
        expected += 3;
    }
}

} // namespace
