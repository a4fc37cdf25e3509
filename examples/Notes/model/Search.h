// SPDX-License-Identifier: MIT
// How a search sees texts: without case and accents.
#ifndef ZQFOUNDATION_MODEL_SEARCH_H
#define ZQFOUNDATION_MODEL_SEARCH_H

#include <ZQFoundation/ZQFoundation.h>

namespace notes {

namespace zq = ZQFoundation;

/// The text in upper case, Latin letters without their accents: "Straße, Café" is "STRASSE, CAFE", whether an
/// accent is part of its letter or a character of its own. Nil for nil.
zq::NSString folded(const zq::NSString& text);

/// Whether the folded text holds each of the folded words; true for no words.
bool holdsAll(const zq::NSString& foldedText, const zq::NSArray& words);

} // namespace notes

#endif
