// SPDX-License-Identifier: MIT
// Spells out control characters. Bytes of UTF-8 pass as they are, except the control characters from U+0080
// on.
#include "tools/defaults/Text.h"

#include <string_view>

namespace ZQFoundation::defaults {

namespace {

bool isControl(unsigned char byte) noexcept { return byte < 0x20 || byte == 0x7F; }

/// Always two digits, because the text that follows may begin with a digit.
void appendHex(std::string& text, unsigned char byte) {
    constexpr const char* digits = "0123456789abcdef";
    text.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
}

/// Control characters but the kept ones spelled out.
std::string spelledOut(const std::string& text, std::string_view kept) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char byte = static_cast<unsigned char>(text[i]);
        const unsigned char next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        if (kept.find(text[i]) != std::string_view::npos) {
            result += text[i];
        } else if (byte == '\n') {
            result += "\\n";
        } else if (isControl(byte)) {
            appendHex(result, byte);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {
            appendHex(result, next); // terminals take U+0080 to U+009F for commands too
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace

// The name that the manual and the start-up report use.
const char* programName = "defaults";

// Any other name, such as that of a link, counts as "defaults", which messages and the manual use.
void setProgramName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (path.compare(slash == std::string::npos ? 0 : slash + 1, std::string::npos, "zqdefaults") == 0) {
        programName = "zqdefaults";
    }
}

std::string onOneLine(const std::string& text) { return spelledOut(text, {}); }

std::string onTerminal(const std::string& text) { return spelledOut(text, "\n\t"); }

} // namespace ZQFoundation::defaults
