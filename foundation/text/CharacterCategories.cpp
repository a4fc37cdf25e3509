// SPDX-License-Identifier: MIT
// Looks up Unicode's general categories.
// Three levels: planes, pages of 256, blocks within pages. Equal ones are stored once at each level.
#include "foundation/text/CharacterCategories.h"

#include <cstddef>
#include <iterator>

namespace ZQFoundation::detail {

namespace {

#include "foundation/text/UnicodeCategoryTables.inc"

constexpr unsigned pageShift = 8;
constexpr std::size_t pageMask = 0xFF;

inline unsigned valueInPage(std::size_t pageNumber, std::size_t within) noexcept {
    const std::size_t block = categoryBlocks[(pageNumber << pageShift | within) >> categoryShift];
    return categoryValues[block << categoryShift | (within & ((std::size_t{1} << categoryShift) - 1))];
}

} // namespace

unsigned categoryPageNumber(char32_t codePoint) noexcept {
    const std::size_t plane = categoryPlanes[codePoint >> 16];
    return categoryPages[plane << pageShift | (codePoint >> pageShift & pageMask)];
}

unsigned categoryPageNumbers() noexcept { return categoryPageCount; }

GeneralCategory generalCategory(char32_t codePoint) noexcept {
    if (codePoint > 0x10FFFF) {
        return GeneralCategory::unassigned;
    }
    return static_cast<GeneralCategory>(valueInPage(categoryPageNumber(codePoint), codePoint & pageMask));
}

// Works on the pages that differ instead of on a million code points.
void markCategories(CategoryMask categories, std::array<std::uint64_t, 4>* bits) noexcept {
    static_assert(categoryShift <= 6, "a block lies within one word");
    constexpr unsigned blockLength = 1U << categoryShift;
    // Blocks occur in the table several times; each is scanned once.
    std::uint64_t blockBits[std::size(categoryValues) / blockLength] = {};
    for (std::size_t i = 0; i < std::size(categoryValues); ++i) {
        const std::uint64_t isMember = categories >> categoryValues[i] & 1;
        blockBits[i / blockLength] |= isMember << i % blockLength;
    }
    for (std::size_t i = 0; i < std::size(categoryBlocks); ++i) {
        const std::size_t place = i * blockLength;
        std::uint64_t& word = bits[place >> pageShift][place >> 6 & 3];
        // The first block of a word clears what the caller had in it.
        word = (place & 63) == 0 ? 0 : word;
        word |= blockBits[categoryBlocks[i]] << (place & 63);
    }
}

} // namespace ZQFoundation::detail
