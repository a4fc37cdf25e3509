// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSURL.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/UriReference.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::utf8Of;

namespace {

using models::Piece;

constexpr const char* missing = "(nil)";

struct Parts {
    const char* text;
    const char* scheme;
    const char* authority;
    const char* path;
    const char* query;
    const char* fragment;
};

void expectParts(const NSURL& url, const Parts& row) {
    ASSERT_TRUE(url);
    EXPECT_EQ(utf8Of(url.scheme()), row.scheme);
    EXPECT_EQ(utf8Of(url.authority()), row.authority);
    EXPECT_EQ(utf8Of(url.path()), row.path);
    EXPECT_EQ(utf8Of(url.query()), row.query);
    EXPECT_EQ(utf8Of(url.fragment()), row.fragment);
}

std::string shownPort(const NSURL& url) {
    const NSNumber port = url.port();
    return port ? utf8Of(port.description()) : missing;
}

std::string resolvedText(const std::string& text, const std::string& base) {
    return utf8Of(NSURL::URLWithString_relativeToURL(text, NSURL::URLWithString(base)).absoluteString());
}

bool isTaken(const std::string& text) { return bool(NSURL::URLWithString(text)); }

// Parts

TEST(URLPartsFromFacts, ofTheStandardExamples) {
    const Parts rows[] = {
        {"ftp://ftp.is.co.za/rfc/rfc1808.txt", "ftp", "ftp.is.co.za", "/rfc/rfc1808.txt", missing, missing},
        {"http://www.ietf.org/rfc/rfc2396.txt", "http", "www.ietf.org", "/rfc/rfc2396.txt", missing, missing},
        {"ldap://[2001:db8::7]/c=GB?objectClass?one", "ldap", "[2001:db8::7]", "/c=GB", "objectClass?one",
         missing},
        {"mailto:John.Doe@example.com", "mailto", missing, "John.Doe@example.com", missing, missing},
        {"news:comp.infosystems.www.servers.unix", "news", missing, "comp.infosystems.www.servers.unix",
         missing, missing},
        {"tel:+1-816-555-1212", "tel", missing, "+1-816-555-1212", missing, missing},
        {"telnet://192.0.2.16:80/", "telnet", "192.0.2.16:80", "/", missing, missing},
        {"urn:oasis:names:specification:docbook:dtd:xml:4.1.2", "urn", missing,
         "oasis:names:specification:docbook:dtd:xml:4.1.2", missing, missing},
        {"foo://example.com:8042/over/there?name=ferret#nose", "foo", "example.com:8042", "/over/there",
         "name=ferret", "nose"},
        {"urn:example:animal:ferret:nose", "urn", missing, "example:animal:ferret:nose", missing, missing},
    };
    for (const Parts& row : rows) {
        SCOPED_TRACE(row.text);
        const NSURL url = NSURL::URLWithString(row.text);
        expectParts(url, row);
        EXPECT_EQ(utf8Of(url.absoluteString()), row.text);
        EXPECT_EQ(utf8Of(url.relativeString()), row.text);
    }
}

TEST(URLPartsFromFacts, tellMissingOnesFromEmptyOnes) {
    const Parts rows[] = {
        {"", missing, missing, "", missing, missing},
        {"a:b", "a", missing, "b", missing, missing},
        {"a:b?", "a", missing, "b", "", missing},
        {"a:b#", "a", missing, "b", missing, ""},
        {"a:?#", "a", missing, "", "", ""},
        {"a:", "a", missing, "", missing, missing},
        {"a://", "a", "", "", missing, missing},
        {"a:///", "a", "", "/", missing, missing},
        {"//", missing, "", "", missing, missing},
        {"//h", missing, "h", "", missing, missing},
        {"/p", missing, missing, "/p", missing, missing},
        {"p", missing, missing, "p", missing, missing},
        {"?", missing, missing, "", "", missing},
        {"#", missing, missing, "", missing, ""},
        {"?q#f", missing, missing, "", "q", "f"},
        {"a:////b", "a", "", "//b", missing, missing},
    };
    for (const Parts& row : rows) {
        SCOPED_TRACE(row.text);
        expectParts(NSURL::URLWithString(row.text), row);
    }
}

TEST(URLPartsFromFacts, standAsTheyAreWritten) {
    const Parts rows[] = {
        {"HTTP://Us%65r@EXAMPLE.com:0080/%7e/./a/../b?%41=b%20#%5f", "HTTP", "Us%65r@EXAMPLE.com:0080",
         "/%7e/./a/../b", "%41=b%20", "%5f"},
        {"a+b-c.1:x", "a+b-c.1", missing, "x", missing, missing},
        {"//h?a/b?c#d/e?f", missing, "h", "", "a/b?c", "d/e?f"},
        {"./a:b", missing, missing, "./a:b", missing, missing},
        {"/a:b", missing, missing, "/a:b", missing, missing},
    };
    for (const Parts& row : rows) {
        SCOPED_TRACE(row.text);
        const NSURL url = NSURL::URLWithString(row.text);
        expectParts(url, row);
        EXPECT_EQ(utf8Of(url.absoluteString()), row.text);
    }
}

TEST(URLPartsFromFacts, ofTheAuthority) {
    const struct {
        const char* text;
        const char* user;
        const char* password;
        const char* host;
        const char* port;
    } rows[] = {
        {"x://h", missing, missing, "h", missing},
        {"x://", missing, missing, "", missing},
        {"x:/p", missing, missing, missing, missing},
        {"x://h:80/p", missing, missing, "h", "80"},
        {"x://h:/p", missing, missing, "h", missing},
        {"x://:80", missing, missing, "", "80"},
        {"x://h:0080", missing, missing, "h", "80"},
        {"x://u@h", "u", missing, "h", missing},
        {"x://u:p@h:1", "u", "p", "h", "1"},
        {"x://u:@h", "u", "", "h", missing},
        {"x://:p@h", "", "p", "h", missing},
        {"x://@h", "", missing, "h", missing},
        {"x://u:p:q@h", "u", "p:q", "h", missing},
        {"x://u%3Ap:%40@h%2e", "u%3Ap", "%40", "h%2e", missing},
        {"x://a!$&'()*+,;=@h", "a!$&'()*+,;=", missing, "h", missing},
        {"x://my_host", missing, missing, "my_host", missing},
        {"x://[::1]:80/", missing, missing, "::1", "80"},
        {"x://u@[2001:DB8::7]/", "u", missing, "2001:DB8::7", missing},
        {"x://[::ffff:192.0.2.1]", missing, missing, "::ffff:192.0.2.1", missing},
        {"x://192.0.2.16:80/", missing, missing, "192.0.2.16", "80"},
        {"x://h:65536", missing, missing, "h", "65536"},
        {"x://h:9223372036854775807", missing, missing, "h", "9223372036854775807"},
        {"x://h:99999999999999999999999", missing, missing, "h", missing},
        {"x://h:00000000000000000000000000007", missing, missing, "h", "7"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const NSURL url = NSURL::URLWithString(row.text);
        ASSERT_TRUE(url);
        EXPECT_EQ(utf8Of(url.user()), row.user);
        EXPECT_EQ(utf8Of(url.password()), row.password);
        EXPECT_EQ(utf8Of(url.host()), row.host);
        EXPECT_EQ(shownPort(url), row.port);
    }
}

TEST(URLPartsFromFacts, ofNilAreNil) {
    const NSURL url;
    EXPECT_FALSE(url.scheme());
    EXPECT_FALSE(url.authority());
    EXPECT_FALSE(url.user());
    EXPECT_FALSE(url.password());
    EXPECT_FALSE(url.host());
    EXPECT_FALSE(url.port());
    EXPECT_FALSE(url.path());
    EXPECT_FALSE(url.query());
    EXPECT_FALSE(url.fragment());
    EXPECT_FALSE(url.absoluteString());
    EXPECT_FALSE(url.absoluteURL());
}

// Resolution

TEST(URLPartsFromFacts, normalReferencesResolve) {
    for (const auto& row : models::normalReferences) {
        EXPECT_EQ(resolvedText(row[0], models::exampleBase), row[1]) << row[0];
    }
}

TEST(URLPartsFromFacts, abnormalReferencesResolve) {
    for (const auto& row : models::abnormalReferences) {
        EXPECT_EQ(resolvedText(row[0], models::exampleBase), row[1]) << row[0];
    }
}

TEST(URLPartsFromFacts, referencesResolveAgainstOtherBases) {
    const char* const rows[][3] = {
        {"g", "http://a", "http://a/g"},
        {"g", "http://a?q", "http://a/g"},
        {"?y", "http://a", "http://a?y"},
        {"", "http://a/b#f", "http://a/b"},
        {"#", "http://a/b?q#f", "http://a/b?q#"},
        {"?", "http://a/b?q", "http://a/b?"},
        {"g", "file:///a/b", "file:///a/g"},
        {"/g", "file:///a/b", "file:///g"},
        {"g", "urn:a", "urn:g"},
        {"g", "urn:a/b", "urn:a/g"},
        {"..", "http://a/b/../c/d", "http://a/"},
        {"g", "http://u:p@a:1/b", "http://u:p@a:1/g"},
        {"%2e%2e/g", "http://a/b/c", "http://a/b/%2e%2e/g"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(resolvedText(row[0], row[1]), row[2]) << row[0] << " against " << row[1];
    }
}

TEST(URLPartsFromFacts, referencesWithASchemeStayAsTheyAreGiven) {
    for (const char* const text : {"http://x/a/../b", "http:/a/./b", "x:a/../b", "x:../a", "x:.."}) {
        EXPECT_EQ(resolvedText(text, "http://h/p/q"), text);
        EXPECT_EQ(utf8Of(NSURL::URLWithString(text).absoluteString()), text) << "without a base";
    }
}

TEST(URLPartsFromFacts, ofARelativeReferenceAreThoseOfTheWhole) {
    const NSURL base = NSURL::URLWithString("http://u:p@h:8/a/b?q#f");
    const NSURL url = NSURL::URLWithString_relativeToURL("../x?y#z", base);
    ASSERT_TRUE(url);
    EXPECT_EQ(utf8Of(url.relativeString()), "../x?y#z");
    EXPECT_EQ(utf8Of(url.baseURL().absoluteString()), "http://u:p@h:8/a/b?q#f");
    expectParts(url, {"", "http", "u:p@h:8", "/x", "y", "z"});
    EXPECT_EQ(utf8Of(url.user()), "u");
    EXPECT_EQ(utf8Of(url.password()), "p");
    EXPECT_EQ(utf8Of(url.host()), "h");
    EXPECT_EQ(shownPort(url), "8");
    EXPECT_EQ(utf8Of(url.absoluteURL().relativeString()), "http://u:p@h:8/x?y#z");
    EXPECT_FALSE(url.absoluteURL().baseURL());
    EXPECT_EQ(utf8Of(url.description()), "../x?y#z -- http://u:p@h:8/a/b?q#f");
}

TEST(URLPartsFromFacts, ofAReferenceWithoutBaseAreItsOwn) {
    const NSURL url = NSURL::URLWithString_relativeToURL("../x/./y", nullptr);
    EXPECT_EQ(utf8Of(url.absoluteString()), "../x/./y");
    EXPECT_FALSE(url.scheme());
    EXPECT_EQ(utf8Of(url.path()), "../x/./y");
}

TEST(URLPartsFromFacts, basesMayHaveBasesThemselves) {
    const NSURL first = NSURL::URLWithString("http://h/a/b/c");
    const NSURL second = NSURL::URLWithString_relativeToURL("../d/e", first);
    const NSURL third = NSURL::URLWithString_relativeToURL("f", second);
    EXPECT_EQ(utf8Of(second.absoluteString()), "http://h/a/d/e");
    EXPECT_EQ(utf8Of(third.absoluteString()), "http://h/a/d/f");
}

// What is a reference

TEST(URLPartsFromFacts, noTextWithAForeignCharacterIsAReference) {
    const std::string allowed = models::unreserved + models::delimiters + ":@/?#";
    for (int code = 0; code < 128; ++code) {
        const char character = static_cast<char>(code);
        if (code != 0 && (allowed.find(character) != std::string::npos || character == '%')) {
            continue;
        }
        SCOPED_TRACE(code);
        for (const char* before : {"", "x:", "x://", "x://h/", "x:?", "x:#", "x://h:", "x://u@", "/", "?"}) {
            for (const char* after : {"", "y", "/"}) {
                EXPECT_FALSE(isTaken(before + std::string(1, character) + after)) << before << after;
            }
        }
    }
    for (const char* text : {"\u00E9", "x://\u00E9/", "x:?\u20AC", "x:#\U0001F600", "\xFF", "\u2028",
                             "x:\u00A0", "\uFEFFx:", "x:\u200B"}) {
        EXPECT_FALSE(isTaken(text)) << text;
    }
}

constexpr const char* wrongTexts[] = {
    // Schemes
    ":",
    ":a",
    ";:",
    "1:a",
    "1http:x",
    "+a:b",
    "-a:b",
    ".a:b",
    "a_b:c",
    "a%41:b",
    "a@b:c",
    "a,b:c",
    "a b:c",
    "~:x",
    "a!:b",
    "192.0.2.1:80",
    ":://h",
    "1://h",
    // Escapes
    "%",
    "a%",
    "100%",
    "%4",
    "%4g",
    "%g4",
    "%%41",
    "%-1",
    "a%2",
    "?%",
    "?%z0",
    "#%",
    "#%0",
    "x://%/",
    "x://%4/",
    "x://a%zz@h",
    "x://h%/",
    "/%2/",
    "%u20AC",
    "% 1",
    // Authorities
    "x://h:x",
    "x://h:8a",
    "x://h:80:90",
    "x://h:-1",
    "x://h:+1",
    "x://h: ",
    "x://h:80 ",
    "x://a@b@h",
    "x://@@h",
    "x://a:b@c:d@h",
    "//h:p",
    "x://h:%38",
    "x://a:b:c",
    "x://::1",
    "x://[",
    "x://]",
    "x://[]",
    "x://[::1",
    "x://::1]",
    "x://[::1]x",
    "x://x[::1]",
    "x://[::1]:x",
    "x://[::1][::1]",
    "x://[h]",
    "x://[1.2.3.4]",
    "x://[::1]80",
    "x://u[@h",
    "x://[u]@h",
    "x://[::1%25eth0]",
    "x://[::1%41]",
    // Addresses of version 6
    "x://[:]",
    "x://[:::]",
    "x://[1]",
    "x://[1:2:3:4:5:6:7]",
    "x://[1:2:3:4:5:6:7:8:9]",
    "x://[1::2::3]",
    "x://[::12345]",
    "x://[::g]",
    "x://[1:2:3:4:5:6:7::8]",
    "x://[::1:2:3:4:5:6:7:8]",
    "x://[:1:2:3:4:5:6:7:8]",
    "x://[1:2:3:4:5:6:7:8:]",
    "x://[1:]",
    "x://[:1]",
    "x://[1::2:]",
    "x://[::1.2.3]",
    "x://[::1.2.3.4.5]",
    "x://[::256.2.3.4]",
    "x://[::01.2.3.4]",
    "x://[::1.2.3.]",
    "x://[1.2.3.4::]",
    "x://[1:2:3:4:5:6:7:1.2.3.4]",
    "x://[::1.2.3.4:5]",
    "x://[1:2:3:4:5:1.2.3.4]",
    // Addresses of later versions
    "x://[v]",
    "x://[v1]",
    "x://[v1.]",
    "x://[v.x]",
    "x://[vg.x]",
    "x://[v1.x/]",
    "x://[v1.@]",
    "x://[w1.x]",
    "x://[v1.%41]",
    "x://[v1.[]",
    // Brackets and marks elsewhere
    "[",
    "]",
    "[::1]",
    "x:[::1]",
    "/[",
    "/a]",
    "?[",
    "?a]",
    "#[",
    "#]",
    "x[1]",
    "##",
    "a#b#c",
    "#a#",
    "?a#b#",
    "x://h/[::1]",
    "x://h?a[0]=1",
    // Characters that no reference holds
    " ",
    "a b",
    " a",
    "a ",
    "\t",
    "\n",
    "x://h/\n",
    "a\r\n",
    "\x7F",
    "\x01",
    "\"a\"",
    "<a>",
    "a\\b",
    "C:\\a",
    "a^b",
    "{a}",
    "a|b",
    "`a`",
    "x://h|/",
    "x://a b/",
    "x://h/?a b",
    "x://h/#a b",
    "?<",
    "#>",
    "<http://h/>",
    "http://h/\"",
};

TEST(URLPartsFromFacts, wrongTextsAreNoReferences) {
    for (const char* row : wrongTexts) {
        EXPECT_FALSE(isTaken(row)) << testing::PrintToString(row);
        EXPECT_FALSE(models::isReference(row)) << "the model: " << testing::PrintToString(row);
    }
}

constexpr const char* unusualTexts[] = {
    "",
    "a",
    "1",
    ".",
    "..",
    "...",
    "~",
    "*",
    "@",
    "a@b",
    "a//b",
    "//",
    "///",
    "////",
    "//@",
    "//:",
    "//@:",
    "x:",
    "x:@:",
    "x:y:z",
    "x:1",
    "x:/",
    "X:",
    "x+y-z.0:",
    "?",
    "#",
    "?#",
    "??",
    "?/?",
    "#/?",
    "#?",
    "?:@",
    "%00",
    "%ff%FE",
    "%25",
    "x://h:",
    "x://h:00000",
    "x://h:99999999999999999999",
    "x://my_host",
    "x://-",
    "x://_",
    "x://1.2.3.4.5",
    "x://999.999.999.999",
    "x://h%41%ff",
    "x://a!$&'()",
    "x://h;a=b,c",
    "x://%40@h",
    "x://u:p:q@h",
    "x://:@:",
    "x://[::]",
    "x://[::1]",
    "x://[1::]",
    "x://[1:2:3:4:5:6:7:8]",
    "x://[1:2:3:4:5:6:7::]",
    "x://[::2:3:4:5:6:7:8]",
    "x://[1::3:4:5:6:7:8]",
    "x://[1:2:3:4:5:6:1.2.3.4]",
    "x://[::1.2.3.4]",
    "x://[1::255.255.255.255]",
    "x://[1::0.0.0.0]",
    "x://[::1:2:3:4:5:1.2.3.4]",
    "x://[ABCD:ef01::0000]",
    "x://[::1]:",
    "x://[::1]:80",
    "x://u@[::1]/p",
    "x://[v1.x]",
    "x://[V1F.a:b;c=!]",
    "x://[vFF.~]",
    "./a:b",
    "/a:b",
    "a/b:c",
    "?a:b",
    "#a:b",
};

TEST(URLPartsFromFacts, unusualTextsAreReferences) {
    for (const char* row : unusualTexts) {
        EXPECT_TRUE(isTaken(row)) << row;
        EXPECT_TRUE(models::isReference(row)) << "the model: " << row;
        EXPECT_EQ(utf8Of(NSURL::URLWithString(row).absoluteString()), row);
    }
}

// Against the model

void expectPiece(const NSString& part, const Piece& piece) {
    EXPECT_EQ(utf8Of(part), piece.value_or(missing));
}

void expectPieces(const NSURL& url, const models::Reference& pieces) {
    expectPiece(url.scheme(), pieces.scheme);
    expectPiece(url.authority(), pieces.authority);
    expectPiece(url.path(), pieces.path);
    expectPiece(url.query(), pieces.query);
    expectPiece(url.fragment(), pieces.fragment);
}

std::string randomText(kit::Numbers& numbers) {
    static const std::vector<std::string> words = {
        "a",    "B",       "1", ":",  "/", "?",  "#",  "[",     "]",    "@",       "%41",   "%",  "..",
        ".",    "/",       ":", "//", "~", "!",  " ",  "[::1]", "x://", "v1.a",    "::",    "80", "/./",
        "/../", "mailto:", "+", "-",  "_", "%f", "=&", "\"",    "1:2",  "1.2.3.4", "http:", "h",  "u:p@",
    };
    std::string text;
    for (std::size_t count = numbers.below(8); count != 0; --count) {
        text += words[numbers.below(words.size())];
    }
    return text;
}

TEST(URLPartsFromFacts, agreeWithTheModelOnRandomTexts) {
    kit::Numbers numbers(11);
    int taken = 0;
    int refused = 0;
    for (int round = 0; round < 100000; ++round) {
        const std::string text = randomText(numbers);
        SCOPED_TRACE(text);
        const NSURL url = NSURL::URLWithString(text);
        ASSERT_EQ(bool(url), models::isReference(text));
        ++(url ? taken : refused);
        if (url) {
            expectPieces(url, models::apart(text));
            ASSERT_EQ(utf8Of(url.absoluteString()), text);
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    EXPECT_GT(taken, 10000);
    EXPECT_GT(refused, 10000);
}

TEST(URLPartsFromFacts, agreeWithTheModelOnAllShortTexts) {
    const std::string alphabet = "a1:/?#[]@%.";
    std::vector<std::string> texts{""};
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const std::string text = texts[index];
        ASSERT_EQ(isTaken(text), models::isReference(text)) << text;
        for (std::size_t next = 0; text.size() < 5 && next < alphabet.size(); ++next) {
            texts.push_back(text + alphabet[next]);
        }
    }
    ASSERT_EQ(texts.size(), 1u + 11 + 121 + 1331 + 14641 + 161051);
}

TEST(URLPartsFromFacts, agreeWithTheModelOnResolution) {
    kit::Numbers numbers(12);
    int compared = 0;
    for (int round = 0; round < 100000; ++round) {
        const std::string text = randomText(numbers);
        const std::string base = "x:" + randomText(numbers);
        if (!models::isReference(text) || !models::isReference(base) || models::apart(text).scheme) {
            continue;
        }
        const models::Reference target = models::resolved(models::apart(text), models::apart(base));
        if (!target.authority && target.path.rfind("//", 0) == 0) {
            continue; // has no text of its own: the path would be read as an authority
        }
        SCOPED_TRACE(text + " against " + base);
        const NSURL url = NSURL::URLWithString_relativeToURL(text, NSURL::URLWithString(base));
        ASSERT_EQ(utf8Of(url.absoluteString()), models::together(target));
        expectPieces(url, target);
        ASSERT_FALSE(testing::Test::HasFailure());
        ++compared;
    }
    EXPECT_GT(compared, 5000);
}

} // namespace
