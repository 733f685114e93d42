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

/// What a command needs beyond the contents of the directory.
struct Auftrag {
    std::optional<Frage> frage;
    std::vector<Frage> fragen; ///< any number more; see `Bestand::antworten`
    bool deckung = false;      ///< fill `Bestand::zeilen` and `SchluesselFakt::zweiter`
    /// Path (`DateiFakt::pfad`) of the file whose factories and hooks are checked for being exported; "*" for all
    /// files. This reads the files, and runs no code.
    std::string exporteVon;
    /// If set, only these files are loaded. The others have rows without a reason for their state.
    std::optional<std::set<std::string>> nur;
    /// If set, this file alone is loaded, whatever its place and name, and no directory is walked.
    std::string einzeln;
    /// Paths to treat as missing, for the question what would change without them.
    std::set<std::string> ohne;
};

/// Gathers the facts of the plugin directory that the options name. All plugin code runs in child processes: one for
/// all plugins, and when a plugin crashes, ends the process or takes too long, another one without it. That plugin gets
/// a row that says what happened.
///
/// How a command uses it:
///
///     const Bestand bestand = sammle(optionen);
///     for (const DateiFakt& datei : bestand.dateien) ...         // the state of each file
///     for (const SchluesselFakt& schluessel : bestand.schluessel) {
///         bestand.datei(schluessel.inhaber).name                 // the plugin that answers
///         bestand.plugin(schluessel.inhaber).produktVersion
///         schluessel.ereignisse                                  // who else offered it, and by which rule it lost
///     }
///     return ausgangVon(bestand);
///
/// To see the result without a file, or with other directories, gather again with another `Auftrag` or other options;
/// the rules are the library's alone. Eingabe.h turns typed periods and sub-case types into a `Frage`; Anzeige.h shows
/// results.
///
/// Errors: `Unlesbar` when the directory cannot be read; `std::runtime_error` when no child can be made.
/// Threads: the process must have no other thread, and must not have loaded plugins itself.
Bestand sammle(const Optionen& optionen, const Auftrag& auftrag = {});

/// The plugin directory, or a named file, cannot be read; the text is UTF-8 and says which.
class Unlesbar : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The exit code that the state of the files calls for: ABGESTUERZT, NICHT_LESBAR for a subdirectory that cannot be
/// read, BEFUNDE for a refused file, or GUT.
Ausgang ausgangVon(const Bestand& bestand);

} // namespace werkzeug
