// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the one-line descriptions of collections.
#ifndef ZQFOUNDATION_EXTENSIONS_CONDENSED_H
#define ZQFOUNDATION_EXTENSIONS_CONDENSED_H

#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation::detail {

/// Whether the value has its own one-line description: arrays and dictionaries do.
bool isCondensable(const NSObject& object) noexcept;

/// Appends the one-line description of an array or dictionary of any depth.
///
///     ()            "(  )"                 (1, a, (2, 3))     "( 1, a, ( 2, 3 ) )"
///     {}            "{ }"                  {b = 2; A = (x)}   "{ A = ( x ); b = 2; }"
void appendCondensed(TextBuilder& out, const NSObject& collection);

} // namespace ZQFoundation::detail

#endif
