// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_URIRESOLUTION_H
#define ZQFOUNDATION_TEXT_URIRESOLUTION_H

#include <string>
#include <string_view>

/// Resolves a relative reference against its base, by RFC 3986, section 5.2.
namespace ZQFoundation::detail {

/// The target of the reference against the base, both of them texts that readUriReference() accepts; the
/// result is one too, and read again it has the pieces that were put together. Strict: a reference with a
/// scheme is its own target, also when the base has the same one. A base without a scheme gives a target
/// without one. Time linear in both lengths.
///
/// Of a target whose pieces would be read as others the path gets a dot in front, which means the same:
/// "x:/a" and "..//b" make "x:/.//b", where "x://b" would have an authority.
std::string resolvedUriReference(std::string_view reference, std::string_view base);

/// The path without the segments "." and "..", each ".." having taken the segment before it.
std::string withoutDotSegments(std::string_view path);

} // namespace ZQFoundation::detail

#endif
