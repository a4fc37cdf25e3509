// SPDX-License-Identifier: MIT
// Declares NSURL, a URI reference.
#ifndef ZQFOUNDATION_OBJECTS_NSURL_H
#define ZQFOUNDATION_OBJECTS_NSURL_H

#include "NSString.h"

namespace ZQFoundation {

/// A URI reference, kept exactly as it was given.
class ZQFOUNDATION_EXPORT NSURL : public NSObject {
public:
    constexpr NSURL() noexcept = default;
    constexpr NSURL(std::nullptr_t) noexcept {}

    /// The URL that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSURL> T>
    NSURL(const T& object) : NSURL(detail::convertedObject(object)) {}

    /// The value if it is a URL, else nil.
    explicit NSURL(const NSObject& object) noexcept : NSObject(object, detail::Kind::url) {}

    /// A URL of the text; nil unless it is a URI reference by the grammar of RFC 3986. Nothing is escaped or
    /// repaired.
    static NSURL URLWithString(StringView text);

    /// A URL of the text, relative to a base, which may be nil; nil unless the text is a URI reference.
    static NSURL URLWithString_relativeToURL(StringView text, const NSURL& base);

    /// The text as given, without the base.
    NSString relativeString() const;

    /// The base; nil for a URL that has none.
    NSURL baseURL() const;

    /// The text of the URL itself: without a base as given, else resolved against the base by the rules of
    /// RFC 3986, dot segments in the path removed. A text with its own scheme has no base.
    ///
    ///     const NSURL base = NSURL::URLWithString("http://h/a/c/d");
    ///     NSURL::URLWithString_relativeToURL("../b?x", base).absoluteString();  // "http://h/a/b?x"
    NSString absoluteString() const;

    /// The URL without a base whose text is `absoluteString`.
    NSURL absoluteURL() const;

    /// @name Parts of the resolved URL
    /// As written in its text, escapes included; nil for a part that is missing ("a:b" has no query, "a:b?"
    /// an empty one).
    /// @{

    /// The text before the first ":".
    NSString scheme() const;

    /// User information, host and port, as written.
    NSString authority() const;

    /// The user information up to its first ":".
    NSString user() const;

    /// The user information after its first ":".
    NSString password() const;

    /// The host, without the brackets around an IPv6 address.
    NSString host() const;

    /// The port number; nil for no port, an empty one, and one above 2^63 - 1.
    NSNumber port() const;

    /// The path; never nil for a URL, but perhaps empty.
    NSString path() const;

    /// The text between "?" and "#".
    NSString query() const;

    /// The text after "#".
    NSString fragment() const;

    /// @}

    /// @name NSURL(ZQFoundation)
    /// @{

    /// The URL of these parts, of which all but the scheme may be nil or empty; an empty part is omitted
    /// together with its delimiter. Path and query are percent-encoded if the flags are set, the others are
    /// written as given. Nil for a nil or empty scheme, for a path that does not begin with "/" after an
    /// authority or begins with "//" without one, for a text that cannot be encoded, and if the whole is not
    /// a URI reference.
    static NSURL URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(
        StringView scheme, StringView authority, StringView path, detail::Flag encodePath, StringView query,
        detail::Flag encodeQuery, StringView fragment);

    /// The URL of scheme, authority and path, the path percent-encoded; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_path(StringView scheme, StringView authority, StringView path);

    /// The URL of scheme, authority, path and query, path and query percent-encoded; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    ///
    ///     NSURL::URLWithScheme_authority_path_query("https", "example.com", "/a b", "q=1 2");
    ///     // https://example.com/a%20b?q=1%202
    static NSURL URLWithScheme_authority_path_query(StringView scheme, StringView authority, StringView path,
                                                    StringView query);

    /// The URL of scheme, authority, path, query and fragment, path and query percent-encoded; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_path_query_fragment(StringView scheme, StringView authority,
                                                             StringView path, StringView query,
                                                             StringView fragment);

    /// The URL of scheme, authority, path and query, the path percent-encoded, the query as given; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_path_queryNotToBeEncoded(StringView scheme, StringView authority,
                                                                  StringView path, StringView query);

    /// The URL of scheme, authority, path, query and fragment, the path percent-encoded, the query as given;
    /// nil as for `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_path_queryNotToBeEncoded_fragment(StringView scheme,
                                                                           StringView authority,
                                                                           StringView path, StringView query,
                                                                           StringView fragment);

    /// The URL of scheme, authority and path, the path as given; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_pathNotToBeEncoded(StringView scheme, StringView authority,
                                                            StringView path);

    /// The URL of scheme, authority, path and query, the path as given, the query percent-encoded; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_query(StringView scheme, StringView authority,
                                                                  StringView path, StringView query);

    /// The URL of scheme, authority, path, query and fragment, the path as given, the query percent-encoded;
    /// nil as for `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_query_fragment(StringView scheme,
                                                                           StringView authority,
                                                                           StringView path, StringView query,
                                                                           StringView fragment);

    /// The URL of scheme, authority, path and query, path and query as given; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded(StringView scheme,
                                                                                StringView authority,
                                                                                StringView path,
                                                                                StringView query);

    /// The URL of scheme, authority, path, query and fragment, path and query as given; nil as for
    /// `URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment`.
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded_fragment(
        StringView scheme, StringView authority, StringView path, StringView query, StringView fragment);

    /// @}

private:
    friend struct detail::Access;
    explicit NSURL(Payload payload) noexcept : NSObject(payload, detail::Kind::url) {}
};

} // namespace ZQFoundation

#endif
