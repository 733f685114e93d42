#pragma once

#include "kern/Fakten.h"

#include <string>

namespace werkzeug {

/// Why the library refused a file at that step, more closely than the step says; `KEINE` where nothing is known.
/// Looks at the file again, and at the message, whose system texts are English.
Ursache sucheUrsache(orvo_plugin_ablehnung_t schritt, const std::string& pfad, const std::string& name,
                     const std::string& meldung);

/// Whether the fault may be this machine's, so that the same file can be opened on another one.
bool liegtAmRechner(Ursache ursache);

} // namespace werkzeug
