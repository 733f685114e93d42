# Plugins for the tests of the fault catalogue.
orvo_test_plugin(Misbehaves Stoerenfried.cpp)
orvo_test_plugin(WithoutTypes OhneTypen.cpp)

# Neither can be opened: the first lacks a library that is deleted after linking, the second a function.
add_library(gibtEsNicht SHARED Leer.cpp)
set_target_properties(gibtEsNicht PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/nirgends")
orvo_test_plugin(NeedsAMissingLibrary BrauchtMehr.cpp "BRAUCHT=keinEinsprungpunkt")
target_link_libraries(NeedsAMissingLibrary PRIVATE gibtEsNicht)
set_target_properties(NeedsAMissingLibrary PROPERTIES SKIP_BUILD_RPATH ON)
orvo_test_plugin(CallsAMissingFunction BrauchtMehr.cpp "BRAUCHT=gibtEsNicht")
target_link_options(CallsAMissingFunction PRIVATE LINKER:-z,lazy LINKER:-z,undefs)

# Needs a library beside it.
add_library(hilft SHARED Leer.cpp)
orvo_test_plugin(NeedsALibraryBesideIt BrauchtMehr.cpp "BRAUCHT=keinEinsprungpunkt")
target_link_libraries(NeedsALibraryBesideIt PRIVATE hilft)
set_target_properties(NeedsALibraryBesideIt PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN")

# Small enough for a test that cuts it at every place.
orvo_test_plugin(Small Typen.cpp "TYPEN={1}" MIT_INITIALIZE)
target_link_options(Small PRIVATE -s)
