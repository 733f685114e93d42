#include "deckung/Seite.h"

#include "deckung/Seitenteile.h"
#include "deckung/Seitenzelle.h"
#include "deckung/Vorlage.h"
#include "kern/Herkunft.h"

#include <orvoutil/StringUtil.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <map>
#include <set>
#include <tuple>
#include <vector>

namespace werkzeug {

namespace {

constexpr std::size_t kMeisteZellen = 500000; // of one table; a browser shows no more in reasonable time
constexpr std::size_t kMitNamenBis = 8;       // columns; cells of a wider table have no room for names
constexpr std::size_t kLuftigBis = 30;        // rows; a longer table is set small enough for one screen

struct Spalte {
    std::int64_t von;
    std::int64_t bis;
    std::int64_t jahre() const { return bis - von + 1; }
};
using Spalten = std::vector<Spalte>;

/// Numbers first, then names in any letter case.
using Zeilenname = std::tuple<bool, std::int64_t, std::string>;

Zeilenname zeilenname(const Json& unterfallart) {
    const Json& nummer = unterfallart["number"];
    if (nummer.is_null())
        return {true, 0, orvo::orvoutil::tolower(unterfallart["name"].get_ref<const std::string&>())};
    return {false, nummer, ""};
}

/// The same of a sub-case type as people write it.
Zeilenname zeilenname(const std::string& text) {
    if (orvo::orvoutil::isNumeric(text))
        return {false, orvo::orvoutil::string2Int(text), ""};
    return {true, 0, orvo::orvoutil::tolower(text)};
}

/// The columns of several tables: in each column, each cell of each table has one answer. Newest first.
Spalten spaltenVon(const std::vector<const Json*>& typen) {
    std::set<std::int64_t> grenzen;
    for (const Json* const typ : typen)
        for (const Json& spalte : (*typ)["columns"]) {
            grenzen.insert(spalte["from"].get<std::int64_t>());
            grenzen.insert(spalte["to"].get<std::int64_t>() + 1);
        }
    Spalten spalten;
    for (auto ende = grenzen.rbegin(); ende != grenzen.rend() && std::next(ende) != grenzen.rend(); ++ende)
        spalten.push_back({*std::next(ende), *ende - 1});
    return spalten;
}

const Json* andereJahre(const Json* zeile) {
    return zeile && !(*zeile)["other_years"].is_null() ? &(*zeile)["other_years"] : nullptr;
}

/// The cell of a row for a year; null for a gap.
const Json* antwort(const Json* zeile, std::int64_t jahr) {
    if (!zeile)
        return nullptr;
    const Json& zellen = (*zeile)["cells"];
    const auto zelle = std::partition_point(zellen.begin(), zellen.end(),
                                            [&](const Json& eine) { return eine["to"] < jahr; });
    if (zelle == zellen.end() || (*zelle)["from"] > jahr)
        return andereJahre(zeile);
    return (*zelle)["answer"] == "gap" ? nullptr : &*zelle;
}

/// Cells that are required and not served, by kind, sub-case type and year.
using Verlangtes = std::set<std::tuple<std::int64_t, Zeilenname, std::int64_t>>;

Verlangtes fehlendes(const Json& verlangt) {
    Verlangtes zellen;
    for (const Json& zelle : verlangt.is_null() ? Json::array() : verlangt["cells"])
        if (!zelle["served"] && zelle["period"].is_string())
            zellen.emplace(zelle["type"]["number"], zeilenname(zelle["sub_case_type"].get<std::string>()),
                           std::atoi(zelle["period"].get<std::string>().c_str()));
    return zellen;
}

/// The table of one kind of extension.
class Seitentabelle {
public:
    Seitentabelle(const Seitenplugins& plugins, const Verlangtes& verlangtes, const Paar& typ, bool vergleich,
                  Json& luecken)
        : plugins_(plugins),
          verlangtes_(verlangtes),
          typ_(typ.eines()),
          vergleich_(vergleich),
          luecken_(luecken) {
        std::vector<const Json*> typen;
        for (const Json* const stand : {typ.vorher, typ.nachher}) {
            if (!stand)
                continue;
            typen.push_back(stand);
            for (const Json& zeile : (*stand)["rows"]) {
                const Json* Paar::*const seite = stand == typ.nachher ? &Paar::nachher : &Paar::vorher;
                Zeilenname name = zeilenname(zeile["sub_case_type"]);
                while (zeilen_[name].*seite) // other bytes that are shown as the same text
                    std::get<std::string>(name) += ' ';
                zeilen_[name].*seite = &zeile;
                andere_ = andere_ || andereJahre(&zeile);
            }
        }
        spalten_ = spaltenVon(typen);
    }

    Json alsWerte() {
        const bool paare = typ_["by_sub_case_type_and_period"];
        Json werte{{"type", typ_["type"]},
                   {"pairs", paare},
                   {"row_count", zeilen_.size()},
                   {"range", paare && !spalten_.empty()
                                 ? Json(jahresbereich(spalten_.back().von, spalten_.front().bis))
                                 : Json(nullptr)},
                   {"dense", zeilen_.size() > kLuftigBis},
                   {"named", spalten_.size() <= kMitNamenBis},
                   {"columns", Json::array()},
                   {"other_years", nullptr}};
        for (const Spalte& spalte : spalten_)
            werte["columns"].push_back({{"from", spalte.von},
                                        {"to", spalte.bis},
                                        {"year", paare},
                                        {"head", paare ? Json(jahresbereich(spalte.von, spalte.bis))
                                                       : seitentexte()["any_period"]}});
        if (andere_)
            werte["other_years"] = seitentexte()[spalten_.empty() ? "any_year" : "other_years"];
        werte["too_many"] = zeilen_.size() * (spalten_.size() + 2) > kMeisteZellen;
        std::string html; // row by row, because the values of all cells take much memory
        if (!werte["too_many"])
            for (const auto& [name, zeile] : zeilen_)
                html += fuelleVorlage(kZeilenvorlage, zeileAlsWerte(name, zeile));
        werte["rows"] = std::move(html);
        werte["sums"] = summenAlsWerte();
        return werte;
    }

private:
    Json zelle(const Json* vorher, const Json* nachher) const {
        Json werte =
            vergleich_ ? vergleichszelle(plugins_, vorher, nachher) : deckungszelle(plugins_, nachher);
        if (spalten_.size() > kMitNamenBis)
            werte["name"] = nullptr;
        return werte;
    }

    Json zeileAlsWerte(const Zeilenname& zeilenname, const Paar& zeile) {
        const Json name = typ_["by_sub_case_type_and_period"] ? zeile.eines()["sub_case_type"]["name"]
                                                              : seitentexte()["any"];
        const std::int64_t nummer = typ_["type"]["number"];
        Json zellen = Json::array();
        std::int64_t anzahl = 0;
        bool weiter = false; // whether the last entry of the gaps goes on
        for (std::size_t i = 0; i < spalten_.size(); ++i) {
            const Spalte& spalte = spalten_[i];
            Json werte = zelle(antwort(zeile.vorher, spalte.von), antwort(zeile.nachher, spalte.von));
            const std::string klasse = werte["class"];
            const bool offen = klasse == "gap";
            const auto verlangt = verlangtes_.lower_bound({nummer, zeilenname, spalte.von});
            if (offen && verlangt != verlangtes_.end() &&
                *verlangt <= std::tuple(nummer, zeilenname, spalte.bis)) {
                werte["required"] = true;
                werte["text"] = "!";
            }
            std::vector<std::int64_t>& summe = summen_[klasse];
            summe.resize(spalten_.size());
            summe[i] += spalte.jahre();
            if (vergleich_ ? !offen && klasse != "same" : offen)
                anzahl += spalte.jahre();
            const bool merkenswert = vergleich_
                                         ? klasse == "lost" || klasse == "lower"
                                         : offen && (werte["required"].is_null() || spalte.jahre() > 1);
            if (merkenswert)
                merke(name, spalte, werte["title"], weiter);
            weiter = merkenswert;
            zellen.push_back(std::move(werte));
        }
        if (andere_) {
            zellen.push_back(zelle(andereJahre(zeile.vorher), andereJahre(zeile.nachher)));
            if (zellen.back()["class"] == "gap") // only the years of the columns have gaps
                zellen.back()["class"] = "none";
        }
        return {{"name", name}, {"cells", std::move(zellen)}, {"count", anzahl}};
    }

    /// A gap or loss, which may be the next older part of the last one.
    void merke(const Json& unterfallart, const Spalte& spalte, const Json& titel, bool weiter) {
        if (!weiter || luecken_.back()["title"] != titel)
            luecken_.push_back({{"type", typ_["type"]},
                                {"sub_case_type", unterfallart},
                                {"to", spalte.bis},
                                {"title", titel},
                                {"line", nullptr}});
        luecken_.back()["years"] = jahresbereich(spalte.von, luecken_.back()["to"]);
    }

    Json summenAlsWerte() {
        Json liste = Json::array();
        for (const Json& art : seitentexte()[vergleich_ ? "changes" : "answers"]) {
            const auto summe = summen_.find(art["class"].get<std::string>());
            if (summe == summen_.end() || summe->first == "same")
                continue;
            std::int64_t gesamt = 0;
            for (const std::int64_t zahl : summe->second)
                gesamt += zahl;
            liste.push_back({{"class", summe->first},
                             {"text", art["short"]},
                             {"values", summe->second},
                             {"total", gesamt}});
        }
        return liste;
    }

    const Seitenplugins& plugins_;
    const Verlangtes& verlangtes_;
    const Json& typ_;
    bool vergleich_;
    Json& luecken_;
    bool andere_ = false; ///< whether some row has an answer for the years beside the columns
    std::map<Zeilenname, Paar> zeilen_;
    Spalten spalten_;
    std::map<std::string, std::vector<std::int64_t>> summen_; ///< cells by class, for each column
};

/// How many cells each plugin serves in each column of the years, over all kinds.
std::map<std::string, std::vector<std::int64_t>> bedienteZellen(const Json& typen, const Spalten& jahre) {
    std::map<std::string, std::vector<std::int64_t>> zahlen;
    for (const Json& typ : typen)
        for (const Json& zeile : typ["rows"])
            for (std::size_t i = 0; i < jahre.size(); ++i) {
                if (typ["first_year"].is_null() || jahre[i].von < typ["first_year"] ||
                    jahre[i].bis > typ["last_year"])
                    continue;
                if (const Json* const zelle = antwort(&zeile, jahre[i].von); istBedient(zelle)) {
                    std::vector<std::int64_t>& zahl = zahlen[(*zelle)["plugin"]["file"]];
                    zahl.resize(jahre.size());
                    zahl[i] += jahre[i].jahre();
                }
            }
    return zahlen;
}

Json pluginsAlsWerte(const Seitenplugins& plugins, const Json& typen, const Spalten& jahre, bool vergleich) {
    const std::map<std::string, std::vector<std::int64_t>> zahlen = bedienteZellen(typen, jahre);
    const std::vector<std::int64_t> keine(jahre.size());
    Json liste = Json::array();
    for (const auto& [datei, plugin] : plugins) {
        const auto zahl = zahlen.find(datei);
        const auto stand = [](const Json* einer) { return einer ? *einer : Json(nullptr); };
        const auto version = [](const Json* einer) {
            return einer ? (*einer)["product_version"].get<std::string>() : std::string("–");
        };
        const auto& [vorher, nachher] = plugin.staende;
        liste.push_back({{"mark", plugin.zeichen},
                         {"color", plugin.farbe},
                         {"name", plugin.name},
                         {"file", datei},
                         {"now", plugin.staende.eines()},
                         {"before", stand(vorher)},
                         {"after", stand(nachher)},
                         {"versions", !vergleich || version(vorher) == version(nachher)
                                          ? version(nachher)
                                          : version(vorher) + " › " + version(nachher)},
                         {"values", zahl == zahlen.end() ? keine : zahl->second}});
    }
    return liste;
}

/// The texts of the document, but for what is the same in every language.
void uebersetze(Json& texte) {
    if (texte.is_string())
        texte = uebersetzt(texte.get<std::string>());
    else if (texte.is_structured())
        for (auto&& [name, text] : texte.items())
            if (name != "class" && name != "example")
                uebersetze(text);
}

std::string jetzt() {
    const std::time_t zeit = std::time(nullptr);
    char text[32] = "";
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", std::gmtime(&zeit));
    return text;
}

} // namespace

const Json& seitentexte() {
    static const Json texte = [] {
        const Englisch auchBeiJson(false);
        Json alle = Json::parse(kSeitentexte);
        uebersetze(alle);
        return alle;
    }();
    return texte;
}

std::string jahresbereich(std::int64_t von, std::int64_t bis) {
    return std::to_string(von) + (von == bis ? "" : "–" + std::to_string(bis));
}

Json kachel(const char* was, std::int64_t zahl, bool schlecht, const char* ziel) {
    return {{"text", seitentexte()[was]}, {"value", zahl}, {"bad", schlecht}, {"target", ziel}};
}

Json seitenwerte(const Json* vorher, const Json& nachher) {
    const Seitenplugins plugins(Paar{vorher, &nachher});
    const Verlangtes verlangtes = fehlendes(nachher["required"]);
    std::map<std::int64_t, Paar> typen;
    std::vector<const Json*> mitJahren;
    for (const Json* const dokument : {vorher, &nachher})
        if (dokument)
            for (const Json& typ : (*dokument)["types"]) {
                Paar& paar = typen[typ["type"]["number"].get<std::int64_t>()];
                (dokument == &nachher ? paar.nachher : paar.vorher) = &typ;
                if (!typ["first_year"].is_null())
                    mitJahren.push_back(&typ);
            }
    Json werte{{"diff", vorher != nullptr},
               {"kinds", Json::array()},
               {"gaps", Json::array()},
               {"notes", Json::array()},
               {"years", Json::array()},
               {"names", Json::object()},
               {"other_directory", nullptr},
               {"required_file", nullptr},
               {"legend", seitentexte()[vorher ? "changes" : "answers"]}};
    for (const auto& [nummer, typ] : typen) {
        werte["kinds"].push_back(
            Seitentabelle(plugins, verlangtes, typ, vorher != nullptr, werte["gaps"]).alsWerte());
        if (werte["kinds"].back()["too_many"]) // its years are too many for the plugins, too
            mitJahren.clear();
    }
    const Spalten jahre = spaltenVon(mitJahren);
    for (const Spalte& spalte : jahre)
        werte["years"].push_back(
            {{"from", spalte.von}, {"to", spalte.bis}, {"head", jahresbereich(spalte.von, spalte.bis)}});
    werte["plugins"] = pluginsAlsWerte(plugins, nachher["types"], jahre, vorher != nullptr);
    for (const auto& [datei, plugin] : plugins)
        werte["names"][datei] = plugin.name;
    return werte;
}

std::string alsSeite(Json werte, const Json& dokument, const Optionen& optionen) {
    werte["directory"] = dokument["plugin_directory"];
    for (const Json& verzeichnis : dokument["unreadable_directories"])
        werte["notes"].push_back(
            {{"what", verzeichnis["path"]}, {"state", nullptr}, {"text", verzeichnis["reason"]}});
    werte["t"] = seitentexte();
    for (const char* const liste : {"kinds", "gaps", "notes"})
        werte[std::string(liste) + "_any"] = !werte[liste].empty();
    werte["texts"] = seitentexte()["script"].dump();
    werte["style"] = kSeitenstil;
    werte["style_hash"] = kStilpruefsumme;
    werte["script"] = kSeitenskript;
    werte["script_hash"] = kSkriptpruefsumme;
    werte["time"] = jetzt();
    werte["versions"] = versionen();
    werte["command"] = optionen.aufruf;
    return fuelleVorlage(kSeitenvorlage, werte);
}

} // namespace werkzeug
