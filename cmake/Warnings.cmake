# SPDX-License-Identifier: MIT
# The flags for every target of this project, and for no target of a host that embeds it.

add_library(zq_flags INTERFACE)

target_compile_options(zq_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion)
# Where several sources are compiled as one, a local name may be a global one of another source, and the base of a class
# unnamed.
set(unity "$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>")
set(gnu "$<CXX_COMPILER_ID:GNU>")
target_compile_options(zq_flags INTERFACE
    "$<$<NOT:${unity}>:-Wshadow>" "$<$<AND:${unity},${gnu}>:-Wshadow=local;-Wno-subobject-linkage>")
if(ZQFOUNDATION_WERROR)
    target_compile_options(zq_flags INTERFACE -Werror)
elseif(NOT PROJECT_IS_TOP_LEVEL)
    # Other compilers, or stricter warnings than ours, may find something.
    target_compile_options(zq_flags INTERFACE -Wno-error)
endif()

# Sources name headers from the root of the repository. -iquote keeps the folder "version" out of the search
# for the standard header <version>.
target_compile_options(zq_flags INTERFACE "-iquote${PROJECT_SOURCE_DIR}")

# A product and a sum are rounded one after the other. Where processors have one instruction for both, compilers use
# it by default, and the last digit differs from one system to the next.
target_compile_options(zq_flags INTERFACE -ffp-contract=off)

if(ZQFOUNDATION_SANITIZE)
    target_compile_options(zq_flags INTERFACE
        -fsanitize=${ZQFOUNDATION_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # In code that a sanitizer has added to, g++ loses track of sizes. The other builds keep these warnings.
        target_compile_options(zq_flags INTERFACE -Wno-array-bounds -Wno-stringop-overflow)
    endif()
    target_link_options(zq_flags INTERFACE -fsanitize=${ZQFOUNDATION_SANITIZE})
endif()
