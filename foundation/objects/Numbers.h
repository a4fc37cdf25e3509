// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_NUMBERS_H
#define ZQFOUNDATION_OBJECTS_NUMBERS_H

#include <cstring>

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

inline bool isNumber(const NSObject& object) noexcept {
    const Kind kind = Access::kind(object);
    return kind >= Kind::boolean && kind <= Kind::singleReal;
}

inline bool isRealNumber(const NSObject& object) noexcept {
    const Kind kind = Access::kind(object);
    return kind == Kind::real || kind == Kind::singleReal;
}

/// Compares by value across all kinds of numbers, integers exactly.
NSComparisonResult compareNumbers(const NSObject& left, const NSObject& right) noexcept;

/// Equal for equal numbers of any kind.
std::uint64_t numberHashInput(const NSObject& number) noexcept;

/// Writes the number's description, at most `numberTextCapacity` bytes, and returns their number.
std::size_t writeNumber(const NSObject& number, char* out) noexcept;

} // namespace ZQFoundation::detail

#endif
