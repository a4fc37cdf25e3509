// SPDX-License-Identifier: MIT
// Loads the library and writes one line.
#include <ZQFoundation/ZQFoundation.h>

int main() { ZQFoundation::ZQLog::logAlways_log(true, "started"); }
