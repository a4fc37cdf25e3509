# SPDX-License-Identifier: MIT
# Fuzzing harnesses: one program fuzz_<Name> for each fuzz/<Name>Fuzz.cpp, all built by the target `fuzzers`. The
# preset `sanitized` compiles the library for them; scripts/fuzz runs them.

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "The fuzzing harnesses need clang++, whose libFuzzer drives them (scripts/install-packages clang)")
endif()
if(NOT ZQFOUNDATION_SANITIZE)
    message(FATAL_ERROR "ZQFOUNDATION_FUZZERS needs -DZQFOUNDATION_SANITIZE=address,undefined")
endif()
# The fuzzer follows the coverage of the library and of its harnesses; tests and tools need none.
target_compile_options(zq_objects PRIVATE -fsanitize=fuzzer-no-link)

add_custom_target(fuzzers)
file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/fuzz/*Fuzz.cpp")
foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    string(REGEX REPLACE "Fuzz$" "" name "${name}")
    add_executable(fuzz_${name} EXCLUDE_FROM_ALL "${source}")
    target_link_libraries(fuzz_${name} PRIVATE zq_flags ZQFoundation::Static)
    target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer-no-link)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    set_target_properties(fuzz_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/programs")
    add_dependencies(fuzzers fuzz_${name})
endforeach()
