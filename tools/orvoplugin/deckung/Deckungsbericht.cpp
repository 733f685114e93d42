#include "deckung/Deckungsbericht.h"

#include "kern/Berichtsteile.h"
#include "kern/Gruende.h"

#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <algorithm>
#include <map>
#include <set>

namespace werkzeug {

namespace {

using Zeilen = std::vector<const ZeileFakt*>;

bool istEigene(const SpanneFakt& spanne) {
    return spanne.treffer == RegisterAuskunft::GENAU || spanne.treffer == RegisterAuskunft::GLEICHES_JAHR;
}

const char* antwortcode(const Bestand& bestand, const SpanneFakt& spanne) {
    if (spanne.treffer == RegisterAuskunft::KEINER)
        return "gap";
    if (!bestand.erweiterung(bestand.schluessel.at(spanne.schluessel).inhaber).istZuHaben())
        return "broken";
    return istEigene(spanne) ? "served" : "fallback";
}

/// The total of a cell's answer.
std::string summenname(const Json& zelle) { return zelle["answer"] == "gap" ? "gaps" : zelle["answer"]; }

/// The period of an extension that does not cover the whole year: "2009-05", "2009Q2".
Json teiljahre(const SchluesselFakt& schluessel) {
    std::vector<std::string> texte;
    bool feiner = false;
    for (const SchluesselEreignis& ereignis : schluessel.ereignisse) {
        if (!(ereignis.wer == schluessel.inhaber))
            continue;
        const std::int32_t typ = ereignis.zeitraum.typ;
        feiner = feiner || typ == Veranlagungszeitraum::TAG || typ == Veranlagungszeitraum::MONAT ||
                 typ == Veranlagungszeitraum::QUARTAL || typ == Veranlagungszeitraum::QUARTAL_ALTERNATIV;
        const std::string text = anzeige(ereignis.zeitraum);
        if (std::find(texte.begin(), texte.end(), text) == texte.end())
            texte.push_back(text);
    }
    Json liste = Json::array();
    if (feiner)
        for (const std::string& text : texte)
            liste.push_back(text);
    return liste;
}

Json zelleAlsJson(const Bestand& bestand, const SpanneFakt& spanne) {
    Json zelle{{"from", spanne.von}, {"to", spanne.bis}, {"answer", antwortcode(bestand, spanne)}};
    if (spanne.treffer == RegisterAuskunft::KEINER)
        return zelle;
    const SchluesselFakt& schluessel = bestand.schluessel.at(spanne.schluessel);
    zelle["plugin"] = anbieterAlsJson(bestand, schluessel.inhaber);
    zelle["runner_up"] = schluessel.zweiter ? anbieterAlsJson(bestand, *schluessel.zweiter) : Json(nullptr);
    zelle["periods"] = teiljahre(schluessel);
    return zelle;
}

/// The columns of a kind: the years that any of its rows has an entry for, and the gaps between them.
struct Jahre {
    std::set<std::int32_t> eigene;

    explicit Jahre(const Zeilen& zeilen) {
        for (const ZeileFakt* const zeile : zeilen)
            for (const SpanneFakt& spanne : zeile->spannen)
                if (istEigene(spanne))
                    eigene.insert(spanne.von);
    }

    /// A few years without an entry are shown one by one, more of them together.
    Json spalten() const {
        constexpr std::int64_t kEinzeln = 5;
        Json spalten = Json::array();
        const auto spalte = [&](std::int64_t von, std::int64_t bis) {
            spalten.push_back({{"from", von}, {"to", bis}});
        };
        std::int64_t voriges = eigene.empty() ? 0 : *eigene.begin() - std::int64_t{1};
        for (const std::int32_t jahr : eigene) {
            if (jahr - voriges - 1 > kEinzeln)
                spalte(voriges + 1, jahr - std::int64_t{1});
            else
                for (std::int64_t luecke = voriges + 1; luecke < jahr; ++luecke)
                    spalte(luecke, luecke);
            spalte(jahr, jahr);
            voriges = jahr;
        }
        return spalten;
    }
};

Json zeileAlsJson(const Bestand& bestand, const ZeileFakt& zeile, const Jahre& jahre, Json& summen) {
    Json zellen = Json::array();
    const SpanneFakt* ausserhalb = nullptr;
    std::int64_t luecken = 0;
    for (const SpanneFakt& spanne : zeile.spannen) {
        SpanneFakt teil = spanne;
        if (jahre.eigene.empty() || spanne.bis < *jahre.eigene.begin() ||
            spanne.von > *jahre.eigene.rbegin()) {
            ausserhalb = &spanne;
            continue;
        }
        if (spanne.von < *jahre.eigene.begin() || spanne.bis > *jahre.eigene.rbegin())
            ausserhalb = &spanne;
        teil.von = std::max(spanne.von, *jahre.eigene.begin());
        teil.bis = std::min(spanne.bis, *jahre.eigene.rbegin());
        Json zelle = zelleAlsJson(bestand, teil);
        const std::int64_t anzahl = std::int64_t{teil.bis} - teil.von + 1;
        const std::string wohin = summenname(zelle);
        summen[wohin] = summen[wohin].get<std::int64_t>() + anzahl;
        if (teil.treffer == RegisterAuskunft::KEINER)
            luecken += anzahl;
        else if (!zelle["runner_up"].is_null())
            summen["contested"] = summen["contested"].get<std::int64_t>() + anzahl;
        zellen.push_back(std::move(zelle));
    }
    Json json{{"sub_case_type", alsJson(zeile.unterfallart)}, {"gaps", luecken}};
    json["cells"] = std::move(zellen);
    json["other_years"] = nullptr;
    if (ausserhalb && ausserhalb->treffer != RegisterAuskunft::KEINER) {
        json["other_years"] = zelleAlsJson(bestand, *ausserhalb);
        json["other_years"].erase("from");
        json["other_years"].erase("to");
    }
    return json;
}

/// Whether the kind has sub-case types and periods; tax-office data have none.
bool hatPaare(const Bestand& bestand, std::int32_t typ) {
    for (const SchluesselFakt& schluessel : bestand.schluessel)
        if (schluessel.typ == typ)
            return bestand.erweiterung(schluessel.inhaber).bedientUnterfallarten;
    return true;
}

Json typAlsJson(const Bestand& bestand, const Zeilen& zeilen) {
    const Jahre jahre(zeilen);
    const bool paare = hatPaare(bestand, zeilen.front()->typ);
    Json json{{"type", werkzeug::typAlsJson(zeilen.front()->typ, zeilen.front()->typName)},
              {"by_sub_case_type_and_period", paare}};
    const bool ohneJahre = jahre.eigene.empty() || !paare;
    json["first_year"] = ohneJahre ? Json(nullptr) : Json(*jahre.eigene.begin());
    json["last_year"] = ohneJahre ? Json(nullptr) : Json(*jahre.eigene.rbegin());
    json["columns"] = jahre.spalten();
    Json& summen = json["totals"];
    summen = {{"sub_case_types", zeilen.size()},
              {"served", 0},
              {"fallback", 0},
              {"broken", 0},
              {"gaps", 0},
              {"contested", 0}};
    Json reihen = Json::array();
    for (const ZeileFakt* const zeile : zeilen)
        reihen.push_back(zeileAlsJson(bestand, *zeile, jahre, summen));
    json["rows"] = std::move(reihen);
    return json;
}

/// The plugins of the tables, by name, each with its mark.
class Beteiligte {
public:
    void nimmAuf(const Json& typ) {
        for (const Json& zeile : typ["rows"]) {
            for (const Json& zelle : zeile["cells"])
                nimmZelleAuf(zelle, zelle["to"].get<std::int64_t>() - zelle["from"].get<std::int64_t>() + 1);
            if (!zeile["other_years"].is_null())
                nimmZelleAuf(zeile["other_years"], 0);
        }
    }
    Json alsJson() && {
        Json liste = Json::array();
        for (auto& [datei, plugin] : plugins_) {
            plugin["mark"] = merkzeichen(liste.size());
            liste.push_back(std::move(plugin));
        }
        return liste;
    }

private:
    void nimmZelleAuf(const Json& zelle, std::int64_t jahre) {
        if (!zelle.contains("plugin"))
            return;
        zaehle(zelle["plugin"], "serves", zelle["answer"] == "broken" ? 0 : jahre);
        if (!zelle["runner_up"].is_null())
            zaehle(zelle["runner_up"], "runner_up", jahre);
    }
    void zaehle(const Json& anbieter, const char* als, std::int64_t jahre) {
        Json& plugin = plugins_[anbieter["file"].get_ref<const std::string&>()];
        if (plugin.is_null()) {
            plugin["mark"] = nullptr;
            plugin.update(anbieter);
            plugin["serves"] = 0;
            plugin["runner_up"] = 0;
        }
        plugin[als] = plugin[als].get<std::int64_t>() + jahre;
    }

    std::map<std::string, Json> plugins_;
};

/// The required cells, served or not.
Json verlangtesAlsJson(const Bestand& bestand, const Deckungswunsch& wunsch) {
    Json zellen = Json::array();
    std::size_t fehlen = 0;
    std::size_t antwort = 0;
    for (const VerlangteZelle& verlangte : wunsch.zellen) {
        Json zelle{
            {"line", verlangte.zeile},
            {"type", werkzeug::typAlsJson(
                         verlangte.typ, erweiterungTypName(static_cast<tag_erweiterung_typ>(verlangte.typ)))},
            {"sub_case_type", nullptr},
            {"period", nullptr},
            {"match", nullptr},
            {"plugin", nullptr},
            {"service", nullptr}};
        const SchluesselFakt* schluessel = nullptr;
        if (verlangte.frage) {
            zelle["sub_case_type"] = jsonText(verlangte.unterfallart);
            zelle["period"] = jsonText(verlangte.zeitraum);
            const AntwortFakt& gefunden = bestand.antworten.at(antwort++);
            if (gefunden.treffer != RegisterAuskunft::KEINER) {
                schluessel = &bestand.schluessel.at(gefunden.schluessel);
                zelle["match"] = treffercode(gefunden.treffer);
            }
        } else {
            for (const SchluesselFakt& kandidat : bestand.schluessel)
                if (!schluessel && kandidat.typ == verlangte.typ)
                    schluessel = &kandidat;
        }
        bool istZuHaben = false;
        if (schluessel) {
            const ErweiterungFakt& erweiterung = bestand.erweiterung(schluessel->inhaber);
            istZuHaben = erweiterung.istZuHaben();
            zelle["plugin"] = anbieterAlsJson(bestand, schluessel->inhaber);
            zelle["service"] = serviceAlsJson(erweiterung);
        }
        fehlen += istZuHaben ? 0 : 1;
        zelle["served"] = istZuHaben;
        zellen.push_back(std::move(zelle));
    }
    return {{"file", jsonText(wunsch.anforderung)}, {"missing", fehlen}, {"cells", std::move(zellen)}};
}

/// The extensions that hold keys and whose service cannot be had; those of one factory once.
Json kaputteAlsJson(const Bestand& bestand, const Deckungswunsch& wunsch) {
    Json liste = Json::array();
    for (const ErweiterungsOrt& ort : bestand.inhaber()) {
        const ErweiterungFakt& erweiterung = bestand.erweiterung(ort);
        if (erweiterung.istZuHaben() || (wunsch.typ && *wunsch.typ != erweiterung.typ))
            continue;
        Json eine{{"plugin", anbieterAlsJson(bestand, ort)},
                  {"type", werkzeug::typAlsJson(erweiterung.typ, erweiterung.typName)},
                  {"factory", jsonText(erweiterung.factory)},
                  {"service", serviceAlsJson(erweiterung)}};
        if (liste.empty() || liste.back() != eine)
            liste.push_back(std::move(eine));
    }
    return liste;
}

} // namespace

std::string merkzeichen(std::size_t nummer) {
    std::string zeichen;
    for (std::size_t rest = nummer + 1; rest > 0; rest = (rest - 1) / 26)
        zeichen.insert(zeichen.begin(), static_cast<char>('A' + (rest - 1) % 26));
    return zeichen;
}

Auftrag deckungsauftrag(const Deckungswunsch& wunsch) {
    Auftrag auftrag;
    auftrag.deckung = true;
    auftrag.exporteVon = "*";
    for (const VerlangteZelle& zelle : wunsch.zellen)
        if (zelle.frage)
            auftrag.fragen.push_back(*zelle.frage);
    return auftrag;
}

Json deckungsbericht(const Bestand& bestand, const Deckungswunsch& wunsch) {
    std::map<std::int32_t, Zeilen> nachTyp;
    for (const ZeileFakt& zeile : bestand.zeilen)
        if (!wunsch.typ || *wunsch.typ == zeile.typ)
            nachTyp[zeile.typ].push_back(&zeile);

    Json dokument = jsonKopf("coverage", bestand.suchpfad);
    Json typen = Json::array();
    Beteiligte beteiligte;
    for (const auto& [typ, zeilen] : nachTyp) {
        typen.push_back(typAlsJson(bestand, zeilen));
        beteiligte.nimmAuf(typen.back());
    }
    dokument["types"] = std::move(typen);
    dokument["plugins"] = std::move(beteiligte).alsJson();
    dokument["required"] = wunsch.anforderung.empty() ? Json(nullptr) : verlangtesAlsJson(bestand, wunsch);
    dokument["broken"] = kaputteAlsJson(bestand, wunsch);
    Json ausfaelle = Json::array();
    for (const DateiFakt& datei : bestand.dateien)
        if (datei.zustand >= Zustand::ABGELEHNT)
            ausfaelle.push_back(werkzeug::zeileAlsJson(bestand, datei));
    dokument["not_loaded"] = std::move(ausfaelle);
    dokument["unreadable_directories"] = unlesbareAlsJson(bestand);
    return dokument;
}

} // namespace werkzeug
