#pragma once

#include "check/Pruefstand.h"
#include "kern/Anzeige.h"
#include "kern/Ausgang.h"
#include "kern/Terminal.h"

#include <cstddef>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace werkzeug::check {

// The results of `check` for people and for build servers.

/// The result of a file as a whole.
enum class Dateiurteil { BESTANDEN, MIT_WARNUNGEN, DURCHGEFALLEN, ABGESTUERZT, UNLESBAR };

Dateiurteil urteilUeber(const Dateiergebnis& datei);
Ausgang ausgangVon(const std::vector<Dateiergebnis>& ergebnisse);
/// The checks in whose way another one stood: how many, by the name of that one.
std::map<std::string, std::size_t> uebersprungeneNach(const Dateiergebnis& datei);

/// A file's block of text. Parameters: `nummer` is counted from 1.
std::string dateitext(const Dateiergebnis& datei, std::size_t nummer, std::size_t gesamt,
                      const Farben& farben);
/// What the checks that look at several files together found about this one; a line each.
std::string gemeinsamtext(const Dateiergebnis& datei, std::size_t gesamt, const Farben& farben);
/// The sum over all files; empty for one file.
std::string schlusstext(const std::vector<Dateiergebnis>& ergebnisse);

/// Parameters: with `nurAuffaellige` files that passed are left out. The totals count all.
Json ergebnisdokument(const std::vector<Dateiergebnis>& ergebnisse, bool nurAuffaellige);

// Formats of build servers, always in English.

/// JUnit's XML: a suite for each file, a case for each check.
std::string alsJunit(const std::vector<Dateiergebnis>& ergebnisse);
/// SARIF 2.1.0: a rule for each check, a result for each finding.
Json alsSarif(const std::vector<Dateiergebnis>& ergebnisse, const std::vector<const Pruefung*>& auswahl);
/// GitHub's workflow commands: a line for each finding.
std::string alsGithub(const std::vector<Dateiergebnis>& ergebnisse);

/// The lines for standard error: files that cannot be read and, with `auchBefunde`, checks that did not pass.
void schreibeMeldungen(std::ostream& out, const std::vector<Dateiergebnis>& ergebnisse, bool auchBefunde);

/// The catalogue.
Json listendokument(const std::vector<const Pruefung*>& auswahl);
std::string listentext(const Json& dokument, const Farben& farben);

} // namespace werkzeug::check
