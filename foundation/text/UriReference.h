// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_URIREFERENCE_H
#define ZQFOUNDATION_TEXT_URIREFERENCE_H

#include <cstddef>

#include "foundation/text/StringView.h"

/// URI references by the grammar of RFC 3986, read strictly: nothing is escaped, repaired or normalized.
///
///     reference  = [scheme ":"] ["//" authority] path ["?" query] ["#" fragment]
///     scheme     = a letter, then letters, digits, "+" "-" "."
///     authority  = [user information "@"] host [":" port]
///     host       = "[" IPv6 address "]" | "[v" hex "." text "]" | name, which may be empty
///     port       = digits, perhaps none
///
/// User information, names, path, query and fragment consist of letters, digits, - . _ ~ ! $ & ' ( ) * + , ;
/// = and %XX; user information, path, query and fragment also of ":", the last three of "@" and "/", the last
/// two of "?".
///
///     text                         scheme  user  host    port  path      query  fragment
///     http://a@h:80/x/y?k=v#top    http    a     h       80    /x/y      k=v    top
///     mailto:a@h                   mailto                      a@h
///     file:///tmp/a%20b            file          (empty)       /tmp/a%20b
///     //h                                        h             (empty)
///     ../x?                                                    ../x      (empty)
///     (empty)                                                  (empty)
///
/// Not references: "a b", "1http:x", "http://h:x/", "http://[h]/", "x[1]", "100%", "a#b#c", "http://a@b@h/".
namespace ZQFoundation::detail {

/// A piece of the text: where it begins and ends. A piece that is there may be empty ("a?" has an empty
/// query).
struct UriPart {
    std::size_t start = 0;
    std::size_t end = 0;
    bool isPresent = false;
};

/// The pieces, without the marks that set them apart; a host in brackets with its brackets.
struct UriReference {
    UriPart scheme;
    UriPart userInformation;
    UriPart host; ///< present, perhaps empty, when there is an authority
    UriPart port;
    UriPart path; ///< always present
    UriPart query;
    UriPart fragment;

    /// User information, host and port with the marks between them.
    UriPart authority() const noexcept {
        return {userInformation.isPresent ? userInformation.start : host.start,
                port.isPresent ? port.end : host.end, host.isPresent};
    }
};

/// Reads the text from front to back, in time linear in its length. False, with `out` unspecified, for a nil
/// text and for one that is not a URI reference. Positions count what the view counts; the text of a
/// reference is ASCII.
bool readUriReference(StringView text, UriReference& out) noexcept;

} // namespace ZQFoundation::detail

#endif
