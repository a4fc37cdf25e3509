// SPDX-License-Identifier: MIT
// NSScanner(ZQFoundation): moves that succeed or leave the scanner where it was.
#include "foundation/format/NSScanner.h"

namespace ZQFoundation {

bool NSScanner::scanUpToString(StringView target) {
    const std::size_t before = location_;
    scanUpToString_intoString(target, nullptr);
    // A target made of characters to be skipped counts as the end when nothing else follows it.
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
