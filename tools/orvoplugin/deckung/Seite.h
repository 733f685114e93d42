#pragma once

// A self-contained HTML page with tables of who answers for which sub-case type in which year. HTML, style, script and
// texts lie in files beside this one; here are the values that the template shows.

#include "kern/Anzeige.h"
#include "kern/Optionen.h"

#include <cstdint>
#include <string>

namespace werkzeug {

/// The tables as values of the template, newest years first: of one document of the coverage command, or of two, where
/// each cell shows what was before and what is after.
/// Parameters: `vorher` is null for one document.
/// Returns: the values of the template, among them "gaps" (without the required ones; of two documents, what was lost)
/// and "names" (of plugins for people, by file: without "lib", suffix and, where it is unambiguous, folder).
Json seitenwerte(const Json* vorher, const Json& nachher);

/// The page.
/// Parameters: `werte` are those of above and those that only one of the two pages has.
std::string alsSeite(Json werte, const Json& dokument, const Optionen& optionen);

/// All texts of the page.
const Json& seitentexte();

/// A number at the top of the page, linked to a part of the page.
Json kachel(const char* was, std::int64_t zahl, bool schlecht, const char* ziel);

/// "2009", "2009–2011"
std::string jahresbereich(std::int64_t von, std::int64_t bis);

} // namespace werkzeug
