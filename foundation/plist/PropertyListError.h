// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_PROPERTYLISTERROR_H
#define ZQFOUNDATION_PLIST_PROPERTYLISTERROR_H

#include <cstddef>

namespace ZQFoundation::detail {

/// Why bytes or a text are not a property list, and where.
struct PropertyListError {
    /// A whole English sentence without its full stop; static storage. Null: no failure.
    const char* message = nullptr;

    /// From 1; 0 for bytes that have no lines (the binary form, or bytes that could not be read as text).
    std::size_t line = 0;

    /// In a text, from 1, counting UTF-16 units. Without lines, the offset of a byte, from 0.
    std::size_t column = 0;
};

/// The maximum nesting of containers in any of the three forms, read or written.
inline constexpr std::size_t maxPropertyListDepth = 512;

/// The largest file that is read and the largest text that is written, in bytes: 2 GiB.
inline constexpr std::size_t maxPropertyListBytes = std::size_t{1} << 31;

} // namespace ZQFoundation::detail

#endif
