// SPDX-License-Identifier: MIT
// Percent escapes both ways, by loops without tables.
#ifndef ZQFOUNDATION_TESTS_MODELS_PERCENTESCAPES_H
#define ZQFOUNDATION_TESTS_MODELS_PERCENTESCAPES_H

#include <optional>
#include <string>
#include <string_view>

#include "tests/models/Utf.h"

namespace ZQFoundation::models {

inline std::string percentEncoded(std::string_view bytes, std::string_view kept) {
    std::string text;
    for (const char byte : bytes) {
        if (kept.find(byte) != kept.npos) {
            text += byte;
        } else {
            text += '%';
            text += "0123456789ABCDEF"[static_cast<unsigned char>(byte) / 16];
            text += "0123456789ABCDEF"[static_cast<unsigned char>(byte) % 16];
        }
    }
    return text;
}

/// Nothing for an unpaired surrogate.
inline std::optional<std::string> percentEncoded(std::u16string_view units, std::string_view kept) {
    const std::optional<std::string> bytes = wellFormedUtf8(units);
    return bytes ? std::optional(percentEncoded(*bytes, kept)) : std::nullopt;
}

/// Nothing when a "%" has no two digits or the bytes are not well-formed. Stretches without escapes stay as
/// units, since they may contain an unpaired surrogate.
inline std::optional<std::u16string> percentDecoded(std::u16string_view units) {
    const auto digitOf = [&](std::size_t place) {
        constexpr std::u16string_view digits = u"00112233445566778899aAbBcCdDeEfF";
        const std::size_t found = place < units.size() ? digits.find(units[place]) : digits.npos;
        return found == digits.npos ? -1 : static_cast<int>(found / 2);
    };
    std::u16string text;
    for (std::size_t i = 0; i < units.size();) {
        if (units[i] != u'%') {
            text += units[i++];
            continue;
        }
        std::string bytes;
        for (; i < units.size() && units[i] == u'%'; i += 3) {
            if (digitOf(i + 1) < 0 || digitOf(i + 2) < 0) {
                return std::nullopt;
            }
            bytes += static_cast<char>(digitOf(i + 1) * 16 + digitOf(i + 2));
        }
        const std::optional<std::u16string> spelled = wellFormedUtf16(bytes);
        if (!spelled) {
            return std::nullopt;
        }
        text += *spelled;
    }
    return text;
}

} // namespace ZQFoundation::models

#endif
