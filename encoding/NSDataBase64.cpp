// SPDX-License-Identifier: MIT
// Converts data to Base64 strings and back.
#include <new>

#include "foundation/objects/StringBodies.h"
#include "foundation/text/Base64Codec.h"

namespace ZQFoundation {

using detail::Access;
using detail::DataBody;
namespace base64 = detail::base64;

namespace {

/// Encodes directly into the body of the string, whose length is known exactly: separators are between lines
/// only.
NSString encoded(const NSData& data, bool separateLines) {
    if (!data) {
        return nullptr;
    }
    const std::size_t count = data.length();
    std::size_t length = (count + 2) / 3 * 4;
    if (separateLines && count != 0) {
        length += (count - 1) / base64::bytesOfLine * 2;
    }
    detail::StringBody* const body = detail::allocateString(length, true);
    base64::encode(base64::codec(), data.bytes(), count, separateLines, body->ascii());
    return Access::adoptString(body);
}

} // namespace

// Decodes directly into the body of the data. Its size is known only afterwards, so room for the longest
// result is allocated first.
NSData NSData::dataFromBase64String(const NSString& text) {
    const StringView characters(text);
    if (characters.form() != StringView::Form::ascii || characters.size() == 0) {
        return data();
    }
    const std::size_t capacity = (characters.size() + 3) / 4 * 3;
    auto* const body = static_cast<DataBody*>(::operator new(sizeof(DataBody) + capacity));
    body->references = 1;
    const auto* const input = reinterpret_cast<const std::uint8_t*>(characters.bytes());
    const std::uint64_t length = base64::decode(base64::codec(), input, characters.size(), body->bytes());
    // For text of nothing but foreign characters the reported length is larger than the buffer.
    body->length = length <= capacity ? length : 0;
    NSData result = Access::adoptData(body);
    // Do not keep a large body for a text of mostly foreign characters.
    return body->length >= capacity - capacity / 8 ? result
                                                   : dataWithBytes_length(body->bytes(), body->length);
}

NSString NSData::base64EncodedStringInSeparateLines() const { return encoded(*this, true); }

NSString NSData::base64EncodedStringInSingleLine() const { return encoded(*this, false); }

} // namespace ZQFoundation
