// The documents of the diff and of the coverage command as an HTML page.

#include "vergleich/Vergleichsbericht.h"

#include "deckung/Seite.h"
#include "kern/Berichtsteile.h"

#include <map>

namespace werkzeug {

namespace {

std::string text(const char* name) { return seitentexte()[name]; }

/// "loaded 1.2.0"
std::string zustand(const Json& seite) {
    if (seite.is_null())
        return text("not_there");
    const std::string worte =
        zeige(seite["state"]) +
        (seite["product_version"].is_null() ? "" : " " + zeige(seite["product_version"]));
    return seite["reason"].is_null() ? worte : worte + ", " + begruendung(seite);
}

/// The differences that are not those of a cell: files, and plugins that do not get keys that they offer.
Json notizen(const Json& dokument, const Json& namen) {
    const Json& worte = seitentexte()["other_changes"];
    Json liste = Json::array();
    for (const Json& datei : dokument["files"])
        liste.push_back({{"what", datei["file"]},
                         {"state", worte[datei["change"].get<std::string>()]},
                         {"text", zustand(datei["before"]) + " › " + zustand(datei["after"])}});
    const auto plugin = [&](const Json& anbieter) {
        return namen[anbieter["file"].get<std::string>()].get<std::string>() + " " +
               zeige(anbieter["product_version"]);
    };
    std::map<std::pair<std::string, std::string>, std::size_t> verdraengte; // by what happened and to whom
    for (const Json& einer : dokument["displaced"])
        ++verdraengte[{einer["change"],
                       plugin(einer["plugin"]) + " " + text("by") + " " + plugin(einer["by"])}];
    for (const auto& [was, schluessel] : verdraengte)
        liste.push_back({{"what", was.second},
                         {"state", worte[was.first]},
                         {"text", std::to_string(schluessel) + " " + text("keys")}});
    return liste;
}

} // namespace

std::string vergleichAlsSeite(const Json& dokument, const Json& vorher, const Json& nachher,
                              const Optionen& optionen) {
    Json werte = seitenwerte(&vorher, nachher);
    const Json& summen = dokument["totals"];
    const bool zusammengelegt = dokument["merge"];
    werte["title"] = text(zusammengelegt ? "title_merge" : "title_diff");
    werte["other_directory"] = dokument["other_directory"];
    werte["other_directory_label"] = text(zusammengelegt ? "merge_directory" : "after_directory");
    werte["tiles"] = {kachel("tile_findings", summen["findings"], summen["findings"] != 0, "gaps"),
                      kachel("tile_changes", summen["changes"], false, "kinds"),
                      kachel("tile_lost", summen["keys"]["lost"], summen["keys"]["lost"] != 0, "gaps"),
                      kachel("tile_gained", summen["keys"]["gained"], false, "kinds")};
    werte["notes"] = notizen(dokument, werte["names"]);
    return alsSeite(std::move(werte), dokument, optionen);
}

} // namespace werkzeug
