# SPDX-License-Identifier: MIT
# CMake asks the machine that it runs on for the version of macOS, and considers one that does not report it too
# old for search paths relative to a program. Read once CMake has set what it knows of the system.

set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
set(CMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG "-Wl,-rpath,")
