// SPDX-License-Identifier: MIT
// Takes values and texts from the bytes of an input.
#ifndef ZQFOUNDATION_FUZZ_INPUTREADER_H
#define ZQFOUNDATION_FUZZ_INPUTREADER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace ZQFoundation::fuzzing {

/// Takes an input apart from front to back; after its end there are zeros and empty texts.
class InputReader {
public:
    InputReader(const std::uint8_t* data, std::size_t size) noexcept
        : rest_(reinterpret_cast<const char*>(data), size) {}

    std::uint8_t byte() noexcept { return number<std::uint8_t>(); }

    template <class Number>
    Number number() noexcept {
        Number value{};
        const std::size_t count = std::min(rest_.size(), sizeof value);
        if (count != 0) {
            std::memcpy(&value, rest_.data(), count);
        }
        rest_.remove_prefix(count);
        return value;
    }

    /// The text before the next mark, which is taken too; without one, all that is left.
    std::string_view piece(char mark) noexcept {
        const std::size_t end = std::min(rest_.find(mark), rest_.size());
        const std::string_view taken = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return taken;
    }

    std::string_view rest() const noexcept { return rest_; }

private:
    std::string_view rest_;
};

/// The units outside ASCII that the texts of an input consist of: those that string operations treat in a
/// special way. A few bytes make odd texts that way.
inline constexpr char16_t oddUnits[] = {
    // surrogates, more high ones than low ones so that both are unpaired at times
    0xD800, 0xD801, 0xD834, 0xD83D, 0xDBFF, 0xDC00, 0xDC37, 0xDD5E, 0xDE00, 0xDFFF,
    // combining marks and what they compose
    0x0300, 0x0301, 0x0302, 0x0307, 0x0308, 0x030A, 0x0323, 0x0327, 0x0328, 0x0338, 0x0345, 0x05B0, 0x05BC,
    0x064B, 0x093C, 0x0F71, 0x0F72, 0x20D0, 0x302A, 0x3099, 0x309A, 0x00C5, 0x00E9, 0x00F1, 0x00FC, 0x1E0B,
    0x1E69, 0x1EA5, 0x212B, 0x2126, 0x2260, 0x226E, 0x0344, 0x1FC1, 0x304B, 0x304C, 0xFB1D, 0xFB2A, 0xF900,
    // Hangul
    0x1100, 0x1161, 0x11A8, 0x11A7, 0xAC00, 0xAC01, 0xD7A3,
    // letters whose case is not a matter of one unit
    0x00DF, 0x1E9E, 0x0130, 0x0131, 0x017F, 0x01C4, 0x01C5, 0x01C6, 0x03A3, 0x03C2, 0x03C3, 0x0390, 0x1FB3,
    0x1FBC, 0x1F80, 0x1F88, 0x0149, 0x01F0, 0x0587, 0xFB00, 0xFB03, 0xFB13, 0x13A0, 0xAB70, 0x10D0, 0x1C90,
    0x212A, 0x2160, 0x24B6, 0xFF21, 0x00B5, 0x03BC,
    // white space, line breaks and what has no width
    0x0085, 0x00A0, 0x1680, 0x2000, 0x200A, 0x200B, 0x200C, 0x200D, 0x2028, 0x2029, 0x202F, 0x205F, 0x2060,
    0x3000, 0x180E, 0x00AD, 0xFEFF, 0xFFFD, 0xFFFE, 0xFFFF, 0xFE0F,
    // digits, and characters that only look like them
    0x0660, 0x0663, 0x0966, 0xFF10, 0xFF11, 0xFF19, 0x00B2, 0x00BD, 0x2460, 0x1D7C, 0x3007,
    // the ends of the ranges of UTF-8
    0x0080, 0x07FF, 0x0800, 0xD7FF, 0xE000, 0xE01A};

/// A byte below 0x80 is that unit, 0xFF precedes a unit of two bytes, the others are odd ones.
inline std::u16string unitsFromBytes(std::string_view bytes) {
    std::u16string units;
    units.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0x80) {
            units.push_back(byte);
        } else if (byte != 0xFF) {
            units.push_back(oddUnits[(byte - 0x80U) % std::size(oddUnits)]);
        } else if (i + 2 < bytes.size()) {
            units.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i + 1]) |
                                                  static_cast<unsigned char>(bytes[i + 2]) << 8));
            i += 2;
        }
    }
    return units;
}

} // namespace ZQFoundation::fuzzing

#endif
