// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSNUMBER_H
#define ZQFOUNDATION_OBJECTS_NSNUMBER_H

#include "NSObject.h"

namespace ZQFoundation {

/// A boxed boolean, integer (signed or unsigned, 64 bits) or floating-point number, held in the handle.
class ZQFOUNDATION_EXPORT NSNumber : public NSObject {
public:
    constexpr NSNumber() noexcept = default;
    constexpr NSNumber(std::nullptr_t) noexcept {}

    /// The number of that value and kind.
    template <detail::NumericValue T>
    constexpr NSNumber(T value) noexcept : NSObject(value) {}

    /// The value when it is a number, else nil.
    explicit NSNumber(const NSObject& object) noexcept;

    /// Made from a truth value; prints as 1 or 0 all the same.
    bool isBoolean() const noexcept { return kind_ == detail::Kind::boolean; }

    /// Made from a float or double.
    bool isReal() const noexcept { return kind_ == detail::Kind::real || kind_ == detail::Kind::singleReal; }

    /// The low 32 bits of the integer value; reals are truncated toward zero to 64 bits first (NaN 0,
    /// saturating).
    int intValue() const noexcept;
    unsigned unsignedIntValue() const noexcept;

    /// 64 bits; reals truncated toward zero and saturating, NaN 0.
    std::int64_t integerValue() const noexcept;
    std::int64_t longLongValue() const noexcept { return integerValue(); }
    std::uint64_t unsignedLongLongValue() const noexcept;

    /// The nearest value of that type; 0 for nil.
    float floatValue() const noexcept;
    double doubleValue() const noexcept;

    /// Not zero: true for 0.5.
    bool boolValue() const noexcept;

    /// The decimal text, equal to the description.
    NSString stringValue() const;

    /// By numeric value across all kinds. NaN is the same as NaN and below every number that is not negative.
    NSComparisonResult compare(const NSNumber& other) const noexcept;
    bool isEqualToNumber(const NSNumber& other) const noexcept;

    // NSNumber(ZQFoundation)

    /// By the lowest bit of `intValue`: 2.9 is even. Both are false for nil.
    bool isEven() const noexcept;
    bool isOdd() const noexcept;

    /// By `compare`. False when either number is nil.
    bool isLargerThan(const NSNumber& other) const noexcept;
    bool isLargerOrEqualThan(const NSNumber& other) const noexcept;
    bool isSmallerOrEqualThan(const NSNumber& other) const noexcept;
    bool isSmallerThan(const NSNumber& other) const noexcept;

    /// `intValue` and one, in 32 bits: from 2147483647 it goes on at -2147483648. Nil for nil.
    NSNumber numberByIncrementing() const noexcept;
    NSNumber numberByDecrementing() const noexcept;

    /// A count of seconds as "1:02:05", "2:05" or "05", by the number of fields: 3 or more, 2, 1 or less.
    /// Larger fields than those shown are **dropped, not carried**: 3725 in two fields is "2:05". With
    /// `suppressZeroes` hours and minutes that are zero are left out in front. The empty string for negative
    /// seconds; nil for nil.
    NSString durationDescriptionWithFieldCount_suppressZeroes(std::int64_t fieldCount,
                                                              bool suppressZeroes) const;

    /// At most two fields, or three, zeroes suppressed.
    NSString durationDescriptionWithMinutes() const;
    NSString durationDescriptionWithHours() const;
};

} // namespace ZQFoundation

#endif
