# Options of every target of this tree: warnings, hidden symbols, and no "unique" symbols of GCC, which would keep a
# closed library in the process.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
check_cxx_compiler_flag(-fno-gnu-unique ORVO_HAS_NO_GNU_UNIQUE)

if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    check_linker_flag(CXX LINKER:-z,noseparate-code ORVO_HAS_NOSEPARATE_CODE)
endif()

add_library(orvo_compile_options INTERFACE)
target_compile_options(
    orvo_compile_options
    INTERFACE -Wall
              -Wextra
              -Wpedantic
              -Wshadow
              -Wnon-virtual-dtor
              $<$<BOOL:${ORVO_HAS_NO_GNU_UNIQUE}>:-fno-gnu-unique>
              # valgrind does not read Clang's newer form of debug information
              $<$<AND:$<CXX_COMPILER_ID:Clang>,$<CONFIG:Debug,RelWithDebInfo>>:-gdwarf-4>
              $<$<BOOL:${ORVO_WERROR}>:-Werror>)
# so that a 32-bit process can read directories with 64-bit inode numbers
if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_definitions(orvo_compile_options INTERFACE _FILE_OFFSET_BITS=64)
endif()

# Hardening of what is delivered. Checked functions of the C library need an optimised build; a level in the flags of the
# one who builds stays, and a sanitizer checks more.
check_cxx_compiler_flag(-fcf-protection ORVO_HAS_CF_PROTECTION) # x86
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$") # elsewhere Clang takes the option, and warns of it
    check_cxx_compiler_flag(-mbranch-protection=standard ORVO_HAS_BRANCH_PROTECTION)
endif()
add_library(orvo_hardening INTERFACE)
target_compile_options(
    orvo_hardening
    INTERFACE -fstack-protector-strong
              $<$<BOOL:${ORVO_HAS_CF_PROTECTION}>:-fcf-protection>
              $<$<BOOL:${ORVO_HAS_BRANCH_PROTECTION}>:-mbranch-protection=standard>)
string(TOUPPER "${CMAKE_BUILD_TYPE}" configuration)
if(NOT "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${configuration}}" MATCHES "_FORTIFY_SOURCE|-fsanitize=")
    target_compile_options(
        orvo_hardening
        INTERFACE $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE> # a compiler may have set it
                  $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
endif()
if(CMAKE_SYSTEM_NAME STREQUAL "Linux") # all symbols are bound at start-up, and their table is read-only from then on
    target_link_options(orvo_hardening INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()

# orvo_library(<target> UNITS <names>... HEADERS <further public headers>... [SOURCES <further sources>...])
#
# A shared library of this tree. A unit is a public header and the source of the same name. The public headers listed
# here are those that are installed and that must compile alone.
function(orvo_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "UNITS;HEADERS;SOURCES")
    list(TRANSFORM arg_UNITS APPEND ".h" OUTPUT_VARIABLE headers)
    list(TRANSFORM arg_UNITS APPEND ".cpp" OUTPUT_VARIABLE sources)
    add_library(${target} SHARED ${sources} ${arg_SOURCES})
    add_library(orvo::${target} ALIAS ${target})
    target_sources(
        ${target}
        PUBLIC FILE_SET
               HEADERS
               BASE_DIRS
               "${PROJECT_SOURCE_DIR}/src"
               FILES
               ${headers}
               ${arg_HEADERS})
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:orvo_compile_options>
                                            $<BUILD_INTERFACE:orvo_hardening>)
    # The library is the one home of its classes' type information: with libc++, a cast of an object that has another
    # copy fails.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:Clang>:-Wweak-vtables>)
    set_target_properties(
        ${target}
        PROPERTIES CXX_VISIBILITY_PRESET hidden
                   VISIBILITY_INLINES_HIDDEN ON
                   VERIFY_INTERFACE_HEADER_SETS ON
                   VERSION ${ORVO_AUSGABE}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}
                   SOVERSION ${ORVO_AUSGABE})
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        # The process calls a library's code at its end, so the library stays until then.
        target_link_options(${target} PRIVATE LINKER:-z,nodelete)
        set(exports "${PROJECT_SOURCE_DIR}/cmake/library.exports")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}")
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${exports}")
        # No program replaces these functions, so calls inside a library are direct, and fewer symbols are looked up at
        # start-up.
        target_compile_options(${target} PRIVATE -fno-semantic-interposition)
        target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions LINKER:-O1 LINKER:--as-needed)
        # fewer pages to map for each library
        if(ORVO_HAS_NOSEPARATE_CODE)
            target_link_options(${target} PRIVATE LINKER:-z,noseparate-code)
        endif()
    endif()
endfunction()
