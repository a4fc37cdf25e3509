// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSURL_H
#define ZQFOUNDATION_OBJECTS_NSURL_H

#include "NSObject.h"

namespace ZQFoundation {

/// A URI reference, kept exactly as it was given.
class ZQFOUNDATION_EXPORT NSURL : public NSObject {
public:
    constexpr NSURL() noexcept = default;
    constexpr NSURL(std::nullptr_t) noexcept {}

    /// The value when it is a URL, else nil.
    explicit NSURL(const NSObject& object) noexcept : NSObject(object, detail::Kind::url) {}

    /// Nil unless the text is a URI reference by the grammar of RFC 3986; nothing is escaped or repaired.
    static NSURL URLWithString(StringView text);

    /// The same, relative to a base, which may be nil.
    static NSURL URLWithString_relativeToURL(StringView text, const NSURL& base);

    /// The text as given, without the base.
    NSString relativeString() const;

    /// The base; nil for a URL that has none.
    NSURL baseURL() const;

    /// The text of the URL itself: without a base as given, else resolved against the base as RFC 3986 says,
    /// dots in the path removed. A text with a scheme of its own has no base.
    NSString absoluteString() const;
    NSURL absoluteURL() const;

    // The parts of the resolved URL, as they stand in its text, escapes and all; nil for one that is missing
    // ("a:b" has no query, "a:b?" an empty one).

    /// What stands in front of the first ":".
    NSString scheme() const;

    /// User information, host and port as they stand.
    NSString authority() const;

    /// What precedes the first ":" of the user information, and what follows it.
    NSString user() const;
    NSString password() const;

    /// Without the brackets around an IPv6 address.
    NSString host() const;

    /// Nil for none, for an empty one, and for one above 2^63 - 1.
    NSNumber port() const;

    /// Never nil for a URL; perhaps empty.
    NSString path() const;
    NSString query() const;
    NSString fragment() const;

    // NSURL(ZQFoundation)

    /// The URL of these parts, of which all but the scheme may be nil or empty; a part that is empty is left
    /// out together with its mark. Path and query are percent-encoded where it says so, the others written as
    /// they are. Nil for a nil or empty scheme, for a path that does not begin with "/" behind an authority
    /// or begins with "//" without one, for a text that cannot be encoded, and when the whole is no URI
    /// reference.
    static NSURL URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(
        StringView scheme, StringView authority, StringView path, bool encodePath, StringView query,
        bool encodeQuery, StringView fragment);

    /// The URL of these parts, as above; path and query are encoded unless the name says otherwise.
    static NSURL URLWithScheme_authority_path(StringView scheme, StringView authority, StringView path);
    static NSURL URLWithScheme_authority_path_query(StringView scheme, StringView authority, StringView path,
                                                    StringView query);
    static NSURL URLWithScheme_authority_path_query_fragment(StringView scheme, StringView authority,
                                                             StringView path, StringView query,
                                                             StringView fragment);
    static NSURL URLWithScheme_authority_path_queryNotToBeEncoded(StringView scheme, StringView authority,
                                                                  StringView path, StringView query);
    static NSURL URLWithScheme_authority_path_queryNotToBeEncoded_fragment(StringView scheme,
                                                                           StringView authority,
                                                                           StringView path, StringView query,
                                                                           StringView fragment);
    static NSURL URLWithScheme_authority_pathNotToBeEncoded(StringView scheme, StringView authority,
                                                            StringView path);
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_query(StringView scheme, StringView authority,
                                                                  StringView path, StringView query);
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_query_fragment(StringView scheme,
                                                                           StringView authority,
                                                                           StringView path, StringView query,
                                                                           StringView fragment);
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded(StringView scheme,
                                                                                StringView authority,
                                                                                StringView path,
                                                                                StringView query);
    static NSURL URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded_fragment(
        StringView scheme, StringView authority, StringView path, StringView query, StringView fragment);

private:
    friend struct detail::Access;
    explicit NSURL(Payload payload) noexcept : NSObject(payload, detail::Kind::url) {}
};

} // namespace ZQFoundation

#endif
