// SPDX-License-Identifier: MIT
// Declares NSDebugLog.
#ifndef ZQFOUNDATION_LOG_NSDEBUGLOG_H
#define ZQFOUNDATION_LOG_NSDEBUGLOG_H

#include "../foundation/text/ArgumentList.h"

namespace ZQFoundation {

/// Does nothing: neither formats nor writes. It exists for hosts whose own builds replace it. Arguments are
/// evaluated by the caller as for any function, and a format that does not match them is not reported. Nil is
/// fine. Any thread.
extern "C" ZQFOUNDATION_EXPORT void NSDebugLog(const char* format, ...);

/// `NSDebugLog` for a started argument list: does nothing.
extern "C" ZQFOUNDATION_EXPORT void NSDebugLogv(StringView format, ArgumentList arguments);

/// `NSDebugLog` for values and texts of any kind, which `...` cannot take: does nothing.
///
///     NSDebugLog("state %@", state);  // no line, whatever the trace keys are
template <class Format, class Argument, class... Arguments>
void NSDebugLog(const Format&, const Argument&, const Arguments&...) {}

/// `NSDebugLog` for a format of any kind without arguments: does nothing.
template <class Format>
    requires(!detail::TextPointer<std::decay_t<Format>>)
void NSDebugLog(const Format&) {}

} // namespace ZQFoundation

#endif
