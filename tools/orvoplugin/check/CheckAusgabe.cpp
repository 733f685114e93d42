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

std::size_t anzahl(const Dateiergebnis& datei, Urteil urteil) {
    return static_cast<std::size_t>(std::count_if(datei.ergebnisse.begin(), datei.ergebnisse.end(),
                                                  [&](const auto& e) { return e.befund.urteil == urteil; }));
}

Ausgang ausgangVon(Urteil urteil) {
    switch (urteil) {
    case Urteil::DURCHGEFALLEN:
        return Ausgang::BEFUNDE;
    case Urteil::ABGESTUERZT:
    case Urteil::ZU_LANGSAM:
        return Ausgang::ABGESTUERZT;
    default:
        return Ausgang::GUT;
    }
}

Ausgang ausgangVon(const Dateiergebnis& datei) {
    Ausgang ausgang = datei.unlesbar.empty() && datei.abbruch.empty() ? Ausgang::GUT : Ausgang::NICHT_LESBAR;
    for (const Pruefergebnis& e : datei.ergebnisse)
        ausgang = schwerster(ausgang, ausgangVon(e.befund.urteil));
    return ausgang;
}

Farbe farbe(Urteil urteil) {
    switch (urteil) {
    case Urteil::BESTANDEN:
        return Farbe::GRUEN;
    case Urteil::WARNUNG:
        return Farbe::GELB;
    case Urteil::UEBERSPRUNGEN:
        return Farbe::BLASS;
    default:
        return Farbe::ROT;
    }
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
    text.resize(std::max(text.size(), breite), ' ');
    return text;
}

/// Width of the column of names.
std::size_t namensbreite(const Json& pruefungen) {
    std::size_t breite = 0;
    for (const Json& pruefung : pruefungen)
        breite = std::max(breite, pruefung.at("name").get_ref<const std::string&>().size());
    return breite;
}

std::string summe(const std::map<Urteil, std::size_t>& anzahlen) {
    std::string text;
    for (const auto& [urteil, n] : anzahlen)
        text += (text.empty() ? "" : ", ") + std::to_string(n) + " " + urteilName(urteil) +
                (urteil == Urteil::WARNUNG && n > 1 ? "s" : "");
    return "  " + text + "\n";
}

std::string zeile(Urteil urteil, const std::string& rest, const Farben& farben) {
    constexpr std::size_t kBreite = 9;
    return "  " + farben(farbe(urteil), aufgefuellt(urteilName(urteil), kBreite)) + "  " + rest + "\n";
}

Json alsJson(const Dateiergebnis& datei) {
    Json json{{"file", jsonText(datei.pfad)}};
    const std::string& fehler = datei.unlesbar.empty() ? datei.abbruch : datei.unlesbar;
    json["error"] = fehler.empty() ? Json() : Json(fehler);
    json["conformant"] = ausgangVon(datei) == Ausgang::GUT;
    json["totals"] = Json::object();
    for (const Urteil urteil : kUrteile)
        json["totals"][urteilKennung(urteil)] = anzahl(datei, urteil);
    json["checks"] = Json::array();
    for (const Pruefergebnis& e : datei.ergebnisse)
        json["checks"].push_back({{"name", e.pruefung->name},
                                  {"result", urteilKennung(e.befund.urteil)},
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
        return anzahl(datei, Urteil::WARNUNG) > 0 ? Dateiurteil::MIT_WARNUNGEN : Dateiurteil::BESTANDEN;
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
    std::map<Urteil, std::size_t> anzahlen;
    for (const Pruefergebnis& e : datei.ergebnisse) {
        ++anzahlen[e.befund.urteil];
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
    return text + summe(anzahlen);
}

std::string gemeinsamtext(const Dateiergebnis& datei, std::size_t gesamt, const Farben& farben) {
    std::string text;
    for (const Pruefergebnis& e : datei.ergebnisse)
        if (kommtZuletzt(*e.pruefung, gesamt) && e.befund.urteil != Urteil::BESTANDEN &&
            e.befund.urteil != Urteil::UEBERSPRUNGEN)
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
        if (!datei.unlesbar.empty())
            out << anfang << "cannot be read: " << datei.unlesbar << '\n';
        if (!datei.abbruch.empty())
            out << anfang << datei.abbruch << '\n';
        if (!auchBefunde)
            continue;
        for (const Pruefergebnis& e : datei.ergebnisse)
            if (e.befund.urteil == Urteil::WARNUNG || ausgangVon(e.befund.urteil) != Ausgang::GUT)
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
    const std::size_t breite = namensbreite(pruefungen);
    std::string text;
    for (const Json& pruefung : pruefungen)
        text += farben(Farbe::FETT, aufgefuellt(pruefung.at("name").get<std::string>(), breite)) + "  " +
                uebersetzt(pruefung.at("sentence").get<std::string>()) + "\n";
    return text;
}

} // namespace werkzeug::check
