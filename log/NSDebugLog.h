// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_LOG_NSDEBUGLOG_H
#define ZQFOUNDATION_LOG_NSDEBUGLOG_H

#include "../foundation/text/ArgumentList.h"

namespace ZQFoundation {

/// Does nothing: neither formats nor writes. It is there for hosts whose own builds replace it.
extern "C" ZQFOUNDATION_EXPORT void NSDebugLog(const char* format, ...);

/// The same for a started argument list.
extern "C" ZQFOUNDATION_EXPORT void NSDebugLogv(StringView format, ArgumentList arguments);

/// Takes what `...` cannot: values and texts of any kind.
template <class Format, class Argument, class... Arguments>
void NSDebugLog(const Format&, const Argument&, const Arguments&...) {}

/// Takes a format that is a value or a text of any kind, without arguments.
template <class Format>
    requires(!detail::TextPointer<std::decay_t<Format>>)
void NSDebugLog(const Format&) {}

} // namespace ZQFoundation

#endif
