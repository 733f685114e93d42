#pragma once

#include "kern/Anzeige.h"
#include "kern/Fakten.h"
#include "kern/Optionen.h"

#include <map>
#include <string>
#include <utility>

namespace werkzeug {

/// One of the two sides.
struct Vergleichsseite {
    std::string verzeichnis; ///< its full path, as the user named it
    const Bestand& bestand;  ///< gathered with `Auftrag::deckung` and `liesInhalte`, or from a lock file
    bool istListe;           ///< from a lock file
};

/// The files of two directories, by their paths below them; null for one that is on the other side only.
std::map<std::string, std::pair<const DateiFakt*, const DateiFakt*>> dateipaare(const Bestand& a,
                                                                                const Bestand& b);

/// The differences between two plugin directories, as the document of the diff command. What a lock file does not say
/// (who is displaced, why a file was refused) is left out.
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
