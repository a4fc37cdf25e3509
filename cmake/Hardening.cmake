# SPDX-License-Identifier: MIT
# Compiler options for the delivered library and tools, against defects that get past everything else: checked
# copies, stack guards, stacks that cannot jump over their guard page, marked targets of indirect jumps. Only in
# optimized builds (checked copies need the optimizer); the sanitizers have their own checks.

include(CheckCXXCompilerFlag)

add_library(zq_hardening INTERFACE)
if(NOT ZQFOUNDATION_SANITIZE AND CMAKE_BUILD_TYPE MATCHES "Release|RelWithDebInfo|MinSizeRel")
    # Distributions set their own level, which may be higher.
    if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
        target_compile_options(zq_hardening INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    # Some compilers only warn about a flag that does not apply to the processor.
    set(CMAKE_REQUIRED_FLAGS -Werror)
    foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
        string(MAKE_C_IDENTIFIER "ZQ_HAS${flag}" known)
        check_cxx_compiler_flag(${flag} ${known})
        if(${known})
            target_compile_options(zq_hardening INTERFACE ${flag})
        endif()
    endforeach()
    unset(CMAKE_REQUIRED_FLAGS)
endif()
