// SPDX-License-Identifier: MIT
#include "tools/defaults/Text.h"

#include <string_view>

#include "foundation/text/Digits.h"

namespace ZQFoundation::defaults {

namespace {

bool isControl(unsigned char byte) noexcept { return byte < 0x20 || byte == 0x7F; }

void appendHex(std::string& text, unsigned char byte) {
    char digits[2];
    text.append("\\x").append(digits, detail::writeHexDigits(byte, 2, digits));
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

const char* programName = "defaults";

void setProgramName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (path.compare(slash == std::string::npos ? 0 : slash + 1, std::string::npos, "zqdefaults") == 0) {
        programName = "zqdefaults";
    }
}

std::string onOneLine(const std::string& text) { return spelledOut(text, {}); }

std::string onTerminal(const std::string& text) { return spelledOut(text, "\n\t"); }

} // namespace ZQFoundation::defaults
