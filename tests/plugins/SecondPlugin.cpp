// SPDX-License-Identifier: MIT
#include "tests/plugins/PluginBody.h"
