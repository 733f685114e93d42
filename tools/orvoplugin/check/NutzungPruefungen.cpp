// Checks of a plugin in use: services, hooks, closing.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "check/Text.h"
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

/// What an extension's factory does, which gave no service; calls it directly.
std::string warumKeinService(const OrvoPluginV1& plugin, const OrvoServiceErweiterung& erweiterung) {
    SharedLib bibliothek(plugin.getSharedLib()->getName(), true);
    const auto factory = reinterpret_cast<Factory>(bibliothek.getSymbol(erweiterung.getServiceFactoryName()));
    if (!factory)
        return satz("it is not found when it is needed");
    try {
        return factory() ? satz("it made an object only when asked again") : satz("it returns null");
    } catch (...) {
        return satz("it throws: {1}", laufendeAusnahme());
    }
}

/// Gets two services at the same time, and another one after these.
void pruefeService(const OrvoPluginV1& plugin, OrvoServiceErweiterung& erweiterung, Fundliste& funde) {
    const std::string factory = factoryVon(erweiterung);
    for (const bool erster : {true, false, false}) {
        if (holeVomRichtigenTyp(erweiterung))
            continue;
        if (erweiterung.getInstanzen().empty())
            funde.fehler(
                erster ? satz("{1} makes no object: {2}", factory, warumKeinService(plugin, erweiterung))
                       : satz("{1} makes no object while another is out: {2}", factory,
                              warumKeinService(plugin, erweiterung)),
                "no_service");
        else if (erster)
            funde.fehler(
                satz("{1} makes an object of another interface than {2} declares", factory, art(erweiterung)),
                "other_interface");
        else
            funde.fehler(satz("{1} makes no object of its interface while another is out", factory),
                         "no_service");
        break;
    }
    gibAllesZurueck(erweiterung);
    if (funde.istLeer() && !holeVomRichtigenTyp(erweiterung))
        funde.fehler(satz("{1} makes no object after the first ones were given back", factory), "no_service");
    gibAllesZurueck(erweiterung);
}

void pruefeBesitz(OrvoServiceErweiterung& erweiterung, Fundliste& funde) {
    const std::string factory = factoryVon(erweiterung);
    const Service* const erster = holeVomRichtigenTyp(erweiterung);
    const Service* const zweiter = holeVomRichtigenTyp(erweiterung);
    const bool wirdGeloescht = erweiterung.istFlagGesetzt(FLAG_SERVICE_LOESCHEN);
    if (wirdGeloescht && erster == zweiter)
        funde.fehler(
            satz(
                "{1} gives the same object twice, and FLAG_SERVICE_LOESCHEN has it deleted at its first release",
                factory),
            "same_object");
    else if (!wirdGeloescht && erster != zweiter)
        funde.warnung(
            satz("{1} makes a new object each time, which nobody deletes without FLAG_SERVICE_LOESCHEN",
                 factory),
            "leaks_object");
    gibAllesZurueck(erweiterung);
}

/// Calls a function of the plugin and reports an exception, which is gone on return.
void haelt(const char* text, const std::string& name, Fundliste& funde, const std::function<void()>& ruf) {
    try {
        ruf();
    } catch (...) {
        funde.fehler(satz(text, zitiert(name), laufendeAusnahme()), "throws");
    }
}

void rufeHook(const char* text, SharedLib& bibliothek, const std::string& name, Fundliste& funde) {
    if (const auto hook = name.empty() ? nullptr : reinterpret_cast<Hook>(bibliothek.getSymbol(name)))
        haelt(text, name, funde, hook);
}

void rufeFactory(SharedLib& bibliothek, OrvoServiceErweiterung& erweiterung, Fundliste& funde) {
    const std::string& name = erweiterung.getServiceFactoryName();
    const auto factory = reinterpret_cast<Factory>(bibliothek.getSymbol(name));
    if (!factory)
        return;
    const Service* service = nullptr;
    haelt(N_("an exception leaves the factory {1}: {2}"), name, funde, [&] { service = factory(); });
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

/// Reports the plugin's library, and libraries that it loaded, that are still mapped. Parameters: `text` says when, of
/// library {1}.
void pruefeWegsein(const Pruefling& p, const std::set<std::string>& vorher, const char* text,
                   Fundliste& funde) {
    if (istImProzess(p.pfad))
        return funde.fehler(satz(text, satz("the library")), "still_mapped");
    for (const std::string& name : bibliotheken())
        if (!vorher.contains(name))
            funde.warnung(satz(text, satz("{1}, which the plugin brought along,", einzeilig(name))),
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

void pruefeNutzung(const Pruefling& p, Fundliste&) { ladeUndBenutze(p.pfad); }

void pruefeServices(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin)) {
        Fundliste einzeln;
        pruefeService(*plugin, *erweiterung, einzeln);
        if (!einzeln.istLeer())
            funde.fehler(einzeln.befund().text, einzeln.befund().code.c_str());
    }
}

void pruefeServiceBesitz(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin))
        pruefeBesitz(*erweiterung, funde);
}

void pruefeAusnahmen(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    SharedLib bibliothek(p.pfad, true);
    rufeHook(N_("an exception leaves the OnLoad function {1}: {2}"), bibliothek, plugin->getOnLoadFuncName(),
             funde);
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin))
        rufeFactory(bibliothek, *erweiterung, funde);
    rufeHook(N_("an exception leaves the OnUnload function {1}: {2}"), bibliothek,
             plugin->getOnUnloadFuncName(), funde);
}

void pruefeEntladen(const Pruefling& p, Fundliste& funde) {
    const std::set<std::string> vorher = bibliotheken();
    std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    pruefeWegsein(p, vorher, N_("{1} is still in the process after it described itself"), funde);
    if (funde.istLeer()) {
        benutze(*plugin);
        if (!plugin->isResident())
            pruefeWegsein(p, vorher, N_("{1} is still in the process after its last service was given back"),
                          funde);
    }
    plugin.reset();
    if (funde.istLeer())
        pruefeWegsein(p, vorher, N_("{1} is still in the process after it was unloaded"), funde);
}

void pruefeSpeicher(const Pruefling& p, Fundliste& funde) {
    constexpr int kAnlauf = 5, kAbschnitte = 4;
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    for (int i = 0; i < kAnlauf; ++i)
        benutze(*plugin);
    if (belegt() == 0)
        return funde.uebersprungen(satz("the memory in use cannot be told here"), "not_measurable");
    // A one-time allocation, by the system's loader for instance, falls into one section; a leak shows in each.
    std::size_t verlust = std::numeric_limits<std::size_t>::max();
    for (int i = 0; i < kAbschnitte; ++i)
        verlust = std::min(verlust, verlustJeNutzung(*plugin, p.zeitlimit / 4 / kAbschnitte));
    constexpr std::size_t kKleinstesStueck = 16;
    if (verlust >= kKleinstesStueck)
        funde.warnung(satz("each use keeps about {1} bytes that are never freed", verlust) +
                          alsZusatz(eigenesCxx(p.bild)),
                      "memory_leak");
}

void pruefeResident(const Pruefling& p, Fundliste& funde) {
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    plugin->setResident(true);
    for (const char* const text :
         {N_("a resident plugin's factory {1} makes no object at its first use"),
          N_("a resident plugin's factory {1} makes no object when it is used again while it stayed open")})
        for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin)) {
            if (!holeVomRichtigenTyp(*erweiterung))
                funde.fehler(satz(text, factoryVon(*erweiterung)), "no_service");
            gibAllesZurueck(*erweiterung);
        }
}

void pruefeReload(const Pruefling& p, Fundliste& funde) {
    beginneOhnePlugins();
    OrvoPluginManager manager(nullptr);
    const std::set<std::string> vorher = bibliotheken();
    std::vector<std::string> erste;
    for (const bool nochmal : {false, true}) {
        if (!manager.ladePlugin(p.pfad))
            return funde.fehler(nochmal ? satz("the plugin manager does not load it again")
                                        : satz("the plugin manager does not load it"),
                                "not_loaded");
        const auto& plugin = dynamic_cast<const OrvoPluginV1&>(*manager.getRegistriertePlugins().back());
        if (nochmal)
            vergleicheBeschreibungen(erste, beschreibung(plugin), N_("after a reload it differs: {1}"),
                                     funde);
        else
            erste = beschreibung(plugin);
        for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(plugin)) {
            if (!holeVomRichtigenTyp(*erweiterung))
                funde.fehler(nochmal ? satz("{1} makes no object after a reload", factoryVon(*erweiterung))
                                     : satz("{1} makes no object", factoryVon(*erweiterung)),
                             "no_service");
            if (nochmal)
                gibAllesZurueck(*erweiterung);
        }
        manager.entladePlugins();
        pruefeWegsein(p, vorher,
                      nochmal ? N_("{1} is still in the process after the second unloading")
                              : N_("{1} is still in the process after a reload with a service out"),
                      funde);
        if (!funde.istLeer())
            break;
    }
}

} // namespace

std::vector<Pruefung> nutzungsPruefungen() {
    return {{"use", pruefeNutzung},
            {"services", pruefeServices},
            {"service-ownership", pruefeServiceBesitz},
            {"exceptions", pruefeAusnahmen},
            {"unloads", pruefeEntladen},
            {"memory", pruefeSpeicher},
            {"resident", pruefeResident},
            {"reload", pruefeReload}};
}

} // namespace werkzeug::check
