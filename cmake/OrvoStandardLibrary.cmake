# Writes the public header that requires users of the libraries to compile with the same standard library and settings:
# objects of its classes cross the boundary and must have the same layout.
include(CheckCXXSourceCompiles)

# orvo_standard_library_has(<variable> <condition of the preprocessor>): sets the variable to 1 or 0
function(orvo_standard_library_has variable condition)
    check_cxx_source_compiles("#include <string>\n#if !(${condition})\n#error no\n#endif\nint main() {}"
                              ORVO_HAS_${variable})
    set(${variable} 0 PARENT_SCOPE)
    if(ORVO_HAS_${variable})
        set(${variable} 1 PARENT_SCOPE)
    endif()
endfunction()

# orvo_standard_library_header(<target>): writes the header and adds it to the target
function(orvo_standard_library_header target)
    orvo_standard_library_has(LIBCXX "defined _LIBCPP_VERSION")
    orvo_standard_library_has(CXX11_ABI "defined _GLIBCXX_USE_CXX11_ABI && _GLIBCXX_USE_CXX11_ABI")
    orvo_standard_library_has(DEBUG_MODE "defined _GLIBCXX_DEBUG")
    if(LIBCXX)
        set(NAME "libc++")
    else()
        set(NAME "libstdc++")
    endif()
    configure_file("${PROJECT_SOURCE_DIR}/cmake/Standardbibliothek.h.in"
                   "${PROJECT_BINARY_DIR}/include/orvoutil/Standardbibliothek.h" @ONLY)
    target_sources(
        ${target}
        PUBLIC FILE_SET
               HEADERS
               BASE_DIRS
               "${PROJECT_BINARY_DIR}/include"
               FILES
               "${PROJECT_BINARY_DIR}/include/orvoutil/Standardbibliothek.h")
endfunction()
