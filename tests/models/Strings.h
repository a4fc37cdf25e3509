// SPDX-License-Identifier: MIT
// Trimming, replacing, splitting and indenting of strings, one unit after the other.
#ifndef ZQFOUNDATION_TESTS_MODELS_STRINGS_H
#define ZQFOUNDATION_TESTS_MODELS_STRINGS_H

#include <string>
#include <string_view>
#include <vector>

#include "foundation/objects/NSCharacterSet.h"

namespace ZQFoundation::models {

using Texts = std::vector<std::u16string>;

inline bool isNewline(char16_t unit) {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

/// At most half of the text is removed, rounded up.
inline std::u16string leftTrimmed(std::u16string_view text, const NSCharacterSet& set) {
    std::size_t start = 0;
    while (2 * start < text.size() && set.characterIsMember(text[start])) {
        ++start;
    }
    return std::u16string(text.substr(start));
}

inline std::u16string rightTrimmed(std::u16string text, const NSCharacterSet& set) {
    while (!text.empty() && set.characterIsMember(text.back())) {
        text.pop_back();
    }
    return text;
}

inline std::u16string replaced(std::u16string_view text, const NSCharacterSet& set,
                               const std::u16string& replacement) {
    std::u16string result;
    for (const char16_t unit : text) {
        result += set.characterIsMember(unit) ? replacement : std::u16string(1, unit);
    }
    return result;
}

/// The text between breaks; `endOf` returns where a break that begins at a place ends, or the place itself
/// when none begins there.
template <class EndOf>
Texts piecesBetween(std::u16string_view text, const EndOf& endOf) {
    Texts pieces;
    if (!text.empty()) {
        pieces.emplace_back();
    }
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = endOf(at);
        if (end == at) {
            pieces.back() += text[at++];
        } else {
            pieces.emplace_back();
            at = end;
        }
    }
    return pieces;
}

/// Between runs of members.
inline Texts piecesBetweenMembers(std::u16string_view text, const NSCharacterSet& set) {
    return piecesBetween(text, [&](std::size_t at) {
        while (at < text.size() && set.characterIsMember(text[at])) {
            ++at;
        }
        return at;
    });
}

/// CR LF and LF CR are one break each.
inline Texts lines(std::u16string_view text) {
    return piecesBetween(text, [&](std::size_t at) {
        const std::u16string_view two = text.substr(at, 2);
        return at + (two == u"\r\n" || two == u"\n\r" ? 2 : isNewline(two[0]) ? 1 : 0);
    });
}

inline std::u16string indented(std::u16string_view text, const std::u16string& indent) {
    std::u16string result = indent;
    bool isFirst = true;
    for (const std::u16string& line : lines(text)) {
        result += isFirst ? line : u"\n" + indent + line;
        isFirst = false;
    }
    return result;
}

} // namespace ZQFoundation::models

#endif
