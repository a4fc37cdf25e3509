// SPDX-License-Identifier: MIT
// Base64 by loops that take one bit, or one character, after the other.
#ifndef ZQFOUNDATION_TESTS_MODELS_BASE64_H
#define ZQFOUNDATION_TESTS_MODELS_BASE64_H

#include <cstdint>
#include <string>
#include <string_view>

namespace ZQFoundation::models {

inline constexpr std::string_view base64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline std::string base64Encoded(std::string_view bytes, bool separateLines) {
    std::string text;
    unsigned value = 0;
    unsigned bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (separateLines && i != 0 && i % 48 == 0) {
            text += "\r\n";
        }
        for (int bit = 7; bit >= 0; --bit) {
            value = value << 1 | (static_cast<unsigned char>(bytes[i]) >> bit & 1U);
            if (++bits == 6) {
                text += base64Alphabet[value];
                value = 0;
                bits = 0;
            }
        }
    }
    if (bits != 0) {
        text += base64Alphabet[value << (6 - bits)];
        text.append(bits == 2 ? 2 : 1, '=');
    }
    return text;
}

struct Base64Decoding {
    std::string bytes;          ///< all that the groups encode
    std::uint64_t reported = 0; ///< the length; a pass without a character subtracts one

    /// What a caller gets who checks the reported length; nothing when it is greater than possible.
    std::string kept() const { return bytes.substr(0, reported <= bytes.size() ? reported : 0); }
};

inline Base64Decoding base64Decoded(std::string_view text) {
    Base64Decoding decoding;
    for (std::size_t i = 0; i < text.size();) {
        std::string values;
        while (i < text.size() && values.size() < 4) {
            const std::size_t value = base64Alphabet.find(text[i++]);
            if (value != base64Alphabet.npos) {
                values += static_cast<char>(value);
            }
        }
        unsigned long bits = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            bits = bits * 64 + (k < values.size() ? static_cast<unsigned char>(values[k]) : 0UL);
        }
        for (std::size_t k = 0; k + 1 < values.size(); ++k) {
            decoding.bytes += static_cast<char>(bits >> (16 - 8 * k) & 0xFFU);
        }
        decoding.reported += values.size() - 1;
    }
    return decoding;
}

} // namespace ZQFoundation::models

#endif
