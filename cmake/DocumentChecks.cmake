# SPDX-License-Identifier: MIT
# The documents: the reference of operations matches the public headers, every public declaration has a comment of
# its own, and they declare what the library exports; links have targets; examples compile, run, and print what
# their page shows.

foreach(check generate-operations check-links)
    string(REGEX REPLACE "^.*-" "" name ${check})
    if(check STREQUAL "generate-operations")
        add_test(NAME docs.${name} COMMAND "${PROJECT_SOURCE_DIR}/scripts/${check}" --check)
    else()
        add_test(NAME docs.${name} COMMAND "${PROJECT_SOURCE_DIR}/scripts/${check}")
    endif()
    add_test(NAME docs.${name}Refusals COMMAND "${PROJECT_SOURCE_DIR}/scripts/${check}" --self-test)
endforeach()

# A host is compiled without sanitizers, so it cannot load a library that has them.
if(NOT ZQFOUNDATION_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
    set(check_examples "${PROJECT_SOURCE_DIR}/scripts/check-examples" --compiler "${CMAKE_CXX_COMPILER}"
        --library "$<TARGET_FILE:ZQFoundation>" --include "${ZQ_STAGED_INCLUDE}")
    add_test(NAME docs.examplesRefusals COMMAND ${check_examples} --self-test)
    file(GLOB pages CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.md" "${PROJECT_SOURCE_DIR}/README.md")
    foreach(page IN LISTS pages)
        file(STRINGS "${page}" examples REGEX "^```cpp")
        if(examples)
            cmake_path(GET page STEM name)
            add_test(NAME docs.examples.${name} COMMAND ${check_examples} "${page}")
        endif()
    endforeach()
endif()
