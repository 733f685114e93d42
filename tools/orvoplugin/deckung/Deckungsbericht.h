#pragma once

#include "deckung/Anforderung.h"
#include "kern/Anzeige.h"
#include "kern/Fakten.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace werkzeug {

/// The input of the report.
struct Deckungswunsch {
    std::optional<std::int32_t> typ;    ///< this kind only
    std::string anforderung;            ///< name of the file of required cells; empty for none
    std::vector<VerlangteZelle> zellen; ///< the contents of that file
};

/// What the child must gather for the report.
Auftrag deckungsauftrag(const Deckungswunsch& wunsch);

/// Which plugin serves which sub-case type in which year, as the document of the coverage command. Text and page are
/// built from it.
Json deckungsbericht(const Bestand& bestand, const Deckungswunsch& wunsch);

/// "A" to "Z", "AA" and so on: the mark of a plugin, by its place in the list.
std::string merkzeichen(std::size_t nummer);

/// "2009", or "2009 to 2011": the years that a kind of the document has an entry for.
std::string jahresspanne(const Json& typ);

/// The document in text form, as wide as the terminal.
std::string deckungAlsText(const Json& dokument, const Farben& farben);

} // namespace werkzeug
