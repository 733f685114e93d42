// Checks of the description that a plugin gives of itself.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "check/Registratur.h"
#include "check/Text.h"
#include "check/Vorschlag.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/OrvoVersion.h>
#include <orvoutil/SharedLib.h>

#include <algorithm>
#include <list>
#include <memory>
#include <optional>
#include <set>

using namespace orvo::orvoutil;

namespace werkzeug::check {

namespace {

/// An open library and one of its entry points. Errors: `Ladefehler`.
template <class Funktion>
class Einsprung {
public:
    Einsprung(const std::string& pfad, const char* name) : bibliothek_(pfad, true) {
        funktion_ = reinterpret_cast<Funktion>(bibliothek_.getSymbol(name));
        if (!funktion_)
            throw Ladefehler(einzeilig(bibliothek_.getLastError()));
    }

    template <class... Argumente>
    auto operator()(Argumente... argumente) const {
        return funktion_(argumente...);
    }

private:
    SharedLib bibliothek_;
    Funktion funktion_ = nullptr;
};

using GetTypes = decltype(&orvo_plugin_get_types);
constexpr char kGetTypes[] = "orvo_plugin_get_types", kInitialize[] = "orvo_plugin_initialize";

std::string liste(const std::list<orvo_plugin_version_t>& typen) {
    std::string text;
    for (const orvo_plugin_version_t& typ : typen)
        text += (text.empty() ? "" : ", ") + std::to_string(typ.type);
    return text;
}

/// Calls the entry point with a list that has an entry already, which must stay in front.
void pruefeAnhaengen(const std::string& pfad, Fundliste& funde) {
    constexpr std::int32_t kMarke = 4711;
    const Einsprung<GetTypes> getTypes(pfad, kGetTypes);
    std::list<orvo_plugin_version_t> typen{{kMarke}};
    getTypes(&typen);
    if (typen.size() < 2 || typen.front().type != kMarke)
        funde.fehler(
            satz("orvo_plugin_get_types does not append to the list: what stood in it is gone or moved"),
            "not_appended");
}

/// The raw return value of orvo_plugin_initialize. Returns: nothing when it throws.
std::optional<unsigned char> rufeInitialize(const std::string& pfad) {
    using WieEsKommt = unsigned char (*)(OrvoPluginV1*);
    const Einsprung<WieEsKommt> initialize(pfad, kInitialize);
    OrvoPluginV1 plugin(new SharedLib(pfad, true));
    try {
        const volatile unsigned char ergebnis = initialize(&plugin);
        return ergebnis;
    } catch (...) { // the library reports the exception
        return std::nullopt;
    }
}

/// A function with another return type leaves a value other than 0 or 1 where a bool is read.
void pruefeErgebnis(std::optional<unsigned char> ergebnis, Fundliste& funde) {
    if (ergebnis > 1)
        funde.fehler(
            satz("orvo_plugin_initialize returns {1}, which is no bool: does it return another type?",
                 int{*ergebnis}),
            "no_bool");
}

bool istUtf8(const std::string& text) {
    const bool nurAscii =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return !nurAscii && toUtf8(text) == text;
}

bool hatSteuerzeichen(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || (byte >= 0x7F && byte < 0xA0);
    });
}

void pruefeText(const std::string& was, const std::string& text, Fundliste& funde) {
    constexpr std::size_t kLaengster = 1000; // bytes, and more than any text for people needs
    if (text.size() > kLaengster)
        funde.warnung(satz("{1} {2} has {3} bytes", was, zitiert(text), text.size()), "long_text");
    if (istUtf8(text))
        funde.warnung(satz("{1} {2} is UTF-8, but is read as Latin-1", was, zitiert(text)), "utf8");
    else if (hatSteuerzeichen(text))
        funde.fehler(satz("{1} {2} holds control characters", was, zitiert(text)), "control_characters");
}

void pruefeVersion(const std::string& was, const std::string& version, Fundliste& funde) {
    if (!version.empty() && !OrvoVersion(version).hatNurZahlen())
        funde.fehler(satz("{1} {2} has parts that are no numbers, and count as 0 when versions are compared",
                          was, zitiert(version)),
                     "not_numeric");
}

/// Whether a symbol is one that a plugin has to export, or that another check reports.
bool istErwartet(const Bibliothekssymbol& symbol) {
    // The linker's own, where no list of exports keeps them inside.
    static const std::set<std::string_view> marken{"__bss_start", "_edata", "_end", "_init", "_fini"};
    return symbol.name.starts_with("_Z") || symbol.name.starts_with("orvo_plugin_") ||
           symbol.bindung == Symbolbindung::Einmalig || marken.contains(symbol.name);
}

void pruefeHook(const std::string& was, const std::string& name, const Pruefling& p, Fundliste& funde) {
    if (!name.empty() && !p.bild.exportiertFunktion(name))
        funde.fehler(was + ": " + warumNichtExportiert(p.bild.getInhalt(), name, false), "not_exported");
}

void pruefeTypen(const Pruefling& p, Fundliste& funde) {
    std::list<orvo_plugin_version_t> typen; // the plugin allocates its nodes, and they are freed here
    const Einsprung<GetTypes> getTypes(p.pfad, kGetTypes);
    try {
        getTypes(&typen);
    } catch (...) {
        return funde.fehler(satz("orvo_plugin_get_types throws: {1}", laufendeAusnahme()), "throws");
    }
    if (typen.empty())
        funde.fehler(satz("orvo_plugin_get_types declares nothing: append {1} to the list"),
                     "nothing_declared");
    else if (typen.size() > 1)
        funde.fehler(satz("orvo_plugin_get_types declares {1} records (types {2}) instead of one",
                          typen.size(), liste(typen)),
                     "several_declared");
    else if (typen.front().type != 1)
        funde.fehler(satz("orvo_plugin_get_types declares interface {1} instead of 1", typen.front().type),
                     "wrong_type");
}

/// Takes the log, and keeps the latest exception that `abgesichert` caught: the plugin's author sees no other trace of it.
struct Ausnahmensenke : orvo::orvoutil::LogSink {
    void write(const orvo::orvoutil::LogEntry& eintrag) override {
        if (eintrag.category == "orvo.plugin.Absicherung")
            ausnahme = eintrag.text;
    }

    std::string ausnahme;
};

void pruefeBeschreibung(const Pruefling& p, Fundliste& funde) {
    try {
        lade(p.pfad);
    } catch (const Ladefehler& fehler) {
        const std::string grund = fehler.what();
        if (!p.bild.exportiertFunktion(kInitialize))
            return funde.fehler(grund, "refused");
        // The text of an exception alone may be a single word.
        const auto senke = std::make_shared<Ausnahmensenke>();
        orvo::orvoutil::Logger::setSink(senke);
        orvo::orvoutil::Logger::setLevel(orvo::orvoutil::LogLevel::Error);
        const std::optional<unsigned char> ergebnis = rufeInitialize(p.pfad);
        if (!ergebnis)
            funde.fehler(satz("orvo_plugin_initialize throws: {1}", grund), "throws");
        else if (*ergebnis == 0 && !senke->ausnahme.empty())
            funde.fehler(satz("orvo_plugin_initialize returns false: {1}", ausnahmetext(senke->ausnahme)),
                         "returns_false");
        else if (*ergebnis == 0)
            funde.fehler(
                satz(
                    "orvo_plugin_initialize returns false (\"--log error\" shows what it wrote to the log): {1}",
                    grund),
                "returns_false");
        else
            funde.fehler(grund, "refused");
        pruefeErgebnis(ergebnis, funde); // may be the cause
    }
}

void pruefeSignaturen(const Pruefling& p, Fundliste& funde) {
    pruefeAnhaengen(p.pfad, funde);
    pruefeErgebnis(rufeInitialize(p.pfad), funde);
}

void pruefeZweiteBeschreibung(const Pruefling& p, Fundliste& funde) {
    const std::vector<std::string> erste = beschreibung(*lade(p.pfad));
    vergleicheBeschreibungen(erste, beschreibung(*lade(p.pfad)), N_("loaded again, it differs: {1}"), funde);
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad), daneben = lade(p.pfad);
    if (funde.istLeer())
        vergleicheBeschreibungen(erste, beschreibung(*daneben),
                                 N_("described beside another, it differs: {1}"), funde);
}

void pruefeBeschreibungInDatei(const Pruefling& p, Fundliste& funde) {
    const Beschreibungsfund fund = liesBeschreibung(p.pfad);
    if (fund.stand == Beschreibungsfund::ABGELEHNT)
        return funde.warnung(satz("clients ignore it: {1}", einzeilig(fund.grund)), "ignored");
    if (fund.stand != Beschreibungsfund::GEFUNDEN)
        return funde.uebersprungen(satz("there is none"), "none");
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    if (schreibeBeschreibung(*plugin) != fund.bytes)
        funde.fehler(
            satz("it is not: {1}", unterschied(beschreibung(*lade(p.pfad, true)), beschreibung(*plugin),
                                               N_("in the file {1}, asked {2}"))),
            "differs");
}

void pruefeVersionen(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    if (plugin->getProduktVersion().empty())
        funde.warnung(satz("no product version: where another plugin serves the same, that one answers"),
                      "no_version");
    pruefeVersion(satz("product version"), plugin->getProduktVersion(), funde);
    pruefeVersion(satz("file version"), plugin->getFileVersion(), funde);
}

void pruefeTexte(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    pruefeText(satz("product version"), plugin->getProduktVersion(), funde);
    pruefeText(satz("file version"), plugin->getFileVersion(), funde);
    for (const OrvoPlugin::LabelEintrag& label : plugin->getLabels())
        for (const std::string* const text : {&label.text1, &label.text2, &label.text3, &label.text4})
            pruefeText(satz("label"), *text, funde);
    for (const OrvoErweiterung* const erweiterung : plugin->listeErweiterungen())
        if (const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(erweiterung))
            for (const Unterfallart& ua : uaVz->getUnterfallArten()) {
                pruefeText(satz("sub-case type"), ua.getName(), funde);
                if (ua.getName().empty())
                    funde.warnung(satz("{1} serves a sub-case type without a name", art(*erweiterung)),
                                  "empty_name");
            }
}

void pruefeAngebot(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    if (plugin->listeErweiterungen().empty())
        funde.warnung(satz("the plugin adds no extension: nobody will ever find it"), "no_extension");
    for (const OrvoErweiterung* const erweiterung : plugin->listeErweiterungen()) {
        const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(erweiterung);
        if (!uaVz)
            continue;
        for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap())
            if (vzs.empty())
                funde.warnung(satz("{1} serves {2} for no period: nobody will ever find it",
                                   art(*erweiterung), einzeilig(ua.getName())),
                              "no_period");
        if (uaVz->getUnterfallArten().empty())
            funde.warnung(satz("{1} serves no sub-case type: nobody will ever find it", art(*erweiterung)),
                          "no_sub_case_type");
    }
}

void pruefeEigeneUeberschneidung(const Pruefling& p, Fundliste& funde) {
    Registratur registratur;
    const OrvoPluginV1* const plugin = registratur.lade(p.pfad);
    if (!plugin)
        return funde.fehler(satz("the plugin manager does not load it"), "not_loaded");
    registratur.besuche(*plugin, [&](const Zuordnung& z) {
        if (z.antwort && z.antwort != z.erweiterung && z.antwort->getPlugin() == plugin)
            funde.fehler(
                satz("{1} for {2} is declared twice: the first extension answers, the other is never asked",
                     art(*z.erweiterung), z.text),
                "declared_twice");
    });
}

void pruefeFactories(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    std::set<std::string> gesehene;
    for (const OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin)) {
        const std::string& name = erweiterung->getServiceFactoryName();
        if (gesehene.insert(name).second && !p.bild.exportiertFunktion(name))
            funde.fehler(satz("factory of {1}: {2}", art(*erweiterung),
                              warumNichtExportiert(p.bild.getInhalt(), name, false)),
                         "not_exported");
    }
}

void pruefeHooks(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    pruefeHook(satz("OnLoad function"), plugin->getOnLoadFuncName(), p, funde);
    pruefeHook(satz("OnUnload function"), plugin->getOnUnloadFuncName(), p, funde);
}

void pruefeCSymbole(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    std::set<std::string> genannte{plugin->getOnLoadFuncName(), plugin->getOnUnloadFuncName()};
    for (const OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin))
        genannte.insert(erweiterung->getServiceFactoryName());
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (!istErwartet(symbol) && !genannte.contains(symbol.name))
            funde.warnung(satz("exports {1}", symbolname(symbol.name)), "foreign_export");
}

} // namespace

std::vector<Pruefung> beschreibungsPruefungen() {
    return {{"declares-type", pruefeTypen},
            {"describes", pruefeBeschreibung},
            {"signatures", pruefeSignaturen},
            {"describes-twice", pruefeZweiteBeschreibung},
            {"description", pruefeBeschreibungInDatei},
            {"versions", pruefeVersionen},
            {"texts", pruefeTexte},
            {"offers", pruefeAngebot},
            {"own-overlaps", pruefeEigeneUeberschneidung},
            {"factories", pruefeFactories},
            {"hooks", pruefeHooks},
            {"c-symbols", pruefeCSymbole}};
}

} // namespace werkzeug::check
