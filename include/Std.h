// SPDX-License-Identifier: MIT
// Converts between the types of the standard library and values.
#ifndef ZQFOUNDATION_STD_H
#define ZQFOUNDATION_STD_H

/// Optional: converts the heavier types of the standard library to values and back.
///
///     #include <ZQFoundation/Std.h>
///
///     NSString name = std::filesystem::path("/tmp/a");             // to values: implicitly
///     auto path = name.as<std::filesystem::path>();                // and back: by `as`
///     auto when = date.as<std::chrono::system_clock::time_point>();
///     auto limit = settings["limit"].as<std::optional<int>>();     // nothing for any other value
///     auto names = array.as<std::vector<std::string>>();
///     ZQLog::logWithFormat("%@ after %@", error, 1500ms);          // "%@" takes them all
///
/// Formatters: where the standard library has <format>, and {fmt} where its header is included above this
/// one.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <optional>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>
#include <version>

#include "ZQFoundation.h"
#ifdef __cpp_lib_format
#include <format>
#endif

namespace ZQFoundation::detail {

/// Whether the type reaches that far; infinite numbers and not-a-numbers are numbers of every real type.
template <class T>
bool holdsReal(double number) {
    return !std::isfinite(number) || std::fabs(number) <= static_cast<double>(std::numeric_limits<T>::max());
}

/// Whether the number is within the type's range and, for whole numbers, one of its own.
template <ReturnedNumber T>
bool holdsNumber(const NSNumber& number) {
    if constexpr (std::is_same_v<T, bool>) {
        return number.isBoolean();
    } else if constexpr (std::is_floating_point_v<T>) {
        return number && holdsReal<T>(number.doubleValue());
    } else if constexpr (std::is_signed_v<T>) {
        return number && number == NSNumber(static_cast<T>(number.longLongValue()));
    } else {
        return number && number == NSNumber(static_cast<T>(number.unsignedLongLongValue()));
    }
}

/// The seconds in units of the duration, rounded down; up, if they are as close to the next unit as the
/// precision of a double allows: of the seconds, or of `leastSize` if that is larger.
template <class Duration>
double ticksOf(double seconds, double leastSize) {
    using Period = typename Duration::period;
    const double perSecond = static_cast<double>(Period::den) / static_cast<double>(Period::num);
    const double ticks = seconds * perSecond;
    if constexpr (std::chrono::treat_as_floating_point_v<typename Duration::rep>) {
        return ticks;
    }
    const double missing = std::max(std::fabs(seconds), leastSize) * perSecond * 0x1p-52;
    const double below = std::floor(ticks);
    return ticks - below >= 1 - std::min(missing, 0.5) ? below + 1 : below;
}

/// Whether a duration has room for that number of units.
template <class Duration>
bool holdsTicks(double ticks) {
    using Rep = typename Duration::rep;
    if constexpr (std::chrono::treat_as_floating_point_v<Rep>) {
        return holdsReal<Rep>(ticks);
    } else { // its largest number may not be a double; the one after it is a power of two
        return ticks >= static_cast<double>(std::numeric_limits<Rep>::min()) &&
               ticks < std::ldexp(1.0, std::numeric_limits<Rep>::digits);
    }
}

template <class Duration>
Duration durationOf(double ticks) {
    if (holdsTicks<Duration>(ticks)) {
        return Duration(static_cast<typename Duration::rep>(ticks));
    }
    return ticks > 0 ? Duration::max() : ticks < 0 ? Duration::min() : Duration::zero();
}

/// Whether a duration counts whole parts of a second. Its seconds and the rest are converted apart: a count
/// of nanoseconds, and the seconds since 1970, have more digits than a double.
template <class Duration>
constexpr bool countsPartsOfSeconds() noexcept {
    using Rep = typename Duration::rep;
    return std::is_integral_v<Rep> && std::is_signed_v<Rep> && Duration::period::num == 1;
}

/// The date that is closest to the time since 1970.
template <class Duration>
NSDate closestDate(const Duration& since1970) {
    if constexpr (countsPartsOfSeconds<Duration>()) {
        constexpr std::intmax_t perSecond = Duration::period::den;
        const std::intmax_t count = since1970.count();
        return NSDate::dateWithTimeIntervalSinceReferenceDate(
            static_cast<double>(count / perSecond) - NSDate::timeIntervalBetween1970AndReferenceDate +
            static_cast<double>(count % perSecond) / static_cast<double>(perSecond));
    } else {
        return NSDate::dateWithTimeIntervalSince1970(std::chrono::duration<double>(since1970).count());
    }
}

/// The units of the duration from 1970 to the date, as `ticksOf` rounds them. Whether the date was made from
/// the seconds since 1970 or since 2001 is unknown; the less precise of the two counts.
template <class Duration>
double ticksSince1970(const NSDate& date) {
    constexpr double between = NSDate::timeIntervalBetween1970AndReferenceDate;
    const double since1970 = date.timeIntervalSince1970();
    if constexpr (countsPartsOfSeconds<Duration>()) {
        const double seconds = date.timeIntervalSinceReferenceDate();
        const double whole = std::floor(seconds);
        if (date && std::isfinite(whole)) {
            const double size = std::max({std::fabs(since1970), std::fabs(seconds), between});
            return (whole + between) * static_cast<double>(Duration::period::den) +
                   ticksOf<Duration>(seconds - whole, size);
        }
    }
    return ticksOf<Duration>(since1970, between);
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// `as<std::string>()`, `as<std::u8string>()`, `as<std::u16string>()`: empty for anything but a string.
template <>
struct ObjectConversion<std::string> {
    static std::string fromObject(const NSObject& object) { return object.as<NSString>().utf8(); }
};
template <>
struct ObjectConversion<std::u16string> {
    static std::u16string fromObject(const NSObject& object) { return object.as<NSString>().utf16(); }
};
template <>
struct ObjectConversion<std::u8string> {
    static std::u8string fromObject(const NSObject& object) {
        const std::string bytes = object.as<NSString>().utf8();
        return std::u8string(bytes.begin(), bytes.end());
    }
};

/// A path and its string are the same bytes, even if they are not UTF-8. Empty for anything but a string and
/// for a string that is not a file name.
template <>
struct ObjectConversion<std::filesystem::path> {
    static NSString object(const std::filesystem::path& path) {
        return NSString::stringWithFileSystemBytes(path.native().data(), path.native().size());
    }
    static std::filesystem::path fromObject(const NSObject& object) {
        std::string bytes;
        return object.as<NSString>().getFileSystemBytes(bytes) ? std::filesystem::path(bytes)
                                                               : std::filesystem::path();
    }
    static bool isHeld(const NSObject& object) {
        std::string bytes;
        return object.as<NSString>() && object.as<NSString>().getFileSystemBytes(bytes);
    }
};

/// A time of the system's clock is the closest date. Back: rounded toward the past to the clock's precision,
/// except that differences below the precision of dates (about a quarter of a microsecond) are ignored. A
/// date outside the clock's range becomes its first or last time; anything but a date becomes 1970.
template <class Duration>
struct ObjectConversion<std::chrono::time_point<std::chrono::system_clock, Duration>> {
    using Time = std::chrono::time_point<std::chrono::system_clock, Duration>;
    static NSDate object(const Time& time) { return detail::closestDate(time.time_since_epoch()); }
    static Time fromObject(const NSObject& object) {
        return Time(detail::durationOf<Duration>(detail::ticksSince1970<Duration>(NSDate(object))));
    }
    static bool isHeld(const NSObject& object) {
        return NSDate(object) &&
               detail::holdsTicks<Duration>(detail::ticksSince1970<Duration>(NSDate(object)));
    }
};

/// A duration is a number of seconds. Back: truncated to the duration's unit, except that differences below
/// the precision of a double are ignored. A number outside its range becomes the shortest or longest
/// duration; anything but a number becomes 0.
template <class Rep, class Period>
struct ObjectConversion<std::chrono::duration<Rep, Period>> {
    using Duration = std::chrono::duration<Rep, Period>;
    static NSNumber object(const Duration& duration) {
        return std::chrono::duration<double>(duration).count();
    }
    static Duration fromObject(const NSObject& object) {
        return detail::durationOf<Duration>(ticksOf(object));
    }
    static bool isHeld(const NSObject& object) {
        return NSNumber(object) && detail::holdsTicks<Duration>(ticksOf(object));
    }

private:
    static double ticksOf(const NSObject& object) {
        const double seconds = object.as<NSNumber>().doubleValue();
        return std::copysign(detail::ticksOf<Duration>(std::fabs(seconds), 0), seconds);
    }
};

/// The seconds from the right date to the left one, as `timeIntervalSinceDate`; and a date that much later or
/// earlier, nil for a nil date.
inline std::chrono::duration<double> operator-(const NSDate& left, const NSDate& right) noexcept {
    return std::chrono::duration<double>(left.timeIntervalSinceDate(right));
}
template <class Rep, class Period>
NSDate operator+(const NSDate& date, const std::chrono::duration<Rep, Period>& duration) noexcept {
    return date ? NSDate::dateWithTimeIntervalSinceReferenceDate(
                      date.timeIntervalSinceReferenceDate() + std::chrono::duration<double>(duration).count())
                : NSDate();
}
template <class Rep, class Period>
NSDate operator-(const NSDate& date, const std::chrono::duration<Rep, Period>& duration) noexcept {
    return date + -std::chrono::duration<double>(duration);
}

/// "No such file or directory (generic 2)".
template <>
struct ObjectConversion<std::error_code> {
    static NSString object(const std::error_code& error) {
        return NSString::stringWithFormat("%@ (%s %d)", error.message(), error.category().name(),
                                          error.value());
    }
};

/// The value or nil. Back: nothing for nil, for a value of another kind, and for a number, date or text that
/// the type cannot represent.
template <class T>
struct ObjectConversion<std::optional<T>> {
    static NSObject object(const std::optional<T>& value) { return value ? NSObject(*value) : NSObject(); }
    static std::optional<T> fromObject(const NSObject& object) {
        if constexpr (detail::ReturnedNumber<T>) {
            const NSNumber number(object);
            return detail::holdsNumber<T>(number) ? std::optional<T>(detail::numberAs<T>(number))
                                                  : std::nullopt;
        } else if constexpr (std::is_base_of_v<NSObject, T>) {
            const T value(object);
            return value ? std::optional<T>(value) : std::nullopt;
        } else if constexpr (requires { ObjectConversion<T>::isHeld(object); }) {
            return ObjectConversion<T>::isHeld(object) ? std::optional<T>(object.as<T>()) : std::nullopt;
        } else {
            // The kind of value that the type makes is the kind that it comes back from.
            return object.className() == NSObject(T()).className() ? std::optional<T>(object.as<T>())
                                                                   : std::nullopt;
        }
    }
};

/// An array. Back: each element by itself; empty for anything but an array.
template <class T>
    requires(!std::is_same_v<T, char> && !std::is_same_v<T, char8_t> && !std::is_same_v<T, char16_t>)
struct ObjectConversion<std::vector<T>> {
    static NSArray object(const std::vector<T>& elements) { return NSArray::arrayWithRange(elements); }
    static std::vector<T> fromObject(const NSObject& object) {
        std::vector<T> elements;
        for (const NSObject& element : object.as<NSArray>()) {
            elements.push_back(detail::elementAs<T>(element));
        }
        return elements;
    }
};

} // namespace ZQFoundation

#ifdef __cpp_lib_format
/// As a text of UTF-8, with the width and alignment of texts.
template <class Handle>
    requires std::is_base_of_v<ZQFoundation::NSObject, Handle>
struct std::formatter<Handle, char> : std::formatter<std::string_view, char> {
    template <class Context>
    auto format(const Handle& value, Context& context) const {
        const std::string text =
            (value ? value.condensedDescription() : ZQFoundation::NSString("(nil)")).utf8();
        return std::formatter<std::string_view, char>::format(text, context);
    }
};
#endif

#endif

#if defined(FMT_VERSION) && !defined(ZQFOUNDATION_STD_FMT)
#define ZQFOUNDATION_STD_FMT
/// The same for {fmt}.
template <class Handle>
struct fmt::formatter<Handle, char, std::enable_if_t<std::is_base_of_v<ZQFoundation::NSObject, Handle>>>
    : fmt::formatter<fmt::string_view, char> {
    template <class Context>
    auto format(const Handle& value, Context& context) const {
        const std::string text =
            (value ? value.condensedDescription() : ZQFoundation::NSString("(nil)")).utf8();
        return fmt::formatter<fmt::string_view, char>::format(text, context);
    }
};
#endif
