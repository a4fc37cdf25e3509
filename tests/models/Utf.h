// SPDX-License-Identifier: MIT
// UTF-8 and UTF-16 one character at a time, by the tables of the standard.
#ifndef ZQFOUNDATION_TESTS_MODELS_UTF_H
#define ZQFOUNDATION_TESTS_MODELS_UTF_H

#include <optional>
#include <string>
#include <string_view>

namespace ZQFoundation::models {

struct Character {
    char32_t number;
    std::size_t length; ///< bytes or units that encode it
};

/// The well-formed character at `at`, which is inside; nothing for ill-formed bytes.
inline std::optional<Character> characterAt(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const unsigned first = byte(at);
    if (first < 0x80) {
        return Character{first, 1};
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    char32_t number = first & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(at + index) & 0xC0U) != 0x80) {
            return std::nullopt;
        }
        number = number << 6 | (byte(at + index) & 0x3FU);
    }
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isGood = first >= 0xC0 && first < 0xF8 && number >= least[length] && number <= 0x10FFFF &&
                        (number < 0xD800 || number > 0xDFFF);
    return isGood ? std::optional<Character>({number, length}) : std::nullopt;
}

inline void appendUtf16(std::u16string& units, char32_t number) {
    if (number > 0xFFFF) {
        units += static_cast<char16_t>(0xD800 + ((number - 0x10000) >> 10));
        number = 0xDC00 + ((number - 0x10000) & 0x3FF);
    }
    units += static_cast<char16_t>(number);
}

/// The units of well-formed UTF-8; nothing for any other bytes.
inline std::optional<std::u16string> wellFormedUtf16(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::optional<Character> character = characterAt(text, at);
        if (!character) {
            return std::nullopt;
        }
        appendUtf16(units, character->number);
        at += character->length;
    }
    return units;
}

/// The units of characters that are numbers of two or four bytes; nothing for a number of four bytes that is
/// no character, or when bytes are left over.
inline std::optional<std::u16string> unitsOfWide(std::string_view bytes, std::size_t width, bool isLittle) {
    std::u16string units;
    for (; bytes.size() >= width; bytes.remove_prefix(width)) {
        char32_t number = 0;
        for (std::size_t i = 0; i < width; ++i) {
            number = number << 8 | static_cast<unsigned char>(bytes[isLittle ? width - 1 - i : i]);
        }
        if (number > 0x10FFFF || (width == 4 && number >= 0xD800 && number <= 0xDFFF)) {
            return std::nullopt;
        }
        appendUtf16(units, number);
    }
    return bytes.empty() ? std::optional(units) : std::nullopt;
}

/// The bytes of well-formed UTF-16; nothing when a surrogate has no partner.
inline std::optional<std::string> wellFormedUtf8(std::u16string_view units) {
    std::string text;
    text.reserve(units.size() * 3);
    for (std::size_t at = 0; at < units.size(); ++at) {
        char32_t number = units[at];
        if (number >= 0xD800 && number <= 0xDFFF) {
            const char32_t low = at + 1 < units.size() ? units[at + 1] : 0U;
            if (number > 0xDBFF || low < 0xDC00 || low > 0xDFFF) {
                return std::nullopt;
            }
            number = 0x10000 + ((number - 0xD800) << 10) + (low - 0xDC00);
            ++at;
        }
        if (number < 0x80) {
            text += static_cast<char>(number);
        } else if (number < 0x800) {
            text += {static_cast<char>(0xC0 | number >> 6), static_cast<char>(0x80 | (number & 0x3F))};
        } else if (number < 0x10000) {
            text += {static_cast<char>(0xE0 | number >> 12), static_cast<char>(0x80 | (number >> 6 & 0x3F)),
                     static_cast<char>(0x80 | (number & 0x3F))};
        } else {
            text +=
                {static_cast<char>(0xF0 | number >> 18), static_cast<char>(0x80 | (number >> 12 & 0x3F)),
                 static_cast<char>(0x80 | (number >> 6 & 0x3F)), static_cast<char>(0x80 | (number & 0x3F))};
        }
    }
    return text;
}

} // namespace ZQFoundation::models

#endif
