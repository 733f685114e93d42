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
#include <orvoutil/OrvoVersion.h>
#include <orvoutil/SharedLib.h>

#include <algorithm>
#include <list>
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
        funde.fehler("orvo_plugin_get_types does not append to the list: what stood in it is gone or moved",
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
        funde.fehler("orvo_plugin_initialize returns " + std::to_string(*ergebnis) +
                         ", which is no bool: does it return another type?",
                     "no_bool");
}

/// Introduces the reason: the text of an exception alone may be a single word.
std::string wieBeendet(std::optional<unsigned char> ergebnis) {
    if (!ergebnis)
        return "orvo_plugin_initialize throws: ";
    return *ergebnis == 0
               ? "orvo_plugin_initialize returns false (\"--log error\" shows what it wrote to the log): "
               : "";
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
        funde.warnung(was + " " + zitiert(text) + " is UTF-8, but is read as Latin-1", "utf8");
    else if (hatSteuerzeichen(text))
        funde.fehler(was + " " + zitiert(text) + " holds control characters", "control_characters");
}

void pruefeVersion(const char* was, const std::string& version, Fundliste& funde) {
    if (!version.empty() && !OrvoVersion(version).hatNurZahlen())
        funde.fehler(std::string(was) + " " + zitiert(version) +
                         " has parts that are no numbers, and count as 0 when versions are compared",
                     "not_numeric");
}

/// Whether a symbol is one that a plugin has to export, or that another check reports.
bool istErwartet(const Bibliothekssymbol& symbol) {
    // The linker's own, where no list of exports keeps them inside.
    static const std::set<std::string_view> marken{"__bss_start", "_edata", "_end", "_init", "_fini"};
    return symbol.name.starts_with("_Z") || symbol.name.starts_with("orvo_plugin_") ||
           symbol.bindung == Symbolbindung::Einmalig || marken.contains(symbol.name);
}

void pruefeHook(const char* was, const std::string& name, const Pruefling& p, Fundliste& funde) {
    if (!name.empty() && !p.bild.exportiertFunktion(name))
        funde.fehler(std::string(was) + ": " + warumNichtExportiert(p.bild.getInhalt(), name, false),
                     "not_exported");
}

Befund pruefeTypen(const Pruefling& p) {
    std::list<orvo_plugin_version_t> typen; // the plugin allocates its nodes, and they are freed here
    const Einsprung<GetTypes> getTypes(p.pfad, kGetTypes);
    try {
        getTypes(&typen);
    } catch (...) {
        return durchgefallen("orvo_plugin_get_types throws: " + laufendeAusnahme(), "throws");
    }
    if (typen.empty())
        return durchgefallen("orvo_plugin_get_types declares nothing", "nothing_declared");
    if (typen.size() > 1)
        return durchgefallen("orvo_plugin_get_types declares " + std::to_string(typen.size()) +
                                 " records (types " + liste(typen) + ") instead of one",
                             "several_declared");
    if (typen.front().type != 1)
        return durchgefallen("orvo_plugin_get_types declares interface " + liste(typen) + " instead of 1",
                             "wrong_type");
    return bestanden();
}

Befund pruefeBeschreibung(const Pruefling& p) {
    Fundliste funde;
    try {
        lade(p.pfad);
    } catch (const Ladefehler& fehler) {
        if (!p.bild.exportiertFunktion(kInitialize))
            return durchgefallen(fehler.what(), "refused");
        const std::optional<unsigned char> ergebnis = rufeInitialize(p.pfad);
        funde.fehler(wieBeendet(ergebnis) + fehler.what(), !ergebnis        ? "throws"
                                                           : *ergebnis == 0 ? "returns_false"
                                                                            : "refused");
        pruefeErgebnis(ergebnis, funde); // may be the cause
    }
    return funde.befund();
}

Befund pruefeSignaturen(const Pruefling& p) {
    Fundliste funde;
    pruefeAnhaengen(p.pfad, funde);
    pruefeErgebnis(rufeInitialize(p.pfad), funde);
    return funde.befund();
}

Befund pruefeZweiteBeschreibung(const Pruefling& p) {
    Fundliste funde;
    const std::vector<std::string> erste = beschreibung(*lade(p.pfad));
    vergleicheBeschreibungen(erste, beschreibung(*lade(p.pfad)), "loaded again, it differs", funde);
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad), daneben = lade(p.pfad);
    if (funde.istLeer())
        vergleicheBeschreibungen(erste, beschreibung(*daneben), "described beside another, it differs",
                                 funde);
    return funde.befund();
}

Befund pruefeBeschreibungInDatei(const Pruefling& p) {
    const Beschreibungsfund fund = liesBeschreibung(p.pfad);
    if (fund.stand == Beschreibungsfund::ABGELEHNT)
        return warnung("clients ignore it: " + einzeilig(fund.grund), "ignored");
    if (fund.stand != Beschreibungsfund::GEFUNDEN)
        return uebersprungen("there is none", "none");
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    if (schreibeBeschreibung(*plugin) == fund.bytes)
        return bestanden();
    return durchgefallen("it is not: " + unterschied(beschreibung(*lade(p.pfad, true)), beschreibung(*plugin),
                                                     "in the file", "asked"),
                         "differs");
}

Befund pruefeVersionen(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    if (plugin->getProduktVersion().empty())
        funde.warnung("no product version: where another plugin serves the same, that one answers",
                      "no_version");
    pruefeVersion("product version", plugin->getProduktVersion(), funde);
    pruefeVersion("file version", plugin->getFileVersion(), funde);
    return funde.befund();
}

Befund pruefeTexte(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    pruefeText("product version", plugin->getProduktVersion(), funde);
    pruefeText("file version", plugin->getFileVersion(), funde);
    for (const OrvoPlugin::LabelEintrag& label : plugin->getLabels())
        for (const std::string* const text : {&label.text1, &label.text2, &label.text3, &label.text4})
            pruefeText("label", *text, funde);
    for (const OrvoErweiterung* const erweiterung : plugin->listeErweiterungen())
        if (const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(erweiterung))
            for (const Unterfallart& ua : uaVz->getUnterfallArten()) {
                pruefeText("sub-case type", ua.getName(), funde);
                if (ua.getName().empty())
                    funde.warnung(satz("{1} serves a sub-case type without a name", art(*erweiterung)),
                                  "empty_name");
            }
    return funde.befund();
}

Befund pruefeAngebot(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    if (plugin->listeErweiterungen().empty())
        funde.warnung("the plugin adds no extension: nobody will ever find it", "no_extension");
    for (const OrvoErweiterung* const erweiterung : plugin->listeErweiterungen()) {
        const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(erweiterung);
        if (!uaVz)
            continue;
        for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap())
            if (vzs.empty())
                funde.warnung(art(*erweiterung) + " serves " + einzeilig(ua.getName()) +
                                  " for no period: nobody will ever find it",
                              "no_period");
        if (uaVz->getUnterfallArten().empty())
            funde.warnung(art(*erweiterung) + " serves no sub-case type: nobody will ever find it",
                          "no_sub_case_type");
    }
    return funde.befund();
}

Befund pruefeEigeneUeberschneidung(const Pruefling& p) {
    Registratur registratur;
    const OrvoPluginV1* const plugin = registratur.lade(p.pfad);
    if (!plugin)
        return durchgefallen("the plugin manager does not load it", "not_loaded");
    Fundliste funde;
    registratur.besuche(*plugin, [&](const Zuordnung& z) {
        if (z.antwort && z.antwort != z.erweiterung && z.antwort->getPlugin() == plugin)
            funde.fehler(art(*z.erweiterung) + " for " + z.text +
                             " is declared twice: the first extension answers, the other is never asked",
                         "declared_twice");
    });
    return funde.befund();
}

Befund pruefeFactories(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    std::set<std::string> gesehene;
    for (const OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin)) {
        const std::string& name = erweiterung->getServiceFactoryName();
        if (gesehene.insert(name).second && !p.bild.exportiertFunktion(name))
            funde.fehler("factory of " + art(*erweiterung) + ": " +
                             warumNichtExportiert(p.bild.getInhalt(), name, false),
                         "not_exported");
    }
    return funde.befund();
}

Befund pruefeHooks(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    pruefeHook("OnLoad function", plugin->getOnLoadFuncName(), p, funde);
    pruefeHook("OnUnload function", plugin->getOnUnloadFuncName(), p, funde);
    return funde.befund();
}

Befund pruefeCSymbole(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    std::set<std::string> genannte{plugin->getOnLoadFuncName(), plugin->getOnUnloadFuncName()};
    for (const OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin))
        genannte.insert(erweiterung->getServiceFactoryName());
    Fundliste funde;
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (!istErwartet(symbol) && !genannte.contains(symbol.name))
            funde.warnung(satz("exports {1}", symbolname(symbol.name)), "foreign_export");
    return funde.befund();
}

} // namespace

std::vector<Pruefung> beschreibungsPruefungen() {
    return {
        {"declares-type",
         N_("orvo_plugin_get_types declares plugin interface 1, once, and no other."),
         {"entry-points", "loads"},
         Ort::KIND,
         pruefeTypen},
        {"describes",
         N_("The plugin describes itself, and the library takes it."),
         {"declares-type"},
         Ort::KIND,
         pruefeBeschreibung},
        {"signatures",
         N_("The entry points do what their signatures say: the one only appends, the other returns true or false."),
         {"describes"},
         Ort::KIND,
         pruefeSignaturen},
        {"describes-twice",
         N_("The plugin describes itself the same way each time."),
         {"describes"},
         Ort::KIND,
         pruefeZweiteBeschreibung},
        {"description",
         N_("The description in the file, if there is one, is what the plugin says of itself."),
         {"describes-twice"},
         Ort::KIND,
         pruefeBeschreibungInDatei},
        {"versions",
         N_("Product version and file version are numbers with dots or commas between them."),
         {"describes"},
         Ort::KIND,
         pruefeVersionen},
        {"texts",
         N_("Names, versions and labels are readable Latin-1, and of a sensible length."),
         {"describes"},
         Ort::KIND,
         pruefeTexte},
        {"offers",
         N_("The plugin offers at least one extension, and each extension serves at least one period."),
         {"describes"},
         Ort::KIND,
         pruefeAngebot},
        {"own-overlaps",
         N_("No extension of the plugin hides another one of it."),
         {"describes"},
         Ort::KIND,
         pruefeEigeneUeberschneidung},
        {"factories",
         N_("The factory function of each extension is exported."),
         {"describes"},
         Ort::KIND,
         pruefeFactories},
        {"hooks",
         N_("The OnLoad and OnUnload functions that the plugin names are exported."),
         {"describes"},
         Ort::KIND,
         pruefeHooks},
        {"c-symbols",
         N_("The library exports entry points, factories and hooks only."),
         {"factories", "hooks"},
         Ort::KIND,
         pruefeCSymbole},
    };
}

} // namespace werkzeug::check
