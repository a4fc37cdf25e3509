// SPDX-License-Identifier: MIT
// Converts, compares, hashes and prints numbers.
// Integers are compared as integers and reals as reals; across both, the comparison is exact as well.
#include "foundation/objects/NSNumber.h"

#include <cmath>

#include "foundation/objects/NSString.h"
#include "foundation/objects/Numbers.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation {

using detail::Access;
using detail::Kind;

namespace {

constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

// A plain conversion beyond the range is undefined; this saturates, and NaN gives 0.
std::int64_t truncated(double value) noexcept {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= twoTo63) {
        return INT64_MAX;
    }
    return value <= -twoTo63 ? INT64_MIN : static_cast<std::int64_t>(value);
}

template <class T>
NSComparisonResult ordered(T left, T right) noexcept {
    return left < right ? NSOrderedAscending : right < left ? NSOrderedDescending : NSOrderedSame;
}

// Only signed integers can be negative; a large unsigned one has the same bits.
bool isNegative(const NSObject& number) noexcept {
    return Access::kind(number) != Kind::unsignedInteger && Access::integer(number) < 0;
}

NSComparisonResult compareIntegers(const NSObject& left, const NSObject& right) noexcept {
    if (isNegative(left) != isNegative(right)) {
        return isNegative(left) ? NSOrderedAscending : NSOrderedDescending;
    }
    // With equal signs, two's complement orders like unsigned numbers.
    return ordered(static_cast<std::uint64_t>(Access::integer(left)),
                   static_cast<std::uint64_t>(Access::integer(right)));
}

/// Compares exactly: the integer is never rounded to a double first.
NSComparisonResult compareIntegerWithReal(const NSObject& integer, double real) noexcept {
    // NaN is below every number that is not negative, and above those that are.
    if (std::isnan(real)) {
        return isNegative(integer) ? NSOrderedAscending : NSOrderedDescending;
    }
    if (real >= twoTo64) {
        return NSOrderedAscending;
    }
    if (real < -twoTo63) {
        return NSOrderedDescending;
    }
    // The integral part decides, except when it is equal; then a fraction makes the real larger.
    const double whole = std::floor(real);
    const NSObject wholeNumber =
        whole < 0 ? NSObject(static_cast<std::int64_t>(whole)) : NSObject(static_cast<std::uint64_t>(whole));
    const NSComparisonResult order = compareIntegers(integer, wholeNumber);
    return order == NSOrderedSame && whole != real ? NSOrderedAscending : order;
}

/// The same order for NaN as in the comparison with integers, so that sorting mixed numbers is consistent.
NSComparisonResult compareReals(double left, double right) noexcept {
    if (std::isnan(left)) {
        return std::isnan(right) ? NSOrderedSame : right < 0 ? NSOrderedDescending : NSOrderedAscending;
    }
    if (std::isnan(right)) {
        return left < 0 ? NSOrderedAscending : NSOrderedDescending;
    }
    return ordered(left, right);
}

} // namespace

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// Booleans and both kinds of integers are integers here. Negating the order of a comparison swaps its sides.
NSComparisonResult compareNumbers(const NSObject& left, const NSObject& right) noexcept {
    const bool leftReal = isRealNumber(left);
    const bool rightReal = isRealNumber(right);
    if (leftReal && rightReal) {
        return compareReals(Access::real(left), Access::real(right));
    }
    if (leftReal) {
        return static_cast<NSComparisonResult>(-compareIntegerWithReal(right, Access::real(left)));
    }
    return rightReal ? compareIntegerWithReal(left, Access::real(right)) : compareIntegers(left, right);
}

// Numbers that are equal must hash alike, so a real with an integral value hashes as that integer.
std::uint64_t numberHashInput(const NSObject& number) noexcept {
    if (!isRealNumber(number)) {
        return static_cast<std::uint64_t>(Access::integer(number));
    }
    const double real = Access::real(number);
    if (real >= -twoTo63 && real < twoTo64 && std::floor(real) == real) {
        return real < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(real))
                        : static_cast<std::uint64_t>(real);
    }
    // All NaNs are equal, whatever their bits. Two zeros are caught above, as the integer 0.
    const double canonical = std::isnan(real) ? std::nan("") : real;
    std::uint64_t bits;
    std::memcpy(&bits, &canonical, sizeof bits);
    return bits;
}

/// Reals have 16 or 7 significant digits, as on the platform; a boolean is 1 or 0.
std::size_t writeNumber(const NSObject& number, char* out) noexcept {
    char* end = out;
    switch (Access::kind(number)) {
    case Kind::real:
        end = writeDouble16g(Access::real(number), out);
        break;
    case Kind::singleReal:
        end = writeSingle7g(static_cast<float>(Access::real(number)), out);
        break;
    case Kind::unsignedInteger:
        end = writeUInt64(static_cast<std::uint64_t>(Access::integer(number)), out);
        break;
    default:
        end = writeInt64(Access::integer(number), out);
        break;
    }
    return static_cast<std::size_t>(end - out);
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSNumber::NSNumber(const NSObject& object) noexcept
    : NSObject(detail::isNumber(object) ? object : NSObject()) {}

// Reals are cut toward zero; values outside the range give the nearest limit.
std::int64_t NSNumber::integerValue() const noexcept {
    if (isReal()) {
        return truncated(payload_.real);
    }
    return detail::isNumber(*this) ? payload_.integer : 0;
}

std::uint64_t NSNumber::unsignedLongLongValue() const noexcept {
    // Above the signed range the conversion has to be made unsigned.
    if (isReal() && payload_.real >= twoTo63) {
        return payload_.real >= twoTo64 ? UINT64_MAX : static_cast<std::uint64_t>(payload_.real);
    }
    return static_cast<std::uint64_t>(integerValue());
}

int NSNumber::intValue() const noexcept { return static_cast<int>(unsignedIntValue()); }

// The low 32 bits of the integer value: 5000000000 gives 705032704.
unsigned NSNumber::unsignedIntValue() const noexcept {
    return static_cast<unsigned>(integerValue() & 0xFFFFFFFF);
}

double NSNumber::doubleValue() const noexcept {
    if (isReal()) {
        return payload_.real;
    }
    if (kind_ == Kind::unsignedInteger) {
        return static_cast<double>(static_cast<std::uint64_t>(payload_.integer));
    }
    return detail::isNumber(*this) ? static_cast<double>(payload_.integer) : 0;
}

float NSNumber::floatValue() const noexcept {
    if (kind_ == Kind::unsignedInteger) { // one rounding, not two
        return static_cast<float>(static_cast<std::uint64_t>(payload_.integer));
    }
    if (isReal() || !detail::isNumber(*this)) {
        return static_cast<float>(doubleValue());
    }
    return static_cast<float>(payload_.integer);
}

bool NSNumber::boolValue() const noexcept {
    if (isReal()) {
        return payload_.real < 0 || payload_.real > 0 || std::isnan(payload_.real);
    }
    return detail::isNumber(*this) && payload_.integer != 0;
}

NSString NSNumber::stringValue() const {
    if (!detail::isNumber(*this)) {
        return {};
    }
    char text[detail::numberTextCapacity];
    return detail::makeAsciiString(text, detail::writeNumber(*this, text));
}

// Nil has no order: it is the same as everything, as all comparisons of the platform return 0 for nil.
NSComparisonResult NSNumber::compare(const NSNumber& other) const noexcept {
    return detail::isNumber(*this) && detail::isNumber(other) ? detail::compareNumbers(*this, other)
                                                              : NSOrderedSame;
}

bool NSNumber::isEqualToNumber(const NSNumber& other) const noexcept {
    return detail::isNumber(*this) && detail::isNumber(other) &&
           detail::compareNumbers(*this, other) == NSOrderedSame;
}

} // namespace ZQFoundation
