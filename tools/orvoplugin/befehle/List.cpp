// orvoplugin list: every file below the plugin directory, and its state.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "kern/Antwort.h"
#include "kern/Berichtsteile.h"
#include "kern/Gruende.h"
#include "kern/Sammler.h"

#include <map>

namespace werkzeug {

namespace {

/// How many keys each plugin holds, and how many it offered and does not hold.
struct Schluesselzahl {
    std::size_t gehalten = 0;
    std::size_t verloren = 0;
};

std::vector<Schluesselzahl> zaehleSchluessel(const Bestand& bestand) {
    std::vector<Schluesselzahl> zahlen(bestand.dateien.size());
    for (const SchluesselFakt& schluessel : bestand.schluessel) {
        ++zahlen[schluessel.inhaber.datei].gehalten;
        for (const SchluesselEreignis& ereignis : schluessel.ereignisse)
            if (const ErweiterungsOrt* const wer = verlierer(ereignis))
                ++zahlen[wer->datei].verloren;
    }
    return zahlen;
}

Json pluginAlsJson(const PluginFakt& plugin, const Schluesselzahl& zahlen) {
    Json erweiterungen = Json::array();
    std::map<std::int32_t, std::pair<std::string, std::size_t>> arten;
    for (const ErweiterungFakt& erweiterung : plugin.erweiterungen) {
        arten[erweiterung.typ].first = erweiterung.typName;
        ++arten[erweiterung.typ].second;
    }
    for (const auto& [typ, art] : arten)
        erweiterungen.push_back({{"type", typAlsJson(typ, art.first)}, {"count", art.second}});
    return {{"product_version", jsonText(plugin.produktVersion)},
            {"file_version", jsonText(plugin.fileVersion)},
            {"resident", plugin.resident},
            {"extension_count", plugin.erweiterungen.size()},
            {"extensions", erweiterungen},
            {"keys_held", zahlen.gehalten},
            {"keys_lost", zahlen.verloren}};
}

Json bericht(const Bestand& bestand) {
    Json dokument = jsonKopf("list", bestand.suchpfad);
    std::vector<Schluesselzahl> schluessel = zaehleSchluessel(bestand);
    Json dateien = Json::array();
    std::map<Zustand, std::size_t> summen;
    std::size_t erweiterungen = 0;
    for (std::size_t i = 0; i < bestand.dateien.size(); ++i) {
        const DateiFakt& datei = bestand.dateien[i];
        Json zeile = zeileAlsJson(bestand, datei);
        zeile["plugin"] = datei.plugin ? pluginAlsJson(*datei.plugin, schluessel[i]) : Json(nullptr);
        dateien.push_back(std::move(zeile));
        ++summen[datei.zustand];
        erweiterungen += datei.plugin ? datei.plugin->erweiterungen.size() : 0;
    }
    dokument["files"] = std::move(dateien);
    dokument["unreadable_directories"] = unlesbareAlsJson(bestand);
    Json& totals = dokument["totals"];
    totals["files"] = bestand.dateien.size();
    for (int zustand = 0; zustand <= static_cast<int>(Zustand::ZEIT); ++zustand)
        totals[code(static_cast<Zustand>(zustand))] = summen[static_cast<Zustand>(zustand)];
    totals["extensions"] = erweiterungen;
    totals["keys"] = bestand.schluessel.size();
    return dokument;
}

std::string erweiterungenAlsText(const Json& plugin) {
    std::string text = std::to_string(plugin["extension_count"].get<std::size_t>());
    const char* trenner = " (";
    for (const Json& art : plugin["extensions"]) {
        text += trenner;
        text += art["type"]["label"].get_ref<const std::string&>();
        if (art["count"] != 1)
            text += " " + art["count"].dump();
        trenner = ", ";
    }
    return plugin["extensions"].empty() ? text : text + ")";
}

std::string schluesselAlsText(const Json& plugin) {
    const std::string gehalten = plugin["keys_held"].dump(), verloren = plugin["keys_lost"].dump();
    return plugin["keys_lost"] == 0 ? gehalten : satz("{1} ({2} lost)", gehalten, verloren);
}

std::string alsText(const Json& dokument, const Farben& farben) {
    Tabelle tabelle({satz("STATE"), satz("FILE"), satz("VERSION"), satz("FILE VERSION"), satz("RESIDENT"),
                     satz("KEYS"), satz("EXTENSIONS")});
    for (const Json& zeile : dokument["files"]) {
        const Json& plugin = zeile["plugin"];
        std::vector<Tabelle::Zelle> zellen{{zustandsname(zeile["state"]), farbe(zeile["state"])},
                                           zeige(zeile["file"])};
        if (!plugin.is_null())
            for (const std::string& text : {zeige(plugin["product_version"]), zeige(plugin["file_version"]),
                                            plugin["resident"] ? satz("yes") : satz("no"),
                                            schluesselAlsText(plugin), erweiterungenAlsText(plugin)})
                zellen.emplace_back(text);
        tabelle.zeile(std::move(zellen));
        if (const std::string grund = begruendung(zeile); !grund.empty())
            tabelle.bemerkung(grund);
    }
    std::string text = satz("Plugin directory: {1}", zeige(dokument["plugin_directory"])) + "\n\n";
    if (!dokument["files"].empty())
        text += tabelle.alsText(farben) + "\n";
    text += unlesbareAlsText(dokument["unreadable_directories"], farben);
    const Json& totals = dokument["totals"];
    text += anzahl(totals["files"], "file", "files");
    const char* trenner = ": ";
    for (int zustand = 0; zustand <= static_cast<int>(Zustand::ZEIT); ++zustand) {
        const char* const name = code(static_cast<Zustand>(zustand));
        if (totals[name] != 0) {
            text += trenner + totals[name].dump() + " " + zustandsname(name);
            trenner = ", ";
        }
    }
    return text + "; " + anzahl(totals["extensions"], "extension", "extensions") + ", " +
           anzahl(totals["keys"], "key", "keys") + "\n";
}

class List : public Befehl {
public:
    void beschreibe(CLI::App&) override {}

    bool nimmtBeschreibungen() const override { return true; }

    Ausgang fuehreAus(const Optionen& optionen) override {
        const Bestand bestand = sammle(optionen);
        meldeLeere(optionen, bestand);
        gibAus(optionen, bericht(bestand), alsText);
        return ausgangVon(bestand);
    }
};

} // namespace

std::unique_ptr<Befehl> macheList() { return std::make_unique<List>(); }

} // namespace werkzeug
