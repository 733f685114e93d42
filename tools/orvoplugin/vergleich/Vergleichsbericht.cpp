#include "vergleich/Vergleichsbericht.h"

#include "kern/Berichtsteile.h"
#include "kern/Gruende.h"
#include "kern/Ordnung.h"

#include <orvoutil/OrvoVersion.h>

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

namespace werkzeug {

namespace {

using orvo::orvoutil::OrvoVersion;

// --- Keys ---

/// Which plugin answers in a directory, by kind, sub-case type and year.
class Auskunft {
public:
    explicit Auskunft(const Bestand& bestand) : bestand_(bestand) {
        for (const ZeileFakt& zeile : bestand.zeilen)
            zeilen_.emplace(zeilenrang(zeile), &zeile);
    }

    /// {"match": "exact", "plugin": {...}} for the key of another directory; null without an answer here.
    Json fuer(const SchluesselFakt& schluessel) const {
        const auto zeile = zeilen_.find(zeilenrang(schluessel));
        if (zeile == zeilen_.end())
            return nullptr;
        if (schluessel.zeitraum.jahr == 0)
            return zeile->second->ohneZeitraum
                       ? antwort(*zeile->second->ohneZeitraum, RegisterAuskunft::GENAU)
                       : Json(nullptr);
        for (const SpanneFakt& spanne : zeile->second->spannen)
            if (spanne.von <= schluessel.zeitraum.jahr && schluessel.zeitraum.jahr <= spanne.bis)
                return spanne.treffer == RegisterAuskunft::KEINER
                           ? Json(nullptr)
                           : antwort(spanne.schluessel, spanne.treffer);
        return nullptr;
    }

private:
    Json antwort(std::uint32_t schluessel, std::int32_t treffer) const {
        return {{"match", treffercode(treffer)},
                {"plugin", anbieterAlsJson(bestand_, bestand_.schluessel.at(schluessel).inhaber)}};
    }

    const Bestand& bestand_;
    std::map<Zeilenrang, const ZeileFakt*> zeilen_;
};

/// Kind, sub-case type and year of a key; the latter two are null for a kind without them.
Json schluesselteil(const Bestand& bestand, const SchluesselFakt& schluessel) {
    const bool paare = bestand.erweiterung(schluessel.inhaber).bedientUnterfallarten;
    const bool jahr = paare && schluessel.zeitraum.jahr != 0;
    return {{"type", typAlsJson(schluessel.typ, schluessel.typName)},
            {"sub_case_type", paare ? alsJson(schluessel.unterfallart) : Json(nullptr)},
            {"year", jahr ? Json(schluessel.zeitraum.jahr) : Json(nullptr)}};
}

/// The entry for the document: the change, whether it is a finding, and the details.
Json eintrag(const char* aenderung, bool befund, const Json& rest) {
    Json json{{"change", aenderung}, {"finding", befund}};
    json.update(rest);
    return json;
}

class Schluesselvergleich {
public:
    Schluesselvergleich(const Bestand& vorher, const Bestand& nachher)
        : vorher_(vorher), nachher_(nachher), auskunftVorher_(vorher), auskunftNachher_(nachher) {}

    /// Both lists have the same order, so one pass over both finds the equal keys.
    Json alsJson() {
        auto a = vorher_.schluessel.begin();
        auto b = nachher_.schluessel.begin();
        while (a != vorher_.schluessel.end() || b != nachher_.schluessel.end()) {
            const int richtung = a == vorher_.schluessel.end()    ? 1
                                 : b == nachher_.schluessel.end() ? -1
                                                                  : vergleiche(*a, *b);
            if (richtung < 0)
                verloren(*a++);
            else if (richtung > 0)
                gewonnen(*b++);
            else
                beide(*a++, *b++);
        }
        return std::move(liste_);
    }

private:
    static int vergleiche(const SchluesselFakt& a, const SchluesselFakt& b) {
        const Schluesselrang rangVonA = schluesselrang(a);
        const Schluesselrang rangVonB = schluesselrang(b);
        return rangVonA < rangVonB ? -1 : rangVonB < rangVonA ? 1 : 0;
    }
    static Json eigene(const Bestand& bestand, const SchluesselFakt& schluessel) {
        return {{"match", treffercode(RegisterAuskunft::GENAU)},
                {"plugin", anbieterAlsJson(bestand, schluessel.inhaber)}};
    }

    void verloren(const SchluesselFakt& a) {
        Json rest = schluesselteil(vorher_, a);
        rest["lower_version"] = false;
        rest["before"] = eigene(vorher_, a);
        rest["after"] = auskunftNachher_.fuer(a);
        liste_.push_back(eintrag("lost", true, rest));
    }
    void gewonnen(const SchluesselFakt& b) {
        Json rest = schluesselteil(nachher_, b);
        rest["lower_version"] = false;
        rest["before"] = auskunftVorher_.fuer(b);
        rest["after"] = eigene(nachher_, b);
        liste_.push_back(eintrag("gained", false, rest));
    }
    void beide(const SchluesselFakt& a, const SchluesselFakt& b) {
        const std::string& versionVorher = vorher_.plugin(a.inhaber).produktVersion;
        const std::string& versionNachher = nachher_.plugin(b.inhaber).produktVersion;
        const bool andererAnbieter =
            kurzerPfad(vorher_, vorher_.datei(a.inhaber)) != kurzerPfad(nachher_, nachher_.datei(b.inhaber));
        if (!andererAnbieter && versionVorher == versionNachher)
            return;
        const bool niedriger = OrvoVersion(versionVorher) > OrvoVersion(versionNachher);
        Json rest = schluesselteil(nachher_, b);
        rest["lower_version"] = niedriger;
        rest["before"] = eigene(vorher_, a);
        rest["after"] = eigene(nachher_, b);
        liste_.push_back(eintrag(andererAnbieter ? "provider_changed" : "version_changed", niedriger, rest));
    }

    const Bestand& vorher_;
    const Bestand& nachher_;
    Auskunft auskunftVorher_;
    Auskunft auskunftNachher_;
    Json liste_ = Json::array();
};

// --- Plugins that do not get the keys that they offer ---

struct Verlust {
    const SchluesselFakt* schluessel;
    ErweiterungsOrt wer;
    std::int32_t regel;
};

using Verluste = std::map<std::pair<Schluesselrang, std::string>, Verlust>; // by key and file

Verluste verlusteIn(const Bestand& bestand) {
    Verluste verluste;
    for (const SchluesselFakt& schluessel : bestand.schluessel)
        for (const SchluesselEreignis& ereignis : schluessel.ereignisse) {
            if (ereignis.art == SchluesselEreignis::Art::EINGETRAGEN)
                continue;
            const ErweiterungsOrt& wer =
                ereignis.art == SchluesselEreignis::Art::VERDRAENGT ? ereignis.gegen : ereignis.wer;
            if (wer.datei != schluessel.inhaber.datei) // else the plugin has the key anyway
                verluste.insert_or_assign(
                    {schluesselrang(schluessel), kurzerPfad(bestand, bestand.datei(wer))},
                    Verlust{&schluessel, wer, ereignis.regel});
        }
    return verluste;
}

void nimmVerlusteAuf(Json& liste, const Bestand& bestand, const Verluste& hier, const Verluste& dort,
                     const char* aenderung, bool befund) {
    for (const auto& [wo, verlust] : hier) {
        if (dort.contains(wo))
            continue;
        Json rest = schluesselteil(bestand, *verlust.schluessel);
        rest["plugin"] = anbieterAlsJson(bestand, verlust.wer);
        rest["by"] = anbieterAlsJson(bestand, verlust.schluessel->inhaber);
        rest["rule"] = regelcode(verlust.regel);
        rest["explanation"] = regelsatz(verlust.regel);
        liste.push_back(eintrag(aenderung, befund, rest));
    }
}

// --- Files ---

bool istAusfall(const DateiFakt* datei) { return datei && datei->zustand >= Zustand::ABGELEHNT; }
bool istGeladen(const DateiFakt* datei) { return datei && datei->zustand == Zustand::GELADEN; }

Json dateiAlsJson(const Bestand& bestand, const DateiFakt* datei) {
    if (!datei)
        return nullptr;
    Json json = zeileAlsJson(bestand, *datei);
    json.erase("file");
    if (datei->pfad.empty()) // of a lock file
        json["path"] = nullptr;
    json["product_version"] = datei->plugin ? jsonText(datei->plugin->produktVersion) : Json(nullptr);
    json["file_version"] = datei->plugin ? jsonText(datei->plugin->fileVersion) : Json(nullptr);
    json.update(inhaltAlsJson(*datei));
    return json;
}

/// The change of a file, as a code; none for an unimportant change and for files that are no plugins in either
/// directory.
std::optional<std::pair<const char*, bool>> dateiaenderung(const DateiFakt* a, const DateiFakt* b) {
    using Aenderung = std::pair<const char*, bool>;
    const bool andererInhalt = a && b && a->inhalt && b->inhalt && a->inhalt != b->inhalt;
    const auto gleicheVersion = [&] {
        return andererInhalt ? std::optional(Aenderung("content_changed", false)) : std::nullopt;
    };
    if (istAusfall(b)) {
        if (!istAusfall(a))
            return Aenderung("newly_refused", true);
        const bool ausListe = a->grund == Grund::KEINER || b->grund == Grund::KEINER;
        if (a->zustand != b->zustand || (a->grund != b->grund && !ausListe))
            return Aenderung("reason_changed", false);
        return gleicheVersion();
    }
    if (istAusfall(a))
        return b ? Aenderung("no_longer_refused", false) : Aenderung("removed", false);
    if (istGeladen(a) && istGeladen(b)) {
        if (a->plugin->produktVersion != b->plugin->produktVersion ||
            a->plugin->fileVersion != b->plugin->fileVersion)
            return Aenderung("version_changed", false);
        return gleicheVersion();
    }
    if (istGeladen(a))
        return b ? Aenderung("no_longer_loaded", true) : Aenderung("removed", false);
    if (istGeladen(b))
        return Aenderung("added", false);
    return {};
}

Json dateien(const Bestand& vorher, const Bestand& nachher) {
    Json liste = Json::array();
    for (const auto& [name, paar] : dateipaare(vorher, nachher))
        if (const auto aenderung = dateiaenderung(paar.first, paar.second))
            liste.push_back(eintrag(aenderung->first, aenderung->second,
                                    {{"file", jsonText(name)},
                                     {"before", dateiAlsJson(vorher, paar.first)},
                                     {"after", dateiAlsJson(nachher, paar.second)}}));
    return liste;
}

// --- The document ---

/// How often each change occurs. All changes are listed, also those that do not occur.
struct Summenzeile {
    const char* was; ///< list of the document
    std::vector<const char*> aenderungen;
};

const Summenzeile kSummen[] = {
    {"files",
     {"newly_refused", "no_longer_loaded", "no_longer_refused", "reason_changed", "version_changed",
      "content_changed", "added", "removed"}},
    {"keys", {"lost", "gained", "provider_changed", "version_changed"}},
    {"displaced", {"newly_displaced", "no_longer_displaced"}},
};

Json summen(const Json& dokument) {
    Json summen{{"findings", 0}, {"changes", 0}};
    std::size_t befunde = 0;
    std::size_t alle = 0;
    for (const auto& [was, aenderungen] : kSummen) {
        std::map<std::string, std::size_t> zahlen;
        for (const Json& einer : dokument[was]) {
            ++zahlen[einer["change"]];
            ++alle;
            befunde += einer["finding"] ? 1 : 0;
        }
        for (const char* const aenderung : aenderungen)
            summen[was][aenderung] = zahlen[aenderung];
    }
    summen["findings"] = befunde;
    summen["changes"] = alle;
    return summen;
}

} // namespace

std::map<std::string, std::pair<const DateiFakt*, const DateiFakt*>> dateipaare(const Bestand& a,
                                                                                const Bestand& b) {
    std::map<std::string, std::pair<const DateiFakt*, const DateiFakt*>> paare;
    for (const DateiFakt& datei : a.dateien)
        paare[kurzerPfad(a, datei)].first = &datei;
    for (const DateiFakt& datei : b.dateien)
        paare[kurzerPfad(b, datei)].second = &datei;
    return paare;
}

Json inhaltAlsJson(const DateiFakt& datei) {
    return {{"size", datei.inhalt ? Json(datei.inhalt->groesse) : Json(nullptr)},
            {"sha256", datei.inhalt ? Json(datei.inhalt->sha256) : Json(nullptr)}};
}

Json vergleichsbericht(const Vergleichsseite& vorher, const Vergleichsseite& nachher, bool zusammengelegt) {
    Json dokument = jsonKopf("diff", vorher.verzeichnis);
    dokument["other_directory"] = jsonText(nachher.verzeichnis);
    dokument["merge"] = zusammengelegt;
    Json listen = Json::array();
    if (vorher.istListe)
        listen.push_back("before");
    if (nachher.istListe)
        listen.push_back("after");
    dokument["lock_files"] = std::move(listen);
    dokument["files"] = dateien(vorher.bestand, nachher.bestand);
    dokument["keys"] = Schluesselvergleich(vorher.bestand, nachher.bestand).alsJson();
    const bool ausListen = vorher.istListe || nachher.istListe;
    const Verluste verlusteVorher = ausListen ? Verluste() : verlusteIn(vorher.bestand);
    const Verluste verlusteNachher = ausListen ? Verluste() : verlusteIn(nachher.bestand);
    Json verdraengte = Json::array();
    nimmVerlusteAuf(verdraengte, nachher.bestand, verlusteNachher, verlusteVorher, "newly_displaced", true);
    nimmVerlusteAuf(verdraengte, vorher.bestand, verlusteVorher, verlusteNachher, "no_longer_displaced",
                    false);
    dokument["displaced"] = std::move(verdraengte);
    Json unlesbare = unlesbareAlsJson(vorher.bestand);
    for (Json& verzeichnis : unlesbareAlsJson(nachher.bestand))
        unlesbare.push_back(std::move(verzeichnis));
    dokument["unreadable_directories"] = std::move(unlesbare);
    dokument["totals"] = summen(dokument);
    return dokument;
}

} // namespace werkzeug
