#pragma once

#include "kern/Fakten.h"
#include "kern/Optionen.h"
#include "kern/Sammler.h"

#include <functional>
#include <set>
#include <string>

namespace werkzeug {

/// Loads all plugins of the directory that the options name, and notes all that the library tells. For the child
/// process, which must not be used for anything else afterwards: the settings, the process-wide objects and the
/// standard output stream are changed for good.
///
/// Parameters: the files of `ueberspringe` (paths under which they are loaded) are not loaded; their rows are left
/// for the caller to fill. `bevor` is called with the path before a file's code may run, and with the empty path
/// when no more of it will, and then now and then, as a sign that the work goes on: it may be long.
Bestand ermittleBestand(const Optionen& optionen, const Auftrag& auftrag,
                        const std::set<std::string>& ueberspringe,
                        const std::function<void(const std::string& pfad)>& bevor);

} // namespace werkzeug
