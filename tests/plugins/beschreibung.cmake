# Plugins with room for a description in their files. Tests fill it in copies.
foreach(name DescribedByFile OffersEverything DeclaresTypeOneTwice StrippedOfDebugInformation
             AddsExtensionOfItsOwnClass)
    target_sources(${name} PRIVATE Platz.cpp)
endforeach()
