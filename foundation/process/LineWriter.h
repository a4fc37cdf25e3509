// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LINEWRITER_H
#define ZQFOUNDATION_PROCESS_LINEWRITER_H

#include "foundation/text/StringView.h"

namespace ZQFoundation::detail {

/// Writes the text as one line to descriptor 2, behind "2024-03-05 14:07:09.042 MyApp[1234:5d7f] ", in one
/// write.
///
/// The line is with the kernel when the call returns; whatever goes wrong, it is silent and keeps `errno`,
/// and no signal is raised. A text that ends with a line feed gets no second one. Any thread, any time.
void writeLine(StringView text);

} // namespace ZQFoundation::detail

#endif
