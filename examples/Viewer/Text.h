// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_VIEWER_TEXT_H
#define ZQFOUNDATION_VIEWER_TEXT_H

#include <string>

#include <ZQFoundation/ZQFoundation.h>

/// For a line on a terminal: what would take effect there or cannot be seen is spelled out ("\u001b"), and so
/// are a backslash and bytes that are no text ("\xff"). Names and titles come from outside and may hold it.
std::string shown(const ZQFoundation::NSString& text);

/// The same for the bytes of a path or of an argument.
std::string shown(const std::string& bytes);

/// How many characters a reader sees: a letter and the marks that are put on it are one.
int countCharacters(const ZQFoundation::NSString& text);

#endif
