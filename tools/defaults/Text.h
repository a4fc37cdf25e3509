// SPDX-License-Identifier: MIT
// Texts in a form that does no harm to a terminal.
#ifndef ZQFOUNDATION_DEFAULTS_TEXT_H
#define ZQFOUNDATION_DEFAULTS_TEXT_H

#include <string>

namespace ZQFoundation::defaults {

/// The name by which the user has called the program: "defaults", or "zqdefaults", under which it is always
/// installed.
extern const char* programName;
void setProgramName(const std::string& path);

/// The text as one line: control characters are spelled out ("\x1b"), line feeds too ("\n").
std::string onOneLine(const std::string& text);

/// The text with its line feeds and tabulators, other control characters spelled out.
std::string onTerminal(const std::string& text);

} // namespace ZQFoundation::defaults

#endif
