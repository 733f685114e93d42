#include "check/Katalog.h"

#include "check/Pruefungstafel.h"

#include <nlohmann/json.hpp>

namespace werkzeug::check {

namespace {

void ergaenze(Pruefung& pruefung) {
    static const auto tafel = nlohmann::json::parse(kPruefungstafel);
    const auto& zeile = tafel.at(pruefung.name);
    pruefung.satz = zeile.at("text").get_ref<const std::string&>().c_str();
    if (const std::string wo = zeile.value("where", ""); !wo.empty())
        pruefung.ort = wo == "file" ? Ort::DATEI : Ort::KIND_REIHE;
    if (zeile.contains("builds_on"))
        for (const auto& davor : zeile["builds_on"])
            pruefung.bautAuf.emplace_back(davor.get_ref<const std::string&>());
    pruefung.brauchtDaten = zeile.value("needs_data", false);
}

} // namespace

const std::vector<Pruefung>& katalog() {
    static const std::vector<Pruefung> pruefungen = [] {
        std::vector<Pruefung> alle = dateiPruefungen();
        for (const auto tabelle :
             {zugriffPruefungen, ladePruefungen, beschreibungsPruefungen, nutzungsPruefungen,
              aufwandPruefungen, datenPruefungen, rueckstandsPruefungen, reihenPruefungen})
            for (Pruefung& pruefung : tabelle())
                alle.push_back(std::move(pruefung));
        for (Pruefung& pruefung : alle)
            ergaenze(pruefung);
        return alle;
    }();
    return pruefungen;
}

} // namespace werkzeug::check
