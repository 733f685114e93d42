# What `cmake --install` lays down: both libraries, their headers, and a package for find_package(orvoplugin).
include(CMakePackageConfigHelpers)

set(ORVO_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/orvoplugin")

install(
    TARGETS orvoutil orvoplugin
    EXPORT orvopluginTargets
    FILE_SET HEADERS)
install(
    EXPORT orvopluginTargets
    NAMESPACE orvo::
    DESTINATION "${ORVO_PACKAGE_DIR}")

configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/orvopluginConfig.cmake.in" "${PROJECT_BINARY_DIR}/orvopluginConfig.cmake"
    INSTALL_DESTINATION "${ORVO_PACKAGE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/orvopluginConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/orvopluginConfig.cmake"
              "${PROJECT_BINARY_DIR}/orvopluginConfigVersion.cmake"
              "${CMAKE_CURRENT_LIST_DIR}/OrvoPlugin.cmake"
        DESTINATION "${ORVO_PACKAGE_DIR}")
