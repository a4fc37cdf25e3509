# SPDX-License-Identifier: MIT
# The library's own texts: files beside the shared library, inside the static one.

file(GLOB texts CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/resources" "${PROJECT_SOURCE_DIR}/resources/*.lproj/Localizable.strings")
set(ZQ_TABLES "")
foreach(text IN LISTS texts)
    file(READ "${PROJECT_SOURCE_DIR}/resources/${text}" bytes)
    string(REPLACE ".lproj/Localizable.strings" "" language "${text}")
    string(APPEND ZQ_TABLES "    {\"${language}\", R\"table(${bytes})table\"},\n")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/resources/${text}")
endforeach()
configure_file("${PROJECT_SOURCE_DIR}/cmake/CarriedTexts.cpp.in" "${PROJECT_BINARY_DIR}/CarriedTexts.cpp" @ONLY)

# Compiled as the rest of the library, and each linked into one of its two forms.
add_library(zq_carried_texts OBJECT "${PROJECT_BINARY_DIR}/CarriedTexts.cpp")
add_library(zq_no_carried_texts OBJECT "${PROJECT_SOURCE_DIR}/cmake/NoCarriedTexts.cpp")
