#pragma once

#include "kern/Anzeige.h"
#include "kern/Fakten.h"
#include "kern/Optionen.h"

#include <string>

namespace werkzeug {

/// One of the two sides.
struct Vergleichsseite {
    std::string verzeichnis; ///< its full path, as the user named it
    const Bestand& bestand;  ///< gathered with `Auftrag::deckung`
};

/// The differences between two plugin directories, as the document of the diff command.
///
/// An entry is a finding when something is lost: a key that is gone or has gone to a lower version, a file that is
/// refused or no longer loaded, a plugin that does not get a key that it offers.
Json vergleichsbericht(const Vergleichsseite& vorher, const Vergleichsseite& nachher, bool zusammengelegt);

/// The document in text form.
std::string vergleichAlsText(const Json& dokument, const Farben& farben);

/// The document as a self-contained HTML page, with before and after in each cell. All text from plugins is escaped.
/// Parameters: `vorher` and `nachher` are the documents of the coverage command for the two directories.
std::string vergleichAlsSeite(const Json& dokument, const Json& vorher, const Json& nachher,
                              const Optionen& optionen);

} // namespace werkzeug
