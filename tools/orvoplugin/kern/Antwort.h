#pragma once

// Shared by the commands that look up keys: which extension answers, and which does not.

#include "kern/Anzeige.h"
#include "kern/Fakten.h"

#include <string>
#include <vector>

namespace werkzeug {

/// The answer for a key: "type", "sub_case_type", "period", "match", "plugin", "factory", "service", "displaced".
/// Parameters: `treffer` as `RegisterAuskunft::Treffer`; "match" is null for `KEINER`.
Json antwortAlsJson(const Bestand& bestand, const SchluesselFakt& schluessel, std::int32_t treffer);

/// "type", "sub_case_type" and "period" of a key; the latter two name any for a kind that has none.
Json schluesselAlsJson(const SchluesselFakt& schluessel);
/// "CHECK 10 2009", of such a part of a document.
std::string schluesselAlsText(const Json& schluessel);
/// The extension that lost the key in an event; null for one in which nobody lost it.
const ErweiterungsOrt* verlierer(const SchluesselEreignis& ereignis);
/// To whom it was lost, and why: "lost_to", "rule", "explanation".
Json verlustAlsJson(const Bestand& bestand, const SchluesselEreignis& ereignis);
/// The names of the sub-case types that somebody answers for.
std::vector<std::string> bediente(const Bestand& bestand);
/// Why the service of such a part cannot be had; empty when nothing is known against it.
std::string servicemangelAlsText(const Json& service);
/// "libx.dylib (1.2.0)", of a plugin as `anbieterAlsJson` has it.
std::string anbieterAlsText(const Json& plugin);

} // namespace werkzeug
