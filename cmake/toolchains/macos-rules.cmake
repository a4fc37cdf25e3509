# SPDX-License-Identifier: MIT
# CMake asks the machine that it runs on for the version of macOS, and takes one that does not report it to be too
# old for search paths relative to a program. Read once CMake has set what it knows of the system.

set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
set(CMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG "-Wl,-rpath,")
