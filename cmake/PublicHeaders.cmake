# SPDX-License-Identifier: MIT
# The public headers are those that the umbrella header brings in, directly or through another one. They are
# found by following its includes, so no list has to be kept and no internal header is installed by accident.
#
# Result: ZQ_PUBLIC_HEADERS, paths relative to the root, the umbrella not among them; and a staged folder in
# the build tree in which <ZQFoundation/ZQFoundation.h> is found exactly as it will be once installed.

set(ZQ_UMBRELLA "${PROJECT_SOURCE_DIR}/include/ZQFoundation.h")
set(ZQ_STAGED_INCLUDE "${PROJECT_BINARY_DIR}/include")
set(ZQ_HEADER_FOLDERS encoding extensions foundation info log migration version)

# The quoted includes of `file`, in the staged layout, where the umbrella stands beside the folders.
function(zq_quoted_includes file base result)
    file(STRINGS "${file}" lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
    set(found)
    foreach(line IN LISTS lines)
        string(REGEX REPLACE ".*\"([^\"]+)\".*" "\\1" name "${line}")
        cmake_path(ABSOLUTE_PATH name BASE_DIRECTORY "${base}" NORMALIZE)
        list(APPEND found "${name}")
    endforeach()
    set(${result} "${found}" PARENT_SCOPE)
endfunction()

function(zq_public_headers result)
    set(headers)
    if(EXISTS "${ZQ_UMBRELLA}")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${ZQ_UMBRELLA}")
        zq_quoted_includes("${ZQ_UMBRELLA}" "${PROJECT_SOURCE_DIR}" waiting)
    endif()
    while(waiting)
        list(POP_FRONT waiting header)
        if(header IN_LIST headers)
            continue()
        endif()
        if(NOT EXISTS "${header}")
            message(SEND_ERROR "A public header includes ${header}, which is not there")
            continue()
        endif()
        list(APPEND headers "${header}")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${header}")
        cmake_path(GET header PARENT_PATH folder)
        zq_quoted_includes("${header}" "${folder}" more)
        list(APPEND waiting ${more})
    endwhile()
    list(TRANSFORM headers REPLACE "^${PROJECT_SOURCE_DIR}/" "")
    list(SORT headers)
    set(${result} "${headers}" PARENT_SCOPE)
endfunction()

zq_public_headers(ZQ_PUBLIC_HEADERS)

file(MAKE_DIRECTORY "${ZQ_STAGED_INCLUDE}/ZQFoundation")
foreach(entry include/ZQFoundation.h ${ZQ_HEADER_FOLDERS})
    if(EXISTS "${PROJECT_SOURCE_DIR}/${entry}")
        cmake_path(GET entry FILENAME name)
        file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${entry}" "${ZQ_STAGED_INCLUDE}/ZQFoundation/${name}" SYMBOLIC)
    endif()
endforeach()

set(ZQ_INSTALL_INCLUDE "${CMAKE_INSTALL_INCLUDEDIR}/ZQFoundation-${PROJECT_VERSION_MAJOR}")
if(EXISTS "${ZQ_UMBRELLA}")
    install(FILES "${ZQ_UMBRELLA}" DESTINATION "${ZQ_INSTALL_INCLUDE}/ZQFoundation"
        COMPONENT development)
endif()
foreach(header IN LISTS ZQ_PUBLIC_HEADERS)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${ZQ_INSTALL_INCLUDE}/ZQFoundation/${folder}"
        COMPONENT development)
endforeach()
