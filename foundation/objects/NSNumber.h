// SPDX-License-Identifier: MIT
// Declares NSNumber, a boxed number.
#ifndef ZQFOUNDATION_OBJECTS_NSNUMBER_H
#define ZQFOUNDATION_OBJECTS_NSNUMBER_H

#include <compare>

#include "NSString.h"

namespace ZQFoundation {

/// A boxed boolean, integer (signed or unsigned, 64 bits) or floating-point number, stored in the handle
/// itself.
///
///     const NSNumber size = 2.75;
///     size.intValue();                // 2
///     size.stringValue();             // "2.75"
///     size.isEqualToNumber(2.75f);    // true: kinds do not matter, values do
class ZQFOUNDATION_EXPORT NSNumber : public NSObject {
public:
    constexpr NSNumber() noexcept = default;
    constexpr NSNumber(std::nullptr_t) noexcept {}

    /// The number of that value and kind.
    template <detail::NumericValue T>
    constexpr NSNumber(T value) noexcept : NSObject(value) {}

    /// The number that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSNumber> T>
    NSNumber(const T& object) : NSNumber(detail::convertedObject(object)) {}

    /// The value when it is a number, else nil.
    explicit NSNumber(const NSObject& object) noexcept;

    /// Whether the number was made from a truth value; it still prints as 1 or 0.
    bool isBoolean() const noexcept { return kind_ == detail::Kind::boolean; }

    /// Whether the number was made from a float or a double.
    bool isReal() const noexcept { return kind_ == detail::Kind::real || kind_ == detail::Kind::singleReal; }

    /// The low 32 bits of `integerValue`; 0 for nil.
    ///
    ///     NSNumber(5000000000).intValue();  // 705032704
    int intValue() const noexcept;

    /// The low 32 bits of `integerValue`, as an unsigned number; 0 for nil.
    unsigned unsignedIntValue() const noexcept;

    /// The number in 64 bits, 0 for nil. Reals are truncated toward zero and saturate; NaN is 0.
    ///
    ///     NSNumber(-2.9).integerValue();  // -2
    ///     NSNumber(1e30).integerValue();  // 9223372036854775807
    std::int64_t integerValue() const noexcept;

    /// Another name for `integerValue`.
    std::int64_t longLongValue() const noexcept { return integerValue(); }

    /// The number in 64 unsigned bits, 0 for nil: negative numbers wrap around, reals are truncated toward
    /// zero and saturate upward.
    ///
    ///     NSNumber(-1).unsignedLongLongValue();  // 18446744073709551615
    std::uint64_t unsignedLongLongValue() const noexcept;

    /// The nearest `float`; 0 for nil.
    float floatValue() const noexcept;

    /// The nearest `double`; 0 for nil.
    double doubleValue() const noexcept;

    /// Whether the number is not zero: true for 0.5, false for nil.
    bool boolValue() const noexcept;

    /// The decimal text, equal to the description.
    ///
    ///     NSNumber(0.1).stringValue();   // "0.1"
    ///     NSNumber(true).stringValue();  // "1"
    NSString stringValue() const;

    /// Compares by numeric value across all kinds. NaN is the same as NaN and less than every number that is
    /// not negative. The same if either is nil.
    ///
    ///     NSNumber(1).compare(1.5);  // NSOrderedAscending
    NSComparisonResult compare(const NSNumber& other) const noexcept;

    /// Whether `compare` finds both the same. False if either is nil.
    bool isEqualToNumber(const NSNumber& other) const noexcept;

    /// By `compare`, nil first: 1, 1.0 and true are equivalent.
    friend std::weak_ordering operator<=>(const NSNumber& left, const NSNumber& right) noexcept {
        return left && right ? std::weak_ordering(left.compare(right) <=> 0)
                             : static_cast<bool>(left) <=> static_cast<bool>(right);
    }

    /// @name NSNumber(ZQFoundation)
    /// @{

    /// Whether the lowest bit of `intValue` is 0: 2.9 is even. False for nil.
    bool isEven() const noexcept;

    /// Whether the lowest bit of `intValue` is 1: 3.9 is odd. False for nil.
    bool isOdd() const noexcept;

    /// Whether this number comes after the other one in the order of `compare`. False if either is nil.
    bool isLargerThan(const NSNumber& other) const noexcept;

    /// Whether this number does not come before the other one in the order of `compare`. False if either is
    /// nil.
    bool isLargerOrEqualThan(const NSNumber& other) const noexcept;

    /// Whether this number does not come after the other one in the order of `compare`. False if either is
    /// nil.
    bool isSmallerOrEqualThan(const NSNumber& other) const noexcept;

    /// Whether this number comes before the other one in the order of `compare`. False if either is nil.
    bool isSmallerThan(const NSNumber& other) const noexcept;

    /// `intValue` plus one, in 32 bits: 2147483647 wraps around to -2147483648. Nil for nil.
    ///
    ///     NSNumber(2.9).numberByIncrementing();  // 3
    NSNumber numberByIncrementing() const noexcept;

    /// `intValue` minus one, in 32 bits: -2147483648 wraps around to 2147483647. Nil for nil.
    NSNumber numberByDecrementing() const noexcept;

    /// A count of seconds as "1:02:05", "2:05" or "05", by the number of fields: 3 or more, 2, 1 or less.
    /// Larger fields than those shown are **dropped, not carried**: 3725 in two fields is "2:05". With
    /// `suppressZeroes`, leading hours and minutes that are zero are omitted. The empty string for negative
    /// seconds; nil for nil.
    ///
    ///     NSNumber(65).durationDescriptionWithFieldCount_suppressZeroes(3, false);  // "0:01:05"
    ///     NSNumber(65).durationDescriptionWithFieldCount_suppressZeroes(3, true);   // "1:05"
    NSString durationDescriptionWithFieldCount_suppressZeroes(std::int64_t fieldCount,
                                                              detail::Flag suppressZeroes) const;

    /// A count of seconds in at most two fields, leading zeroes suppressed: "2:05". Hours are dropped;
    /// otherwise as `durationDescriptionWithFieldCount_suppressZeroes`.
    ///
    ///     NSNumber(3725).durationDescriptionWithMinutes();  // "2:05": the hour is dropped
    NSString durationDescriptionWithMinutes() const;

    /// A count of seconds in at most three fields, leading zeroes suppressed: "1:02:05". Otherwise as
    /// `durationDescriptionWithFieldCount_suppressZeroes`.
    ///
    ///     NSNumber(3725).durationDescriptionWithHours();  // "1:02:05"
    ///     NSNumber(75).durationDescriptionWithHours();    // "1:15"
    NSString durationDescriptionWithHours() const;

    /// @}
};

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// What a value converts back to, besides the types with their own conversion.
template <class T>
concept ReturnedNumber = std::is_arithmetic_v<T> && !isCharacter<T> && !std::is_same_v<T, long double>;

template <ReturnedNumber T>
T numberAs(const NSNumber& number) {
    if constexpr (std::is_same_v<T, bool>) {
        return number.boolValue();
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(number.doubleValue());
    } else if constexpr (std::is_signed_v<T>) {
        return static_cast<T>(number.longLongValue());
    } else {
        return static_cast<T>(number.unsignedLongLongValue());
    }
}

/// An element of a collection as a type of the host: numbers as by a cast, others by `as`.
template <class T>
T elementAs(const NSObject& element) {
    if constexpr (ReturnedNumber<T>) {
        return numberAs<T>(NSNumber(element));
    } else {
        return element.as<T>();
    }
}

} // namespace ZQFoundation::detail

#endif
