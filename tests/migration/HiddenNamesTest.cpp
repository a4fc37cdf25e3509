// SPDX-License-Identifier: MIT
// The grammar of the names of what is not finished.
#include "migration/HiddenNames.h"

#include <set>

#include <gtest/gtest.h>

using namespace ZQFoundation::detail;

TEST(HiddenNames, areParsedByTheirGrammar) {
    const struct {
        const char* name;
        HiddenKind kind;
        const char* original;
    } rows[] = {
        {".zq-copy.0123456789abcdef", HiddenKind::copy, ""},
        {".zq-gone.ffffffffffffffff", HiddenKind::gone, ""},
        {".zq-asides.0000000000000000", HiddenKind::asideLong, ""},
        {".zq-aside.a", HiddenKind::aside, "a"},
        {".zq-aside.Grüße .txt", HiddenKind::aside, "Grüße .txt"},
        {".zq-aside..profile", HiddenKind::aside, ".profile"},
        {".zq-aside..zq-aside.a", HiddenKind::aside, ".zq-aside.a"},
        {".zq-aside.", HiddenKind::none, ""},
        {".zq-copy.", HiddenKind::none, ""},
        {".zq-copy.0123456789abcde", HiddenKind::none, ""},
        {".zq-copy.0123456789abcdef0", HiddenKind::none, ""},
        {".zq-copy.0123456789ABCDEF", HiddenKind::none, ""},
        {".zq-gone.0123456789abcdeg", HiddenKind::none, ""},
        {".zq-asides.x", HiddenKind::none, ""},
        {".ZQ-aside.a", HiddenKind::none, ""},
        {"zq-aside.a", HiddenKind::none, ""},
        {"x.zq-aside.a", HiddenKind::none, ""},
        {".zq-", HiddenKind::none, ""},
        {"", HiddenKind::none, ""},
    };
    for (const auto& row : rows) {
        const HiddenName parsed = parsedHiddenName(row.name);
        EXPECT_EQ(parsed.kind, row.kind) << row.name;
        EXPECT_EQ(parsed.original, row.original) << row.name;
    }
}

TEST(HiddenNames, areBuiltAsTheyAreParsed) {
    std::set<std::string> names;
    for (const HiddenKind kind : {HiddenKind::copy, HiddenKind::asideLong, HiddenKind::gone}) {
        for (int count = 0; count < 100; ++count) {
            const std::string name = newHiddenName(kind);
            EXPECT_EQ(parsedHiddenName(name.c_str()).kind, kind) << name;
            EXPECT_TRUE(names.insert(name).second) << name << " came twice";
        }
    }
    EXPECT_EQ(parsedHiddenName(asideNameOf("a b").c_str()).original, "a b");
}
