// SPDX-License-Identifier: MIT
// URLs from parts: rows, and the general operation and each short form against the model for all combinations
// of parts.
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSURL.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/UriReference.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace {

/// A part as a caller passes it: a null pointer is nil.
using Part = const char*;

std::string textOf(const NSURL& url) { return utf8Of(url.absoluteString()); }

/// What a call of the general operation is given.
struct Given {
    StringView scheme;
    StringView authority;
    StringView path;
    StringView query = nullptr;
    StringView fragment = nullptr;
    bool encodePath = true;
    bool encodeQuery = true;
};

std::string made(const Given& given) {
    return textOf(NSURL::URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(
        given.scheme, given.authority, given.path, given.encodePath, given.query, given.encodeQuery,
        given.fragment));
}

std::string model(const Given& given) {
    const auto text = [](StringView part) {
        return NSString(part).utf8();
    };
    return models::constructed({text(given.scheme), text(given.authority), text(given.path),
                                text(given.query), text(given.fragment)},
                               given.encodePath, given.encodeQuery)
        .value_or("(nil)");
}

std::string shown(const Given& given) {
    return utf8Of(given.scheme) + " " + utf8Of(given.authority) + " " + utf8Of(given.path) + " " +
           utf8Of(given.query) + " " + utf8Of(given.fragment);
}

constexpr bool asItIs = false;

const struct {
    Given given;
    const char* text; ///< "(nil)": there is no such URL
} rows[] = {
    {{"ftp", "srv:2121", "/a b"}, "ftp://srv:2121/a%20b"},
    {{"tel", nullptr, "1234"}, "tel:1234"}, // no slashes without an authority
    {{"file", "", "/tmp/x"}, "file:/tmp/x"},
    {{"x", nullptr, nullptr}, "x:"},
    {{"http", "h", ""}, "http://h"},
    {{"http", "h", nullptr, "a b", "f"}, "http://h?a%20b#f"},
    {{"http", "h", "/", "", ""}, "http://h/"}, // no marks of empty parts
    {{"HTTP", "User%41@HOST:080", "/A", nullptr, "Top%2f"}, "HTTP://User%41@HOST:080/A#Top%2f"},
    // A path that would be read as something else
    {{"http", "h", "a/b"}, "(nil)"},
    {{"http", "h", " /a"}, "(nil)"},
    {{"x", nullptr, "//h"}, "(nil)"},
    {{"x", "", "///y", nullptr, nullptr, asItIs}, "(nil)"},
    {{"x", "h", "%2Fa", nullptr, nullptr, asItIs}, "(nil)"},
    {{"x", nullptr, "/%2F", nullptr, nullptr, asItIs}, "x:/%2F"},
    {{"x", "h", "//h"}, "x://h//h"},
    {{"x", "", "/h//"}, "x:/h//"},
    // Parts that no URL has
    {{nullptr, "h", "/"}, "(nil)"},
    {{"", "h", "/"}, "(nil)"},
    {{"1x", "h", "/"}, "(nil)"},
    {{u"\u00E9", "h", "/"}, "(nil)"},
    {{"ht tp", "h", "/"}, "(nil)"},
    {{"http", "h b", "/"}, "(nil)"},
    {{"http", "\u00E9", "/"}, "(nil)"},
    {{"http", "h", "/", nullptr, "a b"}, "(nil)"},
    {{"http", "h", "/", nullptr, "%"}, "(nil)"},
    {{"ftp", "h", "/a b", nullptr, nullptr, asItIs}, "(nil)"},
    {{"x", "h", "/", "a b", nullptr, true, asItIs}, "(nil)"},
    // Path and query, each by its own set or as they are
    {{"x", "h", "/a;b?c#d", "a;b?c#d"}, "x://h/a%3Bb%3Fc%23d?a;b?c%23d"},
    {{"x", "h", "/%20", "%20"}, "x://h/%2520?%2520"},
    {{"x", "h", "/%20", "%41=b", "%43", asItIs, asItIs}, "x://h/%20?%41=b#%43"},
    // Parts that run together are not kept apart
    {{"http", "h/p?q", "/x"}, "http://h/p?q/x"},
    {{"x:y", nullptr, "z"}, "x:y:z"},
    {{"x", "h", "/p?q", "r", nullptr, asItIs}, "x://h/p?q?r"},
    {{"x", "h", "/p", "q#f", nullptr, true, asItIs}, "x://h/p?q#f"},
    {{"x", "h", "/p", "q#f", "g", true, asItIs}, "(nil)"},
    {{"x", nullptr, "?q", nullptr, nullptr, asItIs}, "x:?q"},
    // Texts in every form
    {{u"x", u"h", u"/\u00E9+", u"\u20AC+", u"f"}, "x://h/%C3%A9+?%E2%82%AC+#f"},
    {{u"x", u"", u"//h"}, "(nil)"},
    {{u"x", u"h", u"a"}, "(nil)"},
    {{"x", "h", u"/\u2F2F"}, "x://h/%E2%BC%AF"}, // whose bytes are slashes
    {{"x", "h", u"\u2F2F"}, "(nil)"},
    // An unpaired surrogate has no form
    {{"x", "h", u"/\xD800"}, "(nil)"},
    {{"x", "h", u"/\xD800", nullptr, nullptr, asItIs}, "(nil)"},
    {{"x", "h", "/", u"\xDC00"}, "(nil)"},
    {{"x", "h", "/", u"\xDC00", nullptr, true, asItIs}, "(nil)"},
    {{"x", "h", "/", "q", u"\xD800"}, "(nil)"},
    {{"x", u"\xD800", "/"}, "(nil)"},
    {{u"x\xD800", "h", "/"}, "(nil)"},
};

TEST(URLConstruction, putsThePartsTogether) {
    for (const auto& row : rows) {
        EXPECT_EQ(made(row.given), row.text) << shown(row.given);
    }
}

constexpr Part schemes[] = {nullptr, "", "http", "x+y.z-1", "1x", "a b", "X:y", "\u00E9"};
constexpr Part authorities[] = {nullptr, "", "srv:2121", "u:p@[::1]", "a b", "h/p", "[::1"};
constexpr Part paths[] = {nullptr, "",      "/",    "1234",    "/a b",     "//x", "/a//b", "a/b",
                          "a:b",   "/100%", "/%20", "/\u00E9", "/a;b?c#d", "?q",  "///",   "[x]"};
constexpr Part queries[] = {nullptr, "", "a=1&b=2", "a b", "\u00E9", "%", "x#y", "?;/:@"};
constexpr Part fragments[] = {nullptr, "", "top", "a b", "a#b", "%4"};

template <class Body>
void forEveryCombination(const Body& body) {
    for (const Part scheme : schemes) {
        for (const Part authority : authorities) {
            for (const Part path : paths) {
                for (const Part query : queries) {
                    for (const Part fragment : fragments) {
                        body(scheme, authority, path, query, fragment);
                    }
                }
            }
        }
    }
}

TEST(URLConstruction, agreesWithTheModelOnEveryCombination) {
    std::size_t calls = 0;
    std::size_t urls = 0;
    forEveryCombination([&](Part scheme, Part authority, Part path, Part query, Part fragment) {
        for (const bool encodePath : {false, true}) {
            for (const bool encodeQuery : {false, true}) {
                const Given given{scheme, authority, path, query, fragment, encodePath, encodeQuery};
                const std::string result = made(given);
                ++calls;
                urls += result != "(nil)" ? 1 : 0;
                ASSERT_EQ(result, model(given)) << shown(given);
            }
        }
    });
    EXPECT_EQ(calls, std::size(schemes) * std::size(authorities) * std::size(paths) * std::size(queries) *
                         std::size(fragments) * 4);
    EXPECT_GT(urls, 10000u);
}

using Operation = NSURL (*)(Part, Part, Part, Part, Part);

/// A short form, and what it passes on.
struct ShortForm {
    const char* name;
    Operation make;
    bool encodesPath;
    bool takesQuery;
    bool encodesQuery;
    bool takesFragment;
};

constexpr ShortForm shortForms[] = {
    {"path", [](Part s, Part a, Part p, Part, Part) { return NSURL::URLWithScheme_authority_path(s, a, p); },
     true, false, true, false},
    {"path, query",
     [](Part s, Part a, Part p, Part q, Part) {
         return NSURL::URLWithScheme_authority_path_query(s, a, p, q);
     },
     true, true, true, false},
    {"path, query, fragment",
     [](Part s, Part a, Part p, Part q, Part f) {
         return NSURL::URLWithScheme_authority_path_query_fragment(s, a, p, q, f);
     },
     true, true, true, true},
    {"path, query as it is",
     [](Part s, Part a, Part p, Part q, Part) {
         return NSURL::URLWithScheme_authority_path_queryNotToBeEncoded(s, a, p, q);
     },
     true, true, false, false},
    {"path, query as it is, fragment",
     [](Part s, Part a, Part p, Part q, Part f) {
         return NSURL::URLWithScheme_authority_path_queryNotToBeEncoded_fragment(s, a, p, q, f);
     },
     true, true, false, true},
    {"path as it is",
     [](Part s, Part a, Part p, Part, Part) {
         return NSURL::URLWithScheme_authority_pathNotToBeEncoded(s, a, p);
     },
     false, false, true, false},
    {"path as it is, query",
     [](Part s, Part a, Part p, Part q, Part) {
         return NSURL::URLWithScheme_authority_pathNotToBeEncoded_query(s, a, p, q);
     },
     false, true, true, false},
    {"path as it is, query, fragment",
     [](Part s, Part a, Part p, Part q, Part f) {
         return NSURL::URLWithScheme_authority_pathNotToBeEncoded_query_fragment(s, a, p, q, f);
     },
     false, true, true, true},
    {"path and query as they are",
     [](Part s, Part a, Part p, Part q, Part) {
         return NSURL::URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded(s, a, p, q);
     },
     false, true, false, false},
    {"path and query as they are, fragment",
     [](Part s, Part a, Part p, Part q, Part f) {
         return NSURL::URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded_fragment(s, a, p, q, f);
     },
     false, true, false, true},
};

TEST(URLConstruction, shortFormsPassOnWhatTheirNamesSay) {
    EXPECT_EQ(std::size(shortForms), 10u);
    for (const ShortForm& form : shortForms) {
        SCOPED_TRACE(form.name);
        forEveryCombination([&](Part scheme, Part authority, Part path, Part query, Part fragment) {
            const Given given{scheme,
                              authority,
                              path,
                              form.takesQuery ? query : nullptr,
                              form.takesFragment ? fragment : nullptr,
                              form.encodesPath,
                              form.encodesQuery};
            ASSERT_EQ(textOf(form.make(scheme, authority, path, query, fragment)), model(given))
                << shown(given);
        });
    }
}

TEST(URLConstruction, makesUrlsThatReadBackAsTheirParts) {
    const NSURL url = NSURL::URLWithScheme_authority_path_query_fragment("foo", "u:p@example.com:8042",
                                                                         "/over there", "name=a b", "nose");
    EXPECT_EQ(utf8Of(url.scheme()), "foo");
    EXPECT_EQ(utf8Of(url.authority()), "u:p@example.com:8042");
    EXPECT_EQ(utf8Of(url.path()), "/over%20there");
    EXPECT_EQ(utf8Of(url.query()), "name=a%20b");
    EXPECT_EQ(utf8Of(url.fragment()), "nose");
    EXPECT_FALSE(url.baseURL());
}

} // namespace
