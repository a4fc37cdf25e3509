// SPDX-License-Identifier: MIT
// Resolving references against a base, by RFC 3986.
#include "foundation/text/UriResolution.h"

#include <gtest/gtest.h>

#include "tests/models/UriReference.h"

using namespace ZQFoundation;
using detail::resolvedUriReference;
using detail::withoutDotSegments;

namespace {

TEST(UriResolution, ofNormalReferences) {
    for (const auto& row : models::normalReferences) {
        EXPECT_EQ(resolvedUriReference(row[0], models::exampleBase), row[1]) << row[0];
    }
}

TEST(UriResolution, ofAbnormalReferences) {
    for (const auto& row : models::abnormalReferences) {
        EXPECT_EQ(resolvedUriReference(row[0], models::exampleBase), row[1]) << row[0];
    }
}

TEST(UriResolution, takesPartsOfOtherBases) {
    const struct {
        const char* reference;
        const char* base;
        const char* target;
    } rows[] = {
        {"g", "http://a", "http://a/g"},
        {"?", "http://a/b?q#f", "http://a/b?"},
        {"#", "http://a/b?q#f", "http://a/b?q#"},
        {"g", "file:///a/b", "file:///a/g"},
        {"g", "urn:a", "urn:g"},
        {"g", "urn:", "urn:g"},
        {"?y", "urn:a?q", "urn:a?y"},
        {"g", "http://u:p@[::1]:80/x?q", "http://u:p@[::1]:80/g"},
        {"//h:/%2e", "x:y", "x://h:/%2e"},
        {"..", "http://a/b/../c/d", "http://a/"},
        {"", "http://a/./b/../c#f", "http://a/./b/../c"}, // the base's own path is taken as it is
        {"g", "a/b?q", "a/g"},
        {"/g", "a/b", "/g"},
        {"//h", "a/b", "//h"},
        {"?y", "a#f", "a?y"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(resolvedUriReference(row.reference, row.base), row.target)
            << row.reference << " against " << row.base;
    }
}

TEST(UriResolution, keepsPathsFromBeingReadAsOtherParts) {
    EXPECT_EQ(resolvedUriReference("..//b", "x:/a"), "x:/.//b");
    EXPECT_EQ(resolvedUriReference(".///b", "x:a"), "x:/.//b");
    EXPECT_EQ(resolvedUriReference("/.//b", "x:a"), "x:/.//b");
    EXPECT_EQ(resolvedUriReference("/.//b", "a"), "/.//b");
    EXPECT_EQ(resolvedUriReference("..//b", "x://h/a"), "x://h//b") << "after an authority it is a path";
    EXPECT_EQ(resolvedUriReference("./c:d", "b"), "./c:d") << "where c would be a scheme";
    EXPECT_EQ(resolvedUriReference("./c:d", "a/b"), "a/c:d");
    EXPECT_EQ(resolvedUriReference("./c:d", "x:b"), "x:c:d");
}

TEST(UriResolution, removesDotSegments) {
    const char* const rows[][2] = {
        {"/a/b/c/./../../g", "/a/g"},
        {"mid/content=5/../6", "mid/6"},
        {"", ""},
        {".", ""},
        {"..", ""},
        {"./", ""},
        {"../", ""},
        {"../../a", "a"},
        {"./../a", "a"},
        {"/", "/"},
        {"/.", "/"},
        {"/..", "/"},
        {"/...", "/..."},
        {"/./", "/"},
        {"/../", "/"},
        {"/a/.", "/a/"},
        {"/a/..", "/"},
        {"/a/../..", "/"},
        {"a/..", "/"},
        {"a/../b", "/b"},
        {"a//..", "a/"},
        {"//..//", "//"},
        {"/a//../b", "/a/b"},
        {"/.a/..b/c.", "/.a/..b/c."},
        {"/%2e%2e/a", "/%2e%2e/a"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(withoutDotSegments(row[0]), row[1]) << row[0];
        EXPECT_EQ(models::withoutDots(row[0]), row[1]) << "the model: " << row[0];
    }
}

TEST(UriResolution, takesLinearTime) {
    std::string up;
    std::string down;
    for (int i = 0; i < 500000; ++i) {
        up += "../";
        down += "a/";
    }
    EXPECT_EQ(resolvedUriReference(up + "g", "x:/" + down), "x:/g");
    EXPECT_EQ(withoutDotSegments(down + up).size(), 1U);
}

} // namespace
