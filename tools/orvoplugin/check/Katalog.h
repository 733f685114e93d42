#pragma once

#include "check/Befund.h"
#include "check/Vorgaben.h"
#include "datei/Bibliotheksbild.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace werkzeug::check {

/// The input of a check: one file, and the other given files that can be loaded.
struct Pruefling {
    std::string pfad;
    Bibliotheksbild bild;
    std::vector<std::string> andere;
    std::chrono::duration<double> zeitlimit; ///< for plugin code
    const Vorgaben* vorgaben;                ///< never null
};

/// Where a check runs.
enum class Ort {
    DATEI,      ///< in this process: it only reads the file
    KIND,       ///< in a child process
    KIND_REIHE, ///< the same, after all other checks of all files: it looks at them together
};

/// One check of the catalogue: its parts give the first two, and `katalog` adds the rest from pruefungen.json.
struct Pruefung {
    const char* name; ///< stable: scripts name it
    void (*pruefe)(const Pruefling&, Fundliste&);
    const char* satz =
        ""; ///< what holds for a plugin that passes; a text of the catalogue of `kern/Sprache.h`
    Ort ort = Ort::KIND;
    /// Earlier checks in the catalogue that it depends on. They count only when they are run too.
    std::vector<std::string_view> bautAuf = {};
    bool brauchtDaten = false; ///< run without being named only if there are data
};

/// All checks, in the order in which they run. The first is that of the file's format, on which all others depend.
const std::vector<Pruefung>& katalog();

// The parts of the catalogue, each at the end of the source that defines its checks.

std::vector<Pruefung> dateiPruefungen();
std::vector<Pruefung> zugriffPruefungen();
std::vector<Pruefung> ladePruefungen();
std::vector<Pruefung> beschreibungsPruefungen();
std::vector<Pruefung> nutzungsPruefungen();
std::vector<Pruefung> aufwandPruefungen();
std::vector<Pruefung> datenPruefungen();
std::vector<Pruefung> rueckstandsPruefungen();
std::vector<Pruefung> reihenPruefungen();

} // namespace werkzeug::check
