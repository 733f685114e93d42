#pragma once

#include "check/Pruefstand.h"
#include "kern/Anzeige.h"
#include "kern/Ausgang.h"
#include "kern/Terminal.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace werkzeug::check {

// The results of `check` as a document, and the document as text for people.

Ausgang ausgangVon(const std::vector<Dateiergebnis>& ergebnisse);

Json ergebnisdokument(const std::vector<Dateiergebnis>& ergebnisse);
std::string ergebnistext(const Json& dokument, const Farben& farben);

/// The lines for standard error: files that cannot be read and, with `auchBefunde`, checks that did not pass.
void schreibeMeldungen(std::ostream& out, const std::vector<Dateiergebnis>& ergebnisse, bool auchBefunde);

/// The catalogue.
Json listendokument(const std::vector<const Pruefung*>& auswahl);
std::string listentext(const Json& dokument, const Farben& farben);

} // namespace werkzeug::check
