# The sources of the check before loading, by file format. Tests and fuzz targets compile them in as well: the library
# does not export them.
set(ORVO_ELF_SOURCES ElfAbbild.cpp ElfAbschnitte.cpp ElfBedarf.cpp ElfDynamik.cpp ElfInhalt.cpp ElfPruefung.cpp
                     ElfRelokationen.cpp ElfSymbole.cpp)
set(ORVO_MACHO_SOURCES MachOPruefung.cpp)
list(TRANSFORM ORVO_ELF_SOURCES PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
list(TRANSFORM ORVO_MACHO_SOURCES PREPEND "${CMAKE_CURRENT_LIST_DIR}/")

# the number at the end of the names of this tree's libraries
set_source_files_properties("${CMAKE_CURRENT_LIST_DIR}/ElfBedarf.cpp"
                            PROPERTIES COMPILE_DEFINITIONS "ORVO_AUSGABE=\"${PROJECT_VERSION_MAJOR}\"")
