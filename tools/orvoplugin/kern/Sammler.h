#pragma once

#include "kern/Ausgang.h"
#include "kern/Fakten.h"
#include "kern/Optionen.h"

#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace werkzeug {

/// A look-up for the child to make.
struct Frage {
    std::int32_t typ = 0;
    std::string unterfallart; ///< a number or a name, as typed
    std::string zeitraum; ///< a text, and the format to read it under; both empty: the period-independent one
    std::string format;
};

/// What a command wants to know beyond what is in the directory.
struct Auftrag {
    std::optional<Frage> frage;
    std::vector<Frage> fragen; ///< any number more; see `Bestand::antworten`
    bool deckung = false;      ///< fill `Bestand::zeilen` and `SchluesselFakt::zweiter`
    /// Path (`DateiFakt::pfad`) of a file for whose factories and hooks it is looked up whether they are exported;
    /// "*" for those of all files. That reads the files, and runs nothing.
    std::string exporteVon;
    /// If given, only the files of these paths are loaded. The others have rows without a reason for their state.
    std::optional<std::set<std::string>> nur;
    /// If given, the file of this path is loaded by itself, wherever it lies and whatever it is called, and no
    /// directory is walked.
    std::string einzeln;
    /// Paths that are passed over as if they were not there: what would be without them?
    std::set<std::string> ohne;
};

/// Gathers the facts of the plugin directory that the options name. All plugin code runs in child processes: one
/// for all plugins, and when one of them crashes, ends the process or takes too long, another one that leaves it
/// out. That one plugin is a row like any other, with what happened to it.
///
/// How a command uses it:
///
///     const Bestand bestand = sammle(optionen);
///     for (const DateiFakt& datei : bestand.dateien) ...         // what became of each file
///     for (const SchluesselFakt& schluessel : bestand.schluessel) {
///         bestand.datei(schluessel.inhaber).name                 // who answers for the key
///         bestand.plugin(schluessel.inhaber).produktVersion
///         schluessel.ereignisse                                  // who wanted it too, and by which rule they lost
///     }
///     return ausgangVon(bestand);
///
/// To see what would be without a file, or with other directories, gather again with another `Auftrag` or other
/// options; the rules are the library's alone. Periods and sub-case types that a person typed become a `Frage` by
/// Eingabe.h; what is shown goes through Anzeige.h.
///
/// Errors: `Unlesbar` when the directory cannot be read; `std::runtime_error` when no child can be made.
/// Threads: the calling process must have none but the calling one, and must not have loaded plugins itself.
Bestand sammle(const Optionen& optionen, const Auftrag& auftrag = {});

/// The plugin directory, or a file that was named, cannot be read; the text is UTF-8 and names it.
class Unlesbar : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The exit code that the state of the files calls for: ABGESTUERZT, NICHT_LESBAR for a subdirectory that cannot be
/// read, BEFUNDE for a refused file, or GUT.
Ausgang ausgangVon(const Bestand& bestand);

} // namespace werkzeug
