// SPDX-License-Identifier: MIT
// Names and numbers as text for lines and for JSON.
#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::zqmigrate {

namespace {

/// What takes effect on a terminal instead of being shown there, or cannot be seen.
constexpr struct {
    char16_t first;
    char16_t last;
} effective[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C}, {0x200B, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x2064}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF},
};

/// Whether the unit is in one of the ranges. Units will do: none of these characters needs two.
bool isEffective(char16_t unit) noexcept {
    for (const auto& range : effective) {
        if (unit >= range.first && unit <= range.last) {
            return true;
        }
    }
    return false;
}

/// A unit of a character beyond U+FFFF or, if it is unpaired, a byte that is no text.
bool isSurrogate(char16_t unit) noexcept { return unit >= 0xD800 && unit <= 0xDFFF; }

/// JSON has its own escapes, of four digits; a person reads "\\n" and "\\x1b".
void appendUnit(NSMutableString& line, char16_t unit, bool isJson) {
    const unsigned value = unit;
    if (isEffective(unit)) { // in JSON too: a terminal may be what reads it
        if (unit == '\n' && !isJson) {
            line.appendString("\\n");
        } else if (unit < 0x80 && !isJson) {
            line.appendFormat("\\x%02x", value);
        } else {
            line.appendFormat("\\u%04x", value);
        }
        return;
    }
    line.appendString(unit == '\\' || (unit == '"' && isJson) ? "\\" : "");
    line.appendCharacter(unit);
}

/// A byte of a name that is no text is an unpaired surrogate, U+DC00 + byte. For a person it is spelled out
/// as the byte; in JSON it becomes U+FFFD, and the exact bytes follow in a member of their own.
std::string spelled(const NSString& text, bool isJson) {
    NSMutableString line;
    const std::u16string units = text.utf16();
    for (std::size_t index = 0; index < units.size(); ++index) {
        const char16_t unit = units[index];
        if (!isSurrogate(unit)) {
            appendUnit(line, unit, isJson);
        } else if (unit < 0xDC00 && index + 1 < units.size()) {
            line.appendCharacter(unit);
            line.appendCharacter(units[++index]);
        } else if (isJson) {
            line.appendCharacter(0xFFFD);
        } else {
            line.appendFormat("\\x%02x", static_cast<unsigned>(unit & 0xFF));
        }
    }
    return line.string().utf8();
}

} // namespace

NSString pathOf(const std::string& bytes) {
    return NSString::stringWithFileSystemBytes(bytes.data(), bytes.size());
}

// A path that is no file name, by a surrogate that represents no byte, cannot come from the command line.
std::string bytesOf(const NSString& path) {
    std::string bytes;
    return path.getFileSystemBytes(bytes) ? bytes : path.utf8();
}

std::string shown(const NSString& text) { return spelled(text, false); }

std::string quoted(const NSString& text) { return "\"" + spelled(text, true) + "\""; }

// Hexadecimal digits only where they are needed, so that programs can ignore them for ordinary names.
std::string memberOfPath(const char* name, const NSString& path) {
    std::string member = std::string("\"").append(name).append("\": ").append(quoted(path));
    std::string text;
    if (path && !path.getUTF8(text)) {
        NSMutableString digits;
        for (const char byte : bytesOf(path)) {
            digits.appendFormat("%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        }
        member.append(", \"").append(name).append("Bytes\": \"").append(digits.string().utf8()).append("\"");
    }
    return member;
}

// Commas in any locale: the program's own texts are English.
std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t place = digits.size(); place > 3;) {
        digits.insert(place -= 3, 1, ',');
    }
    return digits;
}

} // namespace ZQFoundation::zqmigrate
