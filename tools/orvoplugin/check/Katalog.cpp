#include "check/Katalog.h"

namespace werkzeug::check {

const std::vector<Pruefung>& katalog() {
    static const std::vector<Pruefung> pruefungen = [] {
        std::vector<Pruefung> alle = dateiPruefungen();
        for (const auto tabelle :
             {zugriffPruefungen, ladePruefungen, beschreibungsPruefungen, nutzungsPruefungen,
              aufwandPruefungen, datenPruefungen, rueckstandsPruefungen, reihenPruefungen})
            for (Pruefung& pruefung : tabelle())
                alle.push_back(std::move(pruefung));
        return alle;
    }();
    return pruefungen;
}

} // namespace werkzeug::check
