#include "deckung/Deckungsseite.h"

#include "deckung/Seite.h"
#include "kern/Berichtsteile.h"

#include <cstdlib>
#include <map>
#include <vector>

namespace werkzeug {

namespace {

Json kacheln(const Json& dokument) {
    std::map<std::string, std::int64_t> summen;
    for (const Json& typ : dokument["types"])
        for (const auto& [was, zahl] : typ["totals"].items())
            summen[was] += zahl.get<std::int64_t>();
    const std::int64_t luecken = summen["gaps"] + summen["broken"];
    const auto ausfaelle = static_cast<std::int64_t>(dokument["not_loaded"].size());
    Json liste{kachel("tile_served", summen["served"], false, "kinds"),
               kachel("tile_fallback", summen["fallback"], false, "kinds"),
               kachel("tile_contested", summen["contested"], false, "kinds"),
               kachel("tile_gaps", luecken, luecken != 0, "gaps"),
               kachel("tile_not_loaded", ausfaelle, ausfaelle != 0, ausfaelle != 0 ? "notes" : "kinds")};
    if (const Json& verlangt = dokument["required"]; !verlangt.is_null())
        liste.push_back(kachel("tile_missing", verlangt["missing"], verlangt["missing"] != 0, "gaps"));
    return liste;
}

/// Whether a cell is for the year after that of the cell before, in the same line of the file.
bool schliesstAn(const Json& vorige, const Json& zelle) {
    const auto jahr = [](const Json& einer) { return std::atoi(einer["period"].get<std::string>().c_str()); };
    return vorige["line"] == zelle["line"] && zelle["period"].is_string() && jahr(vorige) + 1 == jahr(zelle);
}

/// Required cells that are not served; years in a row of one line of the file together.
Json fehlendes(const Json& verlangt) {
    Json liste = Json::array();
    if (verlangt.is_null())
        return liste;
    const Json* vorige = nullptr;
    std::string erstes;
    for (const Json& zelle : verlangt["cells"]) {
        if (zelle["served"])
            continue;
        const bool weiter = vorige && schliesstAn(*vorige, zelle);
        vorige = &zelle;
        const auto wert = [&](const char* was) {
            return zelle[was].is_null() ? seitentexte()["any"].get<std::string>()
                                        : zelle[was].get<std::string>();
        };
        if (weiter) {
            liste.back()["years"] = erstes + "–" + wert("period");
            continue;
        }
        erstes = wert("period");
        liste.push_back({{"type", zelle["type"]},
                         {"sub_case_type", wert("sub_case_type")},
                         {"years", erstes},
                         {"title", nullptr},
                         {"line", zelle["line"]}});
    }
    return liste;
}

} // namespace

std::string deckungAlsSeite(const Json& dokument, const Optionen& optionen) {
    const Englisch auchBeiJson(false);
    Json werte = seitenwerte(nullptr, dokument);
    werte["title"] = seitentexte()["title_coverage"];
    werte["tiles"] = kacheln(dokument);
    Json luecken = fehlendes(dokument["required"]);
    if (!luecken.empty())
        werte["required_file"] = dokument["required"]["file"];
    luecken.insert(luecken.end(), werte["gaps"].begin(), werte["gaps"].end());
    werte["gaps"] = std::move(luecken);
    for (const Json& datei : dokument["not_loaded"])
        werte["notes"].push_back(
            {{"what", datei["file"]}, {"state", zustandsname(datei["state"])}, {"text", begruendung(datei)}});
    return alsSeite(std::move(werte), dokument, optionen);
}

} // namespace werkzeug
