// SPDX-License-Identifier: MIT
// Declares the gates of a log operation before its trace condition.
#ifndef ZQFOUNDATION_LOG_LOGGATES_H
#define ZQFOUNDATION_LOG_LOGGATES_H

#include "../foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The gates before the trace condition, in order: the flag must be YES, the format not nil, and neither the
/// key nor the array of keys. Compiled into the host, before the arguments are packed, so that a silenced
/// call examines none of them; the exported workers check the same gates again for callers with a list of
/// arguments.
template <class... Keys>
constexpr bool passesGates(bool logAlways, StringView format, const Keys&... keys) noexcept {
    return logAlways && format && (static_cast<bool>(keys) && ...);
}

/// The text as a string that a signal handler may make and release; nil for nil. Here, and not in the
/// templates that call it, because hosts know only the size of a string, not its layout.
ZQFOUNDATION_EXPORT NSString returnedText(StringView text);

} // namespace ZQFoundation::detail

#endif
