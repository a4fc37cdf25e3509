// SPDX-License-Identifier: MIT
// Exceptions: what they carry and how they are raised and caught.
#include "foundation/objects/NSException.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <type_traits>

#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

// What is thrown must be copied without a second exception.
static_assert(std::is_nothrow_copy_constructible_v<NSException>);
static_assert(std::is_nothrow_copy_assignable_v<NSException>);
static_assert(std::is_base_of_v<std::exception, NSException>);

TEST(NSException, hasNameReasonAndDictionary) {
    const NSException exception("Name", "why", NSDictionary{{"k", 1}});
    EXPECT_EQ(exception.name(), "Name");
    EXPECT_EQ(exception.reason(), "why");
    EXPECT_EQ(exception.userInfo().objectForKey("k"), 1);
    EXPECT_STREQ(exception.what(), "Name: why");
    EXPECT_FALSE(NSException("Name", "why").userInfo());
}

TEST(NSException, saysWhatItIsInUTF8) {
    EXPECT_STREQ(NSException("N\u00e4me", "\u20ac \U0001F600").what(), "N\u00e4me: \u20ac \U0001F600");
    EXPECT_STREQ(NSException("", "").what(), ": ");
}

TEST(NSException, carriesANilNameOrReasonAsAbsent) {
    const NSException exception(nullptr, nullptr);
    EXPECT_FALSE(exception.name());
    EXPECT_FALSE(exception.reason());
    EXPECT_NE(exception.what(), nullptr);
    EXPECT_NE(NSException("Name", nullptr).what(), nullptr);
    EXPECT_NE(std::strstr(NSException("Name", nullptr).what(), "Name"), nullptr);
    EXPECT_NE(std::strstr(NSException(nullptr, "why").what(), "why"), nullptr);
}

TEST(NSException, aCopyOutlivesTheOriginal) {
    std::optional<NSException> original(std::in_place, "Name", "a reason that is long enough to need a body");
    const NSException copy = *original;
    NSException assigned("Other", "else");
    assigned = *original;
    original.reset();
    EXPECT_STREQ(copy.what(), "Name: a reason that is long enough to need a body");
    EXPECT_STREQ(assigned.what(), "Name: a reason that is long enough to need a body");
    EXPECT_EQ(assigned.name(), "Name");
}

TEST(NSException, isCaughtAsAStandardException) {
    try {
        throw NSException("Name", "why");
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "Name: why");
        return;
    }
    FAIL() << "nothing was caught";
}

TEST(NSException, aNilNameIsRaisedAsAbsent) {
    EXPECT_EQ(raised([] { NSException::raise_format(nullptr, "why"); }), "(nil)");
}

TEST(NSException, theNamesOfThePlatformAreTheirText) {
    EXPECT_STREQ(NSInvalidArgumentException, "NSInvalidArgumentException");
    EXPECT_STREQ(NSRangeException, "NSRangeException");
    EXPECT_STREQ(NSParseErrorException, "NSParseErrorException");
    EXPECT_STREQ(NSGenericException, "NSGenericException");
    EXPECT_STREQ(NSInternalInconsistencyException, "NSInternalInconsistencyException");
}

TEST(NSException, ofTheValuesHaveAReason) {
    const NSArray array{1, 2};
    try {
        array.objectAtIndex(2);
        FAIL() << "nothing was raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), NSRangeException);
        EXPECT_GT(exception.reason().length(), 0U);
        EXPECT_EQ(std::string(exception.what()).rfind("NSRangeException: ", 0), 0U) << exception.what();
    }
}

} // namespace
