// SPDX-License-Identifier: MIT
// Property lists from bytes and to bytes, with the reason of a failure.
#include "foundation/plist/NSPropertyListSerialization.h"

#include <gtest/gtest.h>

#include "PropertyListTesting.h"
#include "foundation/objects/Class.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSSet.h"
#include "foundation/objects/NSURL.h"
#include "tests/kit/Values.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;
using kit::dataOf;

class Part : public NSObjectProtocol {};

TEST(NSPropertyListSerialization, readsAndSaysWhatIsWrong) {
    NSString errorText = "before";
    EXPECT_EQ(show(NSPropertyListSerialization::propertyListWithData(dataOf("(a)"), &errorText)), "['a']");
    EXPECT_FALSE(errorText);
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(dataOf("(\na"), &errorText));
    EXPECT_EQ(errorText, "An array's element must be followed by ',' or ')' (line 2, column 2)");
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(nullptr, &errorText));
    EXPECT_EQ(errorText, "There is no data (byte 0)");
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(NSData::data(), &errorText));
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(dataOf("(")));
}

TEST(NSPropertyListSerialization, writesTwoForms) {
    const NSDictionary value{{"a", NSArray{1, "b"}}};
    NSString errorText = "before";
    const NSData xml = NSPropertyListSerialization::dataWithPropertyList_format(
        value, NSPropertyListXMLFormat_v1_0, &errorText);
    EXPECT_FALSE(errorText);
    EXPECT_EQ(show(NSPropertyListSerialization::propertyListWithData(xml)), "{'a': [1, 'b']}");
    const NSData old =
        NSPropertyListSerialization::dataWithPropertyList_format(value, NSPropertyListOpenStepFormat);
    EXPECT_EQ(show(NSPropertyListSerialization::propertyListWithData(old)), "{'a': ['1', 'b']}");
    EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList_format(
        value, NSPropertyListBinaryFormat_v1_0, &errorText));
    EXPECT_EQ(errorText, "Property lists are written in the XML and the old-style form only");
    EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList_format(value, NSPropertyListFormat{7}));
}

TEST(NSPropertyListSerialization, refusesWhatNoPropertyListHolds) {
    for (const NSPropertyListFormat format : {NSPropertyListXMLFormat_v1_0, NSPropertyListOpenStepFormat}) {
        for (const NSObject& value :
             {NSObject(), NSObject(NSNull::null()), makeObject<Part>(), NSObject(classOf<Part>()),
              NSObject(NSSet::set()), NSObject(NSURL::URLWithString("http://a/"))}) {
            NSString errorText;
            EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList_format(value, format, &errorText));
            EXPECT_TRUE(errorText);
            if (value) {
                EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList_format(
                    NSDictionary{{"a", value}}, format));
                EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList_format(
                    NSDictionary{{value, "a"}}, format));
            }
        }
    }
}

} // namespace
