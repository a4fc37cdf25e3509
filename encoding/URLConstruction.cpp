// SPDX-License-Identifier: MIT
// Builds URLs from their parts.
#include "foundation/objects/NSString.h"
#include "foundation/objects/NSURL.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation {

namespace {

/// Nil and empty parts mean the same: the part is omitted.
bool isEmpty(StringView text) noexcept { return text.size() == 0; }

/// Whether the text begins with this number of slashes. Bytes will do for UTF-8: the byte of a slash is never
/// part of another character.
bool startsWith(StringView text, std::size_t slashes) noexcept {
    if (text.size() < slashes) {
        return false;
    }
    for (std::size_t i = 0; i < slashes; ++i) {
        const bool isSlash =
            text.form() == StringView::Form::utf16 ? text.units()[i] == u'/' : text.bytes()[i] == '/';
        if (!isSlash) {
            return false;
        }
    }
    return true;
}

/// After an authority a path must be absolute; without one, "//" would begin an authority.
bool pathFits(StringView path, bool hasAuthority) noexcept {
    return hasAuthority ? isEmpty(path) || startsWith(path, 1) : !startsWith(path, 2);
}

/// Without its part the mark is omitted too: a "?" alone would be an empty query, which is another URL.
void appendPart(detail::TextBuilder& text, StringView mark, StringView part) {
    if (!isEmpty(part)) {
        text.append(mark);
        text.append(part);
    }
}

} // namespace

// Encoding fails only for a text without a UTF-8 form. The two strings hold the encoded texts that `path` and
// `query` refer to from then on, so they live as long as the views. `URLWithString` finally checks the whole.
NSURL NSURL::URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(
    StringView scheme, StringView authority, StringView path, detail::Flag encodePath, StringView query,
    detail::Flag encodeQuery, StringView fragment) {
    if (isEmpty(scheme) || !pathFits(path, !isEmpty(authority))) {
        return {};
    }
    NSString encodedPath;
    if (encodePath && !isEmpty(path)) {
        encodedPath = NSString(path).urlPathEncodedString();
        if (!encodedPath) {
            return {};
        }
        path = encodedPath;
    }
    NSString encodedQuery;
    if (encodeQuery && !isEmpty(query)) {
        encodedQuery = NSString(query).urlQueryEncodedString();
        if (!encodedQuery) {
            return {};
        }
        query = encodedQuery;
    }
    // An empty path needs no mark: "a://b?c" has one.
    detail::TextBuilder text;
    text.append(scheme);
    text.appendAscii(':');
    appendPart(text, "//", authority);
    text.append(path);
    appendPart(text, "?", query);
    appendPart(text, "#", fragment);
    return URLWithString(text.string());
}

// The shorter forms: each fixes the flags by its name, and omits the parts that its name does not have.
NSURL NSURL::URLWithScheme_authority_path(StringView scheme, StringView authority, StringView path) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, true,
                                                                              nullptr, true, nullptr);
}

NSURL NSURL::URLWithScheme_authority_path_query(StringView scheme, StringView authority, StringView path,
                                                StringView query) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, true,
                                                                              query, true, nullptr);
}

NSURL NSURL::URLWithScheme_authority_path_query_fragment(StringView scheme, StringView authority,
                                                         StringView path, StringView query,
                                                         StringView fragment) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, true,
                                                                              query, true, fragment);
}

NSURL NSURL::URLWithScheme_authority_path_queryNotToBeEncoded(StringView scheme, StringView authority,
                                                              StringView path, StringView query) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, true,
                                                                              query, false, nullptr);
}

NSURL NSURL::URLWithScheme_authority_path_queryNotToBeEncoded_fragment(StringView scheme,
                                                                       StringView authority, StringView path,
                                                                       StringView query,
                                                                       StringView fragment) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, true,
                                                                              query, false, fragment);
}

NSURL NSURL::URLWithScheme_authority_pathNotToBeEncoded(StringView scheme, StringView authority,
                                                        StringView path) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, false,
                                                                              nullptr, true, nullptr);
}

NSURL NSURL::URLWithScheme_authority_pathNotToBeEncoded_query(StringView scheme, StringView authority,
                                                              StringView path, StringView query) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, false,
                                                                              query, true, nullptr);
}

NSURL NSURL::URLWithScheme_authority_pathNotToBeEncoded_query_fragment(StringView scheme,
                                                                       StringView authority, StringView path,
                                                                       StringView query,
                                                                       StringView fragment) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, false,
                                                                              query, true, fragment);
}

NSURL NSURL::URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded(StringView scheme,
                                                                            StringView authority,
                                                                            StringView path,
                                                                            StringView query) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, false,
                                                                              query, false, nullptr);
}

NSURL NSURL::URLWithScheme_authority_pathNotToBeEncoded_queryNotToBeEncoded_fragment(
    StringView scheme, StringView authority, StringView path, StringView query, StringView fragment) {
    return URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(scheme, authority, path, false,
                                                                              query, false, fragment);
}

} // namespace ZQFoundation
