// SPDX-License-Identifier: MIT
// Texts in a form that does no harm to a terminal, and for JSON.
#ifndef ZQFOUNDATION_COMMON_TEXT_H
#define ZQFOUNDATION_COMMON_TEXT_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::tools {

/// The text as one line: control characters are escaped ("\x1b"), and so are line feeds ("\n").
std::string onOneLine(const std::string& text);

/// The text with its line feeds and tabs; other control characters are escaped.
std::string onTerminal(const std::string& text);

/// A name as part of a line. Whatever would move the cursor, end the line or reverse the writing direction,
/// is invisible or is not text is escaped ("\x1b", "\u202e"), and so is a backslash: no two names look alike.
std::string shown(const NSString& name);

/// The text as a quoted JSON string. Each byte that is not text becomes U+FFFD.
std::string quoted(const NSString& text);

} // namespace ZQFoundation::tools

#endif
