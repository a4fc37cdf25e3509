// SPDX-License-Identifier: MIT
// The kit's part about items under the name that the tests of processes, files and logs know it by.
#ifndef ZQFOUNDATION_TESTS_PROCESS_ITEMFACTS_H
#define ZQFOUNDATION_TESTS_PROCESS_ITEMFACTS_H

#include "tests/kit/Items.h"
#include "tests/process/Scene.h"

namespace scene {

using ZQFoundation::kit::insideFolder;
using ZQFoundation::kit::isFile;
using ZQFoundation::kit::isFolder;
using ZQFoundation::kit::isLink;
using ZQFoundation::kit::isOfType;
using ZQFoundation::kit::modeOf;
using ZQFoundation::kit::realPath;
using ZQFoundation::kit::stands;

} // namespace scene

#endif
