// SPDX-License-Identifier: MIT
// Declares names and numbers as text for people and for programs.
#ifndef ZQFOUNDATION_ZQMIGRATE_TEXT_H
#define ZQFOUNDATION_ZQMIGRATE_TEXT_H

#include <string>

#include "foundation/objects/NSString.h"

/// Names of files are bytes; a terminal and a reader of JSON each need them in a form of their own.
namespace ZQFoundation::zqmigrate {

/// Exact for paths.
NSString pathOf(const std::string& bytes);
std::string bytesOf(const NSString& path);

/// The text as part of a line: what would move the cursor, end the line, turn the direction of writing,
/// cannot be seen or is no text is spelled out ("\x1b", "\u202e"), and so is a backslash, so that no two
/// names look alike.
std::string shown(const NSString& text);

/// The text as a JSON string in its quotes. Each byte that is no text becomes U+FFFD.
std::string quoted(const NSString& text);

/// `"<name>": "<text>"`, and where the text is not exact `, "<name>Bytes": "<hexadecimal digits>"` too.
std::string memberOfPath(const char* name, const NSString& path);

/// "1,723".
std::string grouped(std::uint64_t number);

} // namespace ZQFoundation::zqmigrate

#endif
