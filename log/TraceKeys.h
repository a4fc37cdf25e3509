// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_LOG_TRACEKEYS_H
#define ZQFOUNDATION_LOG_TRACEKEYS_H

#include "foundation/objects/NSArray.h"

namespace ZQFoundation::detail {

// The trace conditions. Each is judged under the monitor of ZQLog, which reads the trace keys first if need
// be.

/// Whether the key's truth is YES.
bool traceKeyHolds(StringView key);

/// A missing key has level 0, which is a level like any other.
bool traceLevelEquals(StringView key, std::int64_t value);
bool traceLevelReaches(StringView key, std::int64_t threshold);

/// Whether any trace key at all is active.
bool anyTraceKeyHolds();

/// The keys that are on, joined with "/"; nil when none is. What is joined was true at one and the same
/// moment.
NSString labelOfAnyTraceKey(const NSArray& keys);

/// All keys joined with "+"; nil when one is off, and deliberately for no keys at all.
NSString labelOfAllTraceKeys(const NSArray& keys);

} // namespace ZQFoundation::detail

#endif
