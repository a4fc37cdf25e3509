# SPDX-License-Identifier: MIT
# Builds programs that carry everything inside, with musl for their C library and libc++ for their C++ library, by the
# cross compiler that `scripts/test --preset musl` fetches. They run on this machine as they are.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR "${CMAKE_HOST_SYSTEM_PROCESSOR}")
set(ZQ_PLATFORM musl)
set(ZQ_STATIC_PROGRAMS ON) # which load no library and intercept no function of one

get_filename_component(tools "${CMAKE_CURRENT_LIST_DIR}/../../build/musl/compiler" ABSOLUTE)
if(NOT EXISTS "${tools}/musl-c++")
    message(FATAL_ERROR "There is no cross compiler in ${tools}; scripts/test --preset musl fetches it")
endif()
set(CMAKE_C_COMPILER "${tools}/musl-cc")
set(CMAKE_CXX_COMPILER "${tools}/musl-c++")
set(CMAKE_AR "${tools}/musl-ar" CACHE FILEPATH "Makes static libraries")
set(CMAKE_RANLIB "${tools}/musl-ranlib" CACHE FILEPATH "Indexes static libraries")

# Unless it is kept from it, the compiler adds checks for undefined behavior to what it does not optimize.
foreach(language C CXX)
    set(CMAKE_${language}_FLAGS_INIT -fno-sanitize=undefined)
endforeach()

set(CMAKE_FIND_ROOT_PATH "${CMAKE_CURRENT_LIST_DIR}") # which holds no package
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
