// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_STRINGBODIES_H
#define ZQFOUNDATION_OBJECTS_STRINGBODIES_H

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

/// A string body with room for `length` units of the given form, to be filled in by the caller.
StringBody* allocateString(std::size_t length, bool isAscii);

/// The same in memory that a signal handler may allocate and free.
StringBody* allocateSignalSafeString(std::size_t length, bool isAscii);

/// Makes a string of bytes that the caller knows to be ASCII.
NSString makeAsciiString(const char* bytes, std::size_t count);

/// Makes a string of any units.
NSString makeString(const char16_t* units, std::size_t count);

/// Makes a string of any bytes; ill-formed UTF-8 becomes U+FFFD.
NSString makeString(const char* utf8, std::size_t count);

} // namespace ZQFoundation::detail

#endif
