// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_STRINGBODIES_H
#define ZQFOUNDATION_OBJECTS_STRINGBODIES_H

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

/// A string body with room for `length` units of the given form, to be filled in by the caller.
StringBody* allocateString(std::size_t length, bool isAscii);

/// The same in memory that a signal handler may take and give back.
StringBody* allocateSignalSafeString(std::size_t length, bool isAscii);

/// Bytes that the caller knows to be ASCII.
NSString makeAsciiString(const char* bytes, std::size_t count);

/// Any units.
NSString makeString(const char16_t* units, std::size_t count);

/// Any bytes; ill-formed UTF-8 as U+FFFD.
NSString makeString(const char* utf8, std::size_t count);

} // namespace ZQFoundation::detail

#endif
