// SPDX-License-Identifier: MIT
// Texts in a form that does no harm to a terminal, and for JSON.
#ifndef ZQFOUNDATION_COMMON_TEXT_H
#define ZQFOUNDATION_COMMON_TEXT_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::tools {

/// The text as one line: control characters are spelled out ("\x1b"), line feeds too ("\n").
std::string onOneLine(const std::string& text);

/// The text with its line feeds and tabulators, other control characters spelled out.
std::string onTerminal(const std::string& text);

/// A name as part of a line: what would move the cursor, end the line, turn the direction of writing, cannot
/// be seen or is no text is spelled out ("\x1b", "\u202e"), and so is a backslash, so that no two names look
/// alike.
std::string shown(const NSString& name);

/// The text as a JSON string in its quotes. Each byte that is no text becomes U+FFFD.
std::string quoted(const NSString& text);

} // namespace ZQFoundation::tools

#endif
