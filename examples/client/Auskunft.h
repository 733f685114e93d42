#pragma once

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <cstdint>
#include <string>

class OrvoErweiterungsManager;
class OrvoPlugin;

/// How the registry found an answer.
enum class Treffer : std::uint8_t {
    GENAU,         ///< exactly this period is declared
    GLEICHES_JAHR, ///< another period of the same year is
    UNABHAENGIG,   ///< the extension serves any period
    EINZIGER,      ///< the only one, for all sub-case types and periods
    KEINER
};

/// Looks up the extension for a kind of service, a sub-case type ("Unterfallart") and an assessment period
/// ("Veranlagungszeitraum").
/// Returns: null when none answers.
OrvoErweiterung* frage(const OrvoErweiterungsManager& registratur, tag_erweiterung_typ dienst,
                       const Unterfallart& ua, const Veranlagungszeitraum& vz);

Treffer ordneEin(const OrvoErweiterung* antwort, const Unterfallart& ua, const Veranlagungszeitraum& vz);

/// The period that a person typed: 2009, or 2009-05 with a month or a code for the quarter, or 2009-05-31, each
/// also without hyphens; nothing for any.
/// Errors: `orvo::exception::InvalidFormatException`.
Veranlagungszeitraum liesZeitraum(const std::string& text);

/// Display names, in UTF-8.
std::string nameVon(tag_erweiterung_typ dienst);
std::string nameVon(Treffer treffer);
/// The kind of service that has this name in the log; `NONE` for none.
tag_erweiterung_typ dienstNamens(const std::string& name);
/// File name of the plugin's library, without its directory.
std::string dateiVon(const OrvoPlugin& plugin);
/// File name and product version; a dash for no plugin.
std::string dateiUndVersionVon(const OrvoErweiterung* erweiterung);
std::string jaNein(bool wert);
