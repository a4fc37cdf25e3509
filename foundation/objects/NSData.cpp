// SPDX-License-Identifier: MIT
// Bytes as values.
// The bytes follow the header in one allocation. Data are never changed once made.
#include "foundation/objects/NSData.h"

#include <cstring>
#include <new>

#include "foundation/objects/Bodies.h"

namespace ZQFoundation {

using detail::Access;
using detail::DataBody;

NSData NSData::data() { return dataWithBytes_length(nullptr, 0); }

NSData NSData::dataWithBytes_length(const void* bytes, std::size_t count) {
    if (count > SIZE_MAX - sizeof(DataBody)) {
        throw std::bad_alloc();
    }
    auto* const body = static_cast<DataBody*>(::operator new(sizeof(DataBody) + count));
    body->references = 1;
    body->length = count;
    if (count != 0) {
        std::memcpy(body->bytes(), bytes, count);
    }
    return Access::adoptData(body);
}

const unsigned char* NSData::bytes() const noexcept {
    return kind_ == detail::Kind::data ? Access::data(*this)->bytes() : nullptr;
}

std::size_t NSData::length() const noexcept {
    return kind_ == detail::Kind::data ? Access::data(*this)->length : 0;
}

bool NSData::isEqualToData(const NSData& other) const noexcept {
    return bytes() != nullptr && other.bytes() != nullptr && length() == other.length() &&
           std::memcmp(bytes(), other.bytes(), length()) == 0;
}

} // namespace ZQFoundation
