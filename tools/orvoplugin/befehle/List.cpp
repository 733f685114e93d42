// orvoplugin list: every file below the plugin directory, and its state.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
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

std::map<std::uint32_t, Schluesselzahl> zaehleSchluessel(const Bestand& bestand) {
    std::map<std::uint32_t, Schluesselzahl> zahlen; // by the file's index
    for (const SchluesselFakt& schluessel : bestand.schluessel) {
        ++zahlen[schluessel.inhaber.datei].gehalten;
        for (const SchluesselEreignis& ereignis : schluessel.ereignisse) {
            if (ereignis.art == SchluesselEreignis::Art::VERDRAENGT)
                ++zahlen[ereignis.gegen.datei].verloren;
            else if (ereignis.art == SchluesselEreignis::Art::ABGEWIESEN)
                ++zahlen[ereignis.wer.datei].verloren;
        }
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
    const std::map<std::uint32_t, Schluesselzahl> schluessel = zaehleSchluessel(bestand);
    Json dateien = Json::array();
    std::map<Zustand, std::size_t> summen;
    std::size_t erweiterungen = 0;
    for (std::uint32_t i = 0; i < bestand.dateien.size(); ++i) {
        const DateiFakt& datei = bestand.dateien[i];
        Json zeile = zeileAlsJson(bestand, datei);
        const auto zahlen = schluessel.find(i);
        zeile["plugin"] =
            datei.plugin
                ? pluginAlsJson(*datei.plugin, zahlen == schluessel.end() ? Schluesselzahl{} : zahlen->second)
                : Json(nullptr);
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
    std::string text = plugin["keys_held"].dump();
    if (plugin["keys_lost"] != 0)
        text += " (" + plugin["keys_lost"].dump() + " lost)";
    return text;
}

std::string alsText(const Json& dokument, const Farben& farben) {
    Tabelle tabelle({"STATE", "FILE", "VERSION", "FILE VERSION", "RESIDENT", "KEYS", "EXTENSIONS"});
    for (const Json& zeile : dokument["files"]) {
        const std::string zustand = zeile["state"];
        const Json& plugin = zeile["plugin"];
        if (plugin.is_null())
            tabelle.zeile({{zustand, farbe(zustand)}, zeige(zeile["file"])});
        else
            tabelle.zeile({{zustand, farbe(zustand)},
                           zeige(zeile["file"]),
                           zeige(plugin["product_version"]),
                           zeige(plugin["file_version"]),
                           plugin["resident"] ? "yes" : "no",
                           schluesselAlsText(plugin),
                           erweiterungenAlsText(plugin)});
        if (const std::string grund = begruendung(zeile); !grund.empty())
            tabelle.bemerkung(grund);
    }
    std::string text = "Plugin directory: " + zeige(dokument["plugin_directory"]) + "\n\n";
    if (!dokument["files"].empty())
        text += tabelle.alsText(farben) + "\n";
    text += unlesbareAlsText(dokument["unreadable_directories"], farben);
    const Json& totals = dokument["totals"];
    text += anzahl(totals["files"], "file", "files");
    const char* trenner = ": ";
    for (int zustand = 0; zustand <= static_cast<int>(Zustand::ZEIT); ++zustand) {
        const char* const name = code(static_cast<Zustand>(zustand));
        if (totals[name] != 0) {
            text += trenner + totals[name].dump() + " " + name;
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
