#include "kern/Berichtsteile.h"

#include "kern/Eingabe.h"
#include "kern/Gruende.h"

#include <orvoplugin/domain/Unterfallart.h>

#include <iostream>

namespace werkzeug {

namespace {

Json codeOderNull(const char* code) { return *code ? Json(code) : Json(nullptr); }

} // namespace

Json alsJson(const ZeitraumFakt& zeitraum) {
    return {{"kind", zeitraumcode(zeitraum.typ)}, {"year", zeitraum.jahr},
            {"code", zeitraum.zeitraum},          {"day", zeitraum.tag},
            {"quarter", zeitraum.quartal},        {"text", jsonText(zeitraum.text)},
            {"label", anzeige(zeitraum)}};
}

Json alsJson(const UnterfallartFakt& unterfallart) {
    Json json{{"number", nullptr}, {"name", jsonText(unterfallart.name)}};
    if (unterfallart.nummer != Unterfallart::OHNE_NUMMER)
        json["number"] = unterfallart.nummer;
    return json;
}

Json typAlsJson(std::int32_t typ, const std::string& name) {
    return {{"number", typ}, {"name", name}, {"label", kurzerTypName(name)}};
}

std::string kurzerPfad(const Bestand& bestand, const DateiFakt& datei) {
    const std::string voll = bestand.fundort(datei);
    const std::string anfang = bestand.suchpfad + "/";
    return voll.starts_with(anfang) ? voll.substr(anfang.size()) : voll;
}

Json zeileAlsJson(const Bestand& bestand, const DateiFakt& datei) {
    Json zeile;
    zeile["file"] = jsonText(kurzerPfad(bestand, datei));
    zeile["path"] = jsonText(bestand.fundort(datei));
    zeile["state"] = code(datei.zustand);
    zeile["reason"] = nullptr;
    if (datei.grund != Grund::KEINER)
        zeile["reason"] = {{"code", code(datei.grund)},
                           {"cause", codeOderNull(code(datei.ursache))},
                           {"stage", stufe(datei.grund)},
                           {"step", codeOderNull(code(datei.schritt))},
                           {"message", datei.meldung.empty() ? Json(nullptr) : jsonText(datei.meldung)},
                           {"explanation", erklaerung(datei)},
                           {"advice", rat(datei)}};
    zeile["signal"] = datei.grund == Grund::SIGNAL ? Json(datei.zahl) : Json(nullptr);
    zeile["exit_status"] = datei.grund == Grund::PROZESSENDE ? Json(datei.zahl) : Json(nullptr);
    zeile["output"] = datei.ausgabe.empty() ? Json(nullptr) : jsonText(datei.ausgabe);
    return zeile;
}

Json anbieterAlsJson(const Bestand& bestand, const ErweiterungsOrt& ort) {
    const PluginFakt& plugin = bestand.plugin(ort);
    return {{"file", jsonText(kurzerPfad(bestand, bestand.datei(ort)))},
            {"product_version", jsonText(plugin.produktVersion)},
            {"file_version", jsonText(plugin.fileVersion)},
            {"resident", plugin.resident}};
}

Json serviceAlsJson(const ErweiterungFakt& erweiterung) {
    const std::string advice = servicerat(erweiterung);
    const bool istUngeprueft = erweiterung.factoryExport == Export::UNGEPRUEFT &&
                               erweiterung.service.art == ServiceFakt::Art::UNGEPRUEFT;
    return {{"state", servicecode(erweiterung)},
            {"explanation", istUngeprueft ? Json(nullptr) : Json(servicesatz(erweiterung))},
            {"step", codeOderNull(code(erweiterung.service.schritt))},
            {"message",
             erweiterung.service.meldung.empty() ? Json(nullptr) : jsonText(erweiterung.service.meldung)},
            {"advice", advice.empty() ? Json(nullptr) : Json(advice)}};
}

Json unlesbareAlsJson(const Bestand& bestand) {
    Json liste = Json::array();
    for (const VerzeichnisFakt& verzeichnis : bestand.verzeichnisse)
        if (verzeichnis.fehler != 0)
            liste.push_back(
                {{"path", jsonText(verzeichnis.pfad)}, {"reason", jsonText(systemtext(verzeichnis.fehler))}});
    return liste;
}

std::string unlesbareAlsText(const Json& verzeichnisse, const Farben& farben) {
    std::string text;
    for (const Json& verzeichnis : verzeichnisse)
        text += farben(Farbe::ROT, satz("cannot be read")) + "  " + zeige(verzeichnis["path"]) + ": " +
                zeige(verzeichnis["reason"]) + "\n";
    return text.empty() ? text : text + "\n";
}

Json ungewisseAlsJson(const Bestand& bestand) {
    Json liste = Json::array();
    for (const DateiFakt& datei : bestand.dateien)
        if (datei.zustand >= Zustand::UNBESCHRIEBEN)
            liste.push_back(zeileAlsJson(bestand, datei));
    return liste;
}

std::string umstaendeAlsText(const Json& dokument, const Farben& farben) {
    std::string text;
    for (const Json& zeile : dokument["not_loaded"])
        text += farben(Farbe::ROT, satz("not loaded")) + "  " + zeige(zeile["file"]) + ", " +
                zeige(zeile["state"]) + ": " + begruendung(zeile) + "\n";
    for (const Json& verzeichnis : dokument["unreadable_directories"])
        text += farben(Farbe::ROT, satz("cannot be read")) + "  " + zeige(verzeichnis["path"]) + ": " +
                zeige(verzeichnis["reason"]) + "\n";
    return text.empty() ? text : "\n" + satz("Without these the answer may be another:") + "\n" + text;
}

void meldeLeere(const Optionen& optionen, const Bestand& bestand) {
    for (const DateiFakt& datei : bestand.dateien)
        if (datei.zustand != Zustand::UEBERGANGEN)
            return;
    if (!optionen.quiet)
        std::cerr << "orvoplugin: "
                  << satz("there is no plugin below {1}; plugins end in .dylib", einzeilig(bestand.suchpfad))
                  << ortshinweis(optionen) << "\n";
}

std::string zustandsname(const std::string& zustand) {
    [[maybe_unused]] constexpr const char* kAlle[] = {N_("loaded"),  N_("blocked"),       N_("ignored"),
                                                      N_("refused"), N_("not_described"), N_("crashed"),
                                                      N_("exited"),  N_("timed_out")};
    return uebersetzt(zustand);
}

Farbe farbe(const std::string& zustand) {
    if (zustand == "loaded")
        return Farbe::GRUEN;
    if (zustand == "ignored")
        return Farbe::BLASS;
    return zustand == "blocked" || zustand == "not_described" ? Farbe::GELB : Farbe::ROT;
}

std::string begruendung(const Json& zeile) {
    const Json& grund = zeile["reason"];
    if (grund.is_null())
        return {};
    std::string text = grund["code"];
    if (!grund["cause"].is_null())
        text += "/" + grund["cause"].get<std::string>();
    if (!grund["step"].is_null())
        text += " (" + grund["step"].get<std::string>() + ")";
    text += ": " + zeige(grund["explanation"]);
    return grund["message"].is_null() ? text : text + " [" + zeige(grund["message"]) + "]";
}

std::string zeige(const Json& wert) {
    if (wert.is_null())
        return "-";
    const std::string text = wert.is_string() ? einzeilig(wert.get_ref<const std::string&>()) : wert.dump();
    return text.empty() ? "-" : text;
}

} // namespace werkzeug
