# SPDX-License-Identifier: MIT
# Builds with clang 19 and its own C++ library, libc++. Other libraries of the distribution are compiled with another
# C++ library, so this counts as building for another system: their packages are not used.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR "${CMAKE_HOST_SYSTEM_PROCESSOR}")
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(ZQ_PLATFORM libcxx)

# Where scripts/test has unpacked the packages because they were not installed. The older tag of a program also applies
# to what its libraries need.
get_filename_component(root "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
set(unpacked "${root}/build/libcxx/packages/usr/lib")
set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
set(link_flags)
if(EXISTS "${unpacked}/llvm-19/include/c++/v1/version")
    file(GLOB libraries "${unpacked}/*-linux-gnu")
    set(CMAKE_CXX_FLAGS_INIT "-stdlib++-isystem${unpacked}/llvm-19/include/c++/v1")
    set(link_flags "-stdlib=libc++ -L${libraries}")
endif()
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "${link_flags}")
endforeach()
if(link_flags)
    string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,--disable-new-dtags,-rpath,${libraries}")
endif()

set(CMAKE_FIND_ROOT_PATH "${CMAKE_CURRENT_LIST_DIR}") # which holds no package
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
