# SPDX-License-Identifier: MIT
# What `cmake --install` lays down besides headers and tools: the libraries, their texts, and what makes both
# found by find_package(ZQFoundation 27) and by pkg-config. The files name no absolute path, so the installed tree
# can be moved as a whole.

include(CMakePackageConfigHelpers)

set(ZQ_INSTALL_RESOURCES "${CMAKE_INSTALL_DATADIR}/ZQFoundation")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/ZQFoundation-${PROJECT_VERSION_MAJOR}")

install(TARGETS ZQFoundation ZQFoundationStatic EXPORT ZQFoundationTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/" DESTINATION "${ZQ_INSTALL_RESOURCES}" COMPONENT runtime)

install(EXPORT ZQFoundationTargets NAMESPACE ZQFoundation:: DESTINATION "${package_folder}" COMPONENT development)
configure_package_config_file(cmake/ZQFoundationConfig.cmake.in "${PROJECT_BINARY_DIR}/package/ZQFoundationConfig.cmake"
    INSTALL_DESTINATION "${package_folder}" PATH_VARS ZQ_INSTALL_RESOURCES)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/ZQFoundationConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/package/ZQFoundationConfig.cmake"
    "${PROJECT_BINARY_DIR}/package/ZQFoundationConfigVersion.cmake"
    "${PROJECT_SOURCE_DIR}/cmake/ZQFoundationBundle.cmake"
    DESTINATION "${package_folder}" COMPONENT development)

file(RELATIVE_PATH ZQ_PREFIX_FROM_PC "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /prefix)
configure_file(cmake/ZQFoundation.pc.in package/ZQFoundation.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/package/ZQFoundation.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
