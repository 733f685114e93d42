#pragma once

#include "kern/Anzeige.h"
#include "kern/Fakten.h"

#include <string>
#include <vector>

namespace werkzeug {

// All come from gruende.json, the one table of codes, meanings and advice.

/// Codes of the JSON output. They are part of its schema: none is ever renamed or reused.
const char* code(Zustand zustand);             ///< "loaded", "refused" and so on
const char* code(Grund grund);                 ///< "no_types_entry" and so on; empty for `KEINER`
const char* code(Export export_);              ///< "yes", "no", "unchecked"
const char* regelcode(std::int32_t regel);     ///< of a `orvo_register_regel_t`
const char* treffercode(std::int32_t treffer); ///< of a `RegisterAuskunft::Treffer`
const char* zeitraumcode(std::int32_t typ);    ///< of a `Veranlagungszeitraum::Typ`

/// The step at which the loading of a file ended: "walk", "filter", "file_check", "open", "entry_points", "types",
/// "initialize", "register", "process"; empty for `KEINER`.
const char* stufe(Grund grund);
/// The step of why at which it ended, which are finer.
const char* ladestufe(Grund grund);

/// The cause behind a reason, the second half of its code: "cut" and so on; empty for `KEINE`.
const char* code(Ursache ursache);
/// "open", "describe" and so on; empty for `KEINER`.
const char* code(Schritt schritt);
/// What is known about an extension's service: "unchecked", "exported", "made", or why it cannot be had.
const char* servicecode(const ErweiterungFakt& erweiterung);

// For people, in the user's language.

/// One sentence: what reason and cause mean, and what to do about it.
std::string erklaerung(const DateiFakt& datei);
std::string rat(const DateiFakt& datei);
/// "in the factory" and the like; empty for `KEINER`.
std::string wobei(Schritt schritt);
/// "its factory returns nothing": the end of a sentence; and what to do about it, empty if there is nothing.
std::string servicesatz(const ErweiterungFakt& erweiterung);
std::string servicerat(const ErweiterungFakt& erweiterung);
/// The rule by which an extension got a key or did not, as the end of a sentence.
std::string regelsatz(std::int32_t regel);
/// A conclusion of why, by its code: {"code", "text", "advice"}, both filled with the values.
/// Parameters: `fall` and `rat` choose where the table has several texts or pieces of advice.
Json schluss(const char* code, const std::vector<std::string>& werte = {}, std::size_t fall = 0,
             std::size_t rat = 0);

} // namespace werkzeug
