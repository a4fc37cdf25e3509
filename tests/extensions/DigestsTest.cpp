// SPDX-License-Identifier: MIT
// MD5 digests of strings.
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSString.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::stringOf;

namespace {

std::string digestOf(const NSString& text) { return kit::utf8Of(text.md5String()); }

TEST(Digests, areThoseOfTheStandardSuite) {
    const NSString rows[][2] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"}, // with a leading zero
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
        {std::string(1000000, 'a'), "7707d6ae4e027c70eea2a935c2296f21"},
    };
    for (const auto& [text, digest] : rows) {
        EXPECT_EQ(text.md5String(), digest);
    }
}

TEST(Digests, areTakenFromTheUtf8Form) {
    EXPECT_EQ(digestOf(u"\u00E9"), "66ddcd97cfdeabb2f6fb8a999b4bc76f");
    EXPECT_EQ(digestOf(u"\u20AC"), "bca53fde466a76b7bee3e18997e94a7a");
    EXPECT_EQ(digestOf(u"\U0001F600"), "2a02eac39d716a70ecf37579185927b6");
    EXPECT_EQ(digestOf(u"a\u0301"), "44b83bbc12da505b97ae458cb84798cf");
    EXPECT_EQ(digestOf(stringOf(u"\xD800")), "(nil)") << "which has no such form";
}

TEST(Digests, endAtTheFirstZero) {
    EXPECT_EQ(digestOf(stringOf(u"abc\0def"s)), digestOf("abc"));
    EXPECT_EQ(digestOf(stringOf(u"\0abc"s)), digestOf(""));
    EXPECT_EQ(digestOf(stringOf(u"\u00E9\0x\0"s)), digestOf(u"\u00E9"));
}

TEST(Digests, ofNilAreNil) { EXPECT_FALSE(NSString().md5String()); }

} // namespace
