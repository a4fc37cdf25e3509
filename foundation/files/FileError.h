// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_FILEERROR_H
#define ZQFOUNDATION_FILES_FILEERROR_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Puts "<path>: <reason>" into `errorText` unless that is null. The reason is in English in every locale.
void reportError(NSString* errorText, StringView path, int error);

/// As `reportError`, for a path in the system's bytes.
void reportErrorOfBytes(NSString* errorText, const std::string& path, int error);

/// Sets the text to nil.
inline void clearError(NSString* errorText) noexcept {
    if (errorText != nullptr) {
        *errorText = NSString();
    }
}

} // namespace ZQFoundation::detail

#endif
