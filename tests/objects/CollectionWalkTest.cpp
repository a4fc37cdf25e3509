// SPDX-License-Identifier: MIT
// Visiting the parts of nested collections in order.
#include "foundation/objects/CollectionWalk.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation;
using Walk = detail::CollectionWalk;

const char* nameOf(Walk::Role role) {
    return role == Walk::Role::element ? "" : role == Walk::Role::key ? "key " : "value ";
}

/// The way to the value: "[1]" for an index, ".a" for a key.
std::string wayOf(const Walk& walk) {
    std::string way;
    for (std::size_t level = 0; level < walk.depth(); ++level) {
        const NSObject* const key = walk.keyAt(level);
        way += key != nullptr ? "." + key->description().utf8()
                              : "[" + std::to_string(walk.indexAt(level)) + "]";
    }
    return way;
}

/// Each event: its depth, "+" for all but the first part of a collection, its role, and what it is.
std::string parts(const NSObject& value, Walk::Sets sets = Walk::Sets::entered) {
    std::string text;
    for (Walk walk(value, &NSString::caseInsensitiveCompare, sets); walk.next();) {
        text += std::to_string(walk.depth()) + (walk.isFirst() ? " " : "+ ") + nameOf(walk.role());
        if (walk.event() == Walk::Event::leaf) {
            text += walk.value().description().utf8();
        } else {
            text += walk.event() == Walk::Event::open ? "open " : "close ";
            text += walk.value().className().utf8() + (walk.isEmpty() ? " (empty)" : "");
        }
        text += " at " + wayOf(walk) + "\n";
    }
    return text;
}

TEST(CollectionWalk, visitsALeafAlone) { EXPECT_EQ(parts("a"), "0 a at \n"); }

TEST(CollectionWalk, visitsNilOnce) {
    const NSObject nothing;
    Walk walk(nothing, &NSString::compare);
    ASSERT_TRUE(walk.next());
    EXPECT_TRUE(walk.event() == Walk::Event::leaf && !walk.value());
    EXPECT_FALSE(walk.next());
}

TEST(CollectionWalk, visitsElementsInOrder) {
    EXPECT_EQ(parts(NSArray{1, NSArray::array(), 2}), "0 open NSArray at \n"
                                                      "1 1 at [0]\n"
                                                      "1+ open NSArray (empty) at [1]\n"
                                                      "1+ close NSArray (empty) at [1]\n"
                                                      "1+ 2 at [2]\n"
                                                      "0 close NSArray at \n");
}

TEST(CollectionWalk, visitsKeysInTheirOrderEachBeforeItsValue) {
    EXPECT_EQ(parts(NSDictionary{{"b", 1}, {"A", NSArray{"x"}}}), "0 open NSDictionary at \n"
                                                                  "1 key A at .A\n"
                                                                  "1+ value open NSArray at .A\n"
                                                                  "2 x at .A[0]\n"
                                                                  "1+ value close NSArray at .A\n"
                                                                  "1+ key b at .b\n"
                                                                  "1+ value 1 at .b\n"
                                                                  "0 close NSDictionary at \n");
}

TEST(CollectionWalk, keepsTheOrderOfInsertionWhenAKeyIsNoString) {
    EXPECT_EQ(parts(NSDictionary{{"b", 1}, {NSArray{2}, 3}}), "0 open NSDictionary at \n"
                                                              "1 key b at .b\n"
                                                              "1+ value 1 at .b\n"
                                                              "1+ key open NSArray at .(\n    2\n)\n"
                                                              "2 2 at .(\n    2\n)[0]\n"
                                                              "1+ key close NSArray at .(\n    2\n)\n"
                                                              "1+ value 3 at .(\n    2\n)\n"
                                                              "0 close NSDictionary at \n");
}

TEST(CollectionWalk, entersSetsOnRequest) {
    const NSSet set = NSSet::setWithArray(NSArray{1});
    EXPECT_EQ(parts(set), "0 open NSSet at \n1 1 at [0]\n0 close NSSet at \n");
    EXPECT_EQ(parts(set, Walk::Sets::leaves), "0 {(\n    1\n)} at \n");
}

TEST(CollectionWalk, descendsToAnyDepthWithoutRecursion) {
    NSObject value = 1;
    for (int i = 0; i < 100'000; ++i) {
        value = NSArray{value};
    }
    std::size_t deepest = 0;
    for (Walk walk(value, &NSString::compare); walk.next();) {
        deepest = std::max(deepest, walk.depth());
    }
    EXPECT_EQ(deepest, 100'000u);
}

} // namespace
