// SPDX-License-Identifier: MIT
// The log file of a run.
#ifndef ZQFOUNDATION_VIEWER_LOGFILE_H
#define ZQFOUNDATION_VIEWER_LOGFILE_H

/// Redirects the log of this run to a file of its own, unless the default `LogFile` is NO; puts the start-up
/// report at its head, which is written only while a trace key is on; and removes old log files, unless the
/// default `DisableLogRemoval` is set. To be called once, before the first line.
void startLog();

#endif
