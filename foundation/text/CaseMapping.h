// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_CASEMAPPING_H
#define ZQFOUNDATION_TEXT_CASEMAPPING_H

/// Case mappings and canonical decompositions of single code points, from the Unicode character database.
///
/// None of them depends on a language or on neighboring characters. Each takes constant time, allocates
/// nothing and may be called from any thread. Any value may be given: surrogates, unassigned code points and
/// values above U+10FFFF map to themselves.
namespace ZQFoundation::detail {

/// Writes the full upper-case form of `codePoint` to `out` and returns its length, 1 to 3: U+00DF gives "SS",
/// U+017F "S", U+0131 "I".
unsigned upperCase(char32_t codePoint, char32_t out[3]) noexcept;

/// Writes the full lower-case form and returns its length, 1 to 3: U+0130 gives "i" and U+0307. U+03A3 is
/// always U+03C3, at the end of a word too.
unsigned lowerCase(char32_t codePoint, char32_t out[3]) noexcept;

/// Writes the full case folding and returns its length, 1 to 3. Two texts are the same but for case when
/// their foldings are equal: U+00DF and "ss", U+FB01 and "fi", U+03C2 and U+03C3, U+212A and "k". U+0130 is
/// "i" and U+0307 and so differs from "i"; U+0131 stays itself. Letters fold to lower case, so that an order
/// by folded code points puts '_' and '[' before the letters; only Cherokee, whose lower case came later,
/// folds to upper.
unsigned foldCase(char32_t codePoint, char32_t out[3]) noexcept;

/// Writes the complete canonical decomposition (as normalization form D has it) and returns its length, 1 to
/// 4. Returns 0 and writes nothing for a code point that decomposes to itself. Marks within one result are in
/// canonical order; those of neighboring results are for the caller to order, by canonicalCombiningClass().
unsigned canonicalDecomposition(char32_t codePoint, char32_t out[4]) noexcept;

/// The canonical combining class, 0 for everything that is not a reordering mark.
unsigned char canonicalCombiningClass(char32_t codePoint) noexcept;

} // namespace ZQFoundation::detail

#endif
