// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_LINKREADING_H
#define ZQFOUNDATION_SYSTEM_LINKREADING_H

#include <string>

namespace ZQFoundation::detail {

/// The max number of links that are followed on one path; more are treated as a loop.
inline constexpr int maxLinks = 32;

enum class LinkResult {
    link,
    other,  ///< something that is not a link
    failed, ///< nothing there, or not accessible: `errno`
};

/// Reads the text of a link, of any length. `target` is written only for a link.
LinkResult readLink(int folder, const char* name, std::string& target);

} // namespace ZQFoundation::detail

#endif
