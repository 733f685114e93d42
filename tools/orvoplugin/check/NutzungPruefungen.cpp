// Checks of a plugin in use: services, hooks, closing.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "check/Ursache.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/SharedLib.h>

#ifdef __linux__
#include <link.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <set>

using namespace orvo::orvoutil;

namespace werkzeug::check {

namespace {

using Factory = decltype(&orvo_plugin_get_check_service);
using Hook = void (*)();

std::string factoryVon(const OrvoServiceErweiterung& erweiterung) {
    return zitiert(erweiterung.getServiceFactoryName());
}

/// Why an extension gave no service; calls its factory directly.
std::string warumKeinService(const OrvoPluginV1& plugin, const OrvoServiceErweiterung& erweiterung) {
    SharedLib bibliothek(plugin.getSharedLib()->getName(), true);
    const auto factory = reinterpret_cast<Factory>(bibliothek.getSymbol(erweiterung.getServiceFactoryName()));
    if (!factory)
        return "is not found when it is needed";
    try {
        return factory() ? "made an object only when asked again" : "returns null";
    } catch (...) {
        return "throws: " + laufendeAusnahme();
    }
}

/// Gets two services at the same time, and another one after these.
void pruefeService(const OrvoPluginV1& plugin, OrvoServiceErweiterung& erweiterung, Fundliste& funde) {
    for (const char* const wann : {"", ", while another is out", ", while others are out"}) {
        if (holeVomRichtigenTyp(erweiterung))
            continue;
        if (erweiterung.getInstanzen().empty())
            funde.fehler(factoryVon(erweiterung) + wann + " " + warumKeinService(plugin, erweiterung),
                         "no_service");
        else if (*wann == '\0')
            funde.fehler(factoryVon(erweiterung) + " makes an object of another interface than " +
                             art(erweiterung) + " declares",
                         "other_interface");
        else
            funde.fehler(factoryVon(erweiterung) + " makes no object of its interface" + wann, "no_service");
        break;
    }
    gibAllesZurueck(erweiterung);
    if (funde.istLeer() && !holeVomRichtigenTyp(erweiterung))
        funde.fehler(factoryVon(erweiterung) + " makes no object after the first ones were given back",
                     "no_service");
    gibAllesZurueck(erweiterung);
}

void pruefeBesitz(OrvoServiceErweiterung& erweiterung, Fundliste& funde) {
    const Service* const erster = holeVomRichtigenTyp(erweiterung);
    const Service* const zweiter = holeVomRichtigenTyp(erweiterung);
    const bool wirdGeloescht = erweiterung.istFlagGesetzt(FLAG_SERVICE_LOESCHEN);
    if (wirdGeloescht && erster == zweiter)
        funde.fehler(
            factoryVon(erweiterung) +
                " gives the same object twice, and FLAG_SERVICE_LOESCHEN has it deleted at its first release",
            "same_object");
    else if (!wirdGeloescht && erster != zweiter)
        funde.warnung(factoryVon(erweiterung) +
                          " makes a new object each time, which nobody deletes without FLAG_SERVICE_LOESCHEN",
                      "leaks_object");
    gibAllesZurueck(erweiterung);
}

/// Calls a function of the plugin and reports an exception, which is gone on return.
void haelt(const std::string& was, Fundliste& funde, const std::function<void()>& ruf) {
    try {
        ruf();
    } catch (...) {
        funde.fehler("an exception leaves " + was + ": " + laufendeAusnahme(), "throws");
    }
}

void rufeHook(const char* was, SharedLib& bibliothek, const std::string& name, Fundliste& funde) {
    if (const auto hook = name.empty() ? nullptr : reinterpret_cast<Hook>(bibliothek.getSymbol(name)))
        haelt(std::string(was) + " " + zitiert(name), funde, hook);
}

void rufeFactory(SharedLib& bibliothek, OrvoServiceErweiterung& erweiterung, Fundliste& funde) {
    const auto factory = reinterpret_cast<Factory>(bibliothek.getSymbol(erweiterung.getServiceFactoryName()));
    if (!factory)
        return;
    const Service* service = nullptr;
    haelt("the factory " + factoryVon(erweiterung), funde, [&] { service = factory(); });
    verlangeLoeschbar(erweiterung, service);
    if (erweiterung.istFlagGesetzt(FLAG_SERVICE_LOESCHEN))
        delete service;
}

/// The libraries mapped into the process, by name.
std::set<std::string> bibliotheken() {
    std::set<std::string> namen;
#ifdef __linux__
    dl_iterate_phdr(
        [](dl_phdr_info* bibliothek, std::size_t, void* daten) {
            static_cast<std::set<std::string>*>(daten)->insert(bibliothek->dlpi_name);
            return 0;
        },
        &namen);
#endif
    return namen;
}

/// Reports the plugin's library, and libraries that it loaded, that are still mapped.
void pruefeWegsein(const Pruefling& p, const std::set<std::string>& vorher, const std::string& wann,
                   Fundliste& funde) {
    if (istImProzess(p.pfad)) {
        funde.fehler("the library is still in the process " + wann, "still_mapped");
        return;
    }
    for (const std::string& name : bibliotheken())
        if (!vorher.contains(name))
            funde.warnung(einzeilig(name) + ", which the plugin brought along, is still in the process " +
                              wann,
                          "library_left");
}

/// Allocated bytes; 0 where the system does not tell.
std::size_t belegt() {
#ifdef __GLIBC__
    return mallinfo2().uordblks;
#else
    return 0;
#endif
}

/// How many bytes a use of the plugin leaks, on average over several uses; over fewer for a slow plugin.
std::size_t verlustJeNutzung(const OrvoPluginV1& plugin, std::chrono::duration<double> zeit) {
    constexpr std::size_t kRunden = 10;
    const auto ende = std::chrono::steady_clock::now() + zeit;
    const std::size_t vorher = belegt();
    std::size_t runden = 0;
    do {
        benutze(plugin);
    } while (++runden < kRunden && std::chrono::steady_clock::now() < ende);
    const std::size_t nachher = belegt();
    return nachher > vorher ? (nachher - vorher) / runden : 0;
}

Befund pruefeNutzung(const Pruefling& p) {
    ladeUndBenutze(p.pfad);
    return bestanden();
}

Befund pruefeServices(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin)) {
        Fundliste einzeln;
        pruefeService(*plugin, *erweiterung, einzeln);
        if (!einzeln.istLeer())
            funde.fehler(einzeln.befund().text, einzeln.befund().code.c_str());
    }
    return funde.befund();
}

Befund pruefeServiceBesitz(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin))
        pruefeBesitz(*erweiterung, funde);
    return funde.befund();
}

Befund pruefeAusnahmen(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Fundliste funde;
    SharedLib bibliothek(p.pfad, true);
    rufeHook("the OnLoad function", bibliothek, plugin->getOnLoadFuncName(), funde);
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin))
        rufeFactory(bibliothek, *erweiterung, funde);
    rufeHook("the OnUnload function", bibliothek, plugin->getOnUnloadFuncName(), funde);
    return funde.befund();
}

Befund pruefeEntladen(const Pruefling& p) {
    const std::set<std::string> vorher = bibliotheken();
    Fundliste funde;
    std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    pruefeWegsein(p, vorher, "after it described itself", funde);
    if (funde.istLeer()) {
        benutze(*plugin);
        if (!plugin->isResident())
            pruefeWegsein(p, vorher, "after its last service was given back", funde);
    }
    plugin.reset();
    if (funde.istLeer())
        pruefeWegsein(p, vorher, "after it was unloaded", funde);
    return funde.befund();
}

Befund pruefeSpeicher(const Pruefling& p) {
    constexpr int kAnlauf = 5, kAbschnitte = 4;
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    for (int i = 0; i < kAnlauf; ++i)
        benutze(*plugin);
    if (belegt() == 0)
        return uebersprungen("the memory in use cannot be told here", "not_measurable");
    // A one-time allocation, by the system's loader for instance, falls into one section; a leak shows in each.
    std::size_t verlust = std::numeric_limits<std::size_t>::max();
    for (int i = 0; i < kAbschnitte; ++i)
        verlust = std::min(verlust, verlustJeNutzung(*plugin, p.zeitlimit / 4 / kAbschnitte));
    constexpr std::size_t kKleinstesStueck = 16;
    return verlust < kKleinstesStueck
               ? bestanden()
               : warnung("each use keeps about " + std::to_string(verlust) + " bytes that are never freed" +
                             eigenesCxx(p.bild),
                         "memory_leak");
}

Befund pruefeResident(const Pruefling& p) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    plugin->setResident(true);
    Fundliste funde;
    for (const char* const wann : {"at its first use", "when it is used again while it stayed open"})
        for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin)) {
            if (!holeVomRichtigenTyp(*erweiterung))
                funde.fehler("a resident plugin's factory " + factoryVon(*erweiterung) + " makes no object " +
                                 wann,
                             "no_service");
            gibAllesZurueck(*erweiterung);
        }
    return funde.befund();
}

Befund pruefeReload(const Pruefling& p) {
    beginneOhnePlugins();
    OrvoPluginManager manager(nullptr);
    const std::set<std::string> vorher = bibliotheken();
    std::vector<std::string> erste;
    Fundliste funde;
    for (const bool nochmal : {false, true}) {
        if (!manager.ladePlugin(p.pfad))
            return durchgefallen(nochmal ? "the plugin manager does not load it again"
                                         : "the plugin manager does not load it",
                                 "not_loaded");
        const auto& plugin = dynamic_cast<const OrvoPluginV1&>(*manager.getRegistriertePlugins().back());
        if (nochmal)
            vergleicheBeschreibungen(erste, beschreibung(plugin), "after a reload it differs", funde);
        else
            erste = beschreibung(plugin);
        for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(plugin)) {
            if (!holeVomRichtigenTyp(*erweiterung))
                funde.fehler(factoryVon(*erweiterung) + " makes no object" +
                                 (nochmal ? " after a reload" : ""),
                             "no_service");
            if (nochmal)
                gibAllesZurueck(*erweiterung);
        }
        manager.entladePlugins();
        pruefeWegsein(p, vorher, nochmal ? "after the second unloading" : "after a reload with a service out",
                      funde);
        if (!funde.istLeer())
            break;
    }
    return funde.befund();
}

} // namespace

std::vector<Pruefung> nutzungsPruefungen() {
    return {
        {"use",
         N_("Loading the plugin, getting and giving back each of its services and closing it come to an end."),
         {"describes"},
         Ort::KIND,
         pruefeNutzung},
        {"services",
         N_("Each factory makes an object of the interface that its extension declares, each time."),
         {"factories", "use"},
         Ort::KIND,
         pruefeServices},
        {"service-ownership",
         N_("A factory makes a new object each time where the library deletes it, and the same one otherwise."),
         {"services"},
         Ort::KIND,
         pruefeServiceBesitz},
        {"exceptions",
         N_("No exception leaves an entry point, a hook or a factory."),
         {"use"},
         Ort::KIND,
         pruefeAusnahmen},
        {"unloads",
         N_("After loading, use and release nothing of the library is left in the process."),
         {"use", "nodelete"},
         Ort::KIND,
         pruefeEntladen},
        {"memory",
         N_("Using the plugin again and again takes no more memory."),
         {"services"},
         Ort::KIND,
         pruefeSpeicher},
        {"resident",
         N_("The plugin also works as a resident one, which stays open between uses."),
         {"services"},
         Ort::KIND,
         pruefeResident},
        {"reload",
         N_("The plugin can be unloaded while a service is out, and is the same after it is loaded again."),
         {"services", "describes-twice", "unloads"},
         Ort::KIND,
         pruefeReload},
    };
}

} // namespace werkzeug::check
