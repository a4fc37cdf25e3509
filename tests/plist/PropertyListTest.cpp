// SPDX-License-Identifier: MIT
// Reading property lists of any form, and which failure is reported.
#include "foundation/plist/PropertyList.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "BinaryBuilding.h"
#include "PropertyListTesting.h"
#include "foundation/objects/NSException.h"
#include "tests/kit/ScratchFolder.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;
using namespace std::string_view_literals;

std::string parseStrings(std::string_view bytes) {
    const Exact<char> exact(bytes);
    return show(detail::parseStringsFileBytes(asBytes(exact.data()), exact.size(), nullptr));
}

TEST(PropertyList, bytesMayBeInAnyForm) {
    EXPECT_EQ(show(parseBytes("{a = (b);}")), "{'a': ['b']}");
    EXPECT_EQ(show(parseBytes("a = b;")), "{'a': 'b'}");
    EXPECT_EQ(show(parseBytes("<plist><dict><key>a</key><true/></dict></plist>")), "{'a': true}");
    EXPECT_EQ(show(parseBytes("<0fbd77>")), "<0fbd77>");
    EXPECT_EQ(show(parseBytes("< 0f >")), "<0f>");
    EXPECT_EQ(show(parseBytes(sampleBinary())).substr(0, 10), "{'a': [200");
    EXPECT_EQ(show(parseBytes("\xFF\xFE(\0\xE9\0)\0"sv)), "nil");
    EXPECT_EQ(show(parseBytes("\xFF\xFE(\0\"\0\xE9\0\"\0)\0"sv)), "['%00E9']");
    EXPECT_EQ(show(parseBytes("<?xml version='1.0' encoding='ISO-8859-1'?><string>\xE9</string>")),
              "'%00E9'");
    EXPECT_EQ(show(parseBytes("\xEF\xBB\xBF(a)")), "['a']");
}

TEST(PropertyList, textThatOnlyLooksBinaryIsStillText) {
    EXPECT_EQ(show(parseBytes("bplist00")), "'bplist00'");
    EXPECT_EQ(show(parseBytes("bplist0x = y;")), "{'bplist0x': 'y'}");
}

TEST(PropertyList, bytesWithoutAnything) {
    detail::PropertyListError error;
    EXPECT_EQ(show(detail::parsePropertyListBytes(nullptr, 0, &error)), "nil");
    EXPECT_EQ(describe(error), "The text is empty (line 1, column 1)");
    EXPECT_EQ(show(parseBytes(" \n")), "{}");
    EXPECT_EQ(show(parseBytes("\xEF\xBB\xBF")), "nil");
}

TEST(PropertyList, namesTheFailureOfTheFormThatWasMeant) {
    const auto failure = [](std::string_view bytes) {
        detail::PropertyListError error;
        EXPECT_FALSE(parseBytes(bytes, &error));
        return describe(error);
    };
    EXPECT_EQ(failure("<dict>\n<key>a</key>\n</dict>"), "The value of a key is missing (line 3, column 1)");
    EXPECT_EQ(failure("(a,\nb"), "An array's element must be followed by ',' or ')' (line 2, column 2)");
    EXPECT_EQ(failure("<0g>"), "Data needs its hexadecimal digits in pairs (line 1, column 2)");
    EXPECT_EQ(failure("<?xml version='1.0'?><foo/>"), "The element is not known (line 1, column 22)");
    EXPECT_EQ(failure(sampleBinary().substr(0, 80)), "The trailer has an impossible number size (byte 54)");
    EXPECT_EQ(failure("<?xml encoding='x'?><true/>"), "The declared text encoding is not known (byte 0)");
}

TEST(PropertyList, stringsFilesAreDictionaries) {
    EXPECT_EQ(parseStrings("\"a\" = \"b\"; // c"), "{'a': 'b'}");
    EXPECT_EQ(parseStrings("a\0 \0=\0b\0;\0"sv), "{'a': 'b'}");
    EXPECT_EQ(parseStrings("\0a\0=\0b\0;"sv), "{'a': 'b'}");
    EXPECT_EQ(parseStrings("\xFE\xFF\0a\0=\0b\0;"sv), "{'a': 'b'}");
    EXPECT_EQ(parseStrings("<dict><key>a</key><string>b</string></dict>"), "{'a': 'b'}");
    EXPECT_EQ(parseStrings(sampleBinary()).substr(0, 5), "{'a':");
    EXPECT_EQ(parseStrings(" /* nothing */ "), "{}");
    EXPECT_EQ(parseStrings("(a)"), "nil");
    EXPECT_EQ(parseStrings("a"), "nil");
    EXPECT_EQ(parseStrings("a = b"), "nil");
    EXPECT_EQ(parseStrings(""), "nil");
}

TEST(PropertyList, ofAString) {
    EXPECT_EQ(show(NSString("{a=b;}").propertyList()), "{'a': 'b'}");
    EXPECT_EQ(show(NSString("<true/>").propertyList()), "true");
    EXPECT_EQ(show(NSString("<0fbd77>").propertyList()), "<0fbd77>");
    EXPECT_EQ(show(NSString("(\"\u00E9\")").propertyList()), "['%00E9']");
    EXPECT_EQ(show(NSString("<?xml encoding='utf-16'?><string>\u00E9</string>").propertyList()), "'%00E9'")
        << "the declared encoding is not looked at";
    const char16_t surrogate[] = {'"', 0xD800, '"'};
    EXPECT_EQ(show(NSString::stringWithCharacters_length(surrogate, 3).propertyList()), "'%D800'");
    EXPECT_FALSE(NSString().propertyList());
}

TEST(PropertyList, ofAMalformedStringRaises) {
    for (const char* text : {"", "(a", "{a=1}", "<true>", "\uFEFF(a)", "bplist00\x01"}) {
        EXPECT_THROW(static_cast<void>(NSString(text).propertyList()), NSException) << text;
    }
    try {
        static_cast<void>(NSString("{\n  a = 1\n}").propertyList());
        FAIL() << "nothing was raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), NSParseErrorException);
        EXPECT_EQ(exception.reason(), "A dictionary's entry must end with ';' (line 3, column 1)");
    }
}

TEST(PropertyList, stringsFormOfAStringNeverRaises) {
    EXPECT_EQ(show(NSString("a = b; c;").propertyListFromStringsFileFormat()), "{'a': 'b', 'c': 'c'}");
    EXPECT_EQ(show(NSString("{a = b;}").propertyListFromStringsFileFormat()), "{'a': 'b'}");
    EXPECT_EQ(show(NSString("<dict/>").propertyListFromStringsFileFormat()), "{}");
    EXPECT_EQ(show(NSString(" ").propertyListFromStringsFileFormat()), "{}");
    for (const char* text : {"", "a", "(a)", "a = b", "<true/>", "("}) {
        EXPECT_FALSE(NSString(text).propertyListFromStringsFileFormat()) << text;
    }
    EXPECT_FALSE(NSString().propertyListFromStringsFileFormat());
}

TEST(PropertyList, textArgumentsReadIllFormedBytesAsReplacements) {
    detail::PropertyListError error;
    EXPECT_EQ(show(detail::parsePropertyListText("\"a\xFF\"", &error)), "'a%FFFD'");
    EXPECT_EQ(show(detail::parsePropertyListText(nullptr, &error)), "nil");
    EXPECT_EQ(show(detail::parsePropertyListText(u"(a)", nullptr)), "['a']");
}

TEST(PropertyList, dictionariesComeFromFilesInAllForms) {
    const kit::ScratchFolder folder;
    const auto read = [](const std::string& path) {
        return show(NSDictionary::dictionaryWithContentsOfFile(path));
    };
    EXPECT_EQ(read(folder.write("old", "{a = b;}")), "{'a': 'b'}");
    EXPECT_EQ(read(folder.write("xml", "<plist><dict><key>a</key><integer>1</integer></dict></plist>")),
              "{'a': 1}");
    EXPECT_EQ(read(folder.write("binary", sampleBinary())).substr(0, 5), "{'a':");
}

TEST(PropertyList, filesThatAreNoDictionaryGiveNil) {
    const kit::ScratchFolder folder;
    const auto read = [](const std::string& path) {
        return show(NSDictionary::dictionaryWithContentsOfFile(path));
    };
    EXPECT_EQ(read(folder / "missing"), "nil");
    EXPECT_EQ(read(folder / ""), "nil");
    EXPECT_EQ(read(folder.write("array", "(a)")), "nil");
    EXPECT_EQ(read(folder.write("broken", "<plist><dict><key>a</key>")), "nil");
    EXPECT_EQ(read(folder.write("bytes", "{a=\"\xFF\";}")), "nil");
    EXPECT_FALSE(NSDictionary::dictionaryWithContentsOfFile(nullptr));
}

} // namespace
