// SPDX-License-Identifier: MIT
// The first of two plugins in one process.
#include "tests/plugins/PluginBody.h"
