// SPDX-License-Identifier: MIT
// The library's own sets of characters, and that all threads share them.

#include <gtest/gtest.h>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSCharacterSet.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Threads.h"

namespace {

using namespace ZQFoundation;

TEST(NSCharacterSetExtensions, haveASetWithoutMembers) {
    const NSCharacterSet set = NSCharacterSet::emptyCharacterSet();
    ASSERT_TRUE(set);
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        ASSERT_FALSE(set.longCharacterIsMember(codePoint));
    }
    EXPECT_EQ(set, NSCharacterSet::characterSetWithCharactersInString(""));
    EXPECT_FALSE(set.isEqual(NSCharacterSet::nullByteCharacterSet()));
}

TEST(NSCharacterSetExtensions, haveASetOfTheNullCharacterAlone) {
    const NSCharacterSet set = NSCharacterSet::nullByteCharacterSet();
    EXPECT_TRUE(set.characterIsMember(0));
    for (char32_t codePoint = 1; codePoint < 0x110000; ++codePoint) {
        ASSERT_FALSE(set.longCharacterIsMember(codePoint));
    }
}

TEST(NSCharacterSetExtensions, uniteWhiteSpaceAndControlCharacters) {
    const NSCharacterSet set = NSCharacterSet::whitespaceAndControlCharacterSet();
    const NSCharacterSet whitespace = NSCharacterSet::whitespaceCharacterSet();
    const NSCharacterSet controls = NSCharacterSet::controlCharacterSet();
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        const bool expected =
            whitespace.longCharacterIsMember(codePoint) || controls.longCharacterIsMember(codePoint);
        ASSERT_EQ(set.longCharacterIsMember(codePoint), expected) << std::hex << +codePoint;
    }
}

TEST(NSCharacterSetExtensions, areMadeOnceForAllThreads) {
    for (const auto set : {NSCharacterSet::emptyCharacterSet, NSCharacterSet::nullByteCharacterSet,
                           NSCharacterSet::whitespaceAndControlCharacterSet}) {
        const void* bodies[4] = {};
        kit::inThreads(4, [&](std::size_t i) { bodies[i] = detail::Access::body(set()); });
        const std::size_t before = kit::AllocationCount::now();
        const NSCharacterSet again = set();
        EXPECT_EQ(kit::AllocationCount::now(), before);
        for (const void* body : bodies) {
            EXPECT_EQ(body, detail::Access::body(again));
        }
    }
}

} // namespace
