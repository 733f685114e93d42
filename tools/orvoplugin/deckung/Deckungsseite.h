#pragma once

#include "kern/Anzeige.h"

#include <string>

namespace werkzeug {

/// The document of the coverage command as an HTML page that needs nothing else: for the screen, for the keyboard and
/// for paper. All that comes from plugins is escaped.
std::string deckungAlsSeite(const Json& dokument);

} // namespace werkzeug
