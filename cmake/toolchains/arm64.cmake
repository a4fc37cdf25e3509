# SPDX-License-Identifier: MIT
# Builds for 64-bit Arm with the distribution's cross compiler; what is built runs under user-mode emulation.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
set(ZQ_PLATFORM arm64)

set(root /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH "${root}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

# Programs name their loader and the folder of the system's libraries themselves: they and the programs that they
# start run as they are, in any environment. With the older tag the folder also applies to what libraries need.
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,--dynamic-linker,${root}/lib/ld-linux-aarch64.so.1 -Wl,--disable-new-dtags,-rpath,${root}/lib")
