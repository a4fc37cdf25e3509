// SPDX-License-Identifier: MIT
// Creating, comparing and changing dictionaries.
#include "foundation/objects/NSDictionary.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

/// "key=value " for each entry in the order of the walk.
std::string walked(const NSDictionary& dictionary) {
    std::string text;
    for (const NSDictionaryEntry& entry : dictionary) {
        text += shown(entry.key) + "=" + shown(entry.value) + " ";
    }
    return text;
}

// MARK: Entries

TEST(NSDictionary, isWalkedInTheOrderOfEntering) {
    const NSDictionary dictionary{{"b", 1}, {"a", 2}, {"C", 3}};
    EXPECT_EQ(walked(dictionary), "b=1 a=2 C=3 ");
    EXPECT_TRUE(dictionary.allKeys().isEqualToArray(NSArray{"b", "a", "C"}));
    EXPECT_TRUE(dictionary.allValues().isEqualToArray(NSArray{1, 2, 3}));
    const NSDictionary many = numbered(1000);
    int next = 0;
    for (const NSDictionaryEntry& entry : many) {
        ASSERT_EQ(entry.value, next);
        ++next;
    }
    EXPECT_EQ(next, 1000);
}

TEST(NSDictionary, theLastOfEqualKeysWinsInThePlaceOfTheFirst) {
    EXPECT_EQ(walked(NSDictionary{{"a", 1}, {"b", 2}, {"a", 3}}), "a=3 b=2 ");
    NSMutableDictionary builder;
    builder.setObject_forKey(1, "a");
    builder.setObject_forKey(2, "b");
    builder.setObject_forKey(3, u"a");
    EXPECT_EQ(builder.count(), 2U);
    EXPECT_EQ(walked(builder.dictionary()), "a=3 b=2 ");
}

TEST(NSDictionary, emptyBracesAreNilAndTheEmptyDictionaryIsAValue) {
    EXPECT_FALSE(NSDictionary{});
    EXPECT_TRUE(NSDictionary::dictionary());
    EXPECT_EQ(NSDictionary::dictionary().count(), 0U);
    EXPECT_FALSE(NSDictionary::dictionary().objectForKey("k"));
    EXPECT_EQ(NSDictionary::dictionary().allKeys().count(), 0U);
    EXPECT_TRUE(NSDictionary::dictionary().allKeys());
}

TEST(NSDictionary, findsATextInWhateverFormItIsGiven) {
    const NSDictionary dictionary{{"plain", 1}, {"caf\u00e9", 2}, {"a\0b"sv, 3},
                                  {"a", 4},     {"", 5},          {"\uFFFD", 6}};
    const struct {
        const char* name;
        NSObject found;
        int expected;
    } rows[] = {
        {"literal", dictionary.objectForKey("plain"), 1},
        {"units", dictionary.objectForKey(u"plain"), 1},
        {"a view", dictionary.objectForKey("plainer"sv.substr(0, 5)), 1},
        {"NSString", dictionary.objectForKey(NSString("plain")), 1},
        {"UTF-8", dictionary.objectForKey("caf\u00e9"), 2},
        {"UTF-16", dictionary.objectForKey(u"caf\u00e9"), 2},
        {"U+0000 inside", dictionary.objectForKey("a\0b"sv), 3},
        {"U+0000 inside, units", dictionary.objectForKey(u"a\0b"sv), 3},
        {"up to U+0000", dictionary.objectForKey("a"), 4},
        {"ill-formed", dictionary.objectForKey("\xFF"), 6},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.found, row.expected) << row.name;
    }
    EXPECT_FALSE(dictionary.objectForKey("Plain"));
    EXPECT_FALSE(dictionary.objectForKey("plain "));
    EXPECT_FALSE(dictionary.objectForKey("cafe\u0301"));
}

TEST(NSDictionary, givesNilForANilKey) {
    const NSDictionary dictionary{{"k", 1}, {"", 2}};
    const char* const none = nullptr;
    EXPECT_FALSE(dictionary.objectForKey(NSObject()));
    EXPECT_FALSE(dictionary.objectForKey(NSString()));
    EXPECT_FALSE(dictionary.objectForKey(StringView()));
    EXPECT_FALSE(dictionary.objectForKey(none));
}

TEST(NSDictionary, findsALiteralTextWithoutAllocating) {
    const NSDictionary dictionary = numbered(1000);
    const NSDictionary other{{"caf\u00e9", 1}, {"TraceNetwork", true}};
    int found = 0;
    const std::size_t before = kit::AllocationCount::now();
    found += dictionary.objectForKey("key999").isEqual(999) ? 1 : 0;
    found += dictionary.objectForKey(u"key998").isEqual(998) ? 1 : 0;
    found += dictionary.objectForKey("nokey") ? 0 : 1;
    found += other.objectForKey("caf\u00e9").isEqual(1) ? 1 : 0;
    found += other.objectForKey(u"caf\u00e9").isEqual(1) ? 1 : 0;
    found += other.objectForKey(StringView("TraceNetwork")).isEqual(true) ? 1 : 0;
    const std::size_t after = kit::AllocationCount::now();
    EXPECT_EQ(found, 6);
    EXPECT_EQ(after, before);
}

TEST(NSDictionary, takesAnyValueAsAKey) {
    const NSObject host = makeObject<Offering>();
    const NSObject keys[] = {"1",
                             1,
                             2.5,
                             UINT64_MAX,
                             NSNull::null(),
                             NSDate::dateWithTimeIntervalSinceReferenceDate(1),
                             NSData::dataWithBytes_length("1", 1),
                             NSArray{1, 2},
                             NSDictionary{{"k", 1}},
                             NSSet{1},
                             host,
                             classOf<Offering>()};
    NSMutableDictionary builder;
    int next = 0;
    for (const NSObject& key : keys) {
        builder.setObject_forKey(next++, key);
    }
    const NSDictionary dictionary = builder.dictionary();
    ASSERT_EQ(dictionary.count(), std::size(keys));
    next = 0;
    for (const NSObject& key : keys) {
        EXPECT_EQ(dictionary.objectForKey(key), next++);
    }
    EXPECT_EQ(dictionary.objectForKey(NSArray{1.0, 2}), 7) << "equal, not the same";
    EXPECT_EQ(dictionary.objectForKey(1.0), 1);
    EXPECT_EQ(dictionary.objectForKey(true), 1);
    EXPECT_FALSE(dictionary.objectForKey(makeObject<Offering>())) << "another object of the class";
}

TEST(NSDictionary, numbersEqualByValueAreOneKeyAndTextIsAnother) {
    const NSDictionary dictionary{{1, "integer"}, {1.0, "real"}, {true, "truth"}, {"1", "text"}};
    EXPECT_EQ(dictionary.count(), 2U);
    EXPECT_EQ(dictionary.objectForKey(1U), "truth");
    EXPECT_EQ(dictionary.objectForKey("1"), "text");
}

TEST(NSDictionary, raisesForANilKeyOrValue) {
    const char* const noText = nullptr;
    NSMutableDictionary builder;
    builder.setObject_forKey(1, "k");
    EXPECT_EQ(raised([&] { NSDictionary d{{"k", nullptr}}; }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSDictionary d{{nullptr, "v"}}; }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { NSDictionary d{{"a", 1}, {"k", noText}}; }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { builder.setObject_forKey(nullptr, "k"); }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { builder.setObject_forKey(1, nullptr); }), NSInvalidArgumentException);
    EXPECT_EQ(raised([&] { builder.setObject_forKey(1, NSString()); }), NSInvalidArgumentException);
    EXPECT_EQ(walked(builder.dictionary()), "k=1 ") << "unharmed";
}

TEST(NSDictionary, isEqualByContentInAnyOrder) {
    const NSDictionary left{{"a", 1}, {"b", NSArray{"x"}}};
    EXPECT_TRUE(left.isEqualToDictionary(NSDictionary{{"b", NSArray{"x"}}, {"a", true}}));
    EXPECT_FALSE(left.isEqualToDictionary(NSDictionary{{"a", 1}}));
    EXPECT_FALSE(left.isEqualToDictionary(NSDictionary{{"a", 1}, {"c", NSArray{"x"}}}));
    EXPECT_FALSE(left.isEqualToDictionary(NSDictionary{{"a", 2}, {"b", NSArray{"x"}}}));
    EXPECT_FALSE(left.isEqualToDictionary(nullptr));
    EXPECT_TRUE(NSDictionary::dictionary().isEqualToDictionary(NSDictionary::dictionary()));
    EXPECT_EQ(left.hash(), (NSDictionary{{"b", NSArray{u"x"}}, {"a", 1.0}}).hash());
}

TEST(NSDictionary, aMessageToANilDictionaryGivesNothing) {
    const NSDictionary none;
    EXPECT_EQ(none.count(), 0U);
    EXPECT_FALSE(none.objectForKey("k"));
    EXPECT_FALSE(none.objectForKey(NSObject(1)));
    EXPECT_FALSE(none.allKeys());
    EXPECT_FALSE(none.allValues());
    EXPECT_FALSE(none.isEqualToDictionary(none));
    EXPECT_EQ(none.begin(), none.end());
    EXPECT_FALSE(none.condensedDescription());
    EXPECT_FALSE(none.boolForKey("k"));
    EXPECT_EQ(none.floatForKey("k"), 0.0F);
    EXPECT_EQ(none.integerForKey("k"), 0);
    EXPECT_FALSE(NSDictionary(NSObject("{}")));
}

// MARK: Builders

TEST(NSMutableDictionary, removesKeysAndKeepsTheOrderOfTheRest) {
    NSMutableDictionary builder(NSDictionary{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}});
    builder.removeObjectForKey("b");
    builder.removeObjectForKey("nothing");
    builder.removeObjectForKey(NSObject());
    EXPECT_EQ(builder.count(), 3U);
    EXPECT_FALSE(builder.objectForKey("b"));
    EXPECT_EQ(builder.objectForKey("d"), 4);
    builder.setObject_forKey(5, "b");
    EXPECT_EQ(walked(builder.dictionary()), "a=1 c=3 d=4 b=5 ");
    EXPECT_EQ(builder.count(), 0U);
}

TEST(NSMutableDictionary, removedEntriesAreReleased) {
    int destroyed = 0;
    NSMutableDictionary builder;
    builder.setObject_forKey(makeObject<Offering>(&destroyed), "k");
    builder.setObject_forKey(makeObject<Offering>(&destroyed), "k");
    EXPECT_EQ(destroyed, 1) << "replaced";
    builder.removeObjectForKey("k");
    EXPECT_EQ(destroyed, 2) << "removed";
    EXPECT_EQ(builder.count(), 0U);
    EXPECT_TRUE(builder.dictionary().isEqual(NSDictionary::dictionary()));
}

TEST(NSMutableDictionary, handsItsEntriesOverWithoutACopy) {
    NSMutableDictionary builder;
    for (int i = 0; i < 10000; ++i) {
        builder.setObject_forKey(i, i);
    }
    const std::size_t before = kit::AllocationCount::now();
    const NSDictionary dictionary = builder.dictionary();
    const std::size_t after = kit::AllocationCount::now();
    EXPECT_EQ(after, before);
    EXPECT_EQ(dictionary.count(), 10000U);
    EXPECT_EQ(dictionary.objectForKey(NSObject(9999)), 9999);
}

TEST(NSMutableDictionary, isEmptyOnceTheEntriesAreHandedOver) {
    NSMutableDictionary builder;
    EXPECT_TRUE(builder.dictionary()) << "an untouched builder gives an empty dictionary, not nil";
    builder.setObject_forKey(1, "a");
    const NSDictionary first = builder.dictionary();
    builder.setObject_forKey(2, "a");
    builder.setObject_forKey(3, "b");
    EXPECT_EQ(walked(first), "a=1 ");
    EXPECT_EQ(walked(builder.dictionary()), "a=2 b=3 ");
}

TEST(NSMutableDictionary, leavesTheDictionaryItWasMadeFromAlone) {
    const NSDictionary source{{"a", 1}, {"b", 2}};
    NSMutableDictionary builder(source);
    builder.setObject_forKey(9, "a");
    builder.removeObjectForKey("b");
    EXPECT_EQ(walked(source), "a=1 b=2 ");
    EXPECT_EQ(walked(builder.dictionary()), "a=9 ");
    EXPECT_EQ(NSMutableDictionary(NSDictionary()).dictionary().count(), 0U);
}

TEST(NSMutableDictionary, movesWithItsEntries) {
    NSMutableDictionary first;
    first.setObject_forKey(1, "a");
    NSMutableDictionary second(std::move(first));
    NSMutableDictionary third;
    third.setObject_forKey(2, "b");
    third = std::move(second);
    EXPECT_EQ(walked(third.dictionary()), "a=1 ");
    static_assert(!std::is_copy_constructible_v<NSMutableDictionary>);
}

} // namespace
