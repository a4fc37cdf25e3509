// SPDX-License-Identifier: MIT
// Declares NSRange, a range of units or indexes.
#ifndef ZQFOUNDATION_TEXT_NSRANGE_H
#define ZQFOUNDATION_TEXT_NSRANGE_H

#include <cstddef>
#include <cstdint>

#include "Export.h"

namespace ZQFoundation {

/// The index of what was not found; larger than the index of any item.
///
///     if (text.rangeOfString("key").location == NSNotFound) ...
inline constexpr std::size_t NSNotFound = static_cast<std::size_t>(INT64_MAX);

/// A stretch of a sequence: of a string in UTF-16 units, of data in bytes. Any two numbers make one; the
/// operation that takes the range checks it against its sequence.
struct NSRange {
    std::size_t location; ///< index of the first item
    std::size_t length;   ///< number of items

    /// Whether location and length are the same.
    friend constexpr bool operator==(const NSRange&, const NSRange&) noexcept = default;
};

/// The range of `length` items from `location` on.
constexpr NSRange NSMakeRange(std::size_t location, std::size_t length) noexcept {
    return {location, length};
}

} // namespace ZQFoundation

#endif
