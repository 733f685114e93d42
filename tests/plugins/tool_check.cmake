# Plugins for the tests of the tool's checks: one that passes them all and takes its faults from a text file, and those
# with faults in the library file itself.
orvo_test_plugin(Conforms Konform.cpp)
orvo_test_plugin(HasAUniqueSymbol Konform.cpp MIT_EINMALIGEM_SYMBOL)
orvo_test_plugin(HasAThreadDestructor Konform.cpp MIT_THREAD_DESTRUKTOR)
orvo_test_plugin(HasATextRelocation Konform.cpp MIT_CODE_AENDERUNG)
target_link_options(HasATextRelocation PRIVATE LINKER:-z,notext)
orvo_test_plugin(IsNeverUnmapped Konform.cpp)
target_link_options(IsNeverUnmapped PRIVATE LINKER:-z,nodelete)
orvo_test_plugin(BindsLate Konform.cpp)
target_link_options(BindsLate PRIVATE LINKER:-z,lazy)
orvo_test_plugin(SearchesTheWorkingDirectory Konform.cpp)
set_target_properties(SearchesTheWorkingDirectory PROPERTIES BUILD_RPATH "lib/relativ")
orvo_test_plugin(HasAnExecutableStack Konform.cpp)
target_link_options(HasAnExecutableStack PRIVATE LINKER:-z,execstack)
orvo_test_plugin(ExportsCNames Konform.cpp MIT_C_SYMBOLEN)
orvo_test_plugin(BringsItsCxxLibrary Konform.cpp)
target_link_options(BringsItsCxxLibrary PRIVATE -static-libstdc++)
# Built without the header that makes a wrong signature a compile error.
orvo_test_plugin(ReturnsAnInt GanzeZahl.cpp)
# Misspelt here, and wherever the header declares it.
orvo_test_plugin(MisspellsInitialize Typen.cpp "TYPEN={1}" MIT_INITIALIZE
                 orvo_plugin_initialize=orvo_plugin_initialise)

# Without the kit: nothing keeps its C++ names inside.
add_library(ExportsCxxNames MODULE Konform.cpp)
target_link_libraries(ExportsCxxNames PRIVATE orvo::orvoplugin orvo_compile_options)
target_compile_definitions(ExportsCxxNames PRIVATE MIT_CXX_NAMEN)
target_link_options(ExportsCxxNames PRIVATE LINKER:-z,now)
set_target_properties(ExportsCxxNames PROPERTIES PREFIX "lib" SUFFIX ".dylib" CXX_VISIBILITY_PRESET hidden)
set(ORVO_TEST_PLUGINS "${ORVO_TEST_PLUGINS};ExportsCxxNames" CACHE INTERNAL "")

# With room for a description, as the kit reserves it. Tests describe copies.
orvo_test_plugin(HasRoom Konform.cpp)
orvo_test_plugin(HasLittleRoom Konform.cpp ORVO_DESCRIPTION_SIZE=64)
foreach(name HasRoom HasLittleRoom)
    target_sources(${name} PRIVATE "${ORVO_PLUGIN_DESCRIPTION_FILE}")
endforeach()
