// SPDX-License-Identifier: MIT
// The facts that tests may replace.
// Each is null or false until a test sets it, so a program pays one load and a comparison.
#include "foundation/system/TestOverrides.h"

namespace ZQFoundation::detail::overrides {

constinit const double* clock = nullptr;
constinit const std::vector<std::string>* arguments = nullptr;
constinit bool readsArguments = false;
constinit const std::string* defaultsFolder = nullptr;
constinit const std::string* executablePath = nullptr;
constinit const std::string* systemVersionFile = nullptr;
constinit const std::vector<std::string>* releaseFiles = nullptr;
constinit const system::HardwareFacts* hardware = nullptr;
constinit system::RouteTransport* routeTransport = nullptr;

} // namespace ZQFoundation::detail::overrides
