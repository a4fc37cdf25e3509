// SPDX-License-Identifier: MIT
// Which characters each way of percent encoding keeps: examples, and all of ASCII against the model.
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSCharacterSet.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/PercentEscapes.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::stringOf;
using kit::utf8Of;

namespace {

const std::string alphanumerics = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
const std::string pathMembers = alphanumerics + "!$&'()*+,-./:=@_~";
const std::string queryMembers = pathMembers + ";?";
const std::string componentMembers = alphanumerics + "!'()*-._~";

/// All of ASCII, U+0000 too, and characters of two, three and four bytes.
std::string everyCharacter() {
    std::string text;
    for (int code = 0; code < 0x80; ++code) {
        text += static_cast<char>(code);
    }
    return text + "\u00E9\u20AC\U0001F600";
}

TEST(PercentEncoding, encodesTheExamples) {
    const struct {
        const char* text;
        const char* component;
        const char* path;
        const char* query;
    } rows[] = {
        {"a b/c?d=\u00E9", "a%20b%2Fc%3Fd%3D%C3%A9", "a%20b/c%3Fd=%C3%A9", "a%20b/c?d=%C3%A9"},
        {"a+b&c", "a%2Bb%26c", "a+b&c", "a+b&c"},
        {"~x_y.z", "~x_y.z", "~x_y.z", "~x_y.z"},
        {"", "", "", ""},
        {"%20", "%2520", "%2520", "%2520"},
        {";", "%3B", "%3B", ";"},
        {"[::1]", "%5B%3A%3A1%5D", "%5B::1%5D", "%5B::1%5D"},
        {"\U0001F600", "%F0%9F%98%80", "%F0%9F%98%80", "%F0%9F%98%80"},
        {"e\u0301", "e%CC%81", "e%CC%81", "e%CC%81"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(NSString(row.text).urlEncodedString()), row.component);
        EXPECT_EQ(utf8Of(NSString(row.text).urlPathEncodedString()), row.path);
        EXPECT_EQ(utf8Of(NSString(row.text).urlQueryEncodedString()), row.query);
    }
}

TEST(PercentEncoding, keepsExactlyItsCharacters) {
    const NSString text = everyCharacter();
    const auto expected = [](const std::string& kept) {
        return models::percentEncoded(everyCharacter(), kept);
    };
    EXPECT_EQ(utf8Of(text.urlEncodedString()), expected(componentMembers));
    EXPECT_EQ(utf8Of(text.urlPathEncodedString()), expected(pathMembers));
    EXPECT_EQ(utf8Of(text.urlQueryEncodedString()), expected(queryMembers));
    for (const NSString& encoded :
         {text.urlEncodedString(), text.urlPathEncodedString(), text.urlQueryEncodedString()}) {
        EXPECT_TRUE(encoded.urlDecodedString() == text);
        EXPECT_TRUE(encoded.urlEncodedString().urlDecodedString() == encoded) << "once";
    }
}

TEST(PercentEncoding, encodesExceptionsAlthoughThePathAllowsThem) {
    for (int code = 1; code < 0x80; ++code) {
        const std::string exception(1, static_cast<char>(code));
        std::string kept = pathMembers;
        std::erase(kept, exception[0]);
        EXPECT_EQ(utf8Of(NSString(everyCharacter()).urlEncodedStringWithExceptions(exception)),
                  models::percentEncoded(everyCharacter(), kept));
    }
    const struct {
        StringView exceptions;
        const char* result;
    } rows[] = {
        {nullptr, "a:b/c~%3B"},      {"", "a:b/c~%3B"},
        {":", "a%3Ab/c~%3B"},        {u":", "a%3Ab/c~%3B"},
        {"~~~;? %", "a:b/c%7E%3B"},  {"A", "a:b/c~%3B"},
        {"\u00AF:", "a%3Ab/c~%3B"},  {"ab:/", "%61%3A%62%2Fc~%3B"},
        {u":\u012F", "a%3Ab/c~%3B"}, // whose low byte is a slash
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(NSString("a:b/c~;").urlEncodedStringWithExceptions(row.exceptions)), row.result);
    }
}

TEST(PercentEncoding, isNilForNilAndForAnUnpairedSurrogate) {
    for (const NSString& text : {NSString(), stringOf(u"\xD800"s), stringOf(u"a\xD83D"s),
                                 stringOf(u"a b\xDFFFz"s), stringOf(u"\xD83D\xD83D\xDE00"s)}) {
        EXPECT_FALSE(text.urlEncodedString());
        EXPECT_FALSE(text.urlPathEncodedString());
        EXPECT_FALSE(text.urlQueryEncodedString());
        EXPECT_FALSE(text.urlEncodedStringWithExceptions("a"));
    }
    EXPECT_FALSE(NSString().urlDecodedString());
}

TEST(PercentEncoding, setsHoldExactlyTheirCharacters) {
    const NSCharacterSet path = NSCharacterSet::URLPathAllowedCharacterSet();
    const NSCharacterSet query = NSCharacterSet::URLQueryAllowedCharacterSet();
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        const char character = code < 0x80 ? static_cast<char>(code) : '\0';
        ASSERT_EQ(path.longCharacterIsMember(code), pathMembers.find(character) != std::string::npos);
        ASSERT_EQ(query.longCharacterIsMember(code), queryMembers.find(character) != std::string::npos);
    }
}

} // namespace
