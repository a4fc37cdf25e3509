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
        if (steps.event() == detail::ValueWalk::Event::leaf) {
            text += (steps.isKey() ? " key " : " ") + show(steps.value());
        } else if (steps.event() == detail::ValueWalk::Event::open) {
            text += steps.isArray() ? " (" : " {";
        } else {
            text += steps.isArray() ? " )" : " }";
        }
        text += "; ";
    }
    return text + (steps.refusal() != nullptr ? "refused" : "end");
}

TEST(ValueWalk, goesThroughValuesInOrder) {
    EXPECT_EQ(walk("a"), "0 'a'; end");
    EXPECT_EQ(walk(NSArray{1, NSArray::array(), 2}), "0 (; 1 1; 1 (; 1 ); 1 2; 0 ); end");
    EXPECT_EQ(walk(NSDictionary{{"b", 1}, {"a", NSArray{"x"}}, {"B", true}}),
              "0 {; 1 key 'B'; 1 true; 1 key 'a'; 1 (; 2 'x'; 1 ); 1 key 'b'; 1 1; 0 }; end");
}

TEST(ValueWalk, stopsAtWhatIsRefused) {
    EXPECT_EQ(walk(nullptr), "refused");
    EXPECT_EQ(walk(NSArray{1, NSNull::null(), 2}), "0 (; 1 1; refused");
    EXPECT_EQ(walk(NSDictionary{{"a", 1}, {2, 3}}), "refused");
}

} // namespace
