// SPDX-License-Identifier: MIT
// Escaping and counting characters.
#include "Text.h"

using namespace ZQFoundation;

namespace {

/// Calls `onCharacter(code point, its units)` from the first character to the last.
template <class OnCharacter>
void goThrough(const NSString& text, const OnCharacter& onCharacter) {
    const std::u16string units = text.utf16();
    for (std::size_t at = 0; at < units.size();) {
        const bool isPair =
            at + 1 < units.size() && (units[at] & 0xFC00) == 0xD800 && (units[at + 1] & 0xFC00) == 0xDC00;
        const char32_t character =
            isPair ? 0x10000 + ((units[at] & 0x3FFU) << 10) + (units[at + 1] & 0x3FFU) : units[at];
        const std::size_t count = isPair ? 2 : 1;
        onCharacter(character, NSString::stringWithCharacters_length(units.data() + at, count));
        at += count;
    }
}

bool isUnseen(char32_t character) {
    static const NSCharacterSet controls = NSCharacterSet::controlCharacterSet();
    static const NSCharacterSet lineEnds = NSCharacterSet::newlineCharacterSet();
    return controls.longCharacterIsMember(character) || lineEnds.longCharacterIsMember(character);
}

/// Whether the character is a part of the one before it. Knows the blocks that are made for such marks, and
/// the signs that choose a form or a shade, but no marks among the letters of a script.
bool isPart(char32_t character) {
    static const NSRange blocks[] = {{0x0300, 0x70}, {0x1AB0, 0x50}, {0x1DC0, 0x40}, {0x200D, 1},
                                     {0x20D0, 0x30}, {0xFE00, 0x10}, {0xFE20, 0x10}, {0x1F3FB, 5}};
    for (const NSRange& block : blocks) {
        if (character >= block.location && character - block.location < block.length) {
            return true;
        }
    }
    return false;
}

} // namespace

std::string shown(const NSString& text) {
    NSMutableString line;
    goThrough(text, [&line](char32_t character, const NSString& itself) {
        const auto number = static_cast<unsigned>(character);
        if (character == '\\') {
            line.appendString("\\\\");
        } else if ((character & ~0xFFU) ==
                   0xDC00) { // how the text of a file name represents a byte that is not text
            line.appendFormat("\\x%02x", number & 0xFFU);
        } else if (isUnseen(character)) {
            line.appendFormat("\\u%04x", number);
        } else {
            line.appendString(itself);
        }
    });
    return line.string().utf8();
}

std::string shown(const std::string& bytes) {
    return shown(NSString::stringWithFileSystemBytes(bytes.data(), bytes.size()));
}

int countCharacters(const NSString& text) {
    int count = 0;
    goThrough(text, [&count](char32_t character, const NSString&) { count += isPart(character) ? 0 : 1; });
    return count;
}
