// SPDX-License-Identifier: MIT
// The trace keys of Viewer, each of which switches on one kind of log lines.
#ifndef ZQFOUNDATION_VIEWER_TRACEKEYS_H
#define ZQFOUNDATION_VIEWER_TRACEKEYS_H

/// All trace keys of Viewer in one place, so that a misspelled one does not compile. A trace key is any user
/// default whose name begins with "Trace": set it for one run on the command line (`Viewer -TraceNetwork
/// YES`), or for all runs in ~/.config/ZQFoundation/com.example.Viewer.plist.
namespace TraceKeys {

/// What is opened, and what its header says.
inline constexpr char documents[] = "TraceDocuments";

/// Each transfer.
inline constexpr char network[] = "TraceNetwork";

/// How a document becomes pages.
inline constexpr char rendering[] = "TraceRendering";

/// Each file that is read, written or removed.
inline constexpr char files[] = "TraceFiles";

/// What is moved from the places of earlier releases to the present ones.
inline constexpr char migration[] = "TraceMigration";

/// How much detail: 1 every page, 2 every piece of a transfer too. Exactly 3 adds every line of a page, which
/// is so much that a higher level omits it again.
inline constexpr char level[] = "TraceLevel";

} // namespace TraceKeys

#endif
