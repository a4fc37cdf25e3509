// SPDX-License-Identifier: MIT
// Internal: not installed. Tests reach through here; nothing in it is exported.
#ifndef ZQFOUNDATION_SYSTEM_TESTOVERRIDES_H
#define ZQFOUNDATION_SYSTEM_TESTOVERRIDES_H

#include <string>
#include <vector>

#include "foundation/system/RouteTransport.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail::overrides {

/// When set, `NSDate::date()` and the log prefix return this instant: seconds since 1970. Null: the real
/// clock.
extern const double* clock;

/// When set, the arguments that user defaults and process information see. Null: the real ones.
extern const std::vector<std::string>* arguments;

/// Whether the arguments must be read from the system, as when the C library passes none.
extern bool readsArguments;

/// When set, the folder that holds the defaults domains. Null: the real one.
extern const std::string* defaultsFolder;

/// When set, the folder (or program file) from which the main bundle is found. Null: the real program.
extern const std::string* executablePath;

/// When set, the path of the system version file. Null: the real one.
extern const std::string* systemVersionFile;

/// When set, the paths at which the system's release description is looked for, in order. Null: the real
/// ones.
extern const std::vector<std::string>* releaseFiles;

/// When set, the facts reported about the computer. Null: the real facts.
extern const system::HardwareFacts* hardware;

/// When set, the transport that route lookups use. Null: the kernel.
extern system::RouteTransport* routeTransport;

} // namespace ZQFoundation::detail::overrides

#endif
