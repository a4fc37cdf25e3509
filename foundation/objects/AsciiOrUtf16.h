// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_ASCIIORUTF16_H
#define ZQFOUNDATION_OBJECTS_ASCIIORUTF16_H

#include "foundation/text/StringView.h"

namespace ZQFoundation::detail {

/// Any text argument as either ASCII bytes or UTF-16 units, so that operations handle two forms, not four.
/// Converts only UTF-8 that is not ASCII; short texts without allocation. `isAscii()` holds exactly when
/// every unit is ASCII.
class AsciiOrUtf16 {
public:
    explicit AsciiOrUtf16(StringView text);
    AsciiOrUtf16(const AsciiOrUtf16&) = delete;
    AsciiOrUtf16& operator=(const AsciiOrUtf16&) = delete;
    ~AsciiOrUtf16();

    bool isNil() const noexcept { return isNil_; }
    bool isAscii() const noexcept { return ascii_ != nullptr; }
    /// In units.
    std::size_t length() const noexcept { return length_; }
    const char* ascii() const noexcept { return ascii_; }
    const char16_t* units() const noexcept { return units_; }
    char16_t operator[](std::size_t index) const noexcept {
        return ascii_ != nullptr ? static_cast<unsigned char>(ascii_[index]) : units_[index];
    }

private:
    void convert(const char* bytes, std::size_t count);
    void narrow(const char16_t* units, std::size_t count);

    static constexpr std::size_t inlineUnits = 128;

    const char* ascii_ = nullptr;
    const char16_t* units_ = nullptr;
    std::size_t length_ = 0;
    bool isNil_ = false;
    char16_t* allocated_ = nullptr;
    char16_t inline_[inlineUnits];
};

} // namespace ZQFoundation::detail

#endif
