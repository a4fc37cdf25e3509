// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_VIEWER_LOGFILE_H
#define ZQFOUNDATION_VIEWER_LOGFILE_H

/// Leads the log of this run into a file of its own, unless the default `LogFile` is NO; puts the start-up
/// report at its head, which is written only while a trace key is on; and clears old log files away, unless
/// the default `DisableLogRemoval` is set. To be called once, before the first line.
void startLog();

#endif
