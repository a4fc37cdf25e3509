// SPDX-License-Identifier: MIT
// Declares names and numbers as text for people and for programs.
#ifndef ZQFOUNDATION_ZQMIGRATE_TEXT_H
#define ZQFOUNDATION_ZQMIGRATE_TEXT_H

#include "tools/common/Text.h"

/// Names of files are bytes; a terminal and a reader of JSON each need them in a form of their own.
namespace ZQFoundation::tools::zqmigrate {

/// Exact for paths.
NSString pathOf(const std::string& bytes);
std::string bytesOf(const NSString& path);

/// `"<name>": <value>`, for JSON.
std::string member(const char* name, const std::string& value);

/// The same for a path, and where its text is not exact `, "<name>Bytes": "<hexadecimal digits>"` too.
std::string memberOfPath(const char* name, const NSString& path);

/// "1,723".
std::string grouped(std::uint64_t number);

} // namespace ZQFoundation::tools::zqmigrate

#endif
