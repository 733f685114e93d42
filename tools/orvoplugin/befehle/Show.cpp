// orvoplugin show FILE: everything about one plugin.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "befehle/Dateisuche.h"
#include "kern/Berichtsteile.h"
#include "kern/Gruende.h"
#include "kern/Sammler.h"

#include <CLI/CLI.hpp>

namespace werkzeug {

namespace {

// --- The document ---

/// A number of the library's and its name; "other" for one beyond the table, and for a null in it.
template <std::size_t N>
Json art(std::int32_t nummer, const char* const (&namen)[N]) {
    const char* const name = nummer >= 0 && nummer < static_cast<std::int32_t>(N) ? namen[nummer] : nullptr;
    return {{"number", nummer}, {"code", name ? name : "other"}};
}

constexpr const char* kFlags[] = {"delete_service", "reserved_1", "reserved_2", "reserved_3", "reserved_4"};
constexpr const char* kAbhaengigkeiten[] = {"sub_case_type_and_period"};
constexpr const char* kBedingungen[] = {"sub_case_type_check", "formal_check", "sums",
                                        "leading_record_check"};
constexpr const char* kStatus[] = {"made", nullptr, "in_use", "given_back"};

Json funktionAlsJson(const std::string& name, Export exportiert) {
    return {{"name", jsonText(name)}, {"exported", code(exportiert)}};
}

template <class Liste, class Wie>
Json listeAlsJson(const Liste& liste, Wie&& wie) {
    Json json = Json::array();
    for (const auto& eintrag : liste)
        json.push_back(wie(eintrag));
    return json;
}

template <std::size_t N>
Json artenAlsJson(const std::vector<std::int32_t>& nummern, const char* const (&namen)[N]) {
    return listeAlsJson(nummern, [&](std::int32_t nummer) { return art(nummer, namen); });
}

Json erweiterungAlsJson(const ErweiterungFakt& erweiterung) {
    const auto zeitraum = [](const ZeitraumFakt& z) { return alsJson(z); };
    const auto angebot = [&](const auto& paar) {
        return Json{{"sub_case_type", alsJson(paar.first)}, {"periods", listeAlsJson(paar.second, zeitraum)}};
    };
    return {{"type", typAlsJson(erweiterung.typ, erweiterung.typName)},
            {"factory", funktionAlsJson(erweiterung.factory, erweiterung.factoryExport)},
            {"serves_sub_case_types", erweiterung.bedientUnterfallarten},
            {"passed_over", erweiterung.uebergangen},
            {"offers", listeAlsJson(erweiterung.angebot, angebot)},
            {"flags", artenAlsJson(erweiterung.flags, kFlags)},
            {"preconditions", artenAlsJson(erweiterung.vorbedingungen, kBedingungen)},
            {"postconditions", artenAlsJson(erweiterung.nachbedingungen, kBedingungen)},
            {"dependencies", artenAlsJson(erweiterung.abhaengigkeiten, kAbhaengigkeiten)}};
}

Json labelAlsJson(const LabelFakt& label) {
    return {{"number1", label.zahl1},
            {"text1", jsonText(label.text1)},
            {"period", alsJson(label.zeitraum)},
            {"text2", jsonText(label.text2)},
            {"number2", label.zahl2},
            {"text3", jsonText(label.text3)},
            {"text4", jsonText(label.text4)}};
}

Json pluginAlsJson(const PluginFakt& plugin) {
    const auto hook = [](const std::string& name, Export exportiert) {
        return name.empty() ? Json(nullptr) : funktionAlsJson(name, exportiert);
    };
    return {{"interface", plugin.typ},
            {"product_version", jsonText(plugin.produktVersion)},
            {"file_version", jsonText(plugin.fileVersion)},
            {"resident", plugin.resident},
            {"status", art(plugin.status, kStatus)},
            {"on_load", hook(plugin.onLoad, plugin.onLoadExport)},
            {"on_unload", hook(plugin.onUnload, plugin.onUnloadExport)},
            {"labels", listeAlsJson(plugin.labels, labelAlsJson)},
            {"extensions", listeAlsJson(plugin.erweiterungen, erweiterungAlsJson)}};
}

/// Functions that the plugin names and its library lacks; none for a file that is no plugin.
Json fehlendeFunktionen(const std::optional<PluginFakt>& plugin) {
    Json fehlende = Json::array();
    const auto sieh = [&](const std::string& name, Export exportiert) {
        if (exportiert == Export::NEIN)
            fehlende.push_back(jsonText(name));
    };
    if (!plugin)
        return fehlende;
    sieh(plugin->onLoad, plugin->onLoadExport);
    sieh(plugin->onUnload, plugin->onUnloadExport);
    for (const ErweiterungFakt& erweiterung : plugin->erweiterungen)
        sieh(erweiterung.factory, erweiterung.factoryExport);
    return fehlende;
}

Json bericht(const Bestand& bestand, const DateiFakt& datei) {
    Json dokument = jsonKopf("show", bestand.suchpfad);
    dokument["file"] = zeileAlsJson(bestand, datei);
    dokument["plugin"] = datei.plugin ? pluginAlsJson(*datei.plugin) : Json(nullptr);
    dokument["missing_functions"] = fehlendeFunktionen(datei.plugin);
    return dokument;
}

// --- Its text ---

constexpr std::size_t kSpalte = 18;

std::string feld(const std::string& name, const std::string& wert, const char* einzug = "") {
    std::string text = einzug + name + ":";
    const std::size_t breite = anzeigebreite(text);
    text.append(breite < kSpalte ? kSpalte - breite : 1, ' ');
    return text + wert + "\n";
}

std::string funktion(const Json& json, const Farben& farben) {
    if (json.is_null())
        return "-";
    const std::string name = zeige(json["name"]);
    return json["exported"] == "no"    ? name + " " + farben(Farbe::ROT, satz("(not exported)"))
           : json["exported"] == "yes" ? satz("{1} (exported)", name)
                                       : name;
}

std::string janein(bool ja) { return ja ? satz("yes") : satz("no"); }

std::string codes(const Json& liste) {
    std::string text;
    for (const Json& eintrag : liste) {
        const std::string name = eintrag["code"];
        text += (text.empty() ? "" : ", ") + (name == "other" ? eintrag["number"].dump() : name);
    }
    return text;
}

std::string erweiterungAlsText(const Json& erweiterung, std::size_t nummer, const Farben& farben) {
    constexpr char kEin[] = "  ";
    std::string text =
        "\n" + farben(Farbe::FETT, satz("Extension {1}: {2}", nummer, zeige(erweiterung["type"]["name"]))) +
        " (" + erweiterung["type"]["number"].dump() + ")\n";
    text += feld(satz("factory"), funktion(erweiterung["factory"], farben), kEin);
    if (erweiterung["passed_over"])
        text += feld(satz("registry"),
                     farben(Farbe::ROT, satz("passed over: its class serves no sub-case types")), kEin);
    for (const char* const name :
         {N_("flags"), N_("preconditions"), N_("postconditions"), N_("dependencies")})
        if (const std::string liste = codes(erweiterung[name]); !liste.empty())
            text += feld(uebersetzt(name), liste, kEin);
    for (const Json& angebot : erweiterung["offers"]) {
        std::string zeitraeume;
        for (const Json& zeitraum : angebot["periods"])
            zeitraeume += (zeitraeume.empty() ? "" : ", ") + zeitraum["label"].get<std::string>();
        text += feld(satz("serves {1}", zeige(angebot["sub_case_type"]["name"])),
                     zeitraeume.empty() ? satz("no period") : zeitraeume, kEin);
    }
    return text;
}

std::string labelAlsText(const Json& label) {
    return label["number1"].dump() + ", " + zeige(label["text1"]) + ", " +
           label["period"]["label"].get<std::string>() + ", " + zeige(label["text2"]) + ", " +
           label["number2"].dump() + ", " + zeige(label["text3"]) + ", " + zeige(label["text4"]);
}

std::string alsText(const Json& dokument, const Farben& farben) {
    const Json& datei = dokument["file"];
    const std::string zustand = datei["state"];
    std::string text = feld(satz("file"), zeige(datei["path"])) +
                       feld(satz("state"), farben(farbe(zustand), zustandsname(zustand)));
    if (const Json& grund = datei["reason"]; !grund.is_null()) {
        text += feld(satz("reason"), begruendung(datei));
        if (!grund["message"].is_null())
            text += feld(satz("that means"), zeige(grund["explanation"]));
        text += feld(satz("what to do"), zeige(grund["advice"]));
    }
    if (!datei["output"].is_null())
        text += feld(satz("last output"), zeige(datei["output"]));
    const Json& plugin = dokument["plugin"];
    if (plugin.is_null())
        return text;
    text += feld(satz("interface"), plugin["interface"].dump()) +
            feld(satz("product version"), zeige(plugin["product_version"])) +
            feld(satz("file version"), zeige(plugin["file_version"])) +
            feld(satz("resident"), janein(plugin["resident"])) +
            feld(satz("status"), plugin["status"]["code"]) +
            feld(satz("OnLoad"), funktion(plugin["on_load"], farben)) +
            feld(satz("OnUnload"), funktion(plugin["on_unload"], farben));
    for (const Json& label : plugin["labels"])
        text += feld(satz("label"), labelAlsText(label));
    if (plugin["extensions"].empty())
        text += feld(satz("extensions"), satz("none"));
    std::size_t nummer = 0;
    for (const Json& erweiterung : plugin["extensions"])
        text += erweiterungAlsText(erweiterung, ++nummer, farben);
    return text;
}

// --- The command ---

class Show : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl
            .add_option(
                "FILE", datei_,
                "Path of a plugin's file; or, below the plugin directory, its path or name, also without "
                "\"lib\" and \".dylib\"")
            ->required();
    }

    bool nimmtBeschreibungen() const override { return true; }

    Ausgang fuehreAus(const Optionen& optionen) override {
        Auftrag auftrag;
        auftrag.einzeln = pfadDerDatei(optionen);
        if (auftrag.einzeln.empty()) // its row says why it was not loaded
            return zeige(optionen, bestand_, bestand_.dateien.at(platz_));
        auftrag.exporteVon = auftrag.einzeln;
        const Bestand bestand = sammle(optionen, auftrag);
        return zeige(optionen, bestand, bestand.dateien.at(0));
    }

private:
    static Ausgang zeige(const Optionen& optionen, const Bestand& bestand, const DateiFakt& datei) {
        gibAus(optionen, bericht(bestand, datei), alsText);
        if (datei.zustand >= Zustand::ABGESTUERZT)
            return Ausgang::ABGESTUERZT;
        const bool gut = datei.zustand == Zustand::GELADEN && fehlendeFunktionen(datei.plugin).empty();
        return gut ? Ausgang::GUT : Ausgang::BEFUNDE;
    }

    /// The path of the file to load. Empty for one that the library would not load; it is noted then.
    std::string pfadDerDatei(const Optionen& optionen) {
        if (const std::string einzelne = einzelneDatei(optionen, datei_); !einzelne.empty())
            return einzelne;
        Auftrag nurSehen;
        nurSehen.nur.emplace();
        bestand_ = sammle(optionen, nurSehen);
        const std::optional<std::uint32_t> platz = findeDatei(bestand_, datei_);
        if (!platz)
            throw Unlesbar(keineDatei(bestand_, datei_));
        platz_ = *platz;
        const DateiFakt& datei = bestand_.dateien[platz_];
        return datei.grund == Grund::KEINER ? datei.pfad : std::string();
    }

    std::string datei_;
    Bestand bestand_;
    std::uint32_t platz_ = 0;
};

} // namespace

std::unique_ptr<Befehl> macheShow() { return std::make_unique<Show>(); }

} // namespace werkzeug
