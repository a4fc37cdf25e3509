# SPDX-License-Identifier: MIT
# The public headers, as cmake/public-headers.txt lists them; scripts/check-style compares that list with what the
# umbrella includes.
#
# Result: ZQ_PUBLIC_HEADERS, paths relative to the root, without the umbrella; and a staged folder in
# the build tree in which <ZQFoundation/ZQFoundation.h> is found exactly as it will be once installed.

set(ZQ_UMBRELLA "${PROJECT_SOURCE_DIR}/include/ZQFoundation.h")
set(ZQ_STAGED_INCLUDE "${PROJECT_BINARY_DIR}/include")
set(ZQ_HEADER_FOLDERS encoding extensions foundation info log migration version)

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/public-headers.txt")
file(STRINGS "${PROJECT_SOURCE_DIR}/cmake/public-headers.txt" ZQ_PUBLIC_HEADERS REGEX "^[^#]")
list(REMOVE_ITEM ZQ_PUBLIC_HEADERS include/ZQFoundation.h)
foreach(header IN LISTS ZQ_PUBLIC_HEADERS)
    if(NOT EXISTS "${PROJECT_SOURCE_DIR}/${header}")
        message(SEND_ERROR "cmake/public-headers.txt lists ${header}, which does not exist")
    endif()
endforeach()

file(MAKE_DIRECTORY "${ZQ_STAGED_INCLUDE}/ZQFoundation")
# Beside the umbrella are headers for hosts that use more than the library: of the standard library, of toolkits.
file(GLOB ZQ_TOP_HEADERS CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/include/*.h")
set(ZQ_EXTRA_HEADERS "${ZQ_TOP_HEADERS}")
list(REMOVE_ITEM ZQ_EXTRA_HEADERS "${ZQ_UMBRELLA}")
list(TRANSFORM ZQ_TOP_HEADERS REPLACE "^${PROJECT_SOURCE_DIR}/" "")

foreach(entry ${ZQ_TOP_HEADERS} ${ZQ_HEADER_FOLDERS})
    cmake_path(GET entry FILENAME name)
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${entry}" "${ZQ_STAGED_INCLUDE}/ZQFoundation/${name}" SYMBOLIC)
endforeach()

set(ZQ_INSTALL_INCLUDE "${CMAKE_INSTALL_INCLUDEDIR}/ZQFoundation-${PROJECT_VERSION_MAJOR}")
