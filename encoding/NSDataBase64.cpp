// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "encoding/Base64.h"
#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation {

namespace {

NSString encoded(const NSData& data, int separateLines) {
    if (!data) {
        return nullptr;
    }
    std::uint64_t length = 0;
    char* const text = NewBase64Encode(data.bytes(), data.length(), separateLines, &length);
    NSString result = text != nullptr ? NSString::stringWithUTF8Bytes(text, length) : NSString();
    std::free(text);
    return result;
}

} // namespace

NSData NSData::dataFromBase64String(const NSString& text) {
    const detail::StringBody* const body = text ? detail::Access::string(text) : nullptr;
    if (body == nullptr || !body->isAscii) {
        return NSData::data();
    }
    std::uint64_t length = 0;
    void* const bytes = NewBase64Decode(body->ascii(), static_cast<std::int64_t>(body->length), &length);
    // The length reported of nothing but foreign characters is more than there can be.
    const bool isWhole = bytes != nullptr && length <= body->length;
    NSData result = isWhole ? NSData::dataWithBytes_length(bytes, length) : NSData::data();
    std::free(bytes);
    return result;
}

NSString NSData::base64EncodedStringInSeparateLines() const { return encoded(*this, 1); }

NSString NSData::base64EncodedStringInSingleLine() const { return encoded(*this, 0); }

} // namespace ZQFoundation
