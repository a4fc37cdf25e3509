// SPDX-License-Identifier: MIT
// Declares NSLog, which writes a line to standard error.
#ifndef ZQFOUNDATION_PROCESS_NSLOG_H
#define ZQFOUNDATION_PROCESS_NSLOG_H

#include "../objects/NSString.h"

namespace ZQFoundation {

/// Formats without a locale and writes the text as one line to standard error, after the date, the process
/// name and the numbers of process and thread. A nil format is ignored. Any thread; the kernel has the line
/// when the call returns, and `errno` is preserved.
ZQFOUNDATION_EXPORT void NSLogv(StringView format, ArgumentList arguments);

/// `NSLogv` with the arguments themselves. No trace key and no flag silences it.
///
///     NSLog("%d items", 3);  // 2024-03-05 14:07:09.042 MyApp[1234:4d2] 3 items
template <class... Arguments>
void NSLog(FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
    const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
    NSLogv(format.text(), packed.list());
}

} // namespace ZQFoundation

#endif
