// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "foundation/objects/NSURL.h"
#include "tests/objects/RandomTexts.h"
#include "tests/objects/ReferenceModel.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using TestValues::utf8Of;

namespace {

/// A part as a caller gives it: a null pointer is nil.
using Part = const char*;

std::string textOf(const NSURL& url) { return utf8Of(url.absoluteString()); }

/// What a call of the general operation is given.
struct Given {
    Part scheme;
    Part authority;
    Part path;
    bool encodePath;
    Part query;
    bool encodeQuery;
    Part fragment;
};

std::string made(const Given& given) {
    return textOf(NSURL::URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(
        given.scheme, given.authority, given.path, given.encodePath, given.query, given.encodeQuery,
        given.fragment));
}

std::string encoded(const std::string& text, const std::string& more) {
    const std::string kept = referencemodel::letters + referencemodel::digits + "!$&'()*+,-./:=@_~" + more;
    std::string result;
    for (const char character : text) {
        if (referencemodel::isOneOf(character, kept)) {
            result += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            result += {'%', "0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]};
        }
    }
    return result;
}

/// The plain model: one step after the other. "(nil)" for no URL.
std::string modelMade(const Given& given) {
    const std::string none = "(nil)";
    const auto orEmpty = [](Part part) {
        return std::string(part == nullptr ? "" : part);
    };
    if (orEmpty(given.scheme).empty()) {
        return none;
    }
    const std::string authority = orEmpty(given.authority);
    std::string path = orEmpty(given.path);
    std::string query = orEmpty(given.query);
    const std::string fragment = orEmpty(given.fragment);
    if (authority.empty() ? path.substr(0, 2) == "//" : !path.empty() && path.front() != '/') {
        return none;
    }
    if (given.encodePath) {
        path = encoded(path, "");
    }
    const bool hasQuery = !query.empty();
    if (given.encodeQuery) {
        query = encoded(query, ";?");
    }
    std::string text = given.scheme;
    text += ":";
    text += authority.empty() ? "" : "//";
    text += authority + path;
    text += hasQuery ? "?" : "";
    text += query;
    text += fragment.empty() ? "" : "#";
    text += fragment;
    return referencemodel::isReference(text) ? text : none;
}

std::string shown(const Given& given) {
    const auto part = [](Part text) {
        return text == nullptr ? "nil" : testing::PrintToString(text);
    };
    return part(given.scheme) + " " + part(given.authority) + " " + part(given.path) +
           (given.encodePath ? " encoded " : " ") + part(given.query) +
           (given.encodeQuery ? " encoded " : " ") + part(given.fragment);
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

TEST(URLConstructionFromFacts, agreesWithTheModelOnEveryCombination) {
    std::size_t calls = 0;
    std::size_t urls = 0;
    forEveryCombination([&](Part scheme, Part authority, Part path, Part query, Part fragment) {
        for (const bool encodePath : {false, true}) {
            for (const bool encodeQuery : {false, true}) {
                const Given given{scheme, authority, path, encodePath, query, encodeQuery, fragment};
                const std::string result = made(given);
                ++calls;
                urls += result != "(nil)" ? 1 : 0;
                ASSERT_EQ(result, modelMade(given)) << shown(given);
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

TEST(URLConstructionFromFacts, shortFormsPassOnWhatTheirNamesSay) {
    EXPECT_EQ(std::size(shortForms), 10u);
    for (const ShortForm& form : shortForms) {
        SCOPED_TRACE(form.name);
        forEveryCombination([&](Part scheme, Part authority, Part path, Part query, Part fragment) {
            const Given given{scheme,
                              authority,
                              path,
                              form.encodesPath,
                              form.takesQuery ? query : nullptr,
                              form.encodesQuery,
                              form.takesFragment ? fragment : nullptr};
            ASSERT_EQ(textOf(form.make(scheme, authority, path, query, fragment)), modelMade(given))
                << shown(given);
        });
    }
}

TEST(URLConstructionFromFacts, encodesTheBlankOfAPathOnlyOnRequest) {
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("ftp", "srv:2121", "/a b")), "ftp://srv:2121/a%20b");
    EXPECT_FALSE(NSURL::URLWithScheme_authority_pathNotToBeEncoded("ftp", "srv:2121", "/a b"));
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_pathNotToBeEncoded("ftp", "srv:2121", "/a%20b")),
              "ftp://srv:2121/a%20b");
}

TEST(URLConstructionFromFacts, writesNoSlashesWithoutAnAuthority) {
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("tel", nullptr, "1234")), "tel:1234");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("file", "", "/tmp/x")), "file:/tmp/x");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("x", "", "")), "x:");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("x", nullptr, nullptr)), "x:");
}

TEST(URLConstructionFromFacts, wantsAnAbsolutePathBehindAnAuthority) {
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path("http", "h", "a/b"));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_pathNotToBeEncoded("http", "h", "a/b"));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path("http", "h", " /b"));
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("http", "h", "")), "http://h");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("http", "h", nullptr)), "http://h");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path_query("http", "h", "", "q")), "http://h?q");
}

TEST(URLConstructionFromFacts, wantsNoDoubleSlashWithoutAnAuthority) {
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path("x", nullptr, "//x"));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path("x", "", "//"));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_pathNotToBeEncoded("x", "", "///y"));
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("x", nullptr, "/a//b")), "x:/a//b");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path("x", "h", "//x")), "x://h//x");
}

TEST(URLConstructionFromFacts, leavesOutTheMarksOfEmptyParts) {
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path_query_fragment("x", "h", "/", "", "")), "x://h/");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path_query_fragment("x", "h", "/", nullptr, "f")),
              "x://h/#f");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path_query_fragment("x", "h", "/", "q", nullptr)),
              "x://h/?q");
    EXPECT_EQ(textOf(NSURL::URLWithScheme_authority_path_queryNotToBeEncoded("x", "h", "/", "a=1&b=2")),
              "x://h/?a=1&b=2");
}

TEST(URLConstructionFromFacts, isNilWithoutAScheme) {
    for (const Part scheme : {Part(nullptr), ""}) {
        forEveryCombination([&](Part, Part authority, Part path, Part query, Part fragment) {
            ASSERT_EQ(made({scheme, authority, path, true, query, true, fragment}), "(nil)");
        });
    }
}

TEST(URLConstructionFromFacts, writesSchemeAuthorityAndFragmentUnchanged) {
    EXPECT_EQ(made({"HTTP", "User%41@HOST:080", "/A", true, nullptr, true, "Top%2f"}),
              "HTTP://User%41@HOST:080/A#Top%2f");
    EXPECT_EQ(made({"http", "h b", "/", true, nullptr, true, nullptr}), "(nil)");
    EXPECT_EQ(made({"http", "h", "/", true, nullptr, true, "a b"}), "(nil)");
    EXPECT_EQ(made({"ht tp", "h", "/", true, nullptr, true, nullptr}), "(nil)");
    EXPECT_EQ(made({"http", "\u00E9", "/", true, nullptr, true, nullptr}), "(nil)");
    EXPECT_EQ(made({"http", "h", "/", true, nullptr, true, "%"}), "(nil)");
}

TEST(URLConstructionFromFacts, doesNotKeepPartsApartThatRunTogether) {
    EXPECT_EQ(made({"http", "h/p?q", "/x", true, nullptr, true, nullptr}), "http://h/p?q/x");
    EXPECT_EQ(made({"x:y", nullptr, "z", true, nullptr, true, nullptr}), "x:y:z");
    EXPECT_EQ(made({"x", "h", "/p?q", false, "r", true, nullptr}), "x://h/p?q?r");
    EXPECT_EQ(made({"x", "h", "/p", true, "q#f", false, nullptr}), "x://h/p?q#f");
    EXPECT_EQ(made({"x", "h", "/p", true, "q#f", false, "g"}), "(nil)");
    EXPECT_EQ(made({"x", nullptr, "?q", false, nullptr, true, nullptr}), "x:?q");
}

TEST(URLConstructionFromFacts, encodesPathAndQueryEachByItsOwnSet) {
    EXPECT_EQ(made({"x", "h", "/a;b?c#d", true, "a;b?c#d", true, nullptr}), "x://h/a%3Bb%3Fc%23d?a;b?c%23d");
    EXPECT_EQ(made({"x", "h", "/%20", true, "%20", true, nullptr}), "x://h/%2520?%2520");
    EXPECT_EQ(made({"x", "h", "/%20", false, "%20", false, nullptr}), "x://h/%20?%20");
    EXPECT_EQ(made({"x", "h", "/\u00E9+", true, "\u20AC+", true, nullptr}), "x://h/%C3%A9+?%E2%82%AC+");
}

TEST(URLConstructionFromFacts, takesTheCheckedPathBeforeItIsEncoded) {
    EXPECT_EQ(made({"x", nullptr, "/ /", true, nullptr, true, nullptr}), "x:/%20/");
    EXPECT_EQ(made({"x", nullptr, "/;/", true, nullptr, true, nullptr}), "x:/%3B/");
    EXPECT_EQ(made({"x", "h", "%2Fa", false, nullptr, true, nullptr}), "(nil)");
    EXPECT_EQ(made({"x", nullptr, "/%2F", false, nullptr, true, nullptr}), "x:/%2F");
}

TEST(URLConstructionFromFacts, isNilForAPartThatCannotBeEncoded) {
    const NSString broken = RandomTexts::stringOf(u"/\xD800");
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path("x", "h", broken));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path_query("x", "h", "/", broken));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_pathNotToBeEncoded("x", "h", broken));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path_queryNotToBeEncoded("x", "h", "/", broken));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path_query_fragment("x", "h", "/", "q", broken));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path("x", broken, "/"));
    EXPECT_FALSE(NSURL::URLWithScheme_authority_path(broken, "h", "/"));
}

TEST(URLConstructionFromFacts, readsBackAsThePartsThatWereGiven) {
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
