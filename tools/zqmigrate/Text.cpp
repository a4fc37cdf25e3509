// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/Text.h"

#include "foundation/text/Utf.h"

namespace ZQFoundation::zqmigrate {

namespace {

void appendHex(std::string& text, unsigned value, int digitCount) {
    constexpr const char* digits = "0123456789abcdef";
    for (int shift = 4 * (digitCount - 1); shift >= 0; shift -= 4) {
        text.push_back(digits[(value >> shift) & 15U]);
    }
}

/// What takes effect on a terminal instead of being shown there, or is not to be seen at all.
constexpr struct {
    unsigned first;
    unsigned last;
} effective[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C}, {0x200B, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x2064}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF},
};

bool isEffective(unsigned character) noexcept {
    for (const auto& range : effective) {
        if (character >= range.first && character <= range.last) {
            return true;
        }
    }
    return false;
}

/// The character that begins there in well-formed text; `length` is how many bytes it takes.
unsigned characterAt(const char* bytes, std::size_t& length) noexcept {
    const auto byte = [bytes](std::size_t index) {
        return static_cast<unsigned>(static_cast<unsigned char>(bytes[index]));
    };
    const unsigned first = byte(0);
    length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    unsigned character = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (std::size_t index = 1; index < length; ++index) {
        character = (character << 6) | (byte(index) & 0x3FU);
    }
    return character;
}

/// Calls `onCharacter(character, its bytes, their number)` and `onBadByte(byte)` from the first to the last.
template <class OnCharacter, class OnBadByte>
void goThrough(const std::string& bytes, const OnCharacter& onCharacter, const OnBadByte& onBadByte) {
    std::size_t position = 0;
    while (position < bytes.size()) {
        const char* const rest = bytes.data() + position;
        const char* const end = rest + detail::wellFormedUtf8Prefix(rest, bytes.size() - position);
        std::size_t length = 0;
        for (const char* each = rest; each < end; each += length) {
            const unsigned character = characterAt(each, length);
            onCharacter(character, each, length);
        }
        position += static_cast<std::size_t>(end - rest);
        if (position < bytes.size()) {
            onBadByte(static_cast<unsigned char>(bytes[position++]));
        }
    }
}

} // namespace

std::string bytesOf(const NSString& text) {
    std::string bytes;
    return text.getFileSystemBytes(bytes) ? bytes : text.utf8();
}

NSString pathOf(const std::string& bytes) {
    return NSString::stringWithFileSystemBytes(bytes.data(), bytes.size());
}

std::string shown(const std::string& bytes) {
    std::string line;
    const auto onBadByte = [&line](unsigned byte) {
        line.append("\\x");
        appendHex(line, byte, 2);
    };
    goThrough(
        bytes,
        [&](unsigned character, const char* piece, std::size_t length) {
            if (character == '\\') {
                line.append("\\\\");
            } else if (!isEffective(character)) {
                line.append(piece, length);
            } else if (character == '\n') {
                line.append("\\n");
            } else if (character < 0x80) {
                onBadByte(character);
            } else {
                line.append("\\u");
                appendHex(line, character, 4);
            }
        },
        onBadByte);
    return line;
}

std::string quoted(const std::string& bytes) {
    std::string text(1, '"');
    goThrough(
        bytes,
        [&text](unsigned character, const char* piece, std::size_t length) {
            if (isEffective(character)) { // more than must be, as a terminal may be what reads this
                text.append("\\u");
                appendHex(text, character, 4);
            } else {
                text.append(character == '"' || character == '\\' ? "\\" : "").append(piece, length);
            }
        },
        [&text](unsigned) { text.append("\xEF\xBF\xBD"); });
    text.push_back('"');
    return text;
}

std::string memberOfPath(const char* name, const std::string& bytes) {
    std::string member = std::string("\"").append(name).append("\": ").append(quoted(bytes));
    if (!detail::isWellFormedUtf8(bytes.data(), bytes.size())) {
        member.append(", \"").append(name).append("Bytes\": \"");
        for (const char byte : bytes) {
            appendHex(member, static_cast<unsigned char>(byte), 2);
        }
        member.push_back('"');
    }
    return member;
}

} // namespace ZQFoundation::zqmigrate
