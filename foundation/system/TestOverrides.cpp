// SPDX-License-Identifier: MIT
// The facts that tests may replace.
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
