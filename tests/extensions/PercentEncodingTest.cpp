// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "foundation/objects/NSCharacterSet.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using TestValues::utf8Of;

namespace {

/// All of ASCII, U+0000 too, and a letter beyond.
NSString everyCharacter() {
    std::u16string units;
    for (char16_t unit = 0; unit < 0x80; ++unit) {
        units += unit;
    }
    return NSString(units + u"\u00E9");
}

TEST(PercentEncoding, byNameIsThatByTheSet) {
    const NSString text = everyCharacter();
    EXPECT_EQ(text.urlPathEncodedString(), text.stringByAddingPercentEncodingWithAllowedCharacters(
                                               NSCharacterSet::URLPathAllowedCharacterSet()));
    EXPECT_EQ(text.urlQueryEncodedString(), text.stringByAddingPercentEncodingWithAllowedCharacters(
                                                NSCharacterSet::URLQueryAllowedCharacterSet()));
    NSMutableCharacterSet component(NSCharacterSet::URLPathAllowedCharacterSet());
    component.removeCharactersInString(":/?@$&+,;=# ");
    EXPECT_EQ(text.urlEncodedString(),
              text.stringByAddingPercentEncodingWithAllowedCharacters(component.characterSet()));
}

TEST(PercentEncoding, takesExceptionsInEveryForm) {
    const NSString text("a:b/c");
    EXPECT_EQ(utf8Of(text.urlEncodedStringWithExceptions(":")), "a%3Ab/c");
    EXPECT_EQ(utf8Of(text.urlEncodedStringWithExceptions(u":")), "a%3Ab/c");
    EXPECT_EQ(utf8Of(text.urlEncodedStringWithExceptions(NSString(":"))), "a%3Ab/c");
    EXPECT_EQ(utf8Of(text.urlEncodedStringWithExceptions(u":\u012F")), "a%3Ab/c")
        << "its low byte is a slash";
    EXPECT_EQ(utf8Of(text.urlEncodedStringWithExceptions("\u00AF:")), "a%3Ab/c");
    EXPECT_EQ(utf8Of(text.urlEncodedStringWithExceptions(nullptr)), "a:b/c");
    EXPECT_EQ(utf8Of(text.urlEncodedStringWithExceptions("")), "a:b/c");
}

TEST(PercentEncoding, comesBack) {
    const NSString text = everyCharacter();
    EXPECT_EQ(text.urlEncodedString().urlDecodedString(), text);
    EXPECT_EQ(text.urlPathEncodedString().urlDecodedString(), text);
    EXPECT_EQ(text.urlQueryEncodedString().urlDecodedString(), text);
    EXPECT_EQ(text.urlEncodedString().urlEncodedString().urlDecodedString(), text.urlEncodedString());
}

TEST(PercentEncoding, ofSetsHasOneSharedSet) {
    EXPECT_EQ(NSCharacterSet::URLPathAllowedCharacterSet(), NSCharacterSet::URLPathAllowedCharacterSet());
    EXPECT_TRUE(NSCharacterSet::URLQueryAllowedCharacterSet().isSupersetOfSet(
        NSCharacterSet::URLPathAllowedCharacterSet()));
    EXPECT_FALSE(NSCharacterSet::URLPathAllowedCharacterSet().isSupersetOfSet(
        NSCharacterSet::URLQueryAllowedCharacterSet()));
}

} // namespace
