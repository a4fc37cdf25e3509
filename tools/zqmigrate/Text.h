// SPDX-License-Identifier: MIT
// Declares names and numbers as text for people and for programs.
#ifndef ZQFOUNDATION_ZQMIGRATE_TEXT_H
#define ZQFOUNDATION_ZQMIGRATE_TEXT_H

#include "tools/common/Text.h"

/// Names of files are bytes; a terminal and a JSON parser need them in different forms.
namespace ZQFoundation::tools::zqmigrate {

/// Exact for paths.
NSString pathOf(const std::string& bytes);
std::string bytesOf(const NSString& path);

/// `"<name>": <value>`, for JSON.
std::string member(const char* name, const std::string& value);

/// The same for a path; if its text is not exact, followed by `, "<name>Bytes": "<hexadecimal digits>"`.
std::string memberOfPath(const char* name, const NSString& path);

/// "1,723".
std::string grouped(std::uint64_t number);

} // namespace ZQFoundation::tools::zqmigrate

#endif
