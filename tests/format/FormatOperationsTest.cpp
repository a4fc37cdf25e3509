// SPDX-License-Identifier: MIT
// The operations that format.
#include "foundation/objects/NSException.h"
#include "tests/format/FormatTesting.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

TEST(FormatOperations, nilFormatRaises) {
    try {
        NSString::stringWithFormat(nullptr);
        FAIL() << "nothing raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    }
    EXPECT_THROW(NSString::stringWithFormat(NSString(), 5), NSException);
    EXPECT_THROW(NSException::raise_format("Name", nullptr), NSException);
    NSMutableString builder;
    EXPECT_THROW(builder.appendFormat(nullptr), NSException);
}

TEST(FormatOperations, appendsToAMutableString) {
    NSMutableString builder(StringView("a"));
    builder.appendFormat("%d%@", 5, "\u00e9");
    builder.appendFormat(NSString("%s"), "z");
    EXPECT_EQ(text(builder.string()), "a5\u00e9z");
}

TEST(FormatOperations, raisesWithAFormattedReason) {
    try {
        NSException::raise_format("Broken", "%d of %@", 3, "parts");
        FAIL() << "nothing raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(text(exception.name()), "Broken");
        EXPECT_EQ(text(exception.reason()), "3 of parts");
        EXPECT_FALSE(exception.userInfo());
    }
}

} // namespace
