#pragma once

#include "kern/Anzeige.h"
#include "kern/Fakten.h"

#include <optional>
#include <string>

namespace werkzeug {

/// Size and SHA-256 of a file's content; none for what is neither a regular file nor a link to one.
/// Errors: `Unlesbar`.
std::optional<Inhalt> inhaltVon(const std::string& pfad);

/// {"size": 4711, "sha256": "...", "product_version": "1.2", "file_version": "12"}; null where there is none.
Json inhaltAlsJson(const std::optional<Inhalt>& inhalt, const std::optional<PluginFakt>& plugin);

/// Fills `DateiFakt::inhalt` of all files. A file that cannot be read has none.
void liesInhalte(Bestand& bestand, bool fortschritt);

} // namespace werkzeug
