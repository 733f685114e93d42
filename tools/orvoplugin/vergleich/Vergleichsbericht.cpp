#include "vergleich/Vergleichsbericht.h"

#include "bestandsliste/Inhalt.h"
#include "kern/Antwort.h"
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

/// The extension that holds the key, and by which match; null when its service cannot be had.
Json antwort(const Bestand& bestand, const SchluesselFakt& schluessel,
             std::int32_t treffer = RegisterAuskunft::GENAU) {
    if (!bestand.erweiterung(schluessel.inhaber).istZuHaben())
        return nullptr;
    return {{"match", treffercode(treffer)}, {"plugin", anbieterAlsJson(bestand, schluessel.inhaber)}};
}

/// The keys whose service can be had, as far as is known.
std::vector<const SchluesselFakt*> zuHabende(const Bestand& bestand) {
    std::vector<const SchluesselFakt*> liste;
    for (const SchluesselFakt& schluessel : bestand.schluessel)
        if (bestand.erweiterung(schluessel.inhaber).istZuHaben())
            liste.push_back(&schluessel);
    return liste;
}

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
        const auto& ohneZeitraum = zeile->second->ohneZeitraum;
        if (schluessel.zeitraum.jahr == 0)
            return ohneZeitraum ? antwort(bestand_, bestand_.schluessel.at(*ohneZeitraum)) : Json(nullptr);
        for (const SpanneFakt& spanne : zeile->second->spannen)
            if (spanne.von <= schluessel.zeitraum.jahr && schluessel.zeitraum.jahr <= spanne.bis &&
                spanne.treffer != RegisterAuskunft::KEINER)
                return antwort(bestand_, bestand_.schluessel.at(spanne.schluessel), spanne.treffer);
        return nullptr;
    }

private:
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
        const auto listeA = zuHabende(vorher_), listeB = zuHabende(nachher_);
        auto a = listeA.begin();
        auto b = listeB.begin();
        while (a != listeA.end() || b != listeB.end()) {
            const bool nurA =
                b == listeB.end() || (a != listeA.end() && schluesselrang(**a) < schluesselrang(**b));
            const bool nurB = !nurA && (a == listeA.end() || schluesselrang(**b) < schluesselrang(**a));
            if (nurA)
                nimmAuf("lost", true, vorher_, **a, antwort(vorher_, **a), auskunftNachher_.fuer(**a));
            else if (nurB)
                nimmAuf("gained", false, nachher_, **b, auskunftVorher_.fuer(**b), antwort(nachher_, **b));
            else
                beide(**a, **b);
            a += nurB ? 0 : 1;
            b += nurA ? 0 : 1;
        }
        return std::move(liste_);
    }

private:
    void nimmAuf(const char* aenderung, bool befund, const Bestand& bestand, const SchluesselFakt& schluessel,
                 Json vorher, Json nachher, bool niedriger = false) {
        Json rest = schluesselteil(bestand, schluessel);
        rest["lower_version"] = niedriger;
        rest["before"] = std::move(vorher);
        rest["after"] = std::move(nachher);
        liste_.push_back(eintrag(aenderung, befund, rest));
    }
    void beide(const SchluesselFakt& a, const SchluesselFakt& b) {
        const std::string& versionVorher = vorher_.plugin(a.inhaber).produktVersion;
        const std::string& versionNachher = nachher_.plugin(b.inhaber).produktVersion;
        const bool andererAnbieter =
            kurzerPfad(vorher_, vorher_.datei(a.inhaber)) != kurzerPfad(nachher_, nachher_.datei(b.inhaber));
        if (!andererAnbieter && versionVorher == versionNachher)
            return;
        const bool niedriger = OrvoVersion(versionVorher) > OrvoVersion(versionNachher);
        nimmAuf(andererAnbieter ? "provider_changed" : "version_changed", niedriger, nachher_, b,
                antwort(vorher_, a), antwort(nachher_, b), niedriger);
    }

    const Bestand& vorher_;
    const Bestand& nachher_;
    const Auskunft auskunftVorher_;
    const Auskunft auskunftNachher_;
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
            const ErweiterungsOrt* const wer = verlierer(ereignis);
            if (wer && wer->datei != schluessel.inhaber.datei) // else the plugin has the key anyway
                verluste.insert_or_assign(
                    {schluesselrang(schluessel), kurzerPfad(bestand, bestand.datei(*wer))},
                    Verlust{&schluessel, *wer, ereignis.regel});
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
        rest["explanation"] = uebersetzt(regelsatz(verlust.regel));
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
    json.update(inhaltAlsJson(datei->inhalt, datei->plugin));
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
