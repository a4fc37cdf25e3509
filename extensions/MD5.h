// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the MD5 digest. It is not secure: two texts with the same digest are easily made.
#ifndef ZQFOUNDATION_EXTENSIONS_MD5_H
#define ZQFOUNDATION_EXTENSIONS_MD5_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace ZQFoundation::detail {

/// The MD5 digest (RFC 1321) of some bytes.
std::array<std::uint8_t, 16> md5(const void* bytes, std::size_t count) noexcept;

} // namespace ZQFoundation::detail

#endif
