// SPDX-License-Identifier: MIT
// Converts UTF-16, UTF-32 and escaped ASCII from and to units.
// Numbers are composed byte by byte, whatever the machine's order; compilers turn these loops into single
// loads and stores where the orders agree.
#include "foundation/text/UnicodeForms.h"

#include <cstdint>
#include <type_traits>

#include "foundation/text/Digits.h"
#include "foundation/text/Surrogates.h"

namespace ZQFoundation::detail {

namespace {

/// The number of a byte or a unit: a plain cast would extend the sign of a char.
template <class Unit>
constexpr std::uint32_t codeOf(Unit unit) noexcept {
    return static_cast<std::make_unsigned_t<Unit>>(unit);
}

template <std::size_t size>
char* writeNumber(std::uint32_t number, ByteOrder order, char* out) noexcept {
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t place = order == ByteOrder::little ? i : size - 1 - i;
        out[i] = static_cast<char>(number >> 8 * place & 0xFF);
    }
    return out + size;
}

template <std::size_t size>
std::uint32_t readNumber(const char* bytes, ByteOrder order) noexcept {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t place = order == ByteOrder::little ? i : size - 1 - i;
        number |= codeOf(bytes[i]) << 8 * place;
    }
    return number;
}

/// Takes a character of well-formed units.
/// The caller has checked that each high surrogate has its partner, so the second unit exists.
template <class Unit>
std::uint32_t takeCharacter(const Unit*& at) noexcept {
    const std::uint32_t code = codeOf(*at++);
    if (!isHighSurrogate(code)) {
        return code;
    }
    return 0x10000 + ((code - 0xD800) << 10) + (codeOf(*at++) - 0xDC00);
}

void appendCharacter(std::uint32_t code, std::u16string& out) {
    if (code < 0x10000) {
        out.push_back(static_cast<char16_t>(code));
    } else {
        // 0xD7C0 is 0xD800 less 0x10000 >> 10, so one addition does both.
        out.push_back(static_cast<char16_t>(0xD7C0 + (code >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
    }
}

/// The value of digits of a given number of bits each, or -1.
std::int32_t readDigits(std::string_view digits, std::size_t count, int bitsEach) noexcept {
    std::int32_t value = 0;
    if (digits.size() < count) {
        return -1;
    }
    for (const char digit : digits.substr(0, count)) {
        const int number = hexDigitValue(digit);
        if (number < 0 || number >> bitsEach != 0) {
            return -1;
        }
        value = value << bitsEach | number;
    }
    return value;
}

/// Takes what follows a backslash; -1 when it is not an escape.
/// On success the escape is removed from `rest`; otherwise nothing is.
std::int32_t takeEscape(std::string_view& rest) noexcept {
    std::int32_t value = -1;
    std::size_t length = 1;
    if (!rest.empty() && rest[0] == '\\') {
        value = '\\';
    } else if (!rest.empty() && rest[0] == 'u') {
        value = readDigits(rest.substr(1), 4, 4);
        length = 5;
    } else {
        // Three octal digits reach 0777, but a byte ends at 0377.
        value = readDigits(rest, 3, 3);
        value = value > 0xFF ? -1 : value;
        length = 3;
    }
    rest.remove_prefix(value < 0 ? 0 : length);
    return value;
}

} // namespace

template <class Unit>
char* writeUtf16(const Unit* units, std::size_t count, ByteOrder order, char* out) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        out = writeNumber<2>(codeOf(units[i]), order, out);
    }
    return out;
}

/// One number for each character, so a pair of surrogates becomes one.
template <class Unit>
char* writeUtf32(const Unit* units, std::size_t count, ByteOrder order, char* out) noexcept {
    for (const Unit* const end = units + count; units != end;) {
        out = writeNumber<4>(takeCharacter(units), order, out);
    }
    return out;
}

/// The units must be well-formed: then each high surrogate stands for a pair.
std::size_t countOfCharacters(const char16_t* units, std::size_t count) noexcept {
    std::size_t pairs = 0;
    for (std::size_t i = 0; i < count; ++i) {
        pairs += isHighSurrogate(units[i]) ? 1 : 0;
    }
    return count - pairs;
}

/// Unpaired surrogates are kept: in this form they have bytes of their own.
bool readUtf16(std::string_view bytes, ByteOrder order, std::u16string& out) {
    out.resize(bytes.size() / 2);
    for (std::size_t i = 0; i < out.size(); ++i) {
        out[i] = static_cast<char16_t>(readNumber<2>(bytes.data() + 2 * i, order));
    }
    // An odd byte at the end is reported after everything else was read.
    return bytes.size() % 2 == 0;
}

bool readUtf32(std::string_view bytes, ByteOrder order, std::u16string& out) {
    out.clear();
    if (bytes.size() % 4 != 0) {
        return false;
    }
    out.reserve(bytes.size() / 4);
    for (; !bytes.empty(); bytes.remove_prefix(4)) {
        const std::uint32_t code = readNumber<4>(bytes.data(), order);
        // Such a number is not a character, so the bytes are in another encoding or order.
        if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
            return false;
        }
        appendCharacter(code, out);
    }
    return true;
}

/// An octal escape takes four bytes, one by number six; a backslash is doubled.
template <class Unit>
std::size_t escapedAsciiLength(const Unit* units, std::size_t count) noexcept {
    std::size_t length = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t code = codeOf(units[i]);
        length += code == '\\' ? 2U : code < 0x80 ? 1U : code < 0x100 ? 4U : 6U;
    }
    return length;
}

template <class Unit>
char* writeEscapedAscii(const Unit* units, std::size_t count, char* out) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t code = codeOf(units[i]);
        if (code >= 0x80 || code == '\\') {
            *out++ = '\\';
        }
        if (code < 0x80) {
            *out++ = static_cast<char>(code);
        } else if (code < 0x100) {
            out = writeHexDigits<3>(code, 3, out);
        } else {
            *out++ = 'u';
            out = writeHexDigits(code, 4, out);
        }
    }
    return out;
}

/// The bytes of a file may be anything: a byte beyond ASCII or an unknown escape means another encoding.
bool readEscapedAscii(std::string_view bytes, std::u16string& out) {
    out.clear();
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::uint32_t code = codeOf(bytes.front());
        bytes.remove_prefix(1);
        const std::int32_t unit = code == '\\' ? takeEscape(bytes) : static_cast<std::int32_t>(code);
        if (code >= 0x80 || unit < 0) {
            return false;
        }
        out.push_back(static_cast<char16_t>(unit));
    }
    return true;
}

template char* writeUtf16(const char*, std::size_t, ByteOrder, char*) noexcept;
template char* writeUtf16(const char16_t*, std::size_t, ByteOrder, char*) noexcept;
template char* writeUtf32(const char*, std::size_t, ByteOrder, char*) noexcept;
template char* writeUtf32(const char16_t*, std::size_t, ByteOrder, char*) noexcept;
template std::size_t escapedAsciiLength(const char*, std::size_t) noexcept;
template std::size_t escapedAsciiLength(const char16_t*, std::size_t) noexcept;
template char* writeEscapedAscii(const char*, std::size_t, char*) noexcept;
template char* writeEscapedAscii(const char16_t*, std::size_t, char*) noexcept;

} // namespace ZQFoundation::detail
