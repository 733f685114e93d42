# The kit for plugin authors: builds a shared library that the plugin manager accepts, and that leaves the process after
# its last use.
#
#   orvo_add_plugin(<target> [SOURCES] <source>... [EXPORTS <name>...] [NO_CHECK]
#                   [DESCRIBED [DESCRIPTION_SIZE <bytes>]])
#
# The file is lib<target>.dylib on every system, so the target's name has neither "lib" nor ".dylib". It exports only
# the C functions that are marked with ORVO_PLUGIN_EXPORT: the entry points and factories of PluginEntryPoints.h, which
# are marked there, and your own hooks and factories, which you declare as
#
#   extern "C" ORVO_PLUGIN_EXPORT void wohngeldGeladen();
#
#   EXPORTS    of your own marked names, export these only; for a plugin that contains other code with marked names
#   NO_CHECK   leaves the check out
#   DESCRIBED  writes what the plugin says of itself into its file, so that clients need not open it at start-up. The
#              build fails if that depends on environment, working directory or locale. DESCRIPTION_SIZE is the room for
#              it, 4096 bytes by default
#
# After linking, the package's tool checks the plugin (ORVO_PLUGIN_CHECKS below) and describes it, if asked to. A finding
# fails the build with a message; what is missing on this machine only, such as a needed library, is a warning. Both load
# the plugin in child processes and have it describe itself, and the check makes each service once. They are left out,
# with a message, when cross-compiling without CMAKE_CROSSCOMPILING_EMULATOR, if the package has no tool, and if the
# compiler options of the project, the configuration or the directory name a sanitizer.
#
#   orvo_plugin_options(<target>)    the options alone, for an existing library target
#   orvo_describe_plugin(<target> [<bytes>])    the description alone
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
    thread-destructors
    cxx-library
    needed-libraries
    undefined-symbols
    immediate-binding
    declares-type
    describes
    factories
    hooks
    use
    threads
    floating-point
    CACHE INTERNAL "Checks after linking")
set(ORVO_PLUGIN_EXPORTS_FILE "${CMAKE_CURRENT_LIST_DIR}/plugin.exports" CACHE INTERNAL "Version script of a plugin")
set(ORVO_PLUGIN_DESCRIPTION_FILE "${CMAKE_CURRENT_LIST_DIR}/plugin.description.cpp"
    CACHE INTERNAL "Source that reserves room for a description")

# Sets ORVO_PLUGIN_COMPILE_OPTIONS and ORVO_PLUGIN_LINK_OPTIONS for the compiler, without the version script.
function(orvo_find_plugin_options)
    set(CMAKE_REQUIRED_QUIET ON)
    set(compile
        # only marked names are exported: fewer symbols to look up, no collision with the host's
        -fvisibility=hidden
        # the same for functions defined in classes and headers (C has none, and GCC warns of it there)
        $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>)
    # a static in a template or inline function would be "unique" and keep the library in the process (not with Clang)
    check_cxx_compiler_flag(-fno-gnu-unique ORVO_HAS_NO_GNU_UNIQUE)
    if(ORVO_HAS_NO_GNU_UNIQUE)
        list(APPEND compile -fno-gnu-unique)
    endif()
    set(link "")
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        set(link
            # only libraries that are used; otherwise opening the plugin opens them all
            -Wl,--as-needed
            # names of static libraries are not exported
            -Wl,--exclude-libs,ALL
            # every symbol is bound when the plugin is opened, so that none can fail later, in the middle of a call
            -Wl,-z,now
            # a missing function fails here, not in the client's process
            -Wl,-z,defs)
        # code and data share pages where possible: fewer pages to map per plugin (gold has no such option)
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

# Sets the variable to true if the compiler options of the project, the configuration, the directory or the target so
# far name a sanitizer.
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

# Sets the variable to the reason why the tool cannot open the plugin; to nothing if it can.
function(orvo_why_tool_cannot_open target variable)
    set(reason "")
    orvo_plugin_has_sanitizer(${target} sanitizer)
    if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
        set(reason "it is built for another system, and CMAKE_CROSSCOMPILING_EMULATOR is not set")
    elseif(NOT TARGET orvo::tool)
        get_target_property(installed orvo::orvoplugin IMPORTED)
        if(installed)
            set(reason "the package orvoplugin came without its tool")
        else() # a subproject
            set(reason "the tool that does it is built only with ORVO_BUILD_TOOL=ON")
        endif()
    elseif(sanitizer) # such a plugin opens only in a program that has the sanitizer too
        get_target_property(installed orvo::tool IMPORTED)
        if(installed)
            set(reason "it is built with a sanitizer")
        endif()
    endif()
    set(${variable} "${reason}" PARENT_SCOPE)
endfunction()

# Has the tool do something with the plugin after linking. (CMake calls no emulator for an imported program by itself.)
function(orvo_run_tool target)
    set(emulator "")
    if(CMAKE_CROSSCOMPILING)
        set(emulator ${CMAKE_CROSSCOMPILING_EMULATOR})
    endif()
    add_custom_command(
        TARGET ${target} POST_BUILD
        COMMAND ${emulator} "$<TARGET_FILE:orvo::tool>" ${ARGN} "$<TARGET_FILE:${target}>"
        VERBATIM)
endfunction()

function(orvo_describe_plugin target)
    set(size 4096)
    if(ARGC GREATER 1)
        set(size "${ARGV1}")
    endif()
    if(NOT size MATCHES "^[1-9][0-9]*$")
        message(FATAL_ERROR "orvo_add_plugin(${target}): DESCRIPTION_SIZE is a number of bytes, and not \"${size}\"")
    endif()
    math(EXPR size "(${size} + 3) / 4 * 4")
    target_sources(${target} PRIVATE "${ORVO_PLUGIN_DESCRIPTION_FILE}")
    target_compile_definitions(${target} PRIVATE ORVO_DESCRIPTION_SIZE=${size})
    orvo_why_tool_cannot_open(${target} reason)
    if(reason)
        message(WARNING "Plugin ${target}: not described, ${reason}. It is opened at each start, unless "
                        "\"orvoplugin describe\" describes it on its system.")
        return()
    endif()
    orvo_run_tool(${target} describe --quiet --elsewhere)
endfunction()

function(orvo_check_plugin target)
    orvo_why_tool_cannot_open(${target} reason)
    if(reason)
        message(STATUS "Plugin ${target}: not checked, ${reason}")
        return()
    endif()
    list(JOIN ORVO_PLUGIN_CHECKS "," checks)
    orvo_run_tool(${target} check --quiet --strict --elsewhere --only "${checks}")
endfunction()

function(orvo_add_plugin target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "DESCRIBED;NO_CHECK" "DESCRIPTION_SIZE" "SOURCES;EXPORTS")
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
    if(NOT arg_NO_CHECK) # before it is described, because the check says more of what is wrong
        orvo_check_plugin(${target})
    endif()
    if(arg_DESCRIBED)
        orvo_describe_plugin(${target} ${arg_DESCRIPTION_SIZE})
    elseif(DEFINED arg_DESCRIPTION_SIZE)
        message(FATAL_ERROR "orvo_add_plugin(${target}): DESCRIPTION_SIZE goes with DESCRIBED")
    endif()
endfunction()
