// SPDX-License-Identifier: MIT
// What a text has around the parts of collections.
#include "foundation/objects/CollectionLayout.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation;
using Layout = detail::CollectionLayout;
using Walk = detail::CollectionWalk;

constexpr Layout lines{
    .array = {"(", "\n", ",\n", "!\n", "\n", ")"},
    .dictionary = {"{", "\n", ";\n", ";\n", "", "}"},
    .set = {"<", " ", "|", " ", "-", ">"},
    .assignment = "=",
    .indentation = 2,
};

std::string written(const NSObject& value) {
    std::string text;
    for (Walk walk(value, &NSString::compare); walk.next();) {
        const Layout::Lead lead = lines.leadOf(walk);
        text.append(lead.text).append(lead.spaces, ' ');
        text += walk.event() == Walk::Event::leaf ? walk.value().description().utf8()
                                                  : std::string(lines.bracketOf(walk));
    }
    return text;
}

TEST(CollectionLayout, separatesPartsAndIndentsTheLinesThatItBegins) {
    const struct {
        NSObject value;
        const char* text;
    } rows[] = {
        {"a", "a"},
        {NSArray{1}, "(\n  1!\n)"},
        {NSArray{1, 2, 3}, "(\n  1,\n  2,\n  3!\n)"},
        {NSDictionary{{"a", 1}, {"b", 2}}, "{\n  a=1;\n  b=2;\n}"},
        {NSDictionary{{"a", NSArray{1}}}, "{\n  a=(\n    1!\n  );\n}"},
        {NSArray::arrayWithObject(NSArray::arrayWithObject(NSArray{1})),
         "(\n  (\n    (\n      1!\n    )!\n  )!\n)"},
        {NSSet::setWithArray(NSArray{1}), "< 1 >"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(written(row.value), row.text);
    }
}

TEST(CollectionLayout, hasATextOfItsOwnInsideEmptyCollections) {
    EXPECT_EQ(written(NSArray::array()), "(\n)");
    EXPECT_EQ(written(NSArray::arrayWithObject(NSArray::array())), "(\n  (\n  )!\n)");
    EXPECT_EQ(written(NSArray{NSDictionary::dictionary()}), "(\n  {}!\n)");
    EXPECT_EQ(written(NSSet::setWithArray(NSArray::array())), "<->");
}

} // namespace
