#pragma once

#include "kern/Fakten.h"

#include <string>

namespace werkzeug {

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

/// One sentence for people, in English: what the reason means, and what to do about it.
const char* erklaerung(Grund grund);
const char* rat(Grund grund);
/// The rule by which an extension got a key or did not, as the end of a sentence.
const char* regelsatz(std::int32_t regel);

} // namespace werkzeug
