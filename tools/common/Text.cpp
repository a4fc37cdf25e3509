// SPDX-License-Identifier: MIT
// Escapes the characters of a text that would have an effect where it is printed.
#include "tools/common/Text.h"

#include "foundation/text/Surrogates.h"

namespace ZQFoundation::tools {

namespace {

enum class Form { line, terminal, name, json };

/// Characters that have an effect on a terminal instead of being shown; from the third range on, those that
/// are invisible or reverse the writing direction.
constexpr struct {
    char16_t first;
    char16_t last;
} effective[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C}, {0x200B, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x2064}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF},
};
constexpr std::size_t controlRanges = 2;

bool isEffective(char16_t unit, Form form) noexcept {
    const bool isName =
        form == Form::name || form == Form::json; // in JSON too: it may be shown on a terminal
    for (std::size_t i = 0; i < (isName ? std::size(effective) : controlRanges); ++i) {
        if (unit >= effective[i].first && unit <= effective[i].last) {
            return form != Form::terminal || (unit != '\n' && unit != '\t');
        }
    }
    return false;
}

void appendUnit(NSMutableString& line, char16_t unit, Form form) {
    const unsigned value = unit;
    if (isEffective(unit, form)) {
        if (unit == '\n' && form != Form::json) {
            line.appendString("\\n");
        } else if (form != Form::json && unit < (form == Form::name ? 0x80 : 0x100)) {
            line.appendFormat("\\x%02x", value);
        } else {
            line.appendFormat("\\u%04x", value);
        }
        return;
    }
    const bool isEscaped = (unit == '\\' && form >= Form::name) || (unit == '"' && form == Form::json);
    line.appendString(isEscaped ? "\\" : "");
    line.appendCharacter(unit);
}

/// A byte of a name that is not text is an unpaired surrogate, U+DC00 + byte.
std::string spelled(const NSString& text, Form form) {
    NSMutableString line;
    const std::u16string units = text.utf16();
    for (std::size_t index = 0; index < units.size(); ++index) {
        const char16_t& unit = units[index];
        if (!detail::isSurrogate(unit)) {
            appendUnit(line, unit, form);
        } else if (detail::isSurrogatePair(&unit, units.size() - index)) {
            line.appendCharacter(unit);
            line.appendCharacter(units[++index]);
        } else if (form == Form::json) {
            line.appendCharacter(0xFFFD);
        } else {
            line.appendFormat("\\x%02x", static_cast<unsigned>(unit & 0xFF));
        }
    }
    return line.string().utf8();
}

} // namespace

std::string onOneLine(const std::string& text) { return spelled(text, Form::line); }

std::string onTerminal(const std::string& text) { return spelled(text, Form::terminal); }

std::string shown(const NSString& name) { return spelled(name, Form::name); }

std::string quoted(const NSString& text) { return "\"" + spelled(text, Form::json) + "\""; }

} // namespace ZQFoundation::tools
