// SPDX-License-Identifier: MIT
// What the leak sanitizer finds in the toolkit's libraries, which is theirs.

/// fontconfig keeps its configuration until the process ends, and part of it where the sanitizer cannot see
/// it.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }
