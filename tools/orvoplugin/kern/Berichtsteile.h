#pragma once

// Facts as parts of the JSON documents. Every command builds its document from these, and its text from the document.

#include "kern/Anzeige.h"
#include "kern/Fakten.h"

#include <string>

namespace werkzeug {

/// {"kind": "year", "year": 2009, "code": 0, "day": 0, "quarter": -1, "text": "2009", "label": "2009"}
Json alsJson(const ZeitraumFakt& zeitraum);
/// {"number": 10, "name": "10"}; the number is null for one that has none.
Json alsJson(const UnterfallartFakt& unterfallart);
/// {"number": 1, "name": "ORVO_CHECK_SERVICE_ERWEITERUNG", "label": "CHECK"}
Json typAlsJson(std::int32_t typ, const std::string& name);

/// The outcome for a file: "file", "path", "state", "reason", "signal", "exit_status", "output".
Json zeileAlsJson(const Bestand& bestand, const DateiFakt& datei);
/// Path of the file below the plugin directory; its full path when it lies elsewhere.
std::string kurzerPfad(const Bestand& bestand, const DateiFakt& datei);
/// The plugin that offers an extension: "file", "product_version", "file_version", "resident".
Json anbieterAlsJson(const Bestand& bestand, const ErweiterungsOrt& ort);

/// What is known about the service of an extension: "state", "explanation", "step", "message", "advice".
Json serviceAlsJson(const ErweiterungFakt& erweiterung);

/// [{"path": "...", "reason": "Permission denied"}] for the directories that cannot be read, and these as text.
Json unlesbareAlsJson(const Bestand& bestand);
std::string unlesbareAlsText(const Json& verzeichnisse, const Farben& farben);

/// The rows of the files of which it is not known what they would offer: without a description where no code may run,
/// crashed, exited or timed out.
Json ungewisseAlsJson(const Bestand& bestand);
/// Gaps that may change an answer, shown below it: "not_loaded" and "unreadable_directories".
std::string umstaendeAlsText(const Json& dokument, const Farben& farben);

/// Says on standard error that there is no plugin, unless the options ask for quiet.
void meldeLeere(const Optionen& optionen, const Bestand& bestand);

/// The name of a state for people, by its code.
std::string zustandsname(const std::string& zustand);
/// The colour of a state, by its code.
Farbe farbe(const std::string& zustand);
/// What a row's text says beneath it: why the file is in its state.
std::string begruendung(const Json& zeile);
/// A text of the document, fit to be shown; "-" for an empty one and for null.
std::string zeige(const Json& wert);

} // namespace werkzeug
