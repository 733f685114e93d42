#pragma once

#include "kern/Anzeige.h"
#include "kern/Optionen.h"

#include <string>

namespace werkzeug {

/// The document of the coverage command as a self-contained HTML page for screen, keyboard and paper. All text from
/// plugins is escaped.
std::string deckungAlsSeite(const Json& dokument, const Optionen& optionen);

} // namespace werkzeug
