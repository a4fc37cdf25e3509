// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_LINKREADING_H
#define ZQFOUNDATION_SYSTEM_LINKREADING_H

#include <string>

namespace ZQFoundation::detail {

/// So many links on one path are followed; more are taken for a loop.
inline constexpr int maxLinks = 32;

enum class LinkResult {
    link,
    other,  ///< something that is no link
    failed, ///< nothing there, or not to be seen: `errno`
};

/// The text of a link, of any length. `target` is written for a link only.
LinkResult readLink(int folder, const char* name, std::string& target);

} // namespace ZQFoundation::detail

#endif
