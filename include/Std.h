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
#include <chrono>
#include <cmath>
#include <filesystem>
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

/// What a value converts back to, besides the types with their own conversion.
template <class T>
concept ReturnedNumber = std::is_arithmetic_v<T> && !isCharacter<T> && !std::is_same_v<T, long double>;

/// Whether the type can represent the number without truncation.
template <ReturnedNumber T>
bool holdsNumber(const NSNumber& number) {
    if constexpr (std::is_same_v<T, bool>) {
        return number.isBoolean();
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<bool>(number);
    } else if constexpr (std::is_signed_v<T>) {
        return number && number == NSNumber(static_cast<T>(number.longLongValue()));
    } else {
        return number && number == NSNumber(static_cast<T>(number.unsignedLongLongValue()));
    }
}

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
};

/// A time of the system's clock is a date. Back: rounded toward the past to the clock's precision; 1970 for
/// anything but a date.
template <class Duration>
struct ObjectConversion<std::chrono::time_point<std::chrono::system_clock, Duration>> {
    using Time = std::chrono::time_point<std::chrono::system_clock, Duration>;
    static NSDate object(const Time& time) {
        return NSDate::dateWithTimeIntervalSince1970(
            std::chrono::duration<double>(time.time_since_epoch()).count());
    }
    static Time fromObject(const NSObject& object) {
        const std::chrono::duration<double> since1970(object.as<NSDate>().timeIntervalSince1970());
        if constexpr (std::chrono::treat_as_floating_point_v<typename Duration::rep>) {
            return Time(std::chrono::duration_cast<Duration>(since1970));
        } else {
            return Time(std::chrono::floor<Duration>(since1970));
        }
    }
};

/// A duration is a number of seconds, and back.
template <class Rep, class Period>
struct ObjectConversion<std::chrono::duration<Rep, Period>> {
    using Duration = std::chrono::duration<Rep, Period>;
    static NSNumber object(const Duration& duration) {
        return std::chrono::duration<double>(duration).count();
    }
    static Duration fromObject(const NSObject& object) {
        return std::chrono::duration_cast<Duration>(
            std::chrono::duration<double>(object.as<NSNumber>().doubleValue()));
    }
};

/// The seconds from one date to another, and dates that much later or earlier; nil for a nil date.
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

/// The value or nil. Back: nothing for nil, for a value of another kind, and for a number that does not fit.
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
            if constexpr (detail::ReturnedNumber<T>) {
                elements.push_back(detail::numberAs<T>(NSNumber(element)));
            } else {
                elements.push_back(element.as<T>());
            }
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
