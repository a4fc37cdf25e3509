# SPDX-License-Identifier: MIT
# For hosts, in this tree and outside: an application laid out as a bundle.
#
# zq_add_bundle(<target> INFO_PLIST <file> [RESOURCES <folder>] [NAME <name>] [UNCHECKED])
#
# Lays the program <target> out as <name>.app (the target's name unless NAME says otherwise) in the current build
# folder:
#
#     Contents/Info.plist
#     Contents/MacOS/<target>
#     Contents/Resources/          the contents of RESOURCES
#     Contents/Frameworks/         the library and its texts; empty when the target itself is linked with
#                                  ZQFoundation::Static, which has its texts inside
#
# The program finds its library relative to itself, so the whole folder can be moved. The bundle is complete when
# the target <target>Bundle, which is part of an ordinary build, has been built. That build fails, unless UNCHECKED is
# given, when `defaults lint` finds a fault in the property lists and string tables: one that cannot be read, a key
# that a language lacks, conversions that differ from language to language. Where that tool is missing, for example
# because the host has not installed it, nothing is checked.

# Copies <from> to <to>, relative to the bundle's contents, whenever it is newer; sets `pieces` of the caller.
function(zq_bundle_piece contents from to)
    add_custom_command(OUTPUT "${contents}/${to}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${from}" "${contents}/${to}"
        DEPENDS "${from}" VERBATIM)
    set(pieces ${pieces} "${contents}/${to}" PARENT_SCOPE)
endfunction()

# Checks the files that the library reads; sets `pieces` of the caller.
function(zq_bundle_check target)
    set(tool)
    if(TARGET ZQFoundation::defaults AND NOT CMAKE_CROSSCOMPILING)
        set(tool ZQFoundation::defaults) # of this tree
    elseif(ZQFoundation_DEFAULTS_TOOL)
        set(tool "${ZQFoundation_DEFAULTS_TOOL}")
    else()
        message(STATUS "The files of ${target}'s bundle are not checked: zqdefaults was not found")
        return()
    endif()
    set(checked "${CMAKE_CURRENT_BINARY_DIR}/${target}-files-checked")
    add_custom_command(OUTPUT "${checked}"
        COMMAND ${tool} lint ${ARGN}
        COMMAND "${CMAKE_COMMAND}" -E touch "${checked}"
        COMMENT "Checking the property lists and string tables of ${target}"
        DEPENDS ${ARGN} ${tool} VERBATIM)
    set(pieces ${pieces} "${checked}" PARENT_SCOPE)
endfunction()

# Lays the shared library and its texts into the bundle, or removes what an earlier build left of them when the target is
# linked with the static one, which has its texts inside; sets `copied` of the caller.
function(zq_bundle_library target contents)
    set(copied "${CMAKE_CURRENT_BINARY_DIR}/${target}-library-copied")
    set(copied "${copied}" PARENT_SCOPE)
    # What a target is linked with may still be added, and where a library is built is known later.
    set(linked "$<TARGET_PROPERTY:${target},LINK_LIBRARIES>")
    set(is_static "$<OR:$<IN_LIST:ZQFoundation::Static,${linked}>,$<IN_LIST:ZQFoundationStatic,${linked}>,$<STREQUAL:$<TARGET_PROPERTY:ZQFoundation::ZQFoundation,TYPE>,STATIC_LIBRARY>>")
    set(file "$<TARGET_FILE:ZQFoundation::ZQFoundation>")
    set(name ZQFoundation.framework)
    if(APPLE)
        # The whole folder, its links as links and its texts inside; the library is in its Versions/<number>.
        set(framework "$<TARGET_FILE_DIR:ZQFoundation::ZQFoundation>/../../../ZQFoundation.framework")
        set(commands COMMAND "$<IF:${is_static},true,cp$<SEMICOLON>-R$<SEMICOLON>${framework}$<SEMICOLON>${contents}/Frameworks/>")
    else()
        get_target_property(type ZQFoundation::ZQFoundation TYPE)
        set(name "$<TARGET_FILE_NAME:ZQFoundation::ZQFoundation>")
        if(NOT type STREQUAL "STATIC_LIBRARY")
            set(name "$<TARGET_SONAME_FILE_NAME:ZQFoundation::ZQFoundation>")
        endif()
        set(commands
            COMMAND "${CMAKE_COMMAND}" -E "$<IF:${is_static},true,copy$<SEMICOLON>${file}$<SEMICOLON>${contents}/Frameworks/${name}>"
            COMMAND "${CMAKE_COMMAND}" -E
                "$<IF:${is_static},true,copy_directory$<SEMICOLON>${ZQFoundation_RESOURCES}$<SEMICOLON>${contents}/Frameworks/Resources>")
    endif()
    file(GLOB_RECURSE texts CONFIGURE_DEPENDS "${ZQFoundation_RESOURCES}/*.strings")
    add_custom_command(OUTPUT "${copied}"
        COMMAND "${CMAKE_COMMAND}" -E rm -rf "${contents}/Frameworks/${name}" "${contents}/Frameworks/Resources"
        ${commands}
        COMMAND "${CMAKE_COMMAND}" -E touch "${copied}"
        DEPENDS "${file}" ${texts} VERBATIM COMMAND_EXPAND_LISTS)
endfunction()

function(zq_add_bundle target)
    cmake_parse_arguments(PARSE_ARGV 1 bundle "UNCHECKED" "INFO_PLIST;RESOURCES;NAME" "")
    if(NOT bundle_INFO_PLIST OR bundle_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "zq_add_bundle(<target> INFO_PLIST <file> [RESOURCES <folder>] [NAME <name>] [UNCHECKED])")
    endif()
    if(NOT bundle_NAME)
        set(bundle_NAME ${target})
    endif()
    set(contents "${CMAKE_CURRENT_BINARY_DIR}/${bundle_NAME}.app/Contents")
    set(origin "$ORIGIN")
    if(APPLE)
        set(origin "@executable_path")
    endif()
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY "${contents}/MacOS"
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "${origin}/../Frameworks")

    set(pieces)
    file(MAKE_DIRECTORY "${contents}/Resources" "${contents}/Frameworks")
    cmake_path(ABSOLUTE_PATH bundle_INFO_PLIST BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
    zq_bundle_piece("${contents}" "${bundle_INFO_PLIST}" Info.plist)
    set(lists "${bundle_INFO_PLIST}")
    if(bundle_RESOURCES)
        cmake_path(ABSOLUTE_PATH bundle_RESOURCES BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
        file(GLOB_RECURSE files CONFIGURE_DEPENDS RELATIVE "${bundle_RESOURCES}" "${bundle_RESOURCES}/*")
        foreach(file IN LISTS files)
            zq_bundle_piece("${contents}" "${bundle_RESOURCES}/${file}" "Resources/${file}")
            if(file MATCHES "[.](plist|strings)$")
                list(APPEND lists "${bundle_RESOURCES}/${file}")
            endif()
        endforeach()
    endif()
    if(NOT bundle_UNCHECKED)
        zq_bundle_check(${target} ${lists})
    endif()
    zq_bundle_library(${target} "${contents}")
    add_custom_target(${target}Bundle ALL DEPENDS ${pieces} "${copied}")
    add_dependencies(${target}Bundle ${target})
endfunction()
