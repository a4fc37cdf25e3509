// SPDX-License-Identifier: MIT
// The kit under the name that the tests of processes, files and logs know it by.
#ifndef ZQFOUNDATION_TESTS_PROCESS_SCENE_H
#define ZQFOUNDATION_TESTS_PROCESS_SCENE_H

#include <cerrno>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Turns.h"

namespace scene {

using Folder = ZQFoundation::kit::ScratchFolder;
using ZQFoundation::kit::Arguments;
using ZQFoundation::kit::contentsOf;
using ZQFoundation::kit::inUnprivilegedChild;
using ZQFoundation::kit::leave;
using ZQFoundation::kit::NoLanguages;
using ZQFoundation::kit::outputOf;
using ZQFoundation::kit::Path;
using ZQFoundation::kit::removeTree;
using ZQFoundation::kit::Replaced;
using ZQFoundation::kit::runAgain;
using ZQFoundation::kit::Turns;
using ZQFoundation::kit::Variable;

/// Whether forks fall between the operations of other threads (`Turns`).
inline constexpr bool forksTakeTurns = ZQFoundation::kit::isSanitized;

} // namespace scene

#endif
