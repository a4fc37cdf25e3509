// SPDX-License-Identifier: MIT
// Which values a property list can hold.
#include "foundation/process/PropertyListValue.h"

#include <gtest/gtest.h>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSSet.h"
#include "foundation/objects/NSURL.h"

using namespace ZQFoundation;

namespace {

class Thing : public NSObjectProtocol {};

} // namespace

TEST(PropertyListValue, knowsWhatAPropertyListHolds) {
    const NSObject values[] = {"text",
                               "",
                               1,
                               -1,
                               UINT64_MAX,
                               0.5,
                               0.5f,
                               true,
                               NSDate::date(),
                               NSData::data(),
                               NSArray::array(),
                               NSDictionary::dictionary(),
                               NSArray{1, NSDictionary{{"k", NSArray{"x", false}}}}};
    for (const NSObject& value : values) {
        EXPECT_TRUE(detail::isPropertyListValue(value)) << value.condensedDescription().utf8();
    }
}

TEST(PropertyListValue, refusesEverythingElseAtAnyDepth) {
    const NSObject values[] = {nullptr,
                               NSNull::null(),
                               NSSet::set(),
                               NSURL::URLWithString("x:y"),
                               makeObject<Thing>(),
                               classOf<Thing>(),
                               NSDictionary{{1, "number as key"}}};
    for (const NSObject& value : values) {
        EXPECT_FALSE(detail::isPropertyListValue(value)) << value.className().utf8();
        if (value) {
            EXPECT_FALSE(detail::isPropertyListValue(NSArray{1, NSDictionary{{"k", value}}}));
        }
    }
}

TEST(PropertyListValue, looksIntoDeepNestingWithoutRecursion) {
    NSObject value = "inside";
    for (int level = 0; level < 100000; ++level) {
        value = NSArray::arrayWithObject(value);
    }
    EXPECT_TRUE(detail::isPropertyListValue(value));
}

TEST(PropertyListValue, looksIntoSharedCollectionsOnce) {
    NSObject value = NSArray::arrayWithObject("inside");
    for (int level = 0; level < 200; ++level) {
        value = NSArray::arrayWithObjects(value, value); // 2 to the power of 200 ways down
    }
    EXPECT_TRUE(detail::isPropertyListValue(value));
}
