// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_HASHING_H
#define ZQFOUNDATION_OBJECTS_HASHING_H

#include <atomic>
#include <cstdint>
#include <cstring>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Both halves of the product, so that each bit of either factor reaches bits all over the result.
inline std::uint64_t mixed(std::uint64_t left, std::uint64_t right) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// By a copy, because the bytes may have any address.
inline std::uint64_t wordAt(const char* bytes) noexcept {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Up to seven bytes as one number, without a loop: bytes may be read twice.
inline std::uint64_t shortWordAt(const char* bytes, std::size_t count) noexcept {
    if (count >= 4) {
        std::uint32_t first;
        std::uint32_t last;
        std::memcpy(&first, bytes, sizeof first);
        std::memcpy(&last, bytes + count - sizeof last, sizeof last);
        return static_cast<std::uint64_t>(last) << 32 | first;
    }
    if (count == 0) {
        return 0;
    }
    const auto at = [&](std::size_t index) {
        return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[index]));
    };
    return at(0) | at(count / 2) << 8 | at(count - 1) << 16;
}

/// `seen` collects all bits of all bytes, for callers who must know whether the bytes are ASCII. The last
/// word ends where the bytes end and may overlap the one before it, which saves a loop over single bytes. The
/// length is hashed, too, because it decides what overlaps.
inline std::uint64_t hashBytes(const char* bytes, std::size_t count, std::uint64_t seed,
                               std::uint64_t& seen) noexcept {
    constexpr std::uint64_t stepFactor = 0x9E6C63D0876A9A47U;
    constexpr std::uint64_t lastFactor = 0xE7037ED1A0B428DBU;
    std::uint64_t hash = seed ^ (count * 0xD6E8FEB86659FD93U);
    if (count < 8) {
        const std::uint64_t word = shortWordAt(bytes, count);
        seen |= word;
        return mixed(hash ^ word, lastFactor);
    }
    for (std::size_t i = 0; i + 8 < count; i += 8) {
        seen |= wordAt(bytes + i);
        hash = mixed(hash ^ wordAt(bytes + i), stepFactor);
    }
    const std::uint64_t last = wordAt(bytes + count - 8);
    seen |= last;
    return mixed(hash ^ last, lastFactor);
}

inline std::uint64_t hashBytes(const void* data, std::size_t count, std::uint64_t seed) noexcept {
    std::uint64_t seen = 0;
    return hashBytes(static_cast<const char*>(data), count, seed, seen);
}

/// The bits of `seen` that no ASCII byte has.
inline constexpr std::uint64_t beyondAscii = 0x8080808080808080U;

/// ASCII texts hash by their bytes, all others by their units: the two never equal each other.
inline std::uint64_t hashText(const AsciiOrUtf16& text, std::uint64_t seed) noexcept {
    return text.isAscii() ? hashBytes(text.ascii(), text.length(), seed)
                          : hashBytes(text.units(), text.length() * sizeof(char16_t), ~seed);
}

/// Collections are hashed whole, without recursion, and store their hash: as keys they are distinguished at
/// once, and a tree is walked only the first time.
std::uint64_t hashObject(const NSObject& object, std::uint64_t seed);

/// A number chosen at random once per process, so that hostile keys cannot be chosen to collide.
std::uint64_t drawTableSeed() noexcept;

/// Inline, since each lookup in a table starts here; 0 means that no number was drawn yet.
inline std::uint64_t tableSeed() noexcept {
    extern std::atomic<std::uint64_t> drawnTableSeed;
    const std::uint64_t seed = drawnTableSeed.load(std::memory_order_relaxed);
    return seed != 0 ? seed : drawTableSeed();
}

} // namespace ZQFoundation::detail

#endif
