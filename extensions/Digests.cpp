// SPDX-License-Identifier: MIT
#include <cstring>
#include <string>

#include "extensions/MD5.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation {

NSString NSString::md5String() const {
    std::string bytes;
    if (!getUTF8(bytes)) {
        return nullptr;
    }
    const auto digest = detail::md5(bytes.data(), std::strlen(bytes.c_str()));
    constexpr char digits[] = "0123456789abcdef";
    char text[2 * digest.size()];
    for (std::size_t i = 0; i < digest.size(); ++i) {
        text[2 * i] = digits[digest[i] >> 4U];
        text[2 * i + 1] = digits[digest[i] & 15U];
    }
    return stringWithUTF8Bytes(text, sizeof text);
}

} // namespace ZQFoundation
