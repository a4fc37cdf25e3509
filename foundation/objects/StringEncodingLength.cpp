// SPDX-License-Identifier: MIT
// Computes the number of bytes of a string in an encoding.
#include "foundation/objects/TextConversion.h"

namespace ZQFoundation {

std::size_t NSString::lengthOfBytesUsingEncoding(NSStringEncoding encoding) const {
    const detail::TextEncoding* const known = detail::findTextEncoding(encoding);
    std::size_t size = 0;
    // 0 says both: empty, and not convertible.
    const bool fits =
        known != nullptr && kind_ == detail::Kind::string && detail::getEncodedSize(*known, *this, size);
    return fits ? size : 0;
}

} // namespace ZQFoundation
