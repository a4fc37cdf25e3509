// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_CHARACTERCATEGORIES_H
#define ZQFOUNDATION_TEXT_CHARACTERCATEGORIES_H

#include <array>
#include <cstdint>

/// The general categories of code points, from the Unicode character database. Nothing allocates,
/// everything takes constant time and may be called from any thread.
namespace ZQFoundation::detail {

/// In the order of the two-letter names beside them, which the generated table follows.
enum class GeneralCategory : unsigned char {
    unassigned,           ///< Cn
    uppercaseLetter,      ///< Lu
    lowercaseLetter,      ///< Ll
    titlecaseLetter,      ///< Lt
    modifierLetter,       ///< Lm
    otherLetter,          ///< Lo
    nonspacingMark,       ///< Mn
    spacingMark,          ///< Mc
    enclosingMark,        ///< Me
    decimalNumber,        ///< Nd
    letterNumber,         ///< Nl
    otherNumber,          ///< No
    connectorPunctuation, ///< Pc
    dashPunctuation,      ///< Pd
    openPunctuation,      ///< Ps
    closePunctuation,     ///< Pe
    initialPunctuation,   ///< Pi
    finalPunctuation,     ///< Pf
    otherPunctuation,     ///< Po
    mathSymbol,           ///< Sm
    currencySymbol,       ///< Sc
    modifierSymbol,       ///< Sk
    otherSymbol,          ///< So
    spaceSeparator,       ///< Zs
    lineSeparator,        ///< Zl
    paragraphSeparator,   ///< Zp
    control,              ///< Cc
    format,               ///< Cf
    surrogate,            ///< Cs
    privateUse,           ///< Co
};

/// Unassigned for noncharacters and for values above U+10FFFF too.
GeneralCategory generalCategory(char32_t codePoint) noexcept;

/// A set of categories, as bits.
using CategoryMask = std::uint32_t;

constexpr CategoryMask maskOf(GeneralCategory category) noexcept {
    return CategoryMask{1} << static_cast<unsigned>(category);
}

/// All categories from one to another in the order above.
constexpr CategoryMask maskOf(GeneralCategory first, GeneralCategory last) noexcept {
    return maskOf(last) * 2 - maskOf(first);
}

// Pages of 256 code points each. Many are identical and then have the same number, so that work on all
// code points needs to look at few of them.

/// The number of the page of `codePoint`, which is at most U+10FFFF; below `categoryPageNumbers()`.
unsigned categoryPageNumber(char32_t codePoint) noexcept;
unsigned categoryPageNumbers() noexcept;

/// For every page number, in their order, a bit for each of the page's code points: set when the code point's
/// category is one of `categories`.
void markCategories(CategoryMask categories, std::array<std::uint64_t, 4>* bits) noexcept;

} // namespace ZQFoundation::detail

#endif
