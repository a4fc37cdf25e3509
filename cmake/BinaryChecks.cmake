# SPDX-License-Identifier: MIT
# The built shared library: what it exports, what it needs, and that loading it only copies the arguments. The list
# of exports holds for every compiler; without optimization other inline functions might be kept.

if(NOT APPLE AND NOT ZQ_STATIC_PROGRAMS AND CMAKE_BUILD_TYPE STREQUAL "Release")
    add_test(NAME binary.exports COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-binary" "$<TARGET_FILE:ZQFoundation>")
endif()
# What a user of the installed library does, with the tools of this machine, and so only for its processor.
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT ZQFOUNDATION_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
    add_test(NAME install.outsideProjects
        COMMAND "${CMAKE_COMMAND}" -E env "CXX=${CMAKE_CXX_COMPILER}"
            "${PROJECT_SOURCE_DIR}/scripts/check-install" "${PROJECT_BINARY_DIR}")
    set_tests_properties(install.outsideProjects PROPERTIES TIMEOUT 900 PROCESSORS 2)
endif()
