# What `cmake --install` installs, in three components:
#
#   runtime  both libraries
#   dev      headers, the package for find_package(orvoplugin), the files for pkg-config, a man page, guides for
#            developers, projects to start from
#   tool     the command-line tool, with its man page, shell completion, schema, and the operator's guides
#
# No file holds an absolute path, so an installation can be moved to another prefix.
include(CMakePackageConfigHelpers)

set(ORVO_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/orvoplugin")
set(ORVO_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# orvo_relative_path(<variable> FROM <directory> TO <directory>): between two places of the installation
function(orvo_relative_path variable)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "FROM;TO" "")
    foreach(place arg_FROM arg_TO)
        cmake_path(ABSOLUTE_PATH ${place} BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
    endforeach()
    file(RELATIVE_PATH path "${arg_FROM}" "${arg_TO}")
    string(REGEX REPLACE "/$" "" path "${path}")
    set(${variable} "${path}" PARENT_SCOPE)
endfunction()

install(
    TARGETS orvoutil orvoplugin
    EXPORT orvopluginTargets
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
    FILE_SET HEADERS COMPONENT dev)
install(
    EXPORT orvopluginTargets
    NAMESPACE orvo::
    DESTINATION "${ORVO_PACKAGE_DIR}"
    COMPONENT dev)

if(TARGET orvoplugin_tool)
    orvo_relative_path(libraries FROM "${CMAKE_INSTALL_BINDIR}" TO "${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(
        orvoplugin_tool
        PROPERTIES EXPORT_NAME tool INSTALL_RPATH "$<IF:$<PLATFORM_ID:Darwin>,@loader_path,$ORIGIN>/${libraries}")
    # A separate export: a package without the tool is complete too.
    install(
        TARGETS orvoplugin_tool
        EXPORT orvopluginToolTargets
        RUNTIME COMPONENT tool)
    install(
        EXPORT orvopluginToolTargets
        NAMESPACE orvo::
        DESTINATION "${ORVO_PACKAGE_DIR}"
        COMPONENT dev)

    # Manual pages and shell completion, which are beside the tool's sources.
    set(tool_source "${PROJECT_SOURCE_DIR}/tools/orvoplugin")
    file(GLOB manuals CONFIGURE_DEPENDS "${tool_source}/man/*.1")
    file(GLOB_RECURSE bash_completion CONFIGURE_DEPENDS "${tool_source}/*.bash")
    file(GLOB_RECURSE zsh_completion CONFIGURE_DEPENDS "${tool_source}/_orvoplugin")
    install(FILES ${manuals} DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tool)
    install(
        FILES "${tool_source}/man/de/orvoplugin.1"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/de/man1"
        COMPONENT tool)
    install(
        FILES ${bash_completion}
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
        COMPONENT tool
        RENAME orvoplugin)
    install(
        FILES "${tool_source}/schema/orvoplugin.schema.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/orvoplugin"
        COMPONENT tool)
    install(FILES ${zsh_completion} DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" COMPONENT tool)
endif()

configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/orvopluginConfig.cmake.in" "${PROJECT_BINARY_DIR}/orvopluginConfig.cmake"
    INSTALL_DESTINATION "${ORVO_PACKAGE_DIR}"
    PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/orvopluginConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(
    FILES "${PROJECT_BINARY_DIR}/orvopluginConfig.cmake"
          "${PROJECT_BINARY_DIR}/orvopluginConfigVersion.cmake"
          "${CMAKE_CURRENT_LIST_DIR}/OrvoPlugin.cmake"
          "${CMAKE_CURRENT_LIST_DIR}/plugin.exports"
          "${CMAKE_CURRENT_LIST_DIR}/plugin.description.cpp"
    DESTINATION "${ORVO_PACKAGE_DIR}"
    COMPONENT dev)

# pkg-config resolves all paths relative to its own file.
orvo_relative_path(ORVO_PC_PREFIX FROM "${ORVO_PKGCONFIG_DIR}" TO ".")
orvo_relative_path(ORVO_PC_INCLUDEDIR FROM "." TO "${CMAKE_INSTALL_INCLUDEDIR}")
orvo_relative_path(ORVO_PC_LIBDIR FROM "." TO "${CMAKE_INSTALL_LIBDIR}")
orvo_relative_path(ORVO_PC_PACKAGE_DIR FROM "." TO "${ORVO_PACKAGE_DIR}")
list(JOIN ORVO_PLUGIN_LINK_OPTIONS " " ORVO_PC_PLUGIN_LINK_OPTIONS)
foreach(name orvoutil orvoplugin orvoplugin-plugin)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/pkgconfig/${name}.pc.in" "${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc"
                   @ONLY)
    install(
        FILES "${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc"
        DESTINATION "${ORVO_PKGCONFIG_DIR}"
        COMPONENT dev)
endforeach()

# The guides, the plugin and client templates, and the manual page that names them. Their relative places are those of
# this tree, so that links between them work. The operator's guides, and what they link to, come with the tool. If no tool
# is built, they come with the developer's guides, which link to them.
set(operators_component dev)
if(TARGET orvoplugin_tool)
    set(operators_component tool)
endif()
install(
    FILES "${PROJECT_SOURCE_DIR}/docs/operator.md" "${PROJECT_SOURCE_DIR}/docs/check.md"
          "${PROJECT_SOURCE_DIR}/docs/json.md" "${PROJECT_SOURCE_DIR}/docs/glossary.md"
          "${PROJECT_SOURCE_DIR}/docs/compatibility.md" "${PROJECT_SOURCE_DIR}/docs/security.md"
          "${PROJECT_SOURCE_DIR}/docs/platforms.md" "${PROJECT_SOURCE_DIR}/docs/predefined.md"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs"
    COMPONENT ${operators_component})
install(
    FILES "${PROJECT_SOURCE_DIR}/docs/de/operator.md"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs/de"
    COMPONENT ${operators_component})
install(
    FILES "${PROJECT_SOURCE_DIR}/docs/client.md" "${PROJECT_SOURCE_DIR}/docs/client-reference.md"
          "${PROJECT_SOURCE_DIR}/docs/plugin-author.md" "${PROJECT_SOURCE_DIR}/docs/plugin-reference.md"
          "${PROJECT_SOURCE_DIR}/docs/building.md" "${PROJECT_SOURCE_DIR}/docs/flow.svg"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs"
    COMPONENT dev)
install(
    DIRECTORY "${PROJECT_SOURCE_DIR}/examples/plugin-template" "${PROJECT_SOURCE_DIR}/examples/client-template"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}/examples"
    COMPONENT dev
    PATTERN "build*" EXCLUDE)
install(
    FILES "${PROJECT_SOURCE_DIR}/docs/man/liborvoplugin.3"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man3"
    COMPONENT dev)
