# SPDX-License-Identifier: MIT
# What `cmake --install` installs besides the tools: the libraries, their headers, texts and documents, the files with
# which find_package(ZQFoundation 27) and pkg-config find it, and the script that shows the values in gdb. The files
# contain no absolute path, so the installed tree can be moved as a whole.

include(CMakePackageConfigHelpers)

set(ZQ_INSTALL_RESOURCES "${CMAKE_INSTALL_DATADIR}/ZQFoundation-${PROJECT_VERSION_MAJOR}")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/ZQFoundation-${PROJECT_VERSION_MAJOR}")

install(TARGETS ${ZQ_FORMS} EXPORT ZQFoundationTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
    FRAMEWORK DESTINATION Library/Frameworks COMPONENT runtime
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/" DESTINATION "${ZQ_INSTALL_RESOURCES}" COMPONENT runtime)
install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION "${CMAKE_INSTALL_DOCDIR}"
    COMPONENT development)
install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN doxygen EXCLUDE PATTERN operations.md EXCLUDE)
# The reference of operations links to the headers, which are in another place once installed.
set(reference "${PROJECT_SOURCE_DIR}/docs/operations.md")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${reference}")
file(RELATIVE_PATH headers "/prefix/${CMAKE_INSTALL_DOCDIR}/docs" "/prefix/${ZQ_INSTALL_INCLUDE}/ZQFoundation")
file(READ "${reference}" text)
string(REPLACE "](../" "](${headers}/" text "${text}")
file(WRITE "${PROJECT_BINARY_DIR}/package/operations.md" "${text}")
install(FILES "${PROJECT_BINARY_DIR}/package/operations.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs"
    COMPONENT development)

install(EXPORT ZQFoundationTargets NAMESPACE ZQFoundation:: DESTINATION "${package_folder}" COMPONENT development)
configure_package_config_file(cmake/ZQFoundationConfig.cmake.in "${PROJECT_BINARY_DIR}/package/ZQFoundationConfig.cmake"
    INSTALL_DESTINATION "${package_folder}" PATH_VARS ZQ_INSTALL_RESOURCES CMAKE_INSTALL_BINDIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/ZQFoundationConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/package/ZQFoundationConfig.cmake"
    "${PROJECT_BINARY_DIR}/package/ZQFoundationConfigVersion.cmake"
    "${PROJECT_SOURCE_DIR}/cmake/ZQFoundationBundle.cmake"
    DESTINATION "${package_folder}" COMPONENT development)

install(FILES "${ZQ_UMBRELLA}" ${ZQ_EXTRA_HEADERS} DESTINATION "${ZQ_INSTALL_INCLUDE}/ZQFoundation"
    COMPONENT development)
foreach(header IN LISTS ZQ_PUBLIC_HEADERS)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${ZQ_INSTALL_INCLUDE}/ZQFoundation/${folder}"
        COMPONENT development)
endforeach()

set(ZQ_PC_LIBS "-L\${libdir} -lZQFoundation")
set(ZQ_PC_PRIVATE_LIBS "-lpthread -ldl")
if(APPLE)
    set(ZQ_PC_LIBS "-F\${prefix}/Library/Frameworks -framework ZQFoundation")
    set(ZQ_PC_PRIVATE_LIBS "-liconv")
endif()
if(NOT ZQFoundation IN_LIST ZQ_FORMS) # then a program needs what the library needs
    set(ZQ_PC_LIBS "-L\${libdir} -lZQFoundation ${ZQ_PC_PRIVATE_LIBS}")
endif()
file(RELATIVE_PATH ZQ_PREFIX_FROM_PC "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /prefix)
configure_file(cmake/ZQFoundation.pc.in package/ZQFoundation.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/package/ZQFoundation.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

# gdb loads the script when it loads the library: from beside it, or from below a folder of its own under the whole
# path of the library, which is why the folder is named only when the prefix is known.
if(NOT APPLE)
    set(script "libZQFoundation.so.${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}-gdb.py")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/tools/gdb/ZQFoundation-gdb.py" "${PROJECT_BINARY_DIR}/${script}" SYMBOLIC)
    install(FILES tools/gdb/ZQFoundation-gdb.py RENAME "${script}" COMPONENT development
        DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}")
endif()
