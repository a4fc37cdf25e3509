// SPDX-License-Identifier: MIT
// Converts strings from and to bytes in an encoding.
#include "foundation/objects/TextConversion.h"

namespace ZQFoundation {

NSString NSString::initWithData_encoding(const NSData& data, NSStringEncoding encoding) {
    const detail::TextEncoding* const known = detail::findTextEncoding(encoding);
    return known != nullptr && data.bytes() != nullptr ? detail::decodedText(*known, data) : NSString();
}

NSData NSString::dataUsingEncoding(NSStringEncoding encoding) const {
    const detail::TextEncoding* const known = detail::findTextEncoding(encoding);
    return known != nullptr && kind_ == detail::Kind::string ? detail::encodedText(*known, *this) : NSData();
}

} // namespace ZQFoundation
