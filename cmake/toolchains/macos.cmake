# SPDX-License-Identifier: MIT
# Builds for macOS on Linux, with the cross compiler that scripts/release/check-macos downloads. Nothing built here can run here.
#
#     ZQ_MACOS_TARGET   x86_64-macos.10.13 or aarch64-macos.11.0: the processor and the oldest system
#     ZQ_MACOS_TOOLS    the folder of the programs macos-c++, macos-cc, macos-ar and macos-ranlib

set(CMAKE_SYSTEM_NAME Darwin)
set(ZQ_MACOS_TARGET x86_64-macos.10.13 CACHE STRING "Processor and oldest system")
if(NOT ZQ_MACOS_TOOLS)
    set(ZQ_MACOS_TOOLS "$ENV{ZQ_MACOS_TOOLS}" CACHE PATH "The folder of the cross compiler" FORCE)
endif()
if(NOT EXISTS "${ZQ_MACOS_TOOLS}/macos-c++")
    message(FATAL_ERROR "ZQ_MACOS_TOOLS does not name the folder of the cross compiler; scripts/release/check-macos fetches it")
endif()
# Each of CMake's trial builds reads this file again.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZQ_MACOS_TARGET ZQ_MACOS_TOOLS)

string(REGEX MATCH "^[a-z0-9_]+" CMAKE_SYSTEM_PROCESSOR "${ZQ_MACOS_TARGET}")
set(CMAKE_SYSTEM_VERSION 17) # the kernel's
if(ZQ_MACOS_TARGET MATCHES "aarch64")
    set(CMAKE_SYSTEM_VERSION 20)
endif()
set(CMAKE_USER_MAKE_RULES_OVERRIDE "${CMAKE_CURRENT_LIST_DIR}/macos-rules.cmake")

set(CMAKE_C_COMPILER "${ZQ_MACOS_TOOLS}/macos-cc")
set(CMAKE_CXX_COMPILER "${ZQ_MACOS_TOOLS}/macos-c++")
set(CMAKE_C_COMPILER_TARGET "${ZQ_MACOS_TARGET}")
set(CMAKE_CXX_COMPILER_TARGET "${ZQ_MACOS_TARGET}")
set(CMAKE_AR "${ZQ_MACOS_TOOLS}/macos-ar")
set(CMAKE_RANLIB "${ZQ_MACOS_TOOLS}/macos-ranlib")
# Names and search paths are right when they are linked; CMake only insists on a program that could change them.
set(CMAKE_INSTALL_NAME_TOOL "${CMAKE_COMMAND}" CACHE FILEPATH "Not needed")

set(CMAKE_FIND_ROOT_PATH "${CMAKE_CURRENT_LIST_DIR}/macos-stubs")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

# The compiler brings its own copy of the C++ library, and considers all of it available. Whatever the library
# of the oldest system, or that system itself, does not have yet is an error here.
foreach(language C CXX)
    set(CMAKE_${language}_FLAGS_INIT "-fno-sanitize=undefined -Werror=unguarded-availability")
endforeach()
string(APPEND CMAKE_CXX_FLAGS_INIT " -U_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS")
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-L${CMAKE_CURRENT_LIST_DIR}/macos-stubs")
endforeach()
