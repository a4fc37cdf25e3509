// SPDX-License-Identifier: MIT
// NSScanner(ZQFoundation): moves that succeed or do not move the scanner.
#include "foundation/format/NSScanner.h"

namespace ZQFoundation {

// The scan's own result does not matter: it is also false if the scanner is at the target already, which is
// success here.
bool NSScanner::scanUpToString(StringView target) {
    const std::size_t before = location_;
    scanUpToString_intoString(target, nullptr);
    // If the target consists of characters that the scanner skips, it counts as the end if nothing else
    // follows it.
    if (!isAtEnd()) {
        return true;
    }
    location_ = before;
    return false;
}

bool NSScanner::scanPastString(StringView target) {
    const std::size_t before = location_;
    if (scanUpToString(target) && scanString_intoString(target, nullptr)) {
        return true;
    }
    location_ = before;
    return false;
}

} // namespace ZQFoundation
