// SPDX-License-Identifier: MIT
// User defaults from the arguments of a program.
#include "foundation/process/CommandLineDefaults.h"

#include <gtest/gtest.h>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSNumber.h"

using namespace ZQFoundation;

namespace {

struct ArgumentRow {
    const char* what;
    std::vector<std::string> arguments;
    NSDictionary values;
};

NSDictionary parsed(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "program");
    return detail::defaultsFromArguments(arguments);
}

std::vector<ArgumentRow> rows() {
    const NSDictionary none = NSDictionary::dictionary();
    return {
        {"a pair", {"-TraceLevel", "3"}, {{"TraceLevel", "3"}}},
        {"a word is a string", {"-TraceNet", "YES"}, {{"TraceNet", "YES"}}},
        {"several pairs in order", {"-B", "1", "-A", "2"}, {{"B", "1"}, {"A", "2"}}},
        {"a key followed by a key is passed alone", {"-A", "-B", "x"}, {{"B", "x"}}},
        {"a negative number cannot be given bare", {"-A", "-1"}, none},
        {"one hyphen is taken off", {"--key", "v"}, {{"-key", "v"}}},
        {"a lone last key", {"-A", "1", "-Key"}, {{"A", "1"}}},
        {"of repeated keys the last wins", {"-A", "1", "-A", "2"}, {{"A", "2"}}},
        {"a lone hyphen is skipped", {"-", "x", "-A", "1"}, {{"A", "1"}}},
        {"a hyphen is no value", {"-A", "-", "-B", "1"}, {{"B", "1"}}},
        {"words in between are passed", {"x", "y", "-A", "1", "z", "-B", "2"}, {{"A", "1"}, {"B", "2"}}},
        {"the value is passed too", {"-A", "1", "2"}, {{"A", "1"}}},
        {"trimmed", {"-A", " \t\n x y \r\n"}, {{"A", "x y"}}},
        {"trimmed of wide blanks", {"-A", "\xE3\x80\x80x\xC2\xA0\xE2\x80\xA8"}, {{"A", "x"}}},
        {"empty value", {"-A", ""}, {{"A", ""}}},
        {"blank value", {"-A", "  "}, {{"A", ""}}},
        {"array", {"-A", "(a, b)"}, {{"A", NSArray{"a", "b"}}}},
        {"array after blanks", {"-A", "  (a) "}, {{"A", NSArray::arrayWithObject("a")}}},
        {"dictionary", {"-A", "{k = v;}"}, {{"A", NSDictionary{{"k", "v"}}}}},
        {"boolean", {"-A", "<true/>"}, {{"A", true}}},
        {"integer", {"-A", "<integer>-5</integer>"}, {{"A", -5}}},
        {"data", {"-A", "<0fbd>"}, {{"A", NSData::dataWithBytes_length("\x0f\xbd", 2)}}},
        {"quoted", {"-A", "\"-x \\\"y\\\"\""}, {{"A", "-x \"y\""}}},
        {"broken property lists are text",
         {"-A", "(a", "-B", "{x}", "-C", "<0>", "-D", "\"x", "-E", "[1]"},
         {{"A", "(a"}, {"B", "{x}"}, {"C", "<0>"}, {"D", "\"x"}, {"E", "[1]"}}},
        {"other beginnings are not parsed", {"-A", "'x'", "-B", "a = b;"}, {{"A", "'x'"}, {"B", "a = b;"}}},
        {"key with anything in it", {"-a b=c", "1"}, {{"a b=c", "1"}}},
        {"nothing", {}, none},
        {"one word", {"-A"}, none},
    };
}

} // namespace

TEST(CommandLineDefaults, readPairsOfKeyAndValue) {
    for (const ArgumentRow& row : rows()) {
        const NSDictionary values = parsed(row.arguments);
        EXPECT_TRUE(values.isEqualToDictionary(row.values))
            << row.what << ": " << values.condensedDescription().utf8();
    }
}

TEST(CommandLineDefaults, keepTheKindOfAParsedValue) {
    EXPECT_TRUE(parsed({"-A", "<true/>"}).objectForKey("A").as<NSNumber>().isBoolean());
    EXPECT_TRUE(parsed({"-A", "YES"}).objectForKey("A").as<NSString>());
}

TEST(CommandLineDefaults, needNoProgramName) {
    EXPECT_EQ(detail::defaultsFromArguments({}).count(), 0u);
    EXPECT_EQ(detail::defaultsFromArguments({"-A", "1"}).count(), 0u);
}

TEST(CommandLineDefaults, standInTheOrderOfTheirFirstAppearance) {
    const NSArray keys = parsed({"-z", "1", "-a", "1", "-m", "1", "-z", "2"}).allKeys();
    EXPECT_EQ(keys, (NSArray{"z", "a", "m"}));
}

TEST(CommandLineDefaults, takeForeignBytesAndDeepNesting) {
    EXPECT_EQ(parsed({"-A", "\xFF"}).objectForKey("A").as<NSString>().utf16(), std::u16string(u"\xDCFF"));
    const std::string deep(1000000, '(');
    EXPECT_EQ(parsed({"-A", deep}).objectForKey("A").as<NSString>().length(), deep.size());
}

TEST(CommandLineDefaults, readATextAsAShellWould) {
    const struct {
        const char* text;
        NSDictionary values;
    } rows[] = {
        {"-TraceNetwork YES -TraceLevel 3", {{"TraceNetwork", "YES"}, {"TraceLevel", "3"}}},
        {"  -A\t1\n-B  2 ", {{"A", "1"}, {"B", "2"}}},
        {"-A \"(a, 'b c')\" -B 'x \"y\"'", {{"A", NSArray{"a", "b c"}}, {"B", "x \"y\""}}},
        {"-A a\\ b -B \"a\\\"b\" -C 'a\\b'", {{"A", "a b"}, {"B", "a\"b"}, {"C", "a\\b"}}},
        {"-A 'x'y\"z\"", {{"A", "xyz"}}},
        {"-A ''", {{"A", ""}}},
        {"-A 'not closed", {{"A", "not closed"}}},
        {"-A x\\", {{"A", "x\\"}}},
        {"words -A", NSDictionary::dictionary()},
        {"", NSDictionary::dictionary()},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(detail::defaultsFromText(row.text), row.values) << row.text;
    }
}

TEST(CommandLineDefaults, areTakenOutOfTheArguments) {
    using Words = std::vector<std::string>;
    const struct {
        const char* what;
        Words arguments;
        Words left;
    } rows[] = {
        {"pairs", {"-TraceNetwork", "YES", "file", "-Level", "3"}, {"file"}},
        {"a key without a value", {"-TraceNetwork"}, {"-TraceNetwork"}},
        {"a key before another", {"-TraceNetwork", "-Level", "3"}, {"-TraceNetwork"}},
        {"options of one character", {"-o", "out", "-v", "file"}, {"-o", "out", "-v", "file"}},
        {"options of two hyphens", {"--output", "out", "-Level", "3"}, {"--output", "out"}},
        {"what the host names", {"-style", "flat", "-Level", "3"}, {"-style", "flat"}},
        {"all after two hyphens", {"-A1", "x", "--", "-Level", "3"}, {"--", "-Level", "3"}},
        {"two hyphens are no value", {"-Level", "--", "3"}, {"-Level", "--", "3"}},
        {"a lone hyphen", {"-", "x"}, {"-", "x"}},
        {"nothing", {}, {}},
    };
    for (const auto& row : rows) {
        Words arguments = row.arguments;
        arguments.insert(arguments.begin(), "program");
        Words left;
        for (const std::size_t place : detail::placesWithoutDefaults(arguments, {"-style"})) {
            left.push_back(arguments[place]);
        }
        Words expected = row.left;
        expected.insert(expected.begin(), "program");
        EXPECT_EQ(left, expected) << row.what;
    }
    EXPECT_TRUE(detail::placesWithoutDefaults({}, {}).empty());
    EXPECT_EQ(detail::placesWithoutDefaults({"-Key", "value"}, {}).size(), 2U) << "the first is the program";
}
