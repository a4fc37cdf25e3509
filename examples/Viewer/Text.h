// SPDX-License-Identifier: MIT
// Texts from outside, made safe for a terminal.
#ifndef ZQFOUNDATION_VIEWER_TEXT_H
#define ZQFOUNDATION_VIEWER_TEXT_H

#include <string>

#include <ZQFoundation/ZQFoundation.h>

/// For a line on a terminal: what would take effect there or cannot be seen is escaped ("\u001b"), and so
/// are a backslash and bytes that are not text ("\xff"). Names and titles come from outside and may contain
/// it.
std::string shown(const ZQFoundation::NSString& text);

/// The same for the bytes of a path or of an argument.
std::string shown(const std::string& bytes);

/// The number of characters that a reader sees: a letter and the marks on it are one.
int countCharacters(const ZQFoundation::NSString& text);

#endif
