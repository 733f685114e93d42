#include "check/Pluginnutzung.h"

#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoplugin/plugin/OrvoPluginLoader.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/SharedLib.h>

#include <dlfcn.h>
#include <sys/resource.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

using namespace orvo::orvoutil;

namespace werkzeug::check {

namespace {

using Zeilen = std::vector<std::string>;

std::string zeile(const OrvoPlugin::LabelEintrag& label) {
    return satz("label {1} {2} {3} {4} {5} {6} {7}", label.zahl1, zitiert(label.text1),
                zitiert(label.zeitraum.getText()), zitiert(label.text2), label.zahl2, zitiert(label.text3),
                zitiert(label.text4));
}

void fuegePaareAn(const OrvoErweiterung& erweiterung, const std::string& anfang, Zeilen& zeilen) {
    const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(&erweiterung);
    if (!uaVz)
        return;
    for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap()) {
        zeilen.push_back(satz("{1} for {2} ({3})", anfang, einzeilig(ua.getName()), ua.getNummer()));
        for (const Veranlagungszeitraum& vz : vzs)
            zeilen.push_back(satz("{1} for {2}", anfang, paar(ua, vz)));
    }
}

template <class MitBedingungen>
void fuegeBedingungenAn(const OrvoErweiterung& erweiterung, const std::string& anfang, Zeilen& zeilen) {
    const auto* const mit = dynamic_cast<const MitBedingungen*>(&erweiterung);
    if (!mit)
        return;
    for (const Bedingung& bedingung : mit->getVorbedingungen())
        zeilen.push_back(satz("{1} with pre-condition {2}", anfang, int{bedingung.getTyp()}));
    for (const Bedingung& bedingung : mit->getNachbedingungen())
        zeilen.push_back(satz("{1} with post-condition {2}", anfang, int{bedingung.getTyp()}));
}

void fuegeErweiterungAn(const OrvoErweiterung& erweiterung, std::size_t nummer, Zeilen& zeilen) {
    const std::string anfang = satz("extension {1}, {2},", nummer, art(erweiterung));
    zeilen.push_back(satz("{1} of type {2}", anfang, int{erweiterung.getTyp()}));
    if (const auto* const service = dynamic_cast<const OrvoServiceErweiterung*>(&erweiterung))
        zeilen.push_back(satz("{1} made by {2}", anfang, zitiert(service->getServiceFactoryName())));
    for (int flag = FLAG_SERVICE_LOESCHEN; flag <= FLAG_RESERVIERT_4; ++flag)
        if (erweiterung.istFlagGesetzt(static_cast<orvo_erweiterung_flag_t>(flag)))
            zeilen.push_back(satz("{1} with flag {2}", anfang, flag));
    for (const Abhaengigkeit& abhaengigkeit : erweiterung.getAbhaengigkeiten())
        zeilen.push_back(satz("{1} with dependency {2}", anfang, int{abhaengigkeit.getTyp()}));
    fuegeBedingungenAn<OrvoValidierungsServiceErweiterung>(erweiterung, anfang, zeilen);
    fuegeBedingungenAn<OrvoDatensatzReaderErweiterung>(erweiterung, anfang, zeilen);
    fuegePaareAn(erweiterung, anfang, zeilen);
}

} // namespace

std::string laufendeAusnahme() {
    try {
        throw;
    } catch (const std::exception& ausnahme) {
        const char* const text = ausnahme.what();
        return text && *text ? ausnahmetext(text) : satz("an exception without a text");
    } catch (...) {
        return satz("an exception that is no std::exception");
    }
}

std::unique_ptr<OrvoPluginV1> lade(const std::string& pfad, bool nachBeschreibung) {
    OrvoPluginLoader loader(nachBeschreibung); // keeps the library open while the exception is handled
    std::unique_ptr<OrvoPlugin> plugin;
    try {
        plugin.reset(loader.loadPlugin(new SharedLib(pfad, false)));
    } catch (...) {
        throw Ladefehler(laufendeAusnahme());
    }
    auto* const v1 = dynamic_cast<OrvoPluginV1*>(plugin.get());
    if (!v1)
        throw Ladefehler(satz("the plugin is of another interface than 1"));
    plugin.release();
    return std::unique_ptr<OrvoPluginV1>(v1);
}

std::vector<OrvoServiceErweiterung*> serviceErweiterungen(const OrvoPluginV1& plugin) {
    std::vector<OrvoServiceErweiterung*> erweiterungen;
    for (OrvoErweiterung* const erweiterung : plugin.listeErweiterungen())
        if (auto* const service = dynamic_cast<OrvoServiceErweiterung*>(erweiterung))
            erweiterungen.push_back(service);
    return erweiterungen;
}

Service* holeVomRichtigenTyp(OrvoServiceErweiterung& erweiterung) {
    if (auto* const pruefung = dynamic_cast<OrvoValidierungsServiceErweiterung*>(&erweiterung))
        return pruefung->holeService();
    if (auto* const zuordnung = dynamic_cast<OrvoXPathMappingServiceErweiterung*>(&erweiterung))
        return zuordnung->holeService();
    if (auto* const leser = dynamic_cast<OrvoDatensatzReaderErweiterung*>(&erweiterung))
        return leser->holeService();
    return erweiterung.holeService();
}

void verlangeLoeschbar(OrvoServiceErweiterung& erweiterung, const Service* service) {
    Dl_info bild{};
    if (!erweiterung.istFlagGesetzt(FLAG_SERVICE_LOESCHEN) || dladdr(service, &bild) == 0)
        return;
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, false); // or unwinding deletes it
    throw Ladefehler(
        satz("the factory {1} gives a static object, and FLAG_SERVICE_LOESCHEN has it deleted: make "
             "each object with new, or do not set the flag",
             zitiert(erweiterung.getServiceFactoryName())));
}

void gibAllesZurueck(OrvoServiceErweiterung& erweiterung) {
    for (const auto& [service, ausgaben] : erweiterung.getInstanzen())
        verlangeLoeschbar(erweiterung, service);
    while (!erweiterung.getInstanzen().empty())
        erweiterung.release(erweiterung.getInstanzen().begin()->first);
}

void benutze(const OrvoPluginV1& plugin) {
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(plugin)) {
        erweiterung->holeService();
        gibAllesZurueck(*erweiterung);
    }
}

void ladeUndBenutze(const std::string& pfad) { benutze(*lade(pfad)); }

std::vector<std::string> beschreibung(const OrvoPluginV1& plugin) {
    Zeilen zeilen{satz("product version {1}", zitiert(plugin.getProduktVersion())),
                  satz("file version {1}", zitiert(plugin.getFileVersion())),
                  satz("OnLoad function {1}", zitiert(plugin.getOnLoadFuncName())),
                  satz("OnUnload function {1}", zitiert(plugin.getOnUnloadFuncName())),
                  plugin.isResident() ? satz("resident") : satz("not resident"),
                  satz("status {1}", int{plugin.getStatus()})};
    for (const OrvoPlugin::LabelEintrag& label : plugin.getLabels())
        zeilen.push_back(zeile(label));
    std::size_t nummer = 0;
    for (const OrvoErweiterung* const erweiterung : plugin.listeErweiterungen())
        fuegeErweiterungAn(*erweiterung, ++nummer, zeilen);
    return zeilen;
}

std::string unterschied(const std::vector<std::string>& erste, const std::vector<std::string>& zweite,
                        const char* text) {
    const auto [links, rechts] = std::mismatch(erste.begin(), erste.end(), zweite.begin(), zweite.end());
    if (links == erste.end() && rechts == zweite.end())
        return satz("in something that is never shown");
    return satz(text, links == erste.end() ? satz("nothing more") : *links,
                rechts == zweite.end() ? satz("nothing more") : *rechts);
}

void vergleicheBeschreibungen(const std::vector<std::string>& erste, const std::vector<std::string>& zweite,
                              const char* text, Fundliste& funde) {
    if (erste != zweite)
        funde.fehler(satz(text, unterschied(erste, zweite)), "differs");
}

bool istImProzess(const std::string& pfad) {
    const std::string name = pfad.find('/') == std::string::npos ? "./" + pfad : pfad;
    void* const griff = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (griff)
        dlclose(griff);
    return griff != nullptr;
}

double millisekundenSeit(std::chrono::steady_clock::time_point beginn) {
    const auto dauer = std::chrono::steady_clock::now() - beginn;
    return static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(dauer).count()) / 1000;
}

std::size_t laufendeThreads() {
    std::error_code fehler;
    const std::filesystem::directory_iterator liste("/proc/self/task", fehler);
    return static_cast<std::size_t>(std::distance(begin(liste), end(liste)));
}

std::map<std::string, std::string> prozessgrenzen() {
    static constexpr std::pair<const char*, decltype(RLIMIT_NOFILE)> kGrenzen[] = {
        {N_("the limit of open files"), RLIMIT_NOFILE}, {N_("the limit of address space"), RLIMIT_AS},
        {N_("the limit of data"), RLIMIT_DATA},         {N_("the limit of the stack"), RLIMIT_STACK},
        {N_("the limit of core files"), RLIMIT_CORE},   {N_("the limit of file size"), RLIMIT_FSIZE},
        {N_("the limit of processor time"), RLIMIT_CPU}};
    const auto text = [](rlim_t wert) { return wert == RLIM_INFINITY ? satz("unlimited") : alsWert(wert); };
    std::map<std::string, std::string> grenzen;
    for (const auto& [name, nummer] : kGrenzen) {
        rlimit grenze{};
        if (getrlimit(nummer, &grenze) == 0)
            grenzen[uebersetzt(name)] = text(grenze.rlim_cur) + " (" + text(grenze.rlim_max) + ")";
    }
    return grenzen;
}

std::string geaenderteGrenze(const std::map<std::string, std::string>& vorher) {
    for (const auto& [name, wert] : prozessgrenzen())
        if (const auto alt = vorher.find(name); alt != vorher.end() && alt->second != wert)
            return satz("{1} was {2} and is now {3}", name, alt->second, wert);
    return {};
}

void beginneOhnePlugins() { Einstellungen().setze("basis.home_dir", "/dev/null/nowhere"); }

} // namespace werkzeug::check
