// SPDX-License-Identifier: MIT
// Converts arguments of formats to the type that their conversion takes.
// No conversion can read memory that is not there: whatever does not fit the conversion becomes 0, null or
// "(null)".
#include "foundation/format/FormatArgument.h"

#include <cmath>

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

namespace {

/// Converts toward zero, clamped to the range; NaN is 0. The limits are powers of two and so exact.
/// Real numbers beyond the signed range still have a meaning for unsigned conversions.
template <class Real>
std::uint64_t truncated(Real value, bool asSigned) noexcept {
    constexpr Real twoTo63 = 9223372036854775808.0;
    if (std::isnan(value)) {
        return 0;
    }
    if (value <= -twoTo63) {
        return static_cast<std::uint64_t>(INT64_MIN);
    }
    if (value < twoTo63) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    }
    if (asSigned) {
        return static_cast<std::uint64_t>(INT64_MAX);
    }
    // 2^64 itself is out of the range.
    return value < 2 * twoTo63 ? static_cast<std::uint64_t>(value) : UINT64_MAX;
}

// Handles that hold no number are 0, as other arguments are.
std::uint64_t integerOfObject(const NSObject& object, bool asSigned) noexcept {
    switch (Access::kind(object)) {
    case Kind::boolean:
    case Kind::signedInteger:
    case Kind::unsignedInteger:
        return static_cast<std::uint64_t>(Access::integer(object));
    case Kind::real:
    case Kind::singleReal:
        return truncated(Access::real(object), asSigned);
    default:
        return 0;
    }
}

template <class Real>
Real realOfObject(const NSObject& object) noexcept {
    switch (Access::kind(object)) {
    case Kind::boolean:
    case Kind::signedInteger:
        return static_cast<Real>(Access::integer(object));
    case Kind::unsignedInteger:
        return static_cast<Real>(static_cast<std::uint64_t>(Access::integer(object)));
    case Kind::real:
    case Kind::singleReal:
        return static_cast<Real>(Access::real(object));
    default:
        return 0;
    }
}

template <class Real>
Real anyRealOf(const Argument* argument) noexcept {
    if (argument == nullptr) {
        return 0;
    }
    switch (argument->type()) {
    case ArgumentType::signedInteger:
        return static_cast<Real>(argument->integer());
    case ArgumentType::unsignedInteger:
        return static_cast<Real>(static_cast<std::uint64_t>(argument->integer()));
    case ArgumentType::real:
        return static_cast<Real>(argument->real());
    case ArgumentType::longReal:
        return static_cast<Real>(argument->longReal());
    case ArgumentType::object:
        return realOfObject<Real>(argument->object());
    default:
        return 0;
    }
}

// The address of the text itself, so that equal pointers print alike.
std::uintptr_t addressOfText(StringView text) noexcept {
    switch (text.form()) {
    case StringView::Form::absent:
        return 0;
    case StringView::Form::utf16:
        return reinterpret_cast<std::uintptr_t>(text.units());
    default:
        return reinterpret_cast<std::uintptr_t>(text.bytes());
    }
}

} // namespace

/// What an argument is worth to a conversion of integers: texts, pointers and missing arguments are 0.
/// `asSigned` only matters for reals, which saturate at the limits of that type.
std::uint64_t integerOf(const Argument* argument, bool asSigned) noexcept {
    if (argument == nullptr) {
        return 0;
    }
    switch (argument->type()) {
    case ArgumentType::signedInteger:
    case ArgumentType::unsignedInteger:
        return static_cast<std::uint64_t>(argument->integer());
    case ArgumentType::real:
        return truncated(argument->real(), asSigned);
    case ArgumentType::longReal:
        return truncated(argument->longReal(), asSigned);
    case ArgumentType::object:
        return integerOfObject(argument->object(), asSigned);
    case ArgumentType::converted:
        return static_cast<std::uint64_t>(argument->convertedInteger());
    default:
        return 0;
    }
}

double realOf(const Argument* argument) noexcept { return anyRealOf<double>(argument); }

long double longRealOf(const Argument* argument) noexcept { return anyRealOf<long double>(argument); }

// For a width or precision: saturated, so that a huge number does not turn into a small or negative one.
int fieldOf(const Argument* argument) noexcept {
    if (argument == nullptr) {
        return 0;
    }
    if (argument->type() == ArgumentType::unsignedInteger) {
        const auto value = static_cast<std::uint64_t>(argument->integer());
        return value > INT32_MAX ? INT32_MAX : static_cast<int>(value);
    }
    if (argument->type() != ArgumentType::signedInteger) {
        return 0;
    }
    const std::int64_t value = argument->integer();
    return value > INT32_MAX ? INT32_MAX : value < INT32_MIN ? INT32_MIN : static_cast<int>(value);
}

std::uintptr_t addressOf(const Argument* argument) noexcept {
    if (argument == nullptr) {
        return 0;
    }
    switch (argument->type()) {
    case ArgumentType::signedInteger:
    case ArgumentType::unsignedInteger:
        return static_cast<std::uintptr_t>(argument->integer());
    case ArgumentType::pointer:
    case ArgumentType::host:
    case ArgumentType::converted:
        return reinterpret_cast<std::uintptr_t>(argument->address());
    case ArgumentType::text:
        // No byte of the text is looked at.
        return addressOfText(argument->textUpTo(0));
    case ArgumentType::object: {
        const Kind kind = Access::kind(argument->object());
        if (kind == Kind::hostObject) {
            return reinterpret_cast<std::uintptr_t>(argument->object().hostObject());
        }
        // Values that live in their handle have no address.
        return kind >= Kind::string ? reinterpret_cast<std::uintptr_t>(Access::body(argument->object())) : 0;
    }
    default:
        return 0;
    }
}

TextOfArgument textOf(const Argument* argument, std::size_t limit) {
    TextOfArgument result;
    if (argument == nullptr) {
        return result;
    }
    if (argument->type() == ArgumentType::text) {
        result.text = argument->textUpTo(limit);
    } else if (argument->type() == ArgumentType::object) {
        // The description is kept alive by the result, which the text refers to.
        result.owner = argument->object().description();
        result.text = StringView(result.owner);
    } else if (argument->type() == ArgumentType::converted) {
        result.owner = argument->converted().description();
        result.text = StringView(result.owner);
    } else if (argument->type() == ArgumentType::host && argument->host() != nullptr) {
        result.owner = argument->host()->description();
        result.text = StringView(result.owner);
    }
    return result;
}

} // namespace ZQFoundation::detail
