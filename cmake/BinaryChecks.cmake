# SPDX-License-Identifier: MIT
# The built shared library: what it exports, what it needs, and that loading it runs no code of its own. Other
# compilers and levels of optimisation keep other inline functions, so the list is that of one build.

if(NOT APPLE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release"
   AND EXISTS "${PROJECT_SOURCE_DIR}/cmake/exported-symbols.txt")
    add_test(NAME binary.exports COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-binary" "$<TARGET_FILE:ZQFoundation>")
endif()
