// SPDX-License-Identifier: MIT
#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation {

namespace {

bool isLatin1(const detail::StringBody& body) noexcept {
    char16_t all = 0;
    for (std::size_t i = 0; i < body.length; ++i) {
        all |= body.units()[i];
    }
    return all <= 0xFF;
}

std::size_t utf8Bytes(const detail::StringBody& body) noexcept {
    return detail::isWellFormedUtf16(body.units(), body.length)
               ? detail::utf8Length(body.units(), body.length, detail::IllFormed::replace)
               : 0;
}

} // namespace

std::size_t NSString::lengthOfBytesUsingEncoding(NSStringEncoding encoding) const {
    if (!*this) {
        return 0;
    }
    const detail::StringBody& body = *detail::Access::string(*this);
    switch (encoding) {
    case NSASCIIStringEncoding:
        return body.isAscii ? body.length : 0;
    case NSUTF8StringEncoding:
        return body.isAscii ? body.length : utf8Bytes(body);
    case NSISOLatin1StringEncoding:
        return body.isAscii || isLatin1(body) ? body.length : 0;
    case NSUTF16StringEncoding:
        return body.length * sizeof(char16_t);
    }
    return 0;
}

} // namespace ZQFoundation
