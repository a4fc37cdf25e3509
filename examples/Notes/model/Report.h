// SPDX-License-Identifier: MIT
// Which application runs, on which system, and with which switches.
#ifndef ZQFOUNDATION_MODEL_REPORT_H
#define ZQFOUNDATION_MODEL_REPORT_H

#include <ZQFoundation/ZQFoundation.h>

namespace notes {

namespace zq = ZQFoundation;

/// The lines of the start-up report as the log has them: application, system and hardware, and each active
/// switch with the command that undoes it. This call logs them once more, for whoever reads the log later.
/// Needs `LogLines::observe`.
zq::NSString startupReport();

} // namespace notes

#endif
