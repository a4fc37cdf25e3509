// SPDX-License-Identifier: MIT
// Values of any type: conversions, copies, comparison and nil.
#include "foundation/objects/NSObject.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSSet.h"
#include "foundation/objects/NSURL.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;

namespace {

// A handle is copied everywhere, so its size and how it moves are part of its contract.
template <class Handle>
constexpr bool isLightHandle =
    sizeof(Handle) == 2 * sizeof(void*) &&
    std::is_nothrow_copy_constructible_v<Handle>&& std::is_nothrow_move_constructible_v<
        Handle>&& std::is_nothrow_move_assignable_v<Handle>&& std::is_nothrow_default_constructible_v<Handle>;
static_assert(isLightHandle<NSObject> && isLightHandle<NSString> && isLightHandle<NSNumber>);
static_assert(isLightHandle<NSDate> && isLightHandle<NSData> && isLightHandle<NSURL> &&
              isLightHandle<NSNull>);
static_assert(isLightHandle<NSArray> && isLightHandle<NSDictionary> && isLightHandle<NSSet> &&
              isLightHandle<Class>);

// What must not turn into a value silently.
static_assert(!std::is_constructible_v<NSObject, char>);
static_assert(!std::is_constructible_v<NSObject, char16_t>);
static_assert(!std::is_constructible_v<NSObject, wchar_t>);
static_assert(!std::is_constructible_v<NSObject, int*>);
static_assert(!std::is_constructible_v<NSObject, const void*>);
static_assert(!std::is_convertible_v<NSObject, NSString>);
static_assert(!std::is_convertible_v<NSObject, NSNumber>);
static_assert(!std::is_convertible_v<NSObject, NSArray>);
static_assert(!std::is_convertible_v<NSObject, bool>);
static_assert(!std::is_convertible_v<const char*, NSNumber>);
static_assert(!std::is_convertible_v<int, NSString>);
static_assert(!std::is_convertible_v<bool, NSString>);
static_assert(!std::is_convertible_v<NSString, NSNumber>);

NSDate referenceDate() { return NSDate::dateWithTimeIntervalSinceReferenceDate(0); }

NSData threeBytes() { return NSData::dataWithBytes_length("\x01\x02\x03", 3); }

// MARK: Literals

TEST(NSObject, aLiteralTextIsAStringAndNeverATruthValue) {
    const NSObject text("true");
    EXPECT_TRUE(text.as<NSString>());
    EXPECT_FALSE(text.as<NSNumber>());
    EXPECT_EQ(shown(text), "true");
    const char* const pointer = "0";
    EXPECT_TRUE(NSObject(pointer).as<NSString>());
    EXPECT_TRUE(NSArray{"x"}[0].as<NSString>());
    EXPECT_TRUE((NSDictionary{{"k", "v"}}).objectForKey("k").as<NSString>());
}

TEST(NSObject, aNullCharacterPointerIsNil) {
    const char* const none = nullptr;
    const char16_t* const noUnits = nullptr;
    EXPECT_FALSE(NSObject(none));
    EXPECT_FALSE(NSObject(noUnits));
    EXPECT_FALSE(NSObject(nullptr));
    EXPECT_FALSE(NSObject());
    EXPECT_TRUE(NSObject(""));
}

TEST(NSObject, aZeroLiteralIsTheNumberZero) {
    const NSObject zero = 0;
    EXPECT_TRUE(zero);
    EXPECT_TRUE(zero.as<NSNumber>());
    EXPECT_EQ(shown(zero), "0");
}

TEST(NSObject, everyIntegerTypeKeepsItsValue) {
    const struct {
        const char* name;
        NSObject value;
        const char* text;
    } rows[] = {
        {"signed char", static_cast<signed char>(-128), "-128"},
        {"unsigned char", static_cast<unsigned char>(255), "255"},
        {"short", static_cast<short>(-32768), "-32768"},
        {"unsigned short", static_cast<unsigned short>(65535), "65535"},
        {"int", std::numeric_limits<int>::lowest(), "-2147483648"},
        {"unsigned", std::numeric_limits<unsigned>::max(), "4294967295"},
        {"long", std::numeric_limits<long>::lowest(), "-9223372036854775808"},
        {"unsigned long", std::numeric_limits<unsigned long>::max(), "18446744073709551615"},
        {"long long", std::numeric_limits<long long>::max(), "9223372036854775807"},
        {"unsigned long long", std::numeric_limits<unsigned long long>::max(), "18446744073709551615"},
        {"just beyond the signed range", UINT64_C(9223372036854775808), "9223372036854775808"},
        {"unsigned one", UINT64_C(1), "1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(row.value), row.text) << row.name;
    }
}

TEST(NSObject, textOfEverySortBecomesAString) {
    const NSString expected = "caf\u00e9";
    EXPECT_EQ(NSObject("caf\u00e9"), expected);
    EXPECT_EQ(NSObject(u"caf\u00e9"), expected);
    EXPECT_EQ(NSObject(u8"caf\u00e9"), expected);
    EXPECT_EQ(NSObject("caf\u00e9"s), expected);
    EXPECT_EQ(NSObject(std::string_view("caf\u00e9")), expected);
    EXPECT_EQ(NSObject(u"caf\u00e9"s), expected);
    EXPECT_EQ(NSObject(StringView("caf\u00e9")), expected);
}

// MARK: Nil

TEST(NSObject, messagesToNilGiveNothing) {
    const NSObject none;
    EXPECT_FALSE(none.className());
    EXPECT_FALSE(none.description());
    EXPECT_FALSE(none.condensedDescription());
    EXPECT_FALSE(none.boolValue());
    EXPECT_EQ(none.hash(), 0U);
    EXPECT_FALSE(none.offeredStringValue().has_value());
    EXPECT_FALSE(none.offeredIntValue().has_value());
    EXPECT_FALSE(none.offeredFloatValue().has_value());
    EXPECT_EQ(none.hostObject(), nullptr);
}

TEST(NSObject, nilIsEqualToNothingButTwoNilHandlesAreTheSame) {
    const NSObject none;
    EXPECT_FALSE(none.isEqual(none));
    EXPECT_FALSE(none.isEqual("x"));
    EXPECT_FALSE(NSObject("x").isEqual(none));
    EXPECT_FALSE(NSObject(0).isEqual(none));
    EXPECT_FALSE(NSObject(NSNull::null()).isEqual(none));
    EXPECT_TRUE(none == NSObject());
    EXPECT_TRUE(NSString() == NSString());
    EXPECT_TRUE(NSString() == nullptr);
    EXPECT_FALSE(none == NSObject(0));
    EXPECT_FALSE(none == NSObject(NSNull::null()));
    EXPECT_FALSE(NSString() == "");
}

TEST(NSObject, theNullObjectIsAValue) {
    EXPECT_TRUE(NSNull::null());
    EXPECT_EQ(shown(NSNull::null()), "<null>");
    EXPECT_TRUE(NSNull::null().isEqual(NSNull::null()));
    EXPECT_EQ(NSNull::null().hash(), NSNull::null().hash());
    EXPECT_FALSE(NSNull());
}

// MARK: Names and text forms

TEST(NSObject, valuesNameTheirClassAndHaveHandlesOfNoOtherType) {
    const struct {
        NSObject value;
        const char* name;
    } rows[] = {
        {"x", "NSString"},
        {1, "NSNumber"},
        {true, "NSNumber"},
        {2.5, "NSNumber"},
        {1.5F, "NSNumber"},
        {UINT64_MAX, "NSNumber"},
        {referenceDate(), "NSDate"},
        {threeBytes(), "NSData"},
        {NSURL::URLWithString("http://h/"), "NSURL"},
        {NSArray::array(), "NSArray"},
        {NSDictionary::dictionary(), "NSDictionary"},
        {NSSet::set(), "NSSet"},
        {NSNull::null(), "NSNull"},
        {classOf<Offering>(), "Offering"},
        {makeObject<Offering>(), "Offering"},
        {NSObject(), "(nil)"},
    };
    for (const auto& [value, name] : rows) {
        EXPECT_EQ(utf8Of(value.className()), name);
        const int handles = (value.as<NSString>() ? 1 : 0) + (value.as<NSNumber>() ? 1 : 0) +
                            (value.as<NSDate>() ? 1 : 0) + (value.as<NSData>() ? 1 : 0) +
                            (value.as<NSArray>() ? 1 : 0) + (value.as<NSDictionary>() ? 1 : 0) +
                            (value.as<NSSet>() ? 1 : 0) + (value.as<NSNull>() ? 1 : 0) +
                            (value.as<Class>() ? 1 : 0) + (value.as<NSURL>() ? 1 : 0) +
                            (value.hostObject() != nullptr ? 1 : 0);
        EXPECT_EQ(handles, value ? 1 : 0) << name;
    }
}

TEST(NSObject, numbersOfferAllFormsStringsTwoAndOthersNone) {
    EXPECT_EQ(utf8Of(NSObject(2.5).offeredStringValue().value()), "2.5");
    EXPECT_EQ(NSObject(2.5).offeredIntValue(), 2);
    EXPECT_EQ(NSObject(2.5).offeredFloatValue(), 2.5F);
    EXPECT_EQ(utf8Of(NSObject(true).offeredStringValue().value()), "1");

    EXPECT_FALSE(NSObject("12.5").offeredStringValue().has_value());
    EXPECT_EQ(NSObject("12.5").offeredIntValue(), 12);
    EXPECT_EQ(NSObject("12.5").offeredFloatValue(), 12.5F);

    const NSObject others[] = {referenceDate(),        threeBytes(),       NSArray{1, 2},
                               NSDictionary{{"k", 1}}, NSSet{1},           NSNull::null(),
                               makeObject<Offering>(), classOf<Offering>()};
    for (const NSObject& value : others) {
        EXPECT_FALSE(value.offeredStringValue().has_value()) << shown(value);
        EXPECT_FALSE(value.offeredIntValue().has_value()) << shown(value);
        EXPECT_FALSE(value.offeredFloatValue().has_value()) << shown(value);
    }
}

// Test runners print by the static type of what they compare.
TEST(NSObject, valuesPrintThemselvesInTests) {
    EXPECT_EQ(testing::PrintToString(NSObject(NSArray{1, "a"})), "( 1, a )");
    EXPECT_EQ(testing::PrintToString(NSArray{1, "a"}), "( 1, a )");
    EXPECT_EQ(testing::PrintToString(NSString("text")), "text");
    EXPECT_EQ(testing::PrintToString(NSNumber(2.5)), "2.5");
    EXPECT_EQ(testing::PrintToString(NSDictionary{{"k", "v"}}), "{ k = v; }");
    EXPECT_NE(testing::PrintToString(NSObject()), "");
}

// MARK: Equality across kinds of values

TEST(NSObject, valuesOfDifferentKindsAreNeverEqual) {
    const NSObject values[] = {
        "1",
        1,
        "",
        NSArray{"1"},
        NSSet{"1"},
        NSDictionary{{"1", "1"}},
        NSArray::array(),
        NSSet::set(),
        NSDictionary::dictionary(),
        NSData::data(),
        NSData::dataWithBytes_length("1", 1),
        NSNull::null(),
        NSDate::dateWithTimeIntervalSinceReferenceDate(1),
        classOf<Offering>(),
        makeObject<Offering>(),
        NSURL::URLWithString("1"),
    };
    const std::size_t count = std::size(values);
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_TRUE(values[i]) << i;
        for (std::size_t j = 0; j < count; ++j) {
            EXPECT_EQ(values[i].isEqual(values[j]), i == j) << i << ' ' << j;
        }
    }
}

// MARK: Handles

TEST(NSObject, copiesShareOneBody) {
    int destroyed = 0;
    {
        NSObject first = makeObject<Offering>(&destroyed);
        NSObject second = first;
        EXPECT_EQ(first.hostObject(), second.hostObject());
        first = nullptr;
        EXPECT_EQ(destroyed, 0);
        EXPECT_FALSE(first);
        NSObject third = std::move(second);
        EXPECT_NE(third.hostObject(), nullptr);
        EXPECT_EQ(destroyed, 0);
        third = 1;
        EXPECT_EQ(destroyed, 1);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(NSObject, aHandleSurvivesAssignmentToItself) {
    int destroyed = 0;
    NSObject object = makeObject<Offering>(&destroyed);
    NSObject& same = object;
    object = same;
    EXPECT_TRUE(object);
    object = std::move(same);
    EXPECT_TRUE(object);
    EXPECT_EQ(destroyed, 0);
    object.swap(same);
    EXPECT_TRUE(object);
}

TEST(NSObject, aHandleMayTakeAnElementOfItsOwnCollection) {
    int destroyed = 0;
    NSObject object = NSArray::arrayWithObject(NSArray::arrayWithObject(makeObject<Offering>(&destroyed)));
    object = object.as<NSArray>()[0];
    ASSERT_EQ(object.as<NSArray>().count(), 1U);
    object = object.as<NSArray>()[0];
    EXPECT_NE(object.hostObject(), nullptr);
    EXPECT_EQ(destroyed, 0);
    object = NSObject();
    EXPECT_EQ(destroyed, 1);
}

TEST(NSObject, collectionsReleaseTheirElements) {
    int destroyed = 0;
    {
        const NSObject object = makeObject<Offering>(&destroyed);
        const NSArray array{object, object, NSSet{object}};
        const NSDictionary dictionary{{"k", object}, {object, array}};
        EXPECT_EQ(dictionary.count(), 2U);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(NSObject, numbersDatesAndNilNeedNoMemory) {
    const std::size_t before = kit::AllocationCount::now();
    const NSObject values[] = {
        1, true, 2.5, 1.5F, UINT64_MAX, referenceDate(), NSNull::null(), nullptr, classOf<Offering>()};
    const NSObject copies[] = {values[0], values[5], values[8]};
    const bool equal = copies[0].isEqual(1.0) && copies[1].isEqual(referenceDate()) && values[3].isEqual(1.5);
    const std::size_t after = kit::AllocationCount::now();
    EXPECT_TRUE(equal);
    EXPECT_EQ(after, before);
}

// Without this the tests that expect no allocation could not fail.
TEST(NSObject, theCountOfAllocationsSeesTheBodyOfAString) {
    const std::size_t before = kit::AllocationCount::now();
    const NSString text(
        "a text that is longer than any handle could hold in itself, however cleverly it packs it");
    const std::size_t made = kit::AllocationCount::now();
    const NSString copy = text;
    const std::size_t copied = kit::AllocationCount::now();
    EXPECT_EQ(made, before + 1) << "one allocation for a string, its units stored with its header";
    EXPECT_EQ(copied, made);
    EXPECT_EQ(copy.length(), text.length());
}

TEST(NSObjectConcurrency, copiesMadeByManyConcurrentThreadsAreCounted) {
    int destroyed = 0;
    {
        const NSObject shared = NSArray{makeObject<Offering>(&destroyed), "text", NSDictionary{{"k", "v"}}};
        kit::inThreads(8, [&shared](std::size_t) {
            for (int turn = 0; turn < 20000; ++turn) {
                const NSObject copy = shared;
                const NSObject element = copy.as<NSArray>()[static_cast<std::size_t>(turn % 3)];
                NSMutableArray own;
                own.addObject(element);
                ASSERT_EQ(own.array().count(), 1U);
            }
        });
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

} // namespace
