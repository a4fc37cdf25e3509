// SPDX-License-Identifier: MIT
// Random texts that are the same in every run, and texts for messages.
#ifndef ZQFOUNDATION_TESTS_KIT_TEXTS_H
#define ZQFOUNDATION_TESTS_KIT_TEXTS_H

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::kit {

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

/// All texts over the alphabet up to a length, the empty one first.
inline std::vector<std::u16string> allTexts(std::u16string_view alphabet, std::size_t longest) {
    std::vector<std::u16string> texts{u""};
    for (std::size_t i = 0; i < texts.size() && texts[i].size() < longest; ++i) {
        for (const char16_t unit : alphabet) {
            texts.push_back(texts[i] + unit);
        }
    }
    return texts;
}

template <class Unit>
std::basic_string<Unit> repeatedText(std::basic_string_view<Unit> piece, std::size_t count) {
    std::basic_string<Unit> text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}
inline std::string repeated(std::string_view piece, std::size_t count) { return repeatedText(piece, count); }
inline std::u16string repeated(std::u16string_view piece, std::size_t count) {
    return repeatedText(piece, count);
}

inline NSString stringOf(std::u16string_view units) {
    return NSString::stringWithCharacters_length(units.data(), units.size());
}

inline std::vector<std::u16string> textsOf(const NSArray& array) {
    std::vector<std::u16string> texts;
    for (const NSObject& element : array) {
        texts.push_back(NSString(element).utf16());
    }
    return texts;
}

/// A copy that ends where its block ends, so that a memory checker sees every unit too many.
template <class Unit>
class Exact {
public:
    explicit Exact(std::basic_string_view<Unit> text) : count_(text.size()), units_(new Unit[text.size()]) {
        std::copy(text.begin(), text.end(), units_.get());
    }
    const Unit* data() const { return units_.get(); }
    std::size_t size() const { return count_; }

private:
    std::size_t count_;
    std::unique_ptr<Unit[]> units_;
};

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

} // namespace ZQFoundation::kit

#endif
