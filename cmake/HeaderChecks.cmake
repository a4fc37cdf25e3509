# SPDX-License-Identifier: MIT
# Public headers are compiled in the hardest ways, as ordinary includes with all warnings: each alone and twice, all
# in reverse order, all below `using namespace`, beside the headers of other libraries, and between macros
# that other headers are known to define.

set(directory "${PROJECT_BINARY_DIR}/header-checks")
set(sources)

# Leaves an unchanged file alone, so that nothing is recompiled needlessly.
function(zq_write_check name text)
    file(CONFIGURE OUTPUT "${directory}/${name}.cpp" CONTENT "${text}" @ONLY)
    set(sources ${sources} "${directory}/${name}.cpp" PARENT_SCOPE)
endfunction()

set(forward)
set(backward)
set(standard)
foreach(header IN LISTS ZQ_PUBLIC_HEADERS)
    set(line "#include <ZQFoundation/${header}>\n")
    string(APPEND forward "${line}")
    string(PREPEND backward "${line}")
    string(REGEX REPLACE "[/.]" "_" name ${header})
    zq_write_check(${name} "${line}${line}")
    file(STRINGS "${PROJECT_SOURCE_DIR}/${header}" lines REGEX "^#include <")
    list(APPEND standard ${lines})
endforeach()
if(NOT forward)
    return()
endif()
list(REMOVE_DUPLICATES standard)
list(FILTER standard EXCLUDE REGEX "<ZQFoundation-needs-") # what ends a compilation that cannot succeed
list(JOIN standard "\n" standard)

set(umbrella "#include <ZQFoundation/ZQFoundation.h>\n")
zq_write_check(Forward "${forward}${umbrella}")
zq_write_check(Backward "${backward}${umbrella}")
zq_write_check(Using "namespace ZQFoundation {}\nusing namespace ZQFoundation;\n${umbrella}NSString usedByItsShortName();\n")

# The standard library undefines or trips over some of these itself, so its headers come first.
set(hostile "${standard}\n")
foreach(macro nil=0 YES=1 NO=0 BOOL=int None=0L Bool=int Status=int LOG=3 ERROR=4)
    string(REPLACE "=" " " macro "${macro}")
    string(APPEND hostile "#define ${macro}\n")
endforeach()
string(APPEND hostile "#define check(x) ((x) ? 1 : 0)\n#define major(x) ((x) >> 8)\n#define minor(x) ((x) & 255)\n"
    "#define min(a, b) ((a) < (b) ? (a) : (b))\n#define max(a, b) ((a) > (b) ? (a) : (b))\n")
zq_write_check(HostileMacros "${hostile}${forward}${umbrella}")

# The sample on the README's first page is a whole program, and compiles.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/README.md")
file(READ "${PROJECT_SOURCE_DIR}/README.md" readme)
if(NOT readme MATCHES "\n```cpp\n(.*)\n}\n```\n")
    message(FATAL_ERROR "README.md contains no C++ sample")
endif()
zq_write_check(Readme "${CMAKE_MATCH_1}\n}\n")

add_library(zq_header_checks OBJECT)
target_include_directories(zq_header_checks PRIVATE "${ZQ_STAGED_INCLUDE}")
target_link_libraries(zq_header_checks PRIVATE zq_flags)

# The other libraries that are installed are those of this machine's processor.
if(NOT CMAKE_CROSSCOMPILING)
    find_package(PkgConfig QUIET)
    if(PkgConfig_FOUND)
        pkg_check_modules(ZQ_GLIB QUIET IMPORTED_TARGET glib-2.0)
    endif()
    find_package(Qt6Core QUIET)
endif()
if(TARGET PkgConfig::ZQ_GLIB)
    zq_write_check(GLib "#include <glib.h>\n${umbrella}using namespace ZQFoundation;\n")
    target_link_libraries(zq_header_checks PRIVATE PkgConfig::ZQ_GLIB)
endif()
if(TARGET Qt6::Core)
    zq_write_check(Qt "#include <QtCore/QtCore>\n${umbrella}using namespace ZQFoundation;\n")
    target_link_libraries(zq_header_checks PRIVATE Qt6::Core)
endif()
foreach(peer GLib Qt)
    if(NOT CMAKE_CROSSCOMPILING AND NOT "${directory}/${peer}.cpp" IN_LIST sources)
        message(STATUS "Public headers are not compiled beside those of ${peer}, which is not installed")
    endif()
endforeach()
target_sources(zq_header_checks PRIVATE ${sources})
