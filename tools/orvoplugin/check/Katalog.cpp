#include "check/Katalog.h"

namespace werkzeug::check {

std::vector<Pruefung> aufbauendAuf(std::string_view davor, std::vector<Pruefung> pruefungen) {
    for (Pruefung& pruefung : pruefungen)
        if (pruefung.bautAuf.empty())
            pruefung.bautAuf = {davor};
    return pruefungen;
}

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
