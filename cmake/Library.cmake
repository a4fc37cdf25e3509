# SPDX-License-Identifier: MIT
# One object library with all sources; from it the shared library that hosts use and the static one that the
# tests use, which gives access to what the shared library hides.

set(patterns ${ZQ_HEADER_FOLDERS})
list(TRANSFORM patterns APPEND "/*.cpp")
list(TRANSFORM patterns PREPEND "${PROJECT_SOURCE_DIR}/")
file(GLOB_RECURSE ZQ_SOURCES CONFIGURE_DEPENDS ${patterns})
# foundation/system holds the sources of each operating system side by side; only the right ones are compiled.
if(APPLE)
    set(other_systems linux)
else()
    set(other_systems macos)
endif()
list(FILTER ZQ_SOURCES EXCLUDE REGEX "/foundation/system/(${other_systems})[a-z_]*\\.cpp$")

find_package(Threads REQUIRED)

include(CarriedTexts)

add_library(zq_objects OBJECT ${ZQ_SOURCES})
# Two versions installed side by side have their texts in separate folders.
set_source_files_properties("${PROJECT_SOURCE_DIR}/foundation/process/BundleLayout.cpp" PROPERTIES
    COMPILE_DEFINITIONS ZQ_SHARED_FOLDER="ZQFoundation-${PROJECT_VERSION_MAJOR}")
# What most sources include is compiled once, which halves the time of a build. scripts/check-tidy and other presets do
# without, so a source that does not include what it uses is found.
target_precompile_headers(zq_objects PRIVATE
    <algorithm> <cstring> <memory> <string> <vector> "${PROJECT_SOURCE_DIR}/foundation/objects/NSDictionary.h")
foreach(objects zq_objects zq_carried_texts zq_no_carried_texts)
    # Unnamed namespaces of several sources declare the same names, so a host's setting for unity builds is ignored
    # here, and so is its setting for warnings as errors, which is meant for its own sources.
    set_target_properties(${objects} PROPERTIES
        UNITY_BUILD OFF
        COMPILE_WARNING_AS_ERROR OFF
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_include_directories(${objects} PRIVATE "${ZQ_STAGED_INCLUDE}")
    target_link_libraries(${objects} PRIVATE zq_flags zq_hardening)
    if(NOT APPLE)
        # Nobody replaces a function of the library from outside, so calls inside it may be direct and inlined.
        # On other systems that is the default.
        target_compile_options(${objects} PRIVATE -fno-semantic-interposition)
    endif()
endforeach()

# BUILD_SHARED_LIBS asks for one of the two forms; a build that does not set it has both.
set(ZQ_FORMS ZQFoundation ZQFoundationStatic)
if(DEFINED BUILD_SHARED_LIBS)
    set(ZQ_FORMS ZQFoundation)
    if(NOT BUILD_SHARED_LIBS)
        set(ZQ_FORMS ZQFoundationStatic)
    endif()
endif()

function(zq_finish_library target output)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${output} LINKER_LANGUAGE CXX)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${ZQ_STAGED_INCLUDE}>"
        "$<INSTALL_INTERFACE:${ZQ_INSTALL_INCLUDE}>")
    target_link_libraries(${target} PRIVATE "$<BUILD_INTERFACE:zq_flags>" Threads::Threads ${CMAKE_DL_LIBS})
    if(APPLE)
        target_link_libraries(${target} PRIVATE iconv) # elsewhere a part of the C library
    endif()
endfunction()

add_library(ZQFoundation SHARED $<TARGET_OBJECTS:zq_objects> $<TARGET_OBJECTS:zq_no_carried_texts>)
zq_finish_library(ZQFoundation ZQFoundation)
set_target_properties(ZQFoundation PROPERTIES
    VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    SOVERSION ${PROJECT_VERSION_MAJOR})
if(APPLE)
    # A framework, with its headers and texts inside. Everything is exported except what its sources hide.
    set_target_properties(ZQFoundation PROPERTIES
        FRAMEWORK ON
        FRAMEWORK_VERSION ${PROJECT_VERSION_MAJOR}
        MACOSX_RPATH ON
        INSTALL_NAME_DIR "@rpath"
        BUILD_WITH_INSTALL_NAME_DIR ON
        MACHO_CURRENT_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        MACHO_COMPATIBILITY_VERSION ${PROJECT_VERSION_MAJOR}.0
        MACOSX_FRAMEWORK_NAME ZQFoundation
        MACOSX_FRAMEWORK_BUNDLE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        MACOSX_FRAMEWORK_SHORT_VERSION_STRING ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    file(GLOB_RECURSE texts CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/resources/*.strings")
    foreach(file IN LISTS ZQ_PUBLIC_HEADERS texts)
        cmake_path(GET file PARENT_PATH folder)
        string(REGEX REPLACE "^resources" "Resources" place "${folder}")
        if(place STREQUAL folder)
            set(place "Headers/${folder}")
        endif()
        set_source_files_properties("${PROJECT_SOURCE_DIR}/${file}" PROPERTIES MACOSX_PACKAGE_LOCATION "${place}")
        target_sources(ZQFoundation PRIVATE "${PROJECT_SOURCE_DIR}/${file}")
    endforeach()
    set_source_files_properties("${ZQ_UMBRELLA}" ${ZQ_EXTRA_HEADERS} PROPERTIES MACOSX_PACKAGE_LOCATION Headers)
    target_sources(ZQFoundation PRIVATE "${ZQ_UMBRELLA}" ${ZQ_EXTRA_HEADERS})
else()
    set(ZQ_VERSION_SCRIPT "${PROJECT_BINARY_DIR}/ZQFoundation.map")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/ZQFoundation.map.in" "${ZQ_VERSION_SCRIPT}" @ONLY)
    target_link_options(ZQFoundation PRIVATE
        "-Wl,--version-script=${ZQ_VERSION_SCRIPT}" -Wl,-Bsymbolic-functions -Wl,-z,relro,-z,now,-z,noexecstack)
    set_property(TARGET ZQFoundation APPEND PROPERTY LINK_DEPENDS "${ZQ_VERSION_SCRIPT}")
    # Clang keeps the sanitizers' run time in the executable, where a shared library finds it at load time.
    if(NOT (ZQFOUNDATION_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES Clang))
        target_link_options(ZQFoundation PRIVATE -Wl,--no-undefined)
    endif()
endif()

add_library(ZQFoundationStatic STATIC $<TARGET_OBJECTS:zq_objects> $<TARGET_OBJECTS:zq_carried_texts>)
zq_finish_library(ZQFoundationStatic ZQFoundation)

# The other form is built only for the tests and tools that need it, not in an ordinary build.
foreach(form ZQFoundation ZQFoundationStatic)
    if(NOT form IN_LIST ZQ_FORMS)
        set_target_properties(${form} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
endforeach()
list(GET ZQ_FORMS 0 preferred)
add_library(ZQFoundation::ZQFoundation ALIAS ${preferred})
add_library(ZQFoundation::Static ALIAS ZQFoundationStatic)
set_target_properties(ZQFoundationStatic PROPERTIES EXPORT_NAME Static)

# The texts of the shared library, one folder for each language: beside it in the build tree and in a host's bundle, in
# share/ once installed.
set(ZQFoundation_RESOURCES "${PROJECT_SOURCE_DIR}/resources")
file(CREATE_LINK "${ZQFoundation_RESOURCES}" "${PROJECT_BINARY_DIR}/Resources" SYMBOLIC)
if(NOT PROJECT_IS_TOP_LEVEL)
    set(ZQFoundation_RESOURCES "${ZQFoundation_RESOURCES}" PARENT_SCOPE) # for zq_add_bundle
endif()
