// SPDX-License-Identifier: MIT
// The former name of tests/kit/Values.h.
#ifndef ZQFOUNDATION_TESTS_OBJECTS_TESTVALUES_H
#define ZQFOUNDATION_TESTS_OBJECTS_TESTVALUES_H

#include "tests/kit/Values.h"

namespace TestValues = ZQFoundation::kit;

#endif
