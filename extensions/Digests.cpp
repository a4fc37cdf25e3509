// SPDX-License-Identifier: MIT
// Digests of strings as hexadecimal text.
#include <cstring>
#include <string>

#include "extensions/MD5.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation {

// The text as a C string: a U+0000 ends it. ASCII, which is its own UTF-8 form, is digested where it is; any
// other text is converted first, exactly or not at all.
NSString NSString::md5String() const {
    StringView text(*this);
    std::string converted;
    if (text.form() == StringView::Form::utf16) {
        if (!getUTF8(converted)) {
            return nullptr;
        }
        text = converted;
    }
    if (!text) {
        return nullptr;
    }
    const void* const zero = std::memchr(text.bytes(), 0, text.size());
    const std::size_t count = zero != nullptr
                                  ? static_cast<std::size_t>(static_cast<const char*>(zero) - text.bytes())
                                  : text.size();
    const auto digest = detail::md5(text.bytes(), count);
    char hexadecimal[2 * digest.size()];
    char* out = hexadecimal;
    for (const unsigned char byte : digest) {
        out = detail::writeHexDigits(byte, 2, out);
    }
    return detail::makeAsciiString(hexadecimal, sizeof hexadecimal);
}

} // namespace ZQFoundation
