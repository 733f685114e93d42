# The kit for plugin authors: builds a shared library that the plugin manager accepts, and that truly leaves
# the process when its last use is given back.
#
#   orvo_add_plugin(<target> <source>...)
#
# The file is lib<target>.dylib on every system. It exports C functions only: entry points, factories and hooks
# written as extern "C" with default visibility (PluginEntryPoints.h declares the fixed ones that way). C++
# names stay inside, so no template instantiation can pin the library or be mistaken for the host's.
include_guard(GLOBAL)
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fno-gnu-unique ORVO_HAS_NO_GNU_UNIQUE)

function(orvo_add_plugin target)
    add_library(${target} MODULE ${ARGN})
    target_link_libraries(${target} PRIVATE orvo::orvoplugin)
    set_target_properties(
        ${target}
        PROPERTIES PREFIX "lib"
                   SUFFIX ".dylib"
                   CXX_VISIBILITY_PRESET hidden
                   VISIBILITY_INLINES_HIDDEN ON)
    target_compile_options(${target} PRIVATE $<$<BOOL:${ORVO_HAS_NO_GNU_UNIQUE}>:-fno-gnu-unique>)
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        set(exports "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
        file(CONFIGURE OUTPUT "${exports}" CONTENT "{ local: _Z*; };\n")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}")
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${exports}")
    endif()
endfunction()
