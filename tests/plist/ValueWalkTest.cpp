// SPDX-License-Identifier: MIT
// Visiting all values of a property list in order.
#include "foundation/plist/ValueWalk.h"

#include <string>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;

/// The events in order, each with the number of containers around it; then the refusal, if any.
std::string walk(const NSObject& value) {
    detail::ValueWalk steps(value);
    std::string text;
    while (steps.next()) {
        text += std::to_string(steps.depth());
        switch (steps.event()) {
        case detail::ValueWalk::Event::scalar:
            text += " " + show(steps.value());
            break;
        case detail::ValueWalk::Event::key:
            text += " key " + show(steps.value());
            break;
        case detail::ValueWalk::Event::open:
            text += steps.isArray() ? " (" : " {";
            break;
        case detail::ValueWalk::Event::close:
            text += steps.isArray() ? " )" : " }";
            break;
        }
        text += steps.isInDictionary() ? " d; " : "; ";
    }
    return text + (steps.refusal() != nullptr ? "refused" : "end");
}

TEST(ValueWalk, goesThroughValuesInOrder) {
    EXPECT_EQ(walk("a"), "0 'a'; end");
    EXPECT_EQ(walk(NSArray{1, NSArray::array(), 2}), "1 (; 1 1; 2 (; 1 ); 1 2; 0 ); end");
    EXPECT_EQ(walk(NSDictionary{{"b", 1}, {"a", NSArray{"x"}}, {"B", true}}),
              "1 { d; 1 key 'B' d; 1 true d; 1 key 'a' d; 2 (; 2 'x'; 1 ) d; 1 key 'b' d; 1 1 d; 0 }; end");
}

TEST(ValueWalk, stopsAtWhatIsRefused) {
    EXPECT_EQ(walk(nullptr), "refused");
    EXPECT_EQ(walk(NSArray{1, NSNull::null(), 2}), "1 (; 1 1; refused");
    EXPECT_EQ(walk(NSDictionary{{"a", 1}, {2, 3}}), "refused");
}

} // namespace
