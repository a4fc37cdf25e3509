// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_UNITBLOCKS_H
#define ZQFOUNDATION_TEXT_UNITBLOCKS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Walks over units, stored as bytes or as UTF-16, by as many at a time as all current processors compare
/// with one instruction.
namespace ZQFoundation::detail {

inline constexpr std::size_t blockBytes = 16;

template <class Unit>
struct LaneOf;
template <>
struct LaneOf<char> {
    using Type = std::uint8_t;
};
template <>
struct LaneOf<char16_t> {
    using Type = std::uint16_t;
};

template <class Unit>
using Lane = typename LaneOf<Unit>::Type;

/// The units of one block as unsigned numbers. Comparisons and `&`, `|`, `-` go lane by lane; what a
/// comparison finds true has all bits set.
template <class Unit>
using Block __attribute__((vector_size(blockBytes))) = Lane<Unit>;

template <class Unit>
inline constexpr std::size_t blockUnits = blockBytes / sizeof(Unit);

template <class Unit>
Block<Unit> loadBlock(const Unit* units) noexcept {
    Block<Unit> block;
    std::memcpy(&block, units, sizeof block);
    return block;
}

/// A bit for each byte of a block that comparisons found true, the first byte's lowest.
template <class Matches>
std::uint32_t matchMask(const Matches& matches) noexcept {
    static_assert(sizeof matches == blockBytes);
#if defined(__SSE2__)
    return static_cast<std::uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(matches)));
#else
    std::uint64_t words[2];
    std::memcpy(words, &matches, sizeof words);
    std::uint32_t mask = 0;
    for (unsigned i = 0; i < 2; ++i) {
        const std::uint64_t word =
            std::endian::native == std::endian::little ? words[i] : __builtin_bswap64(words[i]);
        // The product has bit 0 of each byte in its highest byte, side by side.
        mask |= static_cast<std::uint32_t>((word & 0x0101010101010101) * 0x0102040810204080 >> 56) << 8 * i;
    }
    return mask;
#endif
}

/// The lane that the lowest bit of a mask belongs to; the mask is not 0.
template <class Unit>
std::size_t firstLane(std::uint32_t mask) noexcept {
    return static_cast<std::size_t>(std::countr_zero(mask)) / sizeof(Unit);
}

/// The first place from `at` on where `unitMatches(place)`, or `length`. `blockMask(place)` answers for a
/// whole block from there on, which ends at `length` or before it.
template <class Unit, class BlockMask, class UnitMatches>
[[gnu::always_inline]] inline std::size_t nextMatch(std::size_t at, std::size_t length,
                                                    const BlockMask& blockMask,
                                                    const UnitMatches& unitMatches) noexcept {
    for (; length - at >= blockUnits<Unit>; at += blockUnits<Unit>) {
        if (const std::uint32_t mask = blockMask(at); mask != 0) {
            return at + firstLane<Unit>(mask);
        }
    }
    if (at < length && length >= blockUnits<Unit>) {
        // The rest at once, with units that come before it and are shifted out.
        const std::size_t before = blockUnits<Unit> - (length - at);
        const std::uint32_t mask = blockMask(at - before) >> before * sizeof(Unit);
        return mask != 0 ? at + firstLane<Unit>(mask) : length;
    }
    while (at < length && !unitMatches(at)) {
        ++at;
    }
    return at;
}

/// The first place from `at` on whose unit satisfies the test, or `length`. The test takes a unit as an
/// unsigned number or a whole block, so it is made of comparisons joined by `&` and `|`.
template <class Unit, class Test>
std::size_t nextPlace(const Unit* units, std::size_t at, std::size_t length, const Test& test) noexcept {
    return nextMatch<Unit>(
        at, length, [&](std::size_t place) { return matchMask(test(loadBlock(units + place))); },
        [&](std::size_t place) { return test(static_cast<Lane<Unit>>(units[place])); });
}

/// Calls `found(place)` for each unit that satisfies the test, in order.
template <class Unit, class Test, class Found>
void forEachPlace(const Unit* units, std::size_t length, const Test& test, const Found& found) {
    constexpr std::uint32_t oneBitEach = sizeof(Unit) == 1 ? 0xFFFF : 0x5555;
    std::size_t at = 0;
    for (; length - at >= blockUnits<Unit>; at += blockUnits<Unit>) {
        std::uint32_t mask = matchMask(test(loadBlock(units + at))) & oneBitEach;
        for (; mask != 0; mask &= mask - 1) {
            found(at + firstLane<Unit>(mask));
        }
    }
    for (; at < length; ++at) {
        if (test(static_cast<Lane<Unit>>(units[at]))) {
            found(at);
        }
    }
}

/// How many units satisfy the test.
template <class Unit, class Test>
std::size_t countPlaces(const Unit* units, std::size_t length, const Test& test) noexcept {
    // A match is a lane of all ones, which is -1: subtracting it adds 1. Lanes are emptied before they
    // overflow: 255 is the most that a byte can count.
    constexpr std::size_t maxBlocks = 255;
    std::size_t found = 0;
    std::size_t at = 0;
    while (length - at >= blockUnits<Unit>) {
        const std::size_t left = (length - at) / blockUnits<Unit>;
        Block<Unit> matches{};
        for (std::size_t i = left < maxBlocks ? left : maxBlocks; i > 0; --i, at += blockUnits<Unit>) {
            matches -= reinterpret_cast<Block<Unit>>(test(loadBlock(units + at)));
        }
        for (std::size_t lane = 0; lane < blockUnits<Unit>; ++lane) {
            found += matches[lane];
        }
    }
    for (; at < length; ++at) {
        found += test(static_cast<Lane<Unit>>(units[at])) ? 1 : 0;
    }
    return found;
}

} // namespace ZQFoundation::detail

#endif
