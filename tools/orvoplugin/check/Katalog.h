#pragma once

#include "check/Befund.h"
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
};

/// Where a check runs.
enum class Ort {
    DATEI,      ///< in this process: it only reads the file
    KIND,       ///< in a child process
    KIND_REIHE, ///< the same, after all other checks of all files: it looks at them together
};

/// One check of the catalogue.
struct Pruefung {
    const char* name; ///< stable: scripts name it
    const char* satz; ///< what holds for a plugin that passes
    /// Earlier checks in the catalogue that it depends on. They count only when they are run too.
    std::vector<std::string_view> bautAuf;
    Ort ort;
    Befund (*pruefe)(const Pruefling&);
};

/// All checks, in the order in which they run.
const std::vector<Pruefung>& katalog();

// The checks themselves, by source.

Befund pruefeDateiformat(const Pruefling&);
Befund pruefeDateiname(const Pruefling&);
Befund pruefeEinsprungpunkte(const Pruefling&);
Befund pruefeExporte(const Pruefling&);
Befund pruefeEinmaligeSymbole(const Pruefling&);
Befund pruefeBleiben(const Pruefling&);
Befund pruefeThreadDestruktoren(const Pruefling&);
Befund pruefeBindung(const Pruefling&);
Befund pruefeCodeAenderung(const Pruefling&);
Befund pruefeSuchpfade(const Pruefling&);

Befund pruefeBenoetigteBibliotheken(const Pruefling&);
Befund pruefeUndefinierteSymbole(const Pruefling&);
Befund pruefeOeffnen(const Pruefling&);

Befund pruefeTypen(const Pruefling&);
Befund pruefeSignaturen(const Pruefling&);
Befund pruefeBeschreibung(const Pruefling&);
Befund pruefeZweiteBeschreibung(const Pruefling&);
Befund pruefeBeschreibungInDatei(const Pruefling&);
Befund pruefeVersionen(const Pruefling&);
Befund pruefeTexte(const Pruefling&);
Befund pruefeAngebot(const Pruefling&);
Befund pruefeEigeneUeberschneidung(const Pruefling&);
Befund pruefeFactories(const Pruefling&);
Befund pruefeHooks(const Pruefling&);

Befund pruefeNutzung(const Pruefling&);
Befund pruefeServices(const Pruefling&);
Befund pruefeServiceBesitz(const Pruefling&);
Befund pruefeAusnahmen(const Pruefling&);
Befund pruefeEntladen(const Pruefling&);
Befund pruefeSpeicher(const Pruefling&);
Befund pruefeResident(const Pruefling&);
Befund pruefeReload(const Pruefling&);

Befund pruefeAusgabe(const Pruefling&);
Befund pruefeLocale(const Pruefling&);
Befund pruefeVerzeichnis(const Pruefling&);
Befund pruefeSignale(const Pruefling&);
Befund pruefeHandler(const Pruefling&);
Befund pruefeDeskriptoren(const Pruefling&);
Befund pruefeUmgebung(const Pruefling&);
Befund pruefeUmask(const Pruefling&);
Befund pruefeThreads(const Pruefling&);
Befund pruefeGleitkomma(const Pruefling&);
Befund pruefeStroeme(const Pruefling&);
Befund pruefeZeitgeber(const Pruefling&);
Befund pruefeEinstellungen(const Pruefling&);
Befund pruefeKindprozesse(const Pruefling&);

Befund pruefeUeberschneidungen(const Pruefling&);

} // namespace werkzeug::check
