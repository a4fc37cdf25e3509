// SPDX-License-Identifier: MIT
// The log file of a run.
#ifndef ZQFOUNDATION_MODEL_LOGFILE_H
#define ZQFOUNDATION_MODEL_LOGFILE_H

namespace notes {

/// Redirects standard error to a file of this run, keeps the newest ten, and writes the start-up report when
/// a trace key is on. With the default `LogFile` = NO standard error stays as it is.
void startLog();

} // namespace notes

#endif
