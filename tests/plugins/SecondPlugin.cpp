// SPDX-License-Identifier: MIT
// The second of two plugins in one process.
#include "tests/plugins/PluginBody.h"
