#pragma once

#include "kern/Fakten.h"
#include "kern/Optionen.h"
#include "kern/Sammler.h"

#include <functional>
#include <set>
#include <string>

namespace werkzeug {

/// Loads all plugins of the directory that the options name, and records what the library reports. Runs in the child
/// process, which must do nothing else afterwards: the settings, the process-wide objects and the standard output
/// stream stay changed.
///
/// Parameters: the files of `ueberspringe` (paths under which they are loaded) are not loaded; the caller fills their
/// rows. `bevor` is called with the path before code of a file may run, with the empty path when no plugin code will
/// run any more, and then at intervals with the empty path as a sign of life.
Bestand ermittleBestand(const Optionen& optionen, const Auftrag& auftrag,
                        const std::set<std::string>& ueberspringe,
                        const std::function<void(const std::string& pfad)>& bevor);

} // namespace werkzeug
