#pragma once

#include "kern/Anzeige.h"
#include "kern/Fakten.h"

#include <string>
#include <vector>

namespace werkzeug {

/// The inventory of a plugin directory as a lock file. It holds no time, no place and no message, so that the same
/// directory gives the same bytes.
/// Parameters: `selbst` is a path of the lock file, which is left out if it is in the directory.
/// Errors: `Unlesbar` for a file that cannot be read, or has no UTF-8 name: a lock file has no holes.
Json bestandsliste(const Bestand& bestand, bool nurBeschriebene, const std::string& selbst);

/// Reads a lock file, which anybody may have written. Of what is not in it (reasons, messages, extensions), the facts
/// have none; `DateiFakt::pfad` is empty.
/// Errors: `Unlesbar` that names the file, and what is wrong with it.
Bestand liesBestandsliste(const std::string& datei);
/// Whether a path that is given for a directory or a lock file is that of a lock file.
bool istBestandsliste(const std::string& pfad);

/// The keys that each file serves, as in a lock file, by the place in `Bestand::dateien`.
std::vector<Json> schluesselJeDatei(const Bestand& bestand);

} // namespace werkzeug
