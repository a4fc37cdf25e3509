// SPDX-License-Identifier: MIT
// Declares StringView, a text parameter of any form.
#ifndef ZQFOUNDATION_TEXT_STRINGVIEW_H
#define ZQFOUNDATION_TEXT_STRINGVIEW_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "Export.h"
#include "ObjectConversion.h"

namespace ZQFoundation {

class NSString;
class StringView;

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// Contiguous units, `size` of them: standard strings, views of them, and types with the same interface. If a
/// type's own characters were not the unit, `size` would count something else.
template <class Text, class Unit>
concept TextRange = std::is_same_v<typename Text::value_type, Unit> && requires(const Text& text) {
    { text.data() } -> std::convertible_to<const Unit*>;
    { text.size() } -> std::convertible_to<std::size_t>;
};

/// Buffers of fixed size, such as `std::array`: nobody knows where the text in one ends.
template <class Text>
concept FixedBuffer = requires {
    std::tuple_size<Text>::value;
};

/// Pointers to the first character of a text that ends with a zero.
template <class Pointer>
concept TextPointer = std::is_same_v<Pointer, const char*> || std::is_same_v<Pointer, char*> ||
    std::is_same_v<Pointer, const char16_t*> || std::is_same_v<Pointer, char16_t*> ||
    std::is_same_v<Pointer, const char8_t*> || std::is_same_v<Pointer, char8_t*>;

/// Objects that hold a text.
template <class T>
concept TextObject = ConvertedText<T> ||
    ((TextRange<T, char> || TextRange<T, char16_t> || TextRange<T, char8_t>)&&!FixedBuffer<T>);

/// Texts that are not handles themselves: literals, character pointers, `std::string` and its views.
template <class T>
concept PlainText = std::is_same_v<T, StringView> || TextPointer<std::decay_t<T>> || TextObject<T>;

/// What looks like a text but is not: buffers of fixed size, strings of other characters or of characters
/// that the library does not know.
template <class T>
concept OtherText = !PlainText<T> && !ConvertedObject<T> && requires(const T& text) {
    text.data();
    text.size();
    typename T::value_type;
};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// The text *argument*: a nullable, non-owning view of a text that its owner keeps alive for the call.
///
///     NSString name = "a,b";
///     name.componentsSeparatedByString(",");                 // a literal
///     name.componentsSeparatedByString(std::string(","));    // a standard string
///     name.componentsSeparatedByString(u",");                // UTF-16
///
/// Made implicitly from literals, `std::string`, `std::string_view`, `std::u16string_view`, `NSString` and
/// `nullptr`, so a call with a literal allocates nothing. With the umbrella header, a type that converts to a
/// standard view is a text too; so is a type whose `ObjectConversion` has a text. A buffer of fixed size is
/// not a text, because only its owner knows where the text in it ends. `const char*` and `std::string` are
/// UTF-8; ill-formed bytes read as U+FFFD. A null pointer makes the nil text, which is not the empty text.
/// Trivially copyable; pass it by value. Do not keep one: the text of a temporary is gone after the call.
class StringView {
public:
    /// How the text is held.
    enum class Form : unsigned char {
        absent, ///< the nil text
        utf8,   ///< bytes, perhaps ill-formed
        ascii,  ///< UTF-8 known to hold nothing above U+007F
        utf16,  ///< units
    };

private:
    // Ahead of the constructors, which are constant expressions only when these are known.
    template <class Unit>
    static constexpr std::size_t lengthOf(const Unit* text) noexcept {
        if constexpr (std::is_same_v<Unit, char>) {
            return __builtin_strlen(text);
        } else {
            std::size_t length = 0;
            while (text[length] != Unit{}) {
                ++length;
            }
            return length;
        }
    }

    /// The size above the two bits of the form: a view is two words, and is passed in registers.
    static constexpr std::size_t packed(std::size_t size, Form form) noexcept {
        return size << 2 | static_cast<std::size_t>(form);
    }

public:
    /// The nil text.
    constexpr StringView() noexcept = default;
    /// The nil text.
    constexpr StringView(std::nullptr_t) noexcept {}

    /// UTF-8 up to the zero byte, which is searched for here; nil for a null pointer.
    constexpr StringView(const char* utf8) noexcept
        : data_(utf8), sizeAndForm_(utf8 == nullptr ? 0 : packed(lengthOf(utf8), Form::utf8)) {}

    /// UTF-16 up to the zero unit; nil for a null pointer.
    constexpr StringView(const char16_t* units) noexcept
        : data_(units), sizeAndForm_(units == nullptr ? 0 : packed(lengthOf(units), Form::utf16)) {}

    /// UTF-8 up to the zero byte; nil for a null pointer.
    StringView(const char8_t* utf8) noexcept : StringView(reinterpret_cast<const char*>(utf8)) {}

    /// `byteCount` bytes of UTF-8, which may include zero bytes. No bytes make the empty text, even with a
    /// null pointer: only the one-argument forms make nil.
    constexpr StringView(const char* utf8, std::size_t byteCount) noexcept
        : data_(utf8 == nullptr ? "" : utf8), sizeAndForm_(packed(byteCount, Form::utf8)) {}

    /// `unitCount` UTF-16 units, in the machine's byte order. No units make the empty text, even with a null
    /// pointer.
    constexpr StringView(const char16_t* units, std::size_t unitCount) noexcept
        : data_(units == nullptr ? u"" : units), sizeAndForm_(packed(unitCount, Form::utf16)) {}

    /// A `std::string`, `std::u16string` or `std::u8string`, a view of one, any other type of contiguous
    /// units, or a type whose `ObjectConversion` has a text.
    template <detail::TextObject Text>
    constexpr StringView(const Text& text) noexcept : StringView(viewOf(text)) {}

    template <detail::OtherText T>
    StringView(const T&) = delete; // pass StringView(data, bytes) or c_str(), or specialize ObjectConversion

    /// The text of a string, whose body keeps it: valid as long as a handle holds the string. Nil for a nil
    /// string.
    inline StringView(const NSString& string) noexcept;

    /// A view of bytes that the caller knows to be ASCII, which saves the check. A byte from 0x80 on would
    /// make a string that equals no other one.
    static constexpr StringView ascii(const char* bytes, std::size_t count) noexcept {
        StringView view;
        view.data_ = bytes;
        view.sizeAndForm_ = packed(count, Form::ascii);
        return view;
    }

    /// False for the nil text, true for the empty one.
    ///
    ///     bool(StringView(""));       // true
    ///     bool(StringView(nullptr));  // false
    constexpr explicit operator bool() const noexcept { return sizeAndForm_ != 0; }

    /// How the text is held.
    constexpr Form form() const noexcept { return static_cast<Form>(sizeAndForm_ & 3); }

    /// Bytes for `utf8` and `ascii`, UTF-16 units for `utf16`, 0 for nil.
    constexpr std::size_t size() const noexcept { return sizeAndForm_ >> 2; }

    /// The bytes of a text in the form `utf8` or `ascii`, valid as long as their owner keeps them.
    constexpr const char* bytes() const noexcept { return static_cast<const char*>(data_); }

    /// The units of a text in the form `utf16`, valid as long as their owner keeps them.
    constexpr const char16_t* units() const noexcept { return static_cast<const char16_t*>(data_); }

private:
    /// The one place that says what the text of an object is.
    template <class Text>
    static constexpr StringView viewOf(const Text& text) noexcept {
        if constexpr (detail::ConvertedText<Text>) {
            return ObjectConversion<Text>::text(text);
        } else if constexpr (detail::TextRange<Text, char8_t>) {
            const char8_t* const bytes = text.data();
            return StringView(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(text.size()));
        } else {
            return StringView(text.data(), static_cast<std::size_t>(text.size()));
        }
    }

    const void* data_ = nullptr;
    std::size_t sizeAndForm_ = 0;
};

} // namespace ZQFoundation

#endif
