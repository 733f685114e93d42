#include "check/CheckAusgabe.h"

#include "check/Text.h"
#include "kern/Anzeige.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <string_view>
#include <utility>

namespace werkzeug::check {

namespace {

constexpr Urteil kUrteile[] = {Urteil::BESTANDEN,     Urteil::DURCHGEFALLEN, Urteil::WARNUNG,
                               Urteil::UEBERSPRUNGEN, Urteil::ABGESTUERZT,   Urteil::ZU_LANGSAM};

std::map<Urteil, std::size_t> anzahlen(const Dateiergebnis& datei) {
    std::map<Urteil, std::size_t> anzahlen;
    for (const Pruefergebnis& e : datei.ergebnisse)
        ++anzahlen[e.befund.urteil];
    return anzahlen;
}

Ausgang ausgangVon(const Dateiergebnis& datei) {
    Ausgang ausgang = datei.fehler.empty() ? Ausgang::GUT : Ausgang::NICHT_LESBAR;
    for (const Pruefergebnis& e : datei.ergebnisse)
        ausgang = schwerster(ausgang, artVon(e.befund.urteil).ausgang);
    return ausgang;
}

struct Dateiurteilsname {
    const char* kennung;
    const char* name;
    Farbe farbe;
};

/// In the order of `Dateiurteil`.
constexpr Dateiurteilsname kDateiurteile[] = {{"passed", N_("passed"), Farbe::GRUEN},
                                              {"with_warnings", N_("with warnings"), Farbe::GELB},
                                              {"failed", N_("failed"), Farbe::ROT},
                                              {"crashed", N_("crashed"), Farbe::ROT},
                                              {"unreadable", N_("unreadable"), Farbe::ROT}};

std::size_t anzahl(const std::vector<Dateiergebnis>& ergebnisse, Dateiurteil urteil) {
    return static_cast<std::size_t>(
        std::count_if(ergebnisse.begin(), ergebnisse.end(),
                      [&](const auto& datei) { return urteilUeber(datei) == urteil; }));
}

std::string aufgefuellt(std::string text, std::size_t breite) {
    return text.append(breite - std::min(breite, anzeigebreite(text)), ' ');
}

std::string summe(const Dateiergebnis& datei) {
    std::string text;
    for (const auto& [urteil, n] : anzahlen(datei))
        text += (text.empty() ? "  " : ", ") + (urteil == Urteil::WARNUNG
                                                    ? werkzeug::anzahl(n, "warning", "warnings")
                                                    : std::to_string(n) + " " + urteilName(urteil));
    return text + "\n";
}

std::string zeile(Urteil urteil, const std::string& rest, const Farben& farben) {
    std::size_t breite = 0;
    for (const Urteil eines : kUrteile)
        breite = std::max(breite, anzeigebreite(urteilName(eines)));
    return "  " + farben(artVon(urteil).farbe, aufgefuellt(urteilName(urteil), breite)) + "  " + rest + "\n";
}

Json alsJson(const Dateiergebnis& datei) {
    Json json{{"file", jsonText(datei.pfad)}};
    json["error"] = datei.fehler.empty() ? Json() : Json(datei.fehler);
    json["conformant"] = ausgangVon(datei) == Ausgang::GUT;
    auto zahlen = anzahlen(datei);
    for (const Urteil urteil : kUrteile)
        json["totals"][artVon(urteil).kennung] = zahlen[urteil];
    json["checks"] = Json::array();
    for (const Pruefergebnis& e : datei.ergebnisse)
        json["checks"].push_back({{"name", e.pruefung->name},
                                  {"result", artVon(e.befund.urteil).kennung},
                                  {"code", e.befund.code.empty() ? Json() : Json(e.befund.code)},
                                  {"reason", e.befund.grund()},
                                  {"figures", e.befund.zahlen}});
    return json;
}

} // namespace

Ausgang ausgangVon(const std::vector<Dateiergebnis>& ergebnisse) {
    Ausgang ausgang = Ausgang::GUT;
    for (const Dateiergebnis& datei : ergebnisse)
        ausgang = schwerster(ausgang, ausgangVon(datei));
    return ausgang;
}

Dateiurteil urteilUeber(const Dateiergebnis& datei) {
    switch (ausgangVon(datei)) {
    case Ausgang::GUT:
        return anzahlen(datei).contains(Urteil::WARNUNG) ? Dateiurteil::MIT_WARNUNGEN
                                                         : Dateiurteil::BESTANDEN;
    case Ausgang::BEFUNDE:
        return Dateiurteil::DURCHGEFALLEN;
    case Ausgang::ABGESTUERZT:
        return Dateiurteil::ABGESTUERZT;
    default:
        return Dateiurteil::UNLESBAR;
    }
}

std::map<std::string, std::size_t> uebersprungeneNach(const Dateiergebnis& datei) {
    std::map<std::string, std::size_t> anzahlen;
    for (const Pruefergebnis& e : datei.ergebnisse)
        if (e.befund.code == kBautAuf)
            ++anzahlen[e.befund.text];
    return anzahlen;
}

std::string dateitext(const Dateiergebnis& datei, std::size_t nummer, std::size_t gesamt,
                      const Farben& farben) {
    const std::string pfad = farben(Farbe::FETT, einzeilig(datei.pfad));
    const Dateiurteilsname& urteil = kDateiurteile[static_cast<std::size_t>(urteilUeber(datei))];
    std::string text = gesamt == 1 ? pfad
                                   : satz("{1}/{2} {3}: {4}", nummer, gesamt, pfad,
                                          farben(urteil.farbe, uebersetzt(urteil.name)));
    text += '\n';
    std::size_t breite = 0;
    for (const Pruefergebnis& e : datei.ergebnisse)
        breite = std::max(breite, std::string_view(e.pruefung->name).size());
    auto uebersprungene = uebersprungeneNach(datei);
    for (const Pruefergebnis& e : datei.ergebnisse) {
        const std::size_t gleiche =
            e.befund.code == kBautAuf ? std::exchange(uebersprungene[e.befund.text], 0) : 1;
        if (gleiche > 1)
            text += "  " +
                    farben(Farbe::BLASS, satz("{1} skipped: they build on {2}", gleiche, e.befund.text)) +
                    "\n";
        else if (gleiche == 1)
            text += zeile(e.befund.urteil,
                          e.befund.grund().empty()
                              ? e.pruefung->name
                              : aufgefuellt(e.pruefung->name, breite) + "  " + e.befund.grund(),
                          farben);
    }
    return text + summe(datei);
}

std::string gemeinsamtext(const Dateiergebnis& datei, std::size_t gesamt, const Farben& farben) {
    std::string text;
    for (const Pruefergebnis& e : datei.ergebnisse)
        if (kommtZuletzt(*e.pruefung, gesamt) && istAuffaellig(e.befund.urteil))
            text +=
                zeile(e.befund.urteil,
                      std::string(e.pruefung->name) + "  " + einzeilig(datei.pfad) + ": " + e.befund.grund(),
                      farben);
    return text;
}

std::string schlusstext(const std::vector<Dateiergebnis>& ergebnisse) {
    if (ergebnisse.size() == 1)
        return {};
    std::string text;
    for (std::size_t i = 0; i < std::size(kDateiurteile); ++i)
        if (const std::size_t n = anzahl(ergebnisse, static_cast<Dateiurteil>(i)); n > 0)
            text +=
                (text.empty() ? ": " : ", ") + std::to_string(n) + " " + uebersetzt(kDateiurteile[i].name);
    return werkzeug::anzahl(ergebnisse.size(), "file", "files") + text + "\n";
}

Json ergebnisdokument(const std::vector<Dateiergebnis>& ergebnisse, bool nurAuffaellige) {
    Json json = jsonKopf("check");
    json["totals"] = {{"files", ergebnisse.size()}};
    for (std::size_t i = 0; i < std::size(kDateiurteile); ++i)
        json["totals"][kDateiurteile[i].kennung] = anzahl(ergebnisse, static_cast<Dateiurteil>(i));
    json["files"] = Json::array();
    for (const Dateiergebnis& datei : ergebnisse)
        if (!nurAuffaellige || urteilUeber(datei) != Dateiurteil::BESTANDEN)
            json["files"].push_back(alsJson(datei));
    return json;
}

void schreibeMeldungen(std::ostream& out, const std::vector<Dateiergebnis>& ergebnisse, bool auchBefunde) {
    for (const Dateiergebnis& datei : ergebnisse) {
        const std::string anfang = "orvoplugin: " + einzeilig(datei.pfad) + ": ";
        if (!datei.fehler.empty())
            out << anfang << (datei.istUnlesbar ? satz("cannot be read: {1}", datei.fehler) : datei.fehler)
                << '\n';
        if (!auchBefunde)
            continue;
        for (const Pruefergebnis& e : datei.ergebnisse)
            if (istAuffaellig(e.befund.urteil))
                out << anfang << urteilName(e.befund.urteil) << ": " << e.pruefung->name << ": "
                    << e.befund.grund() << '\n';
    }
}

Json listendokument(const std::vector<const Pruefung*>& auswahl) {
    Json json = jsonKopf("check");
    json["checks"] = Json::array();
    for (const Pruefung* const pruefung : auswahl)
        json["checks"].push_back(
            {{"name", pruefung->name}, {"sentence", pruefung->satz}, {"builds_on", pruefung->bautAuf}});
    return json;
}

std::string listentext(const Json& dokument, const Farben& farben) {
    const Json& pruefungen = dokument.at("checks");
    std::size_t breite = 0;
    for (const Json& pruefung : pruefungen)
        breite = std::max(breite, pruefung.at("name").get_ref<const std::string&>().size());
    std::string text;
    for (const Json& pruefung : pruefungen)
        text += farben(Farbe::FETT, aufgefuellt(pruefung.at("name").get<std::string>(), breite)) + "  " +
                uebersetzt(pruefung.at("sentence").get<std::string>()) + "\n";
    return text;
}

} // namespace werkzeug::check
