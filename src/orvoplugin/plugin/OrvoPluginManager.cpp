#include <orvoplugin/plugin/OrvoPluginManager.h>

#include <orvoplugin/plugin/LadeBeobachter.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginLoader.h>
#include <orvoplugin/plugin/intern/Einzelinstanz.h>
#include <orvoplugin/plugin/intern/Namensliste.h>
#include <orvoplugin/plugin/intern/Vorlauf.h>
#include <orvoutil/DirReader.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>
#include <orvoutil/StringUtil.h>

#include <dlfcn.h>
#include <unwind.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

using namespace orvo::orvoutil;

namespace {

constexpr char kMarke[] = "OrvoPluginManager"; // tag of this class's log entries
constexpr char kPluginVerzeichnis[] = "plugins";
constexpr char kPluginEndung[] = ".dylib";
constexpr char kBeschreibungen[] = "basis.plugin_beschreibungen"; // where to take them from
constexpr char kEingebettet[] = "eingebettet";                    // the plugin's file
constexpr int kBeschreibungsseiten = 16 << 10;                    // bytes of the file that hold it, mostly

/// Libraries among the plugins of earlier releases that are none.
constexpr std::string_view kSperrliste[] = {
    "libquarvelin2009.dylib", "libquorbis2009.dylib", "libzelmak98.dylib",
    "libfrendolin.dylib",     "libbrosmat.dylib",     "libwendrup.dylib",
};

LadeBeobachter* ladeBeobachter = nullptr; // re-read before each call: a callback may reset it

/// The resident plugins' names. Never destroyed: plugins may be loaded until the process ends.
std::set<std::string>& residentePlugins() {
    static auto& namen = *new std::set<std::string>;
    return namen;
}

std::set<std::string> gelesenePluginnamen() {
    std::set<std::string> namen;
    const std::string liste = Einstellungen().basisResidentPlugins();
    fuerJedenNamen(liste, [&](std::string_view name) {
        std::cout << "Resident Plugin: " << name << std::endl;
        namen.emplace(name);
    });
    return namen;
}

bool istGesperrt(std::string_view dateiname) {
    return std::any_of(std::begin(kSperrliste), std::end(kSperrliste),
                       [&](std::string_view gesperrt) { return equalsIgnoreCase(dateiname, gesperrt); });
}

/// Whether a file of that name is loaded, unless an observer refuses it. (One that ends in ".DYLIB" is not found under the
/// name by which it is loaded, except where the file system ignores letter case.)
bool istPlugindatei(const std::string& datei) {
    return endsWith(datei, kPluginEndung) && !istGesperrt(datei);
}

/// Whether code of one of these plugins is on the stack of this thread. Only orders ask: calls of a service's operations
/// pass the library by.
bool ruftEines(const std::list<OrvoPlugin*>& plugins) {
    struct Suche {
        const std::list<OrvoPlugin*>& plugins;
        bool gefunden = false;
    } suche{plugins};
    const auto pruefe = [](_Unwind_Context* rahmen, void* daten) {
        auto& gesucht = *static_cast<Suche*>(daten);
        Dl_info ort;
        if (dladdr(reinterpret_cast<const void*>(_Unwind_GetIP(rahmen)), &ort) && ort.dli_fname)
            gesucht.gefunden =
                std::any_of(gesucht.plugins.begin(), gesucht.plugins.end(), [&](OrvoPlugin* plugin) {
                    return plugin->getSharedLib() && plugin->getSharedLib()->getName() == ort.dli_fname;
                });
        return gesucht.gefunden ? _URC_END_OF_STACK : _URC_NO_REASON;
    };
    _Unwind_Backtrace(pruefe, &suche);
    return suche.gefunden;
}

/// The path of a file, with what follows its last dot in lower case.
std::string pfadMitKleinerEndung(const std::string& verzeichnis, const std::string& datei) {
    std::string pfad = getFullFilename(verzeichnis, datei);
    for (std::size_t i = pfad.rfind('.'); i < pfad.size(); ++i)
        pfad[i] = orvo::orvoutil::tolower(pfad[i]);
    return pfad;
}

} // namespace

/// Says what the manager is doing, as long as it lives.
class OrvoPluginManager::Arbeitend {
public:
    Arbeitend(OrvoPluginManager& manager, Arbeit arbeit) noexcept
        : arbeit_(manager.arbeit_), vorher_(std::exchange(manager.arbeit_, arbeit)) {}
    Arbeitend(const Arbeitend&) = delete;
    ~Arbeitend() { arbeit_ = vorher_; }

private:
    Arbeit& arbeit_;
    const Arbeit vorher_;
};

/// A file that is being loaded, until the observers have been told.
struct OrvoPluginManager::Ladevorgang {
    Ladevorgang(OrvoPluginManager& manager, const std::string& datei) noexcept
        : pfad(datei), aeusserer(manager.ladevorgang_), innerster(manager.ladevorgang_) {
        innerster = this;
    }
    Ladevorgang(const Ladevorgang&) = delete;
    ~Ladevorgang() { innerster = aeusserer; }

    const std::string& pfad;
    const Ladevorgang* const aeusserer;
    const Ladevorgang*& innerster;
};

OrvoPluginManager* OrvoPluginManager::getInstanz(PluginObserver* observer) {
    // By contract "Manger".
    static constexpr EinzelinstanzTexte texte{kPluginManagerName, "getInstanz()", "Hole OrvoPluginManager",
                                              "PluginManger nicht gefunden. Starte Manager"};
    return holeEinzelinstanz<OrvoPluginManager>(texte, [&] { return new OrvoPluginManager(observer); });
}

OrvoPluginManager::OrvoPluginManager(PluginObserver* observer) : log_(kPluginManagerName) {
    const KonstruktorSpur spur(log_, "OrvoPluginManager()");
    try {
        addObserver(observer);
        const std::string home = Einstellungen().basisHomeDir();
        initialisiere();
        Einstellungen().beobachterAnmelden(this);
        if (Einstellungen().basisHomeDir() != home) // changed by a plugin or an observer
            wechsleHome();
    } catch (...) {
        Einstellungen().beobachterAbmelden(this);
        entladeAlle();
        throw;
    }
    spur.ende();
}

OrvoPluginManager::~OrvoPluginManager() {
    const DestruktorSpur spur(log_, "OrvoPluginManager()");
    Einstellungen().beobachterAbmelden(this);
    entladeAlle(); // also while a plugin is running: it has ended the process
    status_ = 2;
    spur.ende();
}

bool OrvoPluginManager::initialisiere() {
    const Spur spur(log_, "OrvoPluginManager::startup"); // by contract without an exit line
    log_.ereignis(kMarke, "Starte OrvoPluginManager");
    initPluginSuchPfad();
    const bool erfolg = ladePlugins();
    log_.ereignis(kMarke, erfolg ? "erfolgreich gestartet" : "nicht erfolgreich gestartet");
    status_ = 1;
    return erfolg;
}

bool OrvoPluginManager::entladePlugins() {
    if (!darfEntladen())
        return !lehneAb("entladePlugins()");
    entladeAlle();
    if (std::exchange(wechselSteht_, false))
        initPluginSuchPfad();
    return true;
}

void OrvoPluginManager::reload() {
    if (!darfEntladen()) {
        lehneAb("reload()");
        return;
    }
    log_.ereignis(kMarke, "Reload OrvoPluginManager");
    entladePlugins();
    ladePlugins();
    log_.ereignis(kMarke, "Reload OrvoPluginManager erfolgt.");
}

bool OrvoPluginManager::ladePlugins() {
    if (arbeit_ != Arbeit::Keine)
        return lehneAb("ladePlugins()");
    if (wechselSteht_ && darfEntladen())
        entladePlugins();
    const bool erfolg = ladeAlle();
    holeWechselNach();
    return erfolg;
}

bool OrvoPluginManager::ladePluginsRekursiv(const std::string& verzeichnis) {
    if (arbeit_ != Arbeit::Keine)
        return lehneAb("ladePluginsRekursiv()");
    beginneLauf();
    const bool erfolg = durchsuche(verzeichnis);
    holeWechselNach();
    return erfolg;
}

bool OrvoPluginManager::ladePlugin(const std::string& pfad) {
    if (arbeit_ == Arbeit::ImGang || wirdGeladen(pfad))
        return lehneAb("ladePlugin()");
    const std::string datei = pfad; // a copy: it may be the name of a plugin that is unloaded now
    holeWechselNach();
    if (!ladevorgang_)
        beginneLauf();
    const bool erfolg = ladeDatei(datei);
    holeWechselNach();
    return erfolg;
}

void OrvoPluginManager::empfangeAenderungsNachricht(const AenderungsNachricht& nachricht) {
    if (nachricht.getArt() != AenderungsNachricht::EINSTELLUNG_GEAENDERT ||
        nachricht.getSchluessel() != EINSTELLUNG_HOME_DIR)
        return;
    wechselSteht_ = true;
    if (!darfEntladen())
        log_.warn([] {
            return std::string("Plugins werden gerade geladen, entladen oder gerufen. Aufgeschoben: ") +
                   EINSTELLUNG_HOME_DIR;
        });
    holeWechselNach();
    holeWechselNach(); // a plugin of the new home may have changed it meanwhile
}

/// Carries out a change of the home directory, if plugins may be unloaded now. A further change meanwhile is left to the
/// next call, so that two plugins cannot keep the manager busy without end.
void OrvoPluginManager::holeWechselNach() {
    if (wechselSteht_ && darfEntladen())
        wechsleHome();
}

void OrvoPluginManager::wechsleHome() {
    wechselSteht_ = false;
    entladeAlle();
    initPluginSuchPfad();
    ladeAlle();
}

/// Whether nothing is running that needs the plugins' code or list.
bool OrvoPluginManager::darfEntladen() const {
    return arbeit_ == Arbeit::Keine && !Laufend::gibtEsIrgendeinen() && !ruftEines(plugins_);
}

/// Whether that file is being loaded: an observer that loads it again would never come to an end.
bool OrvoPluginManager::wirdGeladen(const std::string& pfad) const {
    for (const Ladevorgang* vorgang = ladevorgang_; vorgang; vorgang = vorgang->aeusserer)
        if (vorgang->pfad == pfad)
            return true;
    return false;
}

bool OrvoPluginManager::lehneAb(const char* auftrag) const {
    log_.warn([&] {
        return std::string("Plugins werden gerade geladen, entladen oder gerufen. Abgelehnt: ") + auftrag;
    });
    return false;
}

void OrvoPluginManager::entladeAlle() {
    const Spur spur(log_, "entladePlugins()");
    const Arbeitend arbeitend(*this, Arbeit::ImGang);
    while (!plugins_.empty()) {
        std::unique_ptr<OrvoPlugin> plugin(plugins_.front());
        if (plugin->getStatus() == ORVO_PLUGIN_GELADEN && plugin->getSharedLib())
            log_.ereignis(kMarke, [&] { return "entlade Plugin " + plugin->getSharedLib()->getName(); });
        plugins_.pop_front();
        Pluginbibliothek::rufe(
            [&] { notifyUnload(plugin.get()); },
            [&](const char* grund) {
                log_.error([&] { return std::string("Ausnahme beim Abmelden eines Plugins: ") + grund; });
            });
    }
    Pluginbibliothek::schliesseAufgeschobene();
    spur.ende();
}

void OrvoPluginManager::setPluginSuchPfad(const std::string& pfad) {
    pluginSuchPfad_ = getAbsolutePath(pfad);
}

void OrvoPluginManager::initPluginSuchPfad() {
    setPluginSuchPfad(concatPath(Einstellungen().basisHomeDir(), kPluginVerzeichnis));
}

void OrvoPluginManager::beginneLauf() {
    nimmtBeschreibungen_ = Einstellungen().wert(kBeschreibungen) == kEingebettet;
}

bool OrvoPluginManager::ladeAlle() {
    const Spur spur(log_, "ladePlugins()");
    beginneLauf();
    const bool erfolg = durchsuche(pluginSuchPfad_);
    spur.ende();
    return erfolg;
}

/// Walks depth first, with a list instead of recursion: directories may be nested deeper than the stack allows.
bool OrvoPluginManager::durchsuche(const std::string& verzeichnis) {
    constexpr char kOperation[] = "ladePluginsRekursiv()";
    const Arbeitend arbeitend(*this, Arbeit::ImGang);
    using Verzeichnisse = std::list<std::optional<std::string>>; // null stands for the end of an earlier one
    Verzeichnisse offene{verzeichnis}; // a copy: it may be the search path, which an observer may set
    bool erfolg = true;
    for (; !offene.empty(); offene.pop_front()) {
        if (!offene.front()) {
            log_.spure(&Logger::leave, kOperation);
            continue;
        }
        const std::string& ort = *offene.front();
        log_.spure(&Logger::enter, kOperation);
        log_.ereignis(kMarke, [&] { return "Suche Plugins im Verzeichnis: " + ort; });
        if (ladeBeobachter)
            ladeBeobachter->betrittVerzeichnis(ort);
        const DirReader leser(ort, "*.*");
        if (!leser.getFehler().empty())
            log_.warn(leser.getFehler());
        Vorlauf vorlauf(ort, leser.getFiles(), istPlugindatei,
                        nimmtBeschreibungen_ ? kBeschreibungsseiten : 0);
        for (const std::string& datei : leser.getFiles())
            if (!nimmDatei(ort, datei, vorlauf))
                erfolg = false;
        const auto danach = offene.emplace(std::next(offene.begin()));
        for (const std::string& unterverzeichnis : leser.getDirectories())
            offene.insert(danach, getFullFilename(ort, unterverzeichnis));
    }
    return erfolg;
}

/// Returns: false for a plugin that was not loaded.
bool OrvoPluginManager::nimmDatei(const std::string& verzeichnis, const std::string& datei,
                                  Vorlauf& vorlauf) {
    const bool istGesperrt = ::istGesperrt(datei);
    const std::string voll =
        istGesperrt ? getFullFilename(verzeichnis, datei) : pfadMitKleinerEndung(verzeichnis, datei);
    const auto art = istGesperrt                     ? LadeBeobachter::GESPERRT
                     : endsWith(voll, kPluginEndung) ? LadeBeobachter::PLUGIN
                                                     : LadeBeobachter::UEBERGANGEN;
    if (istGesperrt)
        log_.ereignis(kMarke, [&] { return "Plugin " + datei + " in Sperrliste. Wird ignoriert"; });
    if (ladeBeobachter)
        ladeBeobachter->findetDatei(verzeichnis, datei, art, voll);
    if (art != LadeBeobachter::PLUGIN)
        return true;
    if (istPlugindatei(datei))
        vorlauf.rueckeVor();
    return ladeDatei(voll);
}

bool OrvoPluginManager::isPluginGesperrt(const std::string& dateiname) const {
    return istGesperrt(dateiname);
}

bool OrvoPluginManager::isResidentPlugin(const std::string& pfad) const {
    std::set<std::string>& resident = residentePlugins();
    if (resident.empty())
        resident = gelesenePluginnamen();
    if (resident.empty())
        return false;
    const std::string name = removeSpecialPatterns(
        removeSpecialPatterns(getOnlyFilenameOfFullFilename(pfad), "lib"), kPluginEndung);
    return resident.contains(orvo::orvoutil::tolower(name)) || resident.contains("alle");
}

bool OrvoPluginManager::ladeDatei(const std::string& pfad) {
    const Arbeitend arbeitend(*this, Arbeit::ImGang);
    const Ladevorgang vorgang(*this, pfad);
    if (ladeBeobachter && !ladeBeobachter->ladeDatei(pfad))
        return false;
    const Spur spur(log_, "ladePlugin()");
    log_.ereignis(kMarke, [&] { return "Lese Bibliothek: " + pfad; });
    OrvoPluginLoader loader(
        nimmtBeschreibungen_); // outlives an exception of the plugin, then closes its library
    OrvoPlugin* plugin = nullptr;
    const bool geladen = Pluginbibliothek::rufe(
        [&] {
            plugin = ladeBibliothek(loader, pfad);
            notifyLoad(plugin);
        },
        [&](const char* grund) {
            log_.ereignis(kMarke, [&] { return std::string("Plugin nicht geladen: ") + grund; });
            if (ladeBeobachter)
                ladeBeobachter->dateiAbgelehnt(pfad, plugin ? ABLEHNUNG_BEOBACHTER : loader.getSchritt(),
                                               grund);
        });
    if (!geladen)
        return false;
    if (ladeBeobachter)
        ladeBeobachter->pluginGeladen(pfad, *plugin);
    log_.ereignis(kMarke, "Plugin erfolgreich geladen");
    spur.ende();
    return true;
}

OrvoPlugin* OrvoPluginManager::ladeBibliothek(OrvoPluginLoader& loader, const std::string& pfad) {
    std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(new SharedLib(pfad, false)));
    if (!plugin->isResident() && isResidentPlugin(pfad))
        plugin->setResident(true);
    plugins_.push_back(plugin.get());
    return plugin.release();
}

LadeBeobachter* OrvoPluginManager::setLadeBeobachter(LadeBeobachter* beobachter) {
    return std::exchange(ladeBeobachter, beobachter);
}

void OrvoPluginManager::addObserver(PluginObserver* observer) { observers_.anhaengen(observer); }
void OrvoPluginManager::removeObserver(PluginObserver* observer) { observers_.entfernen(observer); }

void OrvoPluginManager::notifyLoad(OrvoPlugin* plugin) {
    const Arbeitend arbeitend(*this, Arbeit::Meldung);
    benachrichtigeAlle(&PluginObserver::pluginErzeugt, plugin);
}

void OrvoPluginManager::notifyUnload(OrvoPlugin* plugin) {
    const Arbeitend arbeitend(*this, Arbeit::ImGang);
    benachrichtigeAlle(&PluginObserver::pluginZerstoert, plugin);
}

void OrvoPluginManager::benachrichtigeAlle(void (PluginObserver::*operation)(OrvoPlugin*),
                                           OrvoPlugin* plugin) {
    const Laufend laufend(Lauf::Beobachter);
    std::exception_ptr erste;
    BeobachterListe<PluginObserver>::Durchlauf durchlauf(observers_);
    while (PluginObserver* const observer = durchlauf.naechster()) {
        try {
            (observer->*operation)(plugin);
        } catch (...) {
            if (!erste)
                erste = std::current_exception();
        }
    }
    if (erste)
        std::rethrow_exception(erste);
}
