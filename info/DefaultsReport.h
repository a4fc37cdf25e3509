// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the report of the active switches.
#ifndef ZQFOUNDATION_INFO_DEFAULTSREPORT_H
#define ZQFOUNDATION_INFO_DEFAULTSREPORT_H

#include "foundation/text/StringView.h"

namespace ZQFoundation::detail {

/// Writes the active trace keys and the switches among the user defaults to the log: a section for each kind
/// that has any, each followed by the separator. Gathers the application's facts for its identifier,
/// including their warnings.
void writeDefaultsReport(StringView separator);

} // namespace ZQFoundation::detail

#endif
