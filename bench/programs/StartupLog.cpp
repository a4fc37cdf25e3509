// SPDX-License-Identifier: MIT
// Loads the library and writes the whole start-up report.
#include <ZQFoundation/ZQFoundation.h>

int main() { ZQFoundation::ZQLogInfo::standardStartupLog(); }
