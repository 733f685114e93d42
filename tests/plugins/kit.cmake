# Plugins for the tests of the kit.
orvo_test_plugin(GuardsThrowingTypes Abgesichert.cpp AUS_Types)
orvo_test_plugin(GuardsAThrowingInitialize Abgesichert.cpp AUS_Initialize)
orvo_test_plugin(GuardsAThrowingFactory Abgesichert.cpp AUS_Factory)

# The same library with and without a list of exports, and without the kit.
add_library(statischeBibliothek STATIC Statisch.cpp)
set_target_properties(statischeBibliothek PROPERTIES POSITION_INDEPENDENT_CODE ON)
orvo_test_plugin(HasUniqueCandidates Einmalig.cpp)
orvo_add_plugin(ListsItsExports SOURCES Einmalig.cpp EXPORTS einHook NO_CHECK)
add_library(BuiltWithoutTheKit MODULE Einmalig.cpp)
set_target_properties(BuiltWithoutTheKit PROPERTIES SUFFIX .dylib)
target_link_libraries(BuiltWithoutTheKit PRIVATE orvo::orvoplugin)
target_link_libraries(ListsItsExports PRIVATE orvo_compile_options)
foreach(name HasUniqueCandidates ListsItsExports BuiltWithoutTheKit)
    target_link_libraries(${name} PRIVATE statischeBibliothek)
endforeach()
orvo_test_plugin(ThrowsFromItsService WirftImDienst.cpp)
