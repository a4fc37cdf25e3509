// SPDX-License-Identifier: MIT
// The kit's parts about the log under the name that the tests of the start-up report know them by.
#ifndef ZQFOUNDATION_TESTS_LOG_LOGTESTSUPPORT_H
#define ZQFOUNDATION_TESTS_LOG_LOGTESTSUPPORT_H

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/kit/Child.h"
#include "tests/kit/Settings.h"
#include "tests/kit/StandardError.h"
#include "tests/process/Scene.h"

namespace logtest {

using ZQFoundation::kit::CapturedOutput;
using ZQFoundation::kit::inFreshProcess;
using ZQFoundation::kit::ProcessName;
using ZQFoundation::kit::Setting;
using ZQFoundation::kit::Settings;
using ZQFoundation::kit::TraceKeys;

template <class Body>
bool inChild(const Body& body) {
    return ZQFoundation::kit::inChild(body) == 0;
}

} // namespace logtest

#endif
