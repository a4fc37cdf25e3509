// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_UNITBLOCKS_H
#define ZQFOUNDATION_TEXT_UNITBLOCKS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Walks over units, held as bytes or as UTF-16, by as many at a time as every processor of today compares
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

/// The first lane with a bit set, or `blockUnits`.
template <class Unit, class Matches>
std::size_t firstLane(const Matches& matches) noexcept {
    std::uint64_t words[2];
    static_assert(sizeof words == sizeof matches);
    std::memcpy(words, &matches, sizeof words);
    for (std::size_t i = 0; i < 2; ++i) {
        if (words[i] != 0) {
            const int bit = std::endian::native == std::endian::little ? std::countr_zero(words[i])
                                                                       : std::countl_zero(words[i]);
            return (i * 8 + static_cast<std::size_t>(bit) / 8) / sizeof(Unit);
        }
    }
    return blockUnits<Unit>;
}

/// The first place from `at` on whose unit satisfies the test, or `length`. The test takes a unit as an
/// unsigned number or a whole block, so it is made of comparisons joined by `&` and `|`.
template <class Unit, class Test>
std::size_t nextPlace(const Unit* units, std::size_t at, std::size_t length, const Test& test) noexcept {
    for (; length - at >= blockUnits<Unit>; at += blockUnits<Unit>) {
        const std::size_t lane = firstLane<Unit>(test(loadBlock(units + at)));
        if (lane < blockUnits<Unit>) {
            return at + lane;
        }
    }
    while (at < length && !test(static_cast<Lane<Unit>>(units[at]))) {
        ++at;
    }
    return at;
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
