#include "check/CheckAusgabe.h"

#include "check/Text.h"
#include "kern/Anzeige.h"

#include <algorithm>
#include <ostream>

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
    Ausgang ausgang = datei.unlesbar.empty() ? Ausgang::GUT : Ausgang::NICHT_LESBAR;
    for (const Pruefergebnis& e : datei.ergebnisse)
        ausgang = schwerster(ausgang, ausgangVon(e.befund.urteil));
    return ausgang;
}

Farbe farbe(const std::string& kennung) {
    if (kennung == urteilKennung(Urteil::BESTANDEN))
        return Farbe::GRUEN;
    if (kennung == urteilKennung(Urteil::WARNUNG))
        return Farbe::GELB;
    return kennung == urteilKennung(Urteil::UEBERSPRUNGEN) ? Farbe::BLASS : Farbe::ROT;
}

/// The result's name for people.
std::string name(const std::string& kennung) {
    return kennung == urteilKennung(Urteil::ZU_LANGSAM) ? urteilName(Urteil::ZU_LANGSAM) : kennung;
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

std::string summe(const Json& anzahlen) {
    std::string text;
    for (const auto& [kennung, anzahl] : anzahlen.items())
        if (const auto n = anzahl.get<std::size_t>(); n > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(n) + " " + name(kennung) +
                    (kennung == urteilKennung(Urteil::WARNUNG) && n > 1 ? "s" : "");
    return text;
}

Json alsJson(const Dateiergebnis& datei) {
    Json json{{"file", jsonText(datei.pfad)}};
    json["error"] = datei.unlesbar.empty() ? Json() : Json(datei.unlesbar);
    json["conformant"] = ausgangVon(datei) == Ausgang::GUT;
    json["totals"] = Json::object();
    for (const Urteil urteil : kUrteile)
        json["totals"][urteilKennung(urteil)] = anzahl(datei, urteil);
    json["checks"] = Json::array();
    for (const Pruefergebnis& e : datei.ergebnisse)
        json["checks"].push_back({{"name", e.pruefung->name},
                                  {"result", urteilKennung(e.befund.urteil)},
                                  {"reason", e.befund.text}});
    return json;
}

std::string textVon(const Json& datei, const Farben& farben) {
    constexpr std::size_t kUrteilsbreite = 9;
    std::string text = farben(Farbe::FETT, einzeilig(datei.at("file").get<std::string>())) + "\n";
    const Json& pruefungen = datei.at("checks");
    const std::size_t breite = namensbreite(pruefungen);
    for (const Json& pruefung : pruefungen) {
        const auto kennung = pruefung.at("result").get<std::string>(),
                   grund = pruefung.at("reason").get<std::string>(),
                   wessen = pruefung.at("name").get<std::string>();
        text += "  " + farben(farbe(kennung), aufgefuellt(name(kennung), kUrteilsbreite)) + "  ";
        text += grund.empty() ? wessen : aufgefuellt(wessen, breite) + "  " + grund;
        text += '\n';
    }
    return text + "  " + summe(datei.at("totals")) + "\n";
}

} // namespace

Ausgang ausgangVon(const std::vector<Dateiergebnis>& ergebnisse) {
    Ausgang ausgang = Ausgang::GUT;
    for (const Dateiergebnis& datei : ergebnisse)
        ausgang = schwerster(ausgang, ausgangVon(datei));
    return ausgang;
}

Json ergebnisdokument(const std::vector<Dateiergebnis>& ergebnisse) {
    Json json = jsonKopf("check");
    json["files"] = Json::array();
    for (const Dateiergebnis& datei : ergebnisse)
        json["files"].push_back(alsJson(datei));
    return json;
}

std::string ergebnistext(const Json& dokument, const Farben& farben) {
    std::string text;
    for (const Json& datei : dokument.at("files"))
        if (datei.at("error").is_null()) { // else it is an error message
            text += text.empty() ? "" : "\n";
            text += textVon(datei, farben);
        }
    return text;
}

void schreibeMeldungen(std::ostream& out, const std::vector<Dateiergebnis>& ergebnisse, bool auchBefunde) {
    for (const Dateiergebnis& datei : ergebnisse) {
        const std::string anfang = "orvoplugin: " + einzeilig(datei.pfad) + ": ";
        if (!datei.unlesbar.empty())
            out << anfang << "cannot be read: " << datei.unlesbar << '\n';
        if (!auchBefunde)
            continue;
        for (const Pruefergebnis& e : datei.ergebnisse)
            if (e.befund.urteil == Urteil::WARNUNG || ausgangVon(e.befund.urteil) != Ausgang::GUT)
                out << anfang << urteilName(e.befund.urteil) << ": " << e.pruefung->name << ": "
                    << e.befund.text << '\n';
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
