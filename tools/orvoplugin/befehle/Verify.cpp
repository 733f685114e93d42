// orvoplugin verify LOCK DIR: what is not as the lock file has it.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "bestandsliste/Bestandsliste.h"
#include "bestandsliste/Inhalt.h"
#include "kern/Berichtsteile.h"
#include "kern/Sammler.h"
#include "vergleich/Vergleichsbericht.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace werkzeug {

namespace {

/// The keys of each file, by its place; null where a plugin that was not run may hold or take keys.
std::vector<Json> bekannteSchluessel(const Bestand& bestand) {
    std::vector<Json> je = schluesselJeDatei(bestand);
    const bool alle = std::ranges::count(bestand.dateien, Zustand::UNBESCHRIEBEN, &DateiFakt::zustand) == 0;
    for (std::size_t i = 0; i < je.size(); ++i) {
        for (Json& einer : je[i]) // the key of a year is the same, whatever part of it is named
            einer.erase("period");
        std::sort(je[i].begin(), je[i].end());
        const Zustand zustand = bestand.dateien[i].zustand;
        if (!alle && zustand != Zustand::UEBERGANGEN && zustand != Zustand::GESPERRT)
            je[i] = nullptr;
    }
    return je;
}

Json dateiAlsJson(const DateiFakt* datei) {
    return datei ? inhaltAlsJson(datei->inhalt, datei->plugin) : Json(nullptr);
}

/// What is in `a` and not in `b`; null where either is not known.
Json ohne(const Json& a, const Json& b) {
    if (a.is_null() || b.is_null())
        return nullptr;
    Json rest = Json::array();
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(rest));
    return rest;
}

Json bericht(const Bestand& soll, const Bestand& ist, const std::string& liste) {
    Json dokument = jsonKopf("verify", ist.suchpfad);
    dokument["lock_file"] = jsonText(liste);
    const std::vector<Json> davor = bekannteSchluessel(soll), danach = bekannteSchluessel(ist);
    const auto schluessel = [](const std::vector<Json>& je, const Bestand& bestand, const DateiFakt* datei) {
        return datei ? je.at(static_cast<std::size_t>(datei - bestand.dateien.data())) : Json::array();
    };
    Json summen{{"unchanged", 0}, {"changed", 0}, {"added", 0}, {"lost", 0}};
    Json dateien = Json::array();
    for (const auto& [name, paar] : dateipaare(soll, ist)) {
        const auto& [vorher, nachher] = paar;
        if (std::error_code keins;
            !vorher && !nachher->plugin && std::filesystem::equivalent(ist.fundort(*nachher), liste, keins))
            continue; // the lock file itself
        const char* const aenderung = !vorher                             ? N_("added")
                                      : !nachher                          ? N_("lost")
                                      : vorher->inhalt != nachher->inhalt ? N_("changed")
                                                                          : "unchanged";
        summen[aenderung] = summen[aenderung].get<int>() + 1;
        if (vorher && nachher && vorher->inhalt == nachher->inhalt)
            continue;
        const Json alte = schluessel(davor, soll, vorher), neue = schluessel(danach, ist, nachher);
        dateien.push_back({{"change", aenderung},
                           {"file", jsonText(name)},
                           {"before", dateiAlsJson(vorher)},
                           {"after", dateiAlsJson(nachher)},
                           {"keys_lost", ohne(alte, neue)},
                           {"keys_gained", ohne(neue, alte)}});
    }
    dokument["files"] = std::move(dateien);
    dokument["unreadable_directories"] = unlesbareAlsJson(ist);
    dokument["totals"] = std::move(summen);
    return dokument;
}

std::string version(const Json& seite) {
    if (seite.is_null() || seite["product_version"].is_null())
        return "-";
    return zeige(seite["product_version"]) + " (" + zeige(seite["file_version"]) + ")";
}

/// What there is to say of a changed file beside its versions.
std::vector<std::string> bemerkungen(const Json& datei) {
    std::vector<std::string> liste;
    const bool beide = datei["change"] == "changed";
    if (beide && datei["after"]["sha256"].is_null())
        liste.emplace_back(uebersetzt("is no longer a file that can be read"));
    else if (beide && version(datei["after"]) != "-" && version(datei["before"]) == version(datei["after"]))
        liste.emplace_back(uebersetzt("other content under the same version"));
    if (!datei["keys_lost"].is_null() && datei["keys_lost"].size() + datei["keys_gained"].size() > 0)
        liste.push_back(
            satz("keys lost: {1}, keys gained: {2}", datei["keys_lost"].size(), datei["keys_gained"].size()));
    return liste;
}

std::string alsText(const Json& dokument, const Farben& farben) {
    std::string text = satz("Plugin directory: {1}", zeige(dokument["plugin_directory"])) + "\n" +
                       satz("Lock file: {1}", zeige(dokument["lock_file"])) + "\n\n";
    text += unlesbareAlsText(dokument["unreadable_directories"], farben);
    Tabelle tabelle({uebersetzt("CHANGE"), uebersetzt("FILE"), uebersetzt("BEFORE"), uebersetzt("AFTER")});
    bool ungewiss = false;
    for (const Json& datei : dokument["files"]) {
        tabelle.zeile({{uebersetzt(datei["change"].get<std::string>()), Farbe::ROT},
                       zeige(datei["file"]),
                       version(datei["before"]),
                       version(datei["after"])});
        for (std::string& bemerkung : bemerkungen(datei))
            tabelle.bemerkung(std::move(bemerkung));
        ungewiss = ungewiss || datei["keys_gained"].is_null();
    }
    if (!dokument["files"].empty())
        text += tabelle.alsText(farben) + "\n";
    if (ungewiss)
        text +=
            satz(
                "No plugin code was run. Where versions or keys are not known, \"orvoplugin diff\" with the lock "
                "file and the directory runs it and says more.") +
            "\n\n";
    const Json& summen = dokument["totals"];
    return text +
           satz("{1} as locked; changed: {2}, added: {3}, lost: {4}",
                anzahl(summen["unchanged"], "file", "files"), summen["changed"].dump(),
                summen["added"].dump(), summen["lost"].dump()) +
           "\n";
}

class Verify : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl.add_option("LOCK", liste_, "Lock file, as lock writes it")->type_name("")->required();
        unterbefehl.add_option("DIR", verzeichnis_, "Plugin directory, in place of --home or --dir")
            ->type_name("");
    }

    Ausgang fuehreAus(const Optionen& gegeben) override {
        Optionen optionen = mitVerzeichnis(gegeben, verzeichnis_);
        optionen.beschreibungen = Beschreibungen::NUR; // runs no plugin code
        const Bestand soll = liesBestandsliste(liste_);
        Auftrag auftrag;
        auftrag.exporteVon = "*";
        Bestand ist = sammle(optionen, auftrag);
        liesInhalte(ist, !optionen.quiet);
        const Json dokument = bericht(soll, ist, liste_);
        gibAus(optionen, dokument, alsText);
        if (!dokument["files"].empty())
            return Ausgang::ABWEICHUNG;
        return dokument["unreadable_directories"].empty() ? Ausgang::GUT : Ausgang::NICHT_LESBAR;
    }

private:
    std::string liste_;
    std::string verzeichnis_;
};

} // namespace

std::unique_ptr<Befehl> macheVerify() { return std::make_unique<Verify>(); }

} // namespace werkzeug
