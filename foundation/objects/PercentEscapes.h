// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_PERCENTESCAPES_H
#define ZQFOUNDATION_OBJECTS_PERCENTESCAPES_H

#include "foundation/objects/NSString.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

/// The characters that need no escape in a URL's path, and in its query.
inline constexpr const char* urlPathCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:=@_~";
inline constexpr const char* urlQueryCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:;=?@_~";

/// How each byte is written: unchanged or escaped. Bytes from 0x80 on are always escaped.
class EscapeTable {
public:
    /// What is written for a byte: the first `length` of the characters.
    struct Form {
        char characters[3];
        unsigned char length;
    };

    constexpr EscapeTable() noexcept {
        for (unsigned byte = 0; byte < 256; ++byte) {
            escape(static_cast<unsigned char>(byte));
        }
    }

    /// Keeps the ASCII characters of the text.
    constexpr explicit EscapeTable(const char* kept) noexcept : EscapeTable() {
        for (; *kept != '\0'; ++kept) {
            keep(static_cast<unsigned char>(*kept));
        }
    }

    constexpr void keep(unsigned char ascii) noexcept { forms_[ascii] = {{static_cast<char>(ascii)}, 1}; }

    constexpr void escape(unsigned char byte) noexcept {
        forms_[byte] = {{'%', upperHexDigits[byte >> 4], upperHexDigits[byte & 15]}, 3};
    }

    constexpr const Form& operator[](std::size_t byte) const noexcept { return forms_[byte]; }

private:
    Form forms_[256] = {};
};

/// The text's UTF-8 bytes written by the table, escapes with two upper-case hexadecimal digits. Nil for nil
/// and for an unpaired surrogate. The result shares the body of a text that needs no escape.
NSString addPercentEscapes(const NSString& text, const EscapeTable& table);

/// Every "%" and two hexadecimal digits of either case replaced by their byte, once. Nil for nil, when a "%"
/// lacks two digits, and when the bytes are not well-formed UTF-8. Everything else is kept, even an unpaired
/// surrogate.
NSString removePercentEscapes(const NSString& text);

} // namespace ZQFoundation::detail

#endif
