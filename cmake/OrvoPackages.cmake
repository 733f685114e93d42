# `cpack` makes three Debian packages from the installed components. debian/Pack.cmake.in adds Debian's own files and
# the dependencies.
set(ORVO_MAINTAINER "The orvoplugin maintainers <maintainers@users.noreply.c-seed-3d639cce.example>"
    CACHE STRING "Maintainer named in the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvoplugin)
set(CPACK_PACKAGE_CONTACT "${ORVO_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime dev)
if(TARGET orvoplugin_tool)
    list(APPEND CPACK_COMPONENTS_ALL tool)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "liborvoplugin${ORVO_AUSGABE}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "plugin layer of a client for electronic tax submissions
Finds the plugins of a client, checks them, settles duplicates by version and
answers which plugin serves a sub-case type for an assessment period. A
plugin's library is open only while one of its services is in use.

This package holds the shared libraries.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME liborvoplugin-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "cmake, pkg-config")
set(CPACK_DEBIAN_DEV_DESCRIPTION
    "plugin layer of a client for electronic tax submissions (development)
Finds the plugins of a client, checks them, settles duplicates by version and
answers which plugin serves a sub-case type for an assessment period.

This package holds what developers of clients and authors of plugins need:
headers, the CMake package with its command for plugins, files for
pkg-config, guides, and a plugin and a client to start from.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME orvoplugin)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOL_DESCRIPTION
    "look at and check the plugins of a client for electronic tax submissions
Shows which plugins a directory holds and why others were refused, who answers
for a sub-case type and period, and whether a plugin keeps the rules.

This package holds the command-line tool, and guides for those who run a
client.")
if(TARGET orvoplugin_tool) # orvo_add_plugin has the tool check what was built
    string(APPEND CPACK_DEBIAN_DEV_PACKAGE_DEPENDS ", ${CPACK_DEBIAN_TOOL_PACKAGE_NAME} (= ${PROJECT_VERSION})")
endif()

# The package on which a program that links the libraries depends, and Debian's trigger that updates the loader's cache.
# CPack itself would write scripts that call ldconfig.
set(control "${PROJECT_BINARY_DIR}/debian")
set(shlibs "")
foreach(library orvoplugin orvoutil)
    string(APPEND shlibs "lib${library} ${ORVO_AUSGABE} ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} "
                         "(>= ${PROJECT_VERSION})\n")
endforeach()
file(CONFIGURE OUTPUT "${control}/shlibs" CONTENT "${shlibs}")
file(CONFIGURE OUTPUT "${control}/triggers" CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${control}/shlibs" "${control}/triggers")

configure_file("${CMAKE_CURRENT_LIST_DIR}/debian/Pack.cmake.in" "${control}/Pack.cmake" @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${control}/Pack.cmake")
include(CPack)
