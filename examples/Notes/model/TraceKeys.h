// SPDX-License-Identifier: MIT
// The trace keys of Notes, each of which switches on one kind of log lines.
#ifndef ZQFOUNDATION_MODEL_TRACEKEYS_H
#define ZQFOUNDATION_MODEL_TRACEKEYS_H

#include <ZQFoundation/ZQFoundation.h>

namespace notes {

/// What is read, written and removed.
inline constinit const ZQFoundation::ZQTraceKey traceNotes("TraceNotes");

/// What is searched for, and how many notes are found.
inline constinit const ZQFoundation::ZQTraceKey traceSearch("TraceSearch");

/// What is moved from the folder of the previous release.
inline constinit const ZQFoundation::ZQTraceKey traceMigration("TraceMigration");

/// Which settings change.
inline constinit const ZQFoundation::ZQTraceKey traceSettings("TraceSettings");

/// Their names, in the order in which the log window shows them.
inline constexpr const char* traceKeyNames[] = {"TraceNotes", "TraceSearch", "TraceMigration",
                                                "TraceSettings"};

} // namespace notes

#endif
