#pragma once

#include "kern/Anzeige.h"
#include "kern/Fakten.h"

#include <functional>
#include <string>

namespace werkzeug {

/// One of the two sides.
struct Vergleichsseite {
    std::string verzeichnis; ///< its full path, as the user named it
    const Bestand& bestand;  ///< gathered with `Auftrag::deckung`
};

/// What is different between two plugin directories, as the document of the diff command.
///
/// An entry is a finding when it takes something away: a key lost or gone to a lower version, a file that is refused
/// or no longer loaded, a plugin that does not get a key that it wants.
Json vergleichsbericht(const Vergleichsseite& vorher, const Vergleichsseite& nachher, bool zusammengelegt);

/// The document in text form.
std::string vergleichAlsText(const Json& dokument, const Farben& farben);

} // namespace werkzeug
