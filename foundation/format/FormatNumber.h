// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FORMAT_FORMATNUMBER_H
#define ZQFOUNDATION_FORMAT_FORMATNUMBER_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/format/Format.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/FormatSyntax.h"

namespace ZQFoundation::detail {

/// One conversion, its width and precision known, ready to be run.
struct FormatSpec {
    char letter = 0;
    FormatFlags flags = 0;
    bool hasPrecision = false;
    FormatLength length = FormatLength::bits32;
    int width = 0;     ///< 0 to `maxFormatField`
    int precision = 0; ///< 0 to INT_MAX

    bool has(FormatFlags flag) const noexcept { return (flags & flag) != 0; }
    std::size_t numberPrecision() const noexcept {
        return static_cast<std::size_t>(precision < maxFormatField ? precision : maxFormatField);
    }
    std::size_t paddingFor(std::size_t units) const noexcept {
        return static_cast<std::size_t>(width) > units ? static_cast<std::size_t>(width) - units : 0;
    }
};

/// d i u o x X. The value's low bits count, as many as the length says; d and i read them as signed.
void appendInteger(TextBuilder& out, const FormatSpec& spec, std::uint64_t value, const FormatLocale* locale);

/// e E f F g G.
void appendReal(TextBuilder& out, const FormatSpec& spec, double value, const FormatLocale* locale);
void appendReal(TextBuilder& out, const FormatSpec& spec, long double value, const FormatLocale* locale);

/// a A.
void appendHexadecimalReal(TextBuilder& out, const FormatSpec& spec, double value);
void appendHexadecimalReal(TextBuilder& out, const FormatSpec& spec, long double value);

/// A finished ASCII number such as "-1234.5e+06", written as the locale requires.
void appendLocalized(TextBuilder& out, const char* number, std::size_t length, const FormatLocale& locale);

/// The parts of a number between its padding.
class FormatNumberWriter {
public:
    FormatNumberWriter(TextBuilder& out, const FormatSpec& spec, const FormatLocale* locale) noexcept
        : out_(out), spec_(spec), locale_(locale) {}

    /// Whether a whole part of `digits` digits is grouped.
    bool groups(std::size_t digits) const noexcept {
        return locale_ != nullptr && locale_->groupSize != 0 && locale_->groupingSeparator.size() != 0 &&
               digits >= std::size_t{locale_->groupSize} + locale_->minimumDigits;
    }

    /// The length in units of `digits` digits with their separators.
    std::size_t groupedLength(std::size_t digits) const noexcept;

    /// `zeros` leading zeros, `digits`, and `moreZeros` trailing zeros, separated in groups.
    void appendGrouped(std::size_t zeros, const char* digits, std::size_t count, std::size_t moreZeros);

    std::size_t decimalPointLength() const noexcept;
    void appendDecimalPoint();

    /// Appends what comes before `length` units of number (spaces, the sign or prefix, zeros), and after it
    /// (spaces).
    void begin(const char* prefix, std::size_t prefixLength, std::size_t length, bool zeroPads);
    void end() {
        if (padding_ != 0) {
            out_.appendRepeated(' ', padding_);
        }
    }

private:
    TextBuilder& out_;
    const FormatSpec& spec_;
    const FormatLocale* locale_;
    std::size_t padding_ = 0;
};

/// Puts the pieces of a short ASCII number together, in the builder itself where that holds bytes. A piece of
/// up to `pieceSlack` bytes is copied with its slack, in two instructions, so each piece must be in an array
/// that extends at least that far past its start.
class ShortNumber {
public:
    static constexpr std::size_t capacity = 128;
    static constexpr std::size_t pieceSlack = 16;

    explicit ShortNumber(TextBuilder& out)
        : out_(out), room_(out.reserveAscii(sizeof apart_)), end_(room_ != nullptr ? room_ : apart_) {}

    void put(const char* bytes, std::size_t count) noexcept {
        if (count <= pieceSlack) {
            std::memcpy(end_, bytes, pieceSlack);
        } else {
            std::memcpy(end_, bytes, count);
        }
        end_ += count;
    }
    void put(char character) noexcept { *end_++ = character; }
    void putRepeated(char character, std::size_t count) noexcept {
        if (count != 0) {
            std::memset(end_, character, count);
            end_ += count;
        }
    }

    /// Room for `numberTextCapacity` bytes, and how many were written there.
    char* end() noexcept { return end_; }
    void advance(const char* end) noexcept { end_ += end - end_; }

    void append() {
        if (room_ != nullptr) {
            out_.commitAscii(static_cast<std::size_t>(end_ - room_));
        } else {
            out_.appendAscii(apart_, static_cast<std::size_t>(end_ - apart_));
        }
    }

private:
    TextBuilder& out_;
    char* room_;
    char* end_;
    char apart_[capacity + pieceSlack];
};

/// The length of any text in units; 0 for nil.
std::size_t unitLength(StringView text) noexcept;

/// An empty text may come with a null pointer, which must not be passed to a copy, even of no bytes.
inline void appendText(TextBuilder& out, StringView text) {
    if (text.size() != 0) {
        out.append(text);
    }
}

/// Writes "-", "+", " " or nothing to `out`, as the flags say, and returns the number of bytes.
inline std::size_t writeSign(const FormatSpec& spec, bool isNegative, char* out) noexcept {
    if (!isNegative && !spec.has(formatPlus | formatBlank)) {
        return 0;
    }
    *out = isNegative ? '-' : spec.has(formatPlus) ? '+' : ' ';
    return 1;
}

} // namespace ZQFoundation::detail

#endif
