// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TESTS_OBJECTS_RANDOMTEXTS_H
#define ZQFOUNDATION_TESTS_OBJECTS_RANDOMTEXTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"

/// Texts for comparisons with slow models: the same ones in every run.
namespace RandomTexts {

/// A sequence of numbers that look random.
class Numbers {
public:
    explicit Numbers(std::uint64_t seed) noexcept : state_(seed) {}

    std::size_t below(std::size_t end) noexcept {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::size_t>(state_ >> 33) % end;
    }

    std::u16string text(std::u16string_view alphabet, std::size_t length) {
        std::u16string units(length, u'\0');
        for (char16_t& unit : units) {
            unit = alphabet[below(alphabet.size())];
        }
        return units;
    }

private:
    std::uint64_t state_;
};

inline ZQFoundation::NSString stringOf(std::u16string_view units) {
    return ZQFoundation::NSString::stringWithCharacters_length(units.data(), units.size());
}

inline std::vector<std::u16string> textsOf(const ZQFoundation::NSArray& array) {
    std::vector<std::u16string> texts;
    for (const ZQFoundation::NSObject& element : array) {
        texts.push_back(ZQFoundation::NSString(element).utf16());
    }
    return texts;
}

/// Units beyond ASCII as hexadecimal numbers, for messages.
inline std::string shownUnits(std::u16string_view units) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string shown;
    for (const char16_t unit : units) {
        if (unit > 0x20 && unit < 0x7F) {
            shown += static_cast<char>(unit);
            continue;
        }
        shown += '<';
        for (int shift = 12; shift >= 0; shift -= 4) {
            shown += digits[unit >> shift & 0xF];
        }
        shown += '>';
    }
    return shown;
}

} // namespace RandomTexts

#endif
