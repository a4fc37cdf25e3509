// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_FILEERROR_H
#define ZQFOUNDATION_FILES_FILEERROR_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Puts "<path>: <reason>" into `errorText` when it is given. The reason is English whatever the locale is.
void reportError(NSString* errorText, StringView path, int error);

/// As `reportError`, for a path in the system's bytes.
void reportErrorOfBytes(NSString* errorText, const std::string& path, int error);

/// The text becomes nil.
inline void tellSuccess(NSString* errorText) noexcept {
    if (errorText != nullptr) {
        *errorText = NSString();
    }
}

} // namespace ZQFoundation::detail

#endif
