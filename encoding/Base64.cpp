// SPDX-License-Identifier: MIT
// Encodes Base64 to allocated buffers and decodes it.
#include "encoding/Base64.h"

#include <cstdlib>
#include <cstring>

#include "foundation/text/Base64Codec.h"

namespace ZQFoundation {

namespace base64 = detail::base64;

char* NewBase64Encode(const void* buffer, std::uint64_t length, int separateLines,
                      std::uint64_t* outputLength) noexcept {
    constexpr std::uint64_t longest = UINT64_MAX / 8;
    if (length > longest) {
        return nullptr; // four thirds of that do not fit into memory
    }
    std::uint64_t capacity = (length + 2) / 3 * 4;
    if (separateLines != 0) {
        capacity += capacity / 32; // two bytes after each 64
    }
    capacity |= 1U; // room for the separators and the zero byte
    auto* const text = static_cast<char*>(std::malloc(capacity));
    if (text == nullptr) {
        return nullptr;
    }
    char* const end = base64::encode(base64::codec(), static_cast<const std::uint8_t*>(buffer), length,
                                     separateLines != 0, text);
    *end = '\0';
    if (outputLength != nullptr) {
        *outputLength = static_cast<std::uint64_t>(end - text);
    }
    return text;
}

// Any length below -1 is a text of no bytes, as is a null pointer. One decoder serves this function and
// `NSData`; what it reports as the length is described in the header and kept as it is.
void* NewBase64Decode(const char* inputBuffer, std::int64_t length, std::uint64_t* outputLength) noexcept {
    std::size_t count = 0;
    if (inputBuffer != nullptr && length != 0) {
        count = length > 0 ? static_cast<std::size_t>(length) : length == -1 ? std::strlen(inputBuffer) : 0;
    }
    // An allocation of 0 bytes may be null, which would look like a failure.
    const std::size_t capacity = (count + 3) / 4 * 3;
    auto* const bytes = static_cast<std::uint8_t*>(std::malloc(capacity != 0 ? capacity : 1));
    std::uint64_t decoded = 0;
    if (bytes != nullptr) {
        decoded =
            base64::decode(base64::codec(), reinterpret_cast<const std::uint8_t*>(inputBuffer), count, bytes);
    }
    if (outputLength != nullptr) {
        *outputLength = decoded;
    }
    return bytes;
}

} // namespace ZQFoundation
