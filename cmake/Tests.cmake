# SPDX-License-Identifier: MIT
# One test program for each folder of tests/. A folder that needs more (a plugin, a child program, a check that
# wrong code does not compile) says so in its own CMakeLists.txt, which may use the functions below and
# the folder's program, test_<folder>.

if(CMAKE_CROSSCOMPILING)
    # There is no package of GoogleTest for another processor or C++ library, so the sources of this machine's package
    # are built.
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
    foreach(library gtest gtest_main gmock)
        if(NOT TARGET GTest::${library})
            add_library(GTest::${library} ALIAS ${library})
        endif()
    endforeach()
elseif(ZQFOUNDATION_TESTS STREQUAL "AUTO")
    find_package(GTest QUIET)
    if(NOT GTest_FOUND)
        message(STATUS "Tests are not built: GoogleTest is not installed (scripts/install-packages test)")
        return()
    endif()
else()
    find_package(GTest REQUIRED)
endif()
include(GoogleTest)

set(ZQ_THREAD_SUITES "Concurren|Thread|Fork")
# Those and the suites that start many processes always run in processes of their own.
set(ZQ_LONG_SUITES "${ZQ_THREAD_SUITES}|FaultInjection|Leftovers|MigrationsAtOnce|PowerCut|Swapping|WritersMeanwhile")
string(REGEX REPLACE "([A-Za-z]+)[|]?" "*\\1*:" ZQ_LONG_SUITES_FILTER "${ZQ_LONG_SUITES}")

# A locale with a decimal comma, made once for the tests so that every machine has it. The C library looks in
# the folder that the environment variable LOCPATH names. Without it some tests would compare nothing.
set(ZQ_TEST_LOCALES "${PROJECT_BINARY_DIR}/locales")
find_program(ZQ_LOCALEDEF localedef)
if(NOT APPLE AND NOT EXISTS "${ZQ_TEST_LOCALES}/de_DE.UTF-8/LC_NUMERIC")
    file(MAKE_DIRECTORY "${ZQ_TEST_LOCALES}")
    set(said "there is no localedef")
    if(ZQ_LOCALEDEF)
        execute_process(COMMAND "${ZQ_LOCALEDEF}" -i de_DE -f UTF-8 "${ZQ_TEST_LOCALES}/de_DE.UTF-8"
                        OUTPUT_VARIABLE said ERROR_VARIABLE said)
    endif()
    if(NOT EXISTS "${ZQ_TEST_LOCALES}/de_DE.UTF-8/LC_NUMERIC")
        set(said "The locale de_DE.UTF-8 cannot be made (scripts/install-packages test): ${said}")
        if(ZQFOUNDATION_TESTS STREQUAL "AUTO")
            message(STATUS "Tests are not built. ${said}")
            return()
        endif()
        message(FATAL_ERROR "${said}")
    endif()
endif()

# What all tests share: how they are compiled, and the precompiled headers that most of them include.
add_library(zq_test_settings INTERFACE)
target_link_libraries(zq_test_settings INTERFACE zq_flags ZQFoundationStatic GTest::gtest_main)
if(TARGET GTest::gmock)
    target_link_libraries(zq_test_settings INTERFACE GTest::gmock)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # It mistakes `std::string(count, character) + "literal"` for an access beyond the end.
    target_compile_options(zq_test_settings INTERFACE -Wno-array-bounds -Wno-stringop-overflow)
endif()
# Tests of what only Linux has: network namespaces, tracing and filters for system calls, timers of one thread, disk
# images, immutable files.
set(ZQ_TESTS_LEFT_OUT)
if(APPLE)
    set(ZQ_TESTS_LEFT_OUT
        extensions/FileAppendTest.cpp files/RemovalCheckTest.cpp info/RoutingSocketTest.cpp
        log/LineObserverTest.cpp migration/FaultInjectionTest.cpp migration/KeptSourcesTest.cpp
        migration/LeftoversTest.cpp migration/MigrationsAtOnceTest.cpp migration/PowerCutTest.cpp
        migration/RecoveryTest.cpp migration/ServedFileSystemsTest.cpp migration/WritersMeanwhileTest.cpp
        plugins/SignalHandlersTest.cpp process/DefaultsSavingTest.cpp process/NSProcessInfoTest.cpp
        process/StandardErrorWriteTest.cpp system/FileTimesTest.cpp system/LockTest.cpp
        system/RandomBytesTest.cpp system/SignalSafeMemoryTest.cpp system/ThreadsAndForksTest.cpp
        tools/DefaultsToolTest.cpp tools/DefaultsWritersTest.cpp)
    message(STATUS "Not built for this system: ${ZQ_TESTS_LEFT_OUT}")
    # Tests may use parts of the C++ library that the oldest system does not have yet, among them its file system.
    target_compile_options(zq_test_settings INTERFACE
        "SHELL:-include \"${PROJECT_SOURCE_DIR}/tests/system/macos/LinuxCalls.h\""
        "SHELL:-idirafter \"${PROJECT_SOURCE_DIR}/tests/system/macos/headers\""
        -D_LIBCPP_DISABLE_AVAILABILITY)
endif()
# Most of the time of a build goes into the tests, whose own code need not be fast. Those with slow models that run
# over many inputs are optimized all the same; what is precompiled for the others does not fit them.
target_compile_options(zq_test_settings INTERFACE ${ZQFOUNDATION_TEST_OPTIMIZATION})
set(ZQ_OPTIMIZED_TESTS
    encoding/Base64Test.cpp encoding/URLConstructionTest.cpp extensions/LineWalkTest.cpp
    objects/StringSearchTest.cpp time/WallTimeTest.cpp)
target_compile_definitions(zq_test_settings INTERFACE
    ZQ_TEST_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    ZQ_TEST_BINARY_DIR="${PROJECT_BINARY_DIR}"
    ZQ_TEST_LOCALES="${ZQ_TEST_LOCALES}")
file(WRITE "${PROJECT_BINARY_DIR}/empty.cpp" "")
add_library(zq_test_prefix OBJECT "${PROJECT_BINARY_DIR}/empty.cpp")
target_link_libraries(zq_test_prefix PRIVATE zq_test_settings)
target_precompile_headers(zq_test_prefix PRIVATE <gtest/gtest.h> <string> <vector>
    "${PROJECT_SOURCE_DIR}/foundation/objects/NSDictionary.h")

# Every test runs in a process of its own, with a home folder inside the build tree.
set(ZQ_TEST_HOME "${PROJECT_BINARY_DIR}/test-home")
file(MAKE_DIRECTORY "${ZQ_TEST_HOME}")
set(ZQ_TEST_ENVIRONMENT
    "HOME=${ZQ_TEST_HOME}" "XDG_CONFIG_HOME=${ZQ_TEST_HOME}/.config" "LOCPATH=${ZQ_TEST_LOCALES}")

# An emulator is slow. It and other libraries have limits: tests that cannot run because of them are disabled
# by name.
set(ZQ_TEST_TIMEOUT 600)
if(CMAKE_CROSSCOMPILING_EMULATOR)
    set(ZQ_TEST_TIMEOUT 1800)
endif()
set(ZQ_NOT_RUN)
set(list "${PROJECT_SOURCE_DIR}/cmake/allowed-skips-${ZQ_PLATFORM}.txt")
if(EXISTS "${list}")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
    file(STRINGS "${list}" ZQ_NOT_RUN REGEX "^[^#]")
    list(TRANSFORM ZQ_NOT_RUN REPLACE "[ \t].*" "")
endif()

# zq_add_test_program(<target> <sources>...): a GoogleTest program; ctest knows each of its tests.
function(zq_add_test_program target)
    add_executable(${target} ${ARGN})
    target_link_libraries(${target} PRIVATE zq_test_settings)
    target_precompile_headers(${target} REUSE_FROM zq_test_prefix)
    # Most of the time of compiling a test goes into headers.
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
    set(filter)
    if(ZQFOUNDATION_THREAD_TESTS_ONLY)
        set(filter TEST_FILTER "*Concurren*:*Thread*:*Fork*")
    endif()
    string(REGEX REPLACE "^test_" "" folder ${target})
    gtest_discover_tests(${target} ${filter}
        TEST_PREFIX ${folder}.
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 120
        PROPERTIES TIMEOUT ${ZQ_TEST_TIMEOUT})
    # A property that is a list can only be set once the tests are known, when ctest reads this file.
    set(file "${CMAKE_CURRENT_BINARY_DIR}/${target}_environment.cmake")
    file(CONFIGURE OUTPUT "${file}" CONTENT [[
set(not_run "@ZQ_NOT_RUN@")
foreach(test IN LISTS @target@_TESTS)
    set_tests_properties("${test}" PROPERTIES ENVIRONMENT "@ZQ_TEST_ENVIRONMENT@")
    string(REGEX REPLACE " .*" "" name "${test}") # without the value of a parameter
    list(FIND not_run "${name}" place)
    if(NOT place EQUAL -1)
        set_tests_properties("${test}" PROPERTIES DISABLED TRUE)
    endif()
    if(NOT test MATCHES "@ZQ_LONG_SUITES@") # as the filter of whole programs, which looks at whole names
        set_tests_properties("${test}" PROPERTIES LABELS single)
    endif()
endforeach()
]] @ONLY)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${file}")
    if(ZQFOUNDATION_SHUFFLED_TESTS)
        # All of them in one process: what one test leaves must not affect another. The report says which
        # tests were skipped.
        add_test(NAME ${folder}.shuffled
            COMMAND ${target} --gtest_shuffle --gtest_brief=1 --gtest_filter=-${ZQ_LONG_SUITES_FILTER}
                --gtest_output=json:${PROJECT_BINARY_DIR}/shuffled/${folder}.json)
        set_tests_properties(${folder}.shuffled PROPERTIES
            COST 1000 # the longest ones first, so that no processor waits for them at the end
            LABELS shuffled TIMEOUT 600 ENVIRONMENT "${ZQ_TEST_ENVIRONMENT}")
    endif()
endfunction()

# zq_add_refusals(<name> <source>): the source compiles as it is, and with any one of the cases that it
# tests for by `#ifdef REFUSE_<CASE>` the compiler refuses it. Each line `// expected: <text>` below the #ifdef
# has pieces of what the compiler must say, with " && " between them, and " | " between those of which one is enough.
# What no case needs can be in `#ifndef REFUSING`: it is compiled once, not with each case.
function(zq_add_refusals name source)
    if(ZQFOUNDATION_SANITIZE OR CMAKE_DISABLE_PRECOMPILE_HEADERS)
        return() # says nothing that the release build does not say, and precompiles headers
    endif()
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
    add_test(NAME refusals.${name}
        COMMAND "${CMAKE_COMMAND}" "-DCOMPILER=${CMAKE_CXX_COMPILER} ${CMAKE_CXX_FLAGS}" "-DSOURCE=${source}"
            "-DROOT=${PROJECT_SOURCE_DIR}" "-DINCLUDE=${ZQ_STAGED_INCLUDE}"
            "-DPREFIX=${CMAKE_CURRENT_BINARY_DIR}/${name}Refusals.h"
            -P "${PROJECT_SOURCE_DIR}/cmake/CheckRefusals.cmake")
    set_tests_properties(refusals.${name} PROPERTIES TIMEOUT 600)
endfunction()

# It defines functions of the C library, which no other source of a program must be compiled with.
set_source_files_properties("${PROJECT_SOURCE_DIR}/tests/kit/AllocationCount.cpp" PROPERTIES
    SKIP_UNITY_BUILD_INCLUSION ON)

# The tests of one folder; with the thread sanitizer only the sources that hold suites about threads.
function(zq_add_test_folder folder)
    file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/${folder}/*Test.cpp")
    foreach(source IN LISTS ZQ_TESTS_LEFT_OUT)
        list(REMOVE_ITEM sources "${PROJECT_SOURCE_DIR}/tests/${source}")
    endforeach()
    if(ZQFOUNDATION_THREAD_TESTS_ONLY)
        set(chosen)
        foreach(source IN LISTS sources)
            set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
            file(STRINGS "${source}" suites REGEX "^TEST.*(${ZQ_THREAD_SUITES})")
            if(suites)
                list(APPEND chosen "${source}")
            endif()
        endforeach()
        set(sources ${chosen})
    endif()
    if(ZQFOUNDATION_TEST_OPTIMIZATION STREQUAL "-O0")
        foreach(source IN LISTS ZQ_OPTIMIZED_TESTS)
            set_source_files_properties("${PROJECT_SOURCE_DIR}/tests/${source}" PROPERTIES
                COMPILE_OPTIONS -O1 SKIP_PRECOMPILE_HEADERS ON)
        endforeach()
    endif()
    # A program that counts allocations replaces the allocator; no other one does.
    foreach(source IN LISTS sources)
        file(STRINGS "${source}" counting REGEX "^#include \"tests/kit/AllocationCount.h\"")
        if(counting)
            list(APPEND sources "${PROJECT_SOURCE_DIR}/tests/kit/AllocationCount.cpp")
            break()
        endif()
    endforeach()
    if(sources)
        zq_add_test_program(test_${folder} ${sources})
    endif()
    if(ZQFOUNDATION_THREAD_TESTS_ONLY AND NOT sources)
        return()
    endif()
    if(EXISTS "${PROJECT_SOURCE_DIR}/tests/${folder}/CMakeLists.txt")
        add_subdirectory("${PROJECT_SOURCE_DIR}/tests/${folder}" "${PROJECT_BINARY_DIR}/tests/${folder}")
    endif()
endfunction()

file(GLOB folders CONFIGURE_DEPENDS LIST_DIRECTORIES true
     RELATIVE "${PROJECT_SOURCE_DIR}/tests" "${PROJECT_SOURCE_DIR}/tests/*")
foreach(folder IN LISTS folders)
    if(IS_DIRECTORY "${PROJECT_SOURCE_DIR}/tests/${folder}")
        zq_add_test_folder(${folder})
    endif()
endforeach()

if(NOT ZQFOUNDATION_SANITIZE)
    include(HeaderChecks)
    include(BinaryChecks)
    include(DocumentChecks)
endif()
