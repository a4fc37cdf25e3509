// SPDX-License-Identifier: MIT
// What `defaults read --json` prints.
#include <string>

#include <gtest/gtest.h>

#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using scene::Outcome;
using scene::Tool;
using scene::Words;

namespace {

TEST(DefaultsJson, printsValuesOfEveryType) {
    const struct {
        Words value;
        const char* printed;
    } rows[] = {
        {{"-string", "a \"b\" \\ \n \x1B \u00E9 \U0001F600"},
         "\"a \\\"b\\\" \\\\ \\u000a \\u001b \u00E9 \U0001F600\""},
        {{"-string", ""}, "\"\""},
        {{"-int", "-9223372036854775808"}, "-9223372036854775808"},
        {{"-float", "0.1"}, "0.1"},
        {{"-float", "3"}, "3"},
        {{"-float", "1e300"}, "1e+300"},
        {{"-float", "nan"}, "\"nan\""},
        {{"-bool", "YES"}, "true"},
        {{"-bool", "NO"}, "false"},
        {{"-date", "2024-03-05 14:07:09 +0100"}, "\"2024-03-05T13:07:09Z\""},
        {{"-data", "00ff10"}, "\"AP8Q\""},
        {{"-array"}, "[]"},
        {{"-dict"}, "{}"},
        {{"( a, (), { k = ( b ); } )"}, "[\n  \"a\",\n  [],\n  {\n    \"k\": [\n      \"b\"\n    ]\n  }\n]"},
        {{"-dict", "b", "-int", "1", "a", "-bool", "NO"}, "{\n  \"a\": false,\n  \"b\": 1\n}"},
    };
    const Tool tool;
    for (const auto& row : rows) {
        Words words{"write", "d", "k"};
        words.insert(words.end(), row.value.begin(), row.value.end());
        if (std::string(row.printed).find("u001b") != std::string::npos) {
            tool.write("d",
                       "{ k = \"a \\\"b\\\" \\\\ \\n \\U001b \\U00e9 \\Ud83d\\Ude00\"; }"); // no XML holds it
        } else {
            tool.done(words);
        }
        EXPECT_EQ(tool.done({"read", "--json", "d", "k"}), std::string(row.printed).append("\n"));
    }
}

TEST(DefaultsJson, printsDomainsAndTakesTheOptionAnywhere) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    tool.done({"write", "-g", "n", "-int", "1"});
    EXPECT_EQ(tool.done({"read", "--json", "d"}), "{\n  \"k\": \"v\"\n}\n");
    EXPECT_EQ(tool.done({"read", "d", "--json"}), "{\n  \"k\": \"v\"\n}\n");
    EXPECT_EQ(tool.done({"read", "d", "k", "--json"}), "\"v\"\n");
    EXPECT_EQ(tool.done({"read", "--json"}),
              "{\n  \"NSGlobalDomain\": {\n    \"n\": 1\n  },\n  \"d\": {\n    \"k\": \"v\"\n  }\n}\n");
    tool.refused({"read", "--json", "d", "missing"});
    tool.refused({"read", "a", "b", "c"}, 2);
    tool.refused({"read-type", "d", "k", "--json"}, 2);
}

TEST(DefaultsJson, givesEveryDomainThatCanBeReadAndFails) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    tool.write("broken", "{ k = ");
    const Outcome outcome = tool.run({"read", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "{\n  \"d\": {\n    \"k\": \"v\"\n  }\n}\n");
    EXPECT_TRUE(scene::contains(outcome.errors, "broken"));
}

} // namespace
