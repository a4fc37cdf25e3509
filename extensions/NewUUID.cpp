// SPDX-License-Identifier: MIT
// Makes random UUIDs.
#include "foundation/objects/StringBodies.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/System.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation {

// 122 random bits: two identifiers from any two processes practically never coincide. The random bytes come
// from the system; getting them may change `errno`, which is the caller's.
NSString NSString::stringWithNewUUID() {
    constexpr std::size_t byteCount = 16;
    constexpr std::size_t length = 36;
    unsigned char bytes[byteCount];
    {
        const detail::CallerState caller;
        detail::system::fillWithRandomBytes(bytes, byteCount);
    }
    bytes[6] = static_cast<unsigned char>(0x40 | (bytes[6] & 0x0F)); // version 4: random
    bytes[8] = static_cast<unsigned char>(0x80 | (bytes[8] & 0x3F)); // the variant of RFC 4122
    char text[length];
    char* out = text;
    for (std::size_t i = 0; i < byteCount; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            *out++ = '-';
        }
        out = detail::writeHexDigits(bytes[i], 2, out, detail::upperHexDigits);
    }
    return detail::makeAsciiString(text, length);
}

} // namespace ZQFoundation
