# The kit for plugin authors: builds a shared library that the plugin manager accepts, and that truly leaves the
# process when its last use is given back.
#
#   orvo_add_plugin(<target> [SOURCES] <source>... [EXPORTS <name>...] [NO_CHECK])
#
# The file is lib<target>.dylib on every system; so the target's name has neither "lib" nor ".dylib". It exports the C
# functions that are marked with ORVO_PLUGIN_EXPORT, and nothing else: the entry points and factories of
# PluginEntryPoints.h, which are marked there, and hooks and factories of names of your own, which you declare as
#
#   extern "C" ORVO_PLUGIN_EXPORT void wohngeldGeladen();
#
#   EXPORTS    of the marked names of your own, export these only; for a plugin that takes in code which marks some too
#   NO_CHECK   leaves the check out
#
# After linking, the tool of the package checks the plugin (ORVO_PLUGIN_CHECKS below), and a finding fails the build
# with a sentence that names it. The check loads the plugin and lets it describe itself, in a process of its own. It
# is left out, with a line that says so, when cross-compiling, when the package came without the tool, and when the
# compiler options of the project, the configuration or the directory name a sanitizer.
#
#   orvo_plugin_options(<target>)    the options alone, for a library target that you made yourself
#   orvo_check_plugin(<target>)      the check alone
include_guard(GLOBAL)
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

# The variables below are the same in every directory of the project that uses the kit, wherever it includes it.
set(ORVO_PLUGIN_CHECKS
    file-name
    entry-points
    exports
    unique-symbols
    nodelete
    undefined-symbols
    immediate-binding
    declares-type
    describes
    factories
    hooks
    CACHE INTERNAL "Checks after linking")
set(ORVO_PLUGIN_EXPORTS_FILE "${CMAKE_CURRENT_LIST_DIR}/plugin.exports" CACHE INTERNAL "Version script of a plugin")

# Sets ORVO_PLUGIN_COMPILE_OPTIONS and ORVO_PLUGIN_LINK_OPTIONS, as the compiler takes them. The version script comes
# on top.
function(orvo_find_plugin_options)
    set(CMAKE_REQUIRED_QUIET ON)
    set(compile
        # nothing is exported but what is marked: fewer symbols to look up, nothing to be mixed up with the host's
        -fvisibility=hidden
        # the same for functions defined in classes and headers (C has none, and GCC warns of it there)
        $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>)
    # a static in a template or an inline function would be "unique", and never leave the process (Clang makes none)
    check_cxx_compiler_flag(-fno-gnu-unique ORVO_HAS_NO_GNU_UNIQUE)
    if(ORVO_HAS_NO_GNU_UNIQUE)
        list(APPEND compile -fno-gnu-unique)
    endif()
    set(link "")
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        set(link
            # only libraries that are used, or opening the plugin opens them all
            -Wl,--as-needed
            # the insides of static libraries stay inside
            -Wl,--exclude-libs,ALL
            # every symbol is bound when the plugin is opened, so that none can fail later, in the middle of a call
            -Wl,-z,now
            # a function that is missing fails here rather than in the client's process
            -Wl,-z,defs)
        # code and data share pages where they may: fewer pages to map for each plugin (gold knows no such option)
        separate_arguments(CMAKE_REQUIRED_LINK_OPTIONS UNIX_COMMAND "${CMAKE_MODULE_LINKER_FLAGS}")
        list(APPEND CMAKE_REQUIRED_LINK_OPTIONS -Wl,-z,noseparate-code)
        check_cxx_source_compiles("int main() {}" ORVO_HAS_NOSEPARATE_CODE)
        if(ORVO_HAS_NOSEPARATE_CODE)
            list(APPEND link -Wl,-z,noseparate-code)
        endif()
    endif()
    set(ORVO_PLUGIN_COMPILE_OPTIONS ${compile} CACHE INTERNAL "Compiler options of a plugin")
    set(ORVO_PLUGIN_LINK_OPTIONS ${link} CACHE INTERNAL "Linker options of a plugin")
endfunction()
orvo_find_plugin_options()

# Sets the variable to true where the compiler options name a sanitizer: those of the project, of the configuration, of
# the directory, or of the target as it is now.
function(orvo_plugin_has_sanitizer target variable)
    string(TOUPPER "${CMAKE_BUILD_TYPE}" configuration)
    get_target_property(options ${target} COMPILE_OPTIONS)
    set(${variable} OFF PARENT_SCOPE)
    if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${configuration}} ${options}" MATCHES "-fsanitize=")
        set(${variable} ON PARENT_SCOPE)
    endif()
endfunction()

function(orvo_plugin_options target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "EXPORTS")
    set(link ${ORVO_PLUGIN_LINK_OPTIONS})
    orvo_plugin_has_sanitizer(${target} sanitizer)
    if(sanitizer AND CMAKE_CXX_COMPILER_ID MATCHES "Clang") # leaves its functions to be found in the program
        list(REMOVE_ITEM link -Wl,-z,defs)
    endif()
    target_link_libraries(${target} PRIVATE orvo::orvoplugin)
    target_compile_options(${target} PRIVATE ${ORVO_PLUGIN_COMPILE_OPTIONS})
    target_link_options(${target} PRIVATE ${link})
    set_target_properties(${target} PROPERTIES PREFIX "lib" SUFFIX ".dylib" POSITION_INDEPENDENT_CODE ON)
    set(exports "${ORVO_PLUGIN_EXPORTS_FILE}")
    if(arg_EXPORTS)
        set(exports "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
        list(JOIN arg_EXPORTS "; " names)
        file(CONFIGURE OUTPUT "${exports}" CONTENT "{ global: orvo_plugin_*; ${names}; local: *; };\n" @ONLY)
    endif()
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}")
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${exports}")
    endif()
endfunction()

function(orvo_check_plugin target)
    if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
        message(STATUS "Plugin ${target}: not checked, it is built for another system")
        return()
    elseif(NOT TARGET orvo::tool)
        message(STATUS "Plugin ${target}: not checked, the package orvoplugin came without its tool")
        return()
    endif()
    # A plugin with a sanitizer opens only in a program that has it too.
    get_target_property(installed orvo::tool IMPORTED)
    orvo_plugin_has_sanitizer(${target} sanitizer)
    if(installed AND sanitizer)
        message(STATUS "Plugin ${target}: not checked, it is built with a sanitizer")
    else()
        list(JOIN ORVO_PLUGIN_CHECKS "," checks)
        add_custom_command(
            TARGET ${target} POST_BUILD
            COMMAND orvo::tool check --quiet --strict --only "${checks}" "$<TARGET_FILE:${target}>"
            VERBATIM)
    endif()
endfunction()

function(orvo_add_plugin target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NO_CHECK" "" "SOURCES;EXPORTS")
    set(sources ${arg_UNPARSED_ARGUMENTS} ${arg_SOURCES})
    if(NOT sources)
        message(FATAL_ERROR "orvo_add_plugin(${target}): names no source")
    endif()
    if(target MATCHES "\\.[Dd][Yy][Ll][Ii][Bb]$")
        message(FATAL_ERROR "orvo_add_plugin(${target}): the file is lib<target>.dylib; leave \".dylib\" out of the "
                            "target's name")
    elseif(target MATCHES "^lib") # may be part of a word, as in libelle
        message(STATUS "Plugin ${target}: the file is lib${target}.dylib; leave \"lib\" out of the target's name, if "
                       "once is enough")
    endif()
    add_library(${target} MODULE ${sources})
    orvo_plugin_options(${target} EXPORTS ${arg_EXPORTS})
    if(NOT arg_NO_CHECK)
        orvo_check_plugin(${target})
    endif()
endfunction()
