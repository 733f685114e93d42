#include <orvoplugin/plugin/OrvoPluginManager.h>

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoplugin/plugin/Einzelinstanz.h>
#include <orvoplugin/plugin/Fremdcode.h>
#include <orvoplugin/plugin/LadeBeobachter.h>
#include <orvoplugin/plugin/Ladeschritt.h>
#include <orvoplugin/plugin/Namensliste.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginLoader.h>
#include <orvoutil/DirReader.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>
#include <orvoutil/StringUtil.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <set>
#include <string_view>
#include <utility>

#ifdef __GLIBCXX__
// <iostream> would set up the standard streams whenever a process starts with this library, a twentieth of what that
// takes. Here it waits until there is something to write.
#include <ostream>
namespace std {
extern ostream cout;
}
#else
#include <iostream>
#endif

using namespace orvo::orvoutil;

namespace {

constexpr char kMarke[] = "OrvoPluginManager"; // tag of this class's log entries
constexpr int kOhneCode = 99;
constexpr int kEinstellungGeaendert = 3;
constexpr char kHomeDir[] = "basis.home_dir";
constexpr char kPluginVerzeichnis[] = "plugins";
constexpr char kPluginEndung[] = ".dylib";

/// Libraries that once lay among the plugins and are none.
constexpr std::string_view kSperrliste[] = {
    "libquarvelin2009.dylib", "libquorbis2009.dylib", "libzelmak98.dylib",
    "libfrendolin.dylib",     "libbrosmat.dylib",     "libwendrup.dylib",
};

LadeBeobachter* ladeBeobachter = nullptr; // asked for at each step: it may take itself out at any of them

/// The resident plugins' names. Never destroyed: plugins may still be loaded while the process ends.
std::set<std::string>& residentePlugins() {
    static auto& namen = *new std::set<std::string>;
    return namen;
}

void liesResidentePlugins(std::set<std::string>& namen) {
    const std::string liste = Einstellungen().basisResidentPlugins();
    fuerJedenNamen(liste, [&](std::string_view name) {
        static const std::ios_base::Init ausgabe;
        std::cout << "Resident Plugin: " << name << std::endl;
        namen.emplace(name);
    });
}

/// Where a listed file is, with what follows its last dot in lower case. Each name in the listing has a dot.
std::string pfadMitKleinerEndung(const std::string& verzeichnis, const std::string& datei) {
    std::string pfad = getFullFilename(verzeichnis, datei);
    for (std::size_t i = pfad.rfind('.'); i < pfad.size(); ++i)
        pfad[i] = orvo::orvoutil::tolower(pfad[i]);
    return pfad;
}

} // namespace

/// Stands for the time in which code of a plugin or an observer runs on the manager's behalf.
class OrvoPluginManager::Fremdarbeit {
public:
    explicit Fremdarbeit(OrvoPluginManager& manager) : laufende_(manager.fremdarbeit_) { ++laufende_; }
    Fremdarbeit(const Fremdarbeit&) = delete;
    Fremdarbeit& operator=(const Fremdarbeit&) = delete;
    ~Fremdarbeit() { --laufende_; }

private:
    int& laufende_;
};

OrvoPluginManager* OrvoPluginManager::getInstanz(PluginObserver* observer) {
    // "Manger" is the word that log readers look for.
    static constexpr EinzelinstanzTexte texte{kPluginManagerName, "getInstanz()", "Hole OrvoPluginManager",
                                              "PluginManger nicht gefunden. Starte Manager"};
    return holeEinzelinstanz<OrvoPluginManager>(texte, [&] { return new OrvoPluginManager(observer); });
}

OrvoPluginManager::OrvoPluginManager(PluginObserver* observer)
    : logger_(Logger::getInstance(kPluginManagerName)) {
    const KonstruktorSpur spur(logger_, "OrvoPluginManager()");
    addObserver(observer);
    initialisiere();
    Einstellungen().beobachterAnmelden(this);
    spur.ende();
}

OrvoPluginManager::~OrvoPluginManager() {
    const DestruktorSpur spur(logger_, "OrvoPluginManager()");
    Einstellungen().beobachterAbmelden(this);
    entladeAlle(); // also while a plugin is at work: then it has ended the process, and does not come back
    status_ = 2;
    spur.ende();
}

bool OrvoPluginManager::initialisiere() {
    const Spur spur(logger_, "OrvoPluginManager::startup"); // has no exit line
    protokolliere("Starte OrvoPluginManager");
    initPluginSuchPfad();
    const bool erfolg = ladePlugins();
    protokolliere(erfolg ? "erfolgreich gestartet" : "nicht erfolgreich gestartet");
    status_ = 1;
    return erfolg;
}

bool OrvoPluginManager::entladePlugins() {
    if (nimmtAuftragAn("entladePlugins()"))
        entladeAlle();
    return true;
}

void OrvoPluginManager::entladeAlle() {
    const Spur spur(logger_, "entladePlugins()");
    while (!plugins_.empty()) {
        const Fremdarbeit fremdarbeit(*this); // also for the log's reader: no orders meanwhile
        std::unique_ptr<OrvoPlugin> plugin(plugins_.front());
        if (plugin->getStatus() == ORVO_PLUGIN_GELADEN && plugin->getSharedLib())
            protokolliere("entlade Plugin ", plugin->getSharedLib()->getName());
        plugins_.pop_front();
        fremdcode::rufe([&] { notifyUnload(plugin.get()); },
                        [&](const char* grund) {
                            if (logger_ && logger_->isErrorEnabled())
                                logger_->error(std::string("Ausnahme beim Abmelden eines Plugins: ") + grund);
                        });
    }
    spur.ende();
}

void OrvoPluginManager::reload() {
    if (!nimmtAuftragAn("reload()"))
        return;
    protokolliere("Reload OrvoPluginManager");
    entladePlugins();
    ladePlugins();
    protokolliere("Reload OrvoPluginManager erfolgt.");
}

void OrvoPluginManager::empfangeAenderungsNachricht(const AenderungsNachricht& nachricht) {
    if (nachricht.getArt() != kEinstellungGeaendert || nachricht.getSchluessel() != kHomeDir ||
        !nimmtAuftragAn(kHomeDir))
        return;
    entladePlugins();
    initPluginSuchPfad();
    ladePlugins();
}

bool OrvoPluginManager::nimmtAuftragAn(const char* auftrag) const {
    if (fremdarbeit_ == 0 && !Pluginaufruf::laeuft())
        return true;
    if (logger_ && logger_->isWarnEnabled())
        logger_->warn(std::string("Plugins werden gerade geladen, entladen oder gerufen. Abgelehnt: ") +
                      auftrag);
    return false;
}

void OrvoPluginManager::setPluginSuchPfad(const std::string& pfad) {
    pluginSuchPfad_ = getAbsolutePath(pfad);
}

void OrvoPluginManager::initPluginSuchPfad() {
    setPluginSuchPfad(concatPath(Einstellungen().basisHomeDir(), kPluginVerzeichnis));
}

bool OrvoPluginManager::ladePlugins() {
    if (!nimmtAuftragAn("ladePlugins()"))
        return false;
    const Spur spur(logger_, "ladePlugins()");
    const bool erfolg = ladePluginsRekursiv(pluginSuchPfad_);
    spur.ende();
    return erfolg;
}

bool OrvoPluginManager::ladePluginsRekursiv(const std::string& verzeichnis) {
    const Spur spur(logger_, "ladePluginsRekursiv()");
    const std::string ort = verzeichnis; // which may be the search path itself: an observer may set that
    protokolliere("Suche Plugins im Verzeichnis: ", ort);
    const auto melde = [&](auto was) {
        if (!ladeBeobachter)
            return;
        const Fremdarbeit fremdarbeit(*this); // the walk goes on from here: no orders meanwhile
        was(*ladeBeobachter);
    };
    melde([&](LadeBeobachter& b) { b.betrittVerzeichnis(ort); });
    const DirReader leser(ort, "*.*");
    bool erfolg = true;
    for (const std::string& datei : leser.getFiles()) {
        if (isPluginGesperrt(datei)) {
            protokolliere("Plugin ", datei, " in Sperrliste. Wird ignoriert");
            melde([&](LadeBeobachter& b) {
                b.findetDatei(ort, datei, LadeBeobachter::GESPERRT, getFullFilename(ort, datei));
            });
            continue;
        }
        const std::string voll = pfadMitKleinerEndung(ort, datei);
        const bool istPlugin = endsWith(voll, kPluginEndung);
        melde([&](LadeBeobachter& b) {
            b.findetDatei(ort, datei, istPlugin ? LadeBeobachter::PLUGIN : LadeBeobachter::UEBERGANGEN, voll);
        });
        if (istPlugin && !ladePlugin(voll, voll.ends_with(datei)))
            erfolg = false;
    }
    for (const std::string& unterverzeichnis : leser.getDirectories())
        if (!ladePluginsRekursiv(getFullFilename(ort, unterverzeichnis)))
            erfolg = false;
    spur.ende();
    return erfolg;
}

bool OrvoPluginManager::isPluginGesperrt(const std::string& dateiname) const {
    return std::any_of(std::begin(kSperrliste), std::end(kSperrliste), [&](std::string_view gesperrt) {
        return dateiname.size() == gesperrt.size() && compareIgnoreCase(dateiname, gesperrt) == 0;
    });
}

bool OrvoPluginManager::isResidentPlugin(const std::string& pfad) const {
    std::set<std::string>& resident = residentePlugins();
    if (resident.empty())
        liesResidentePlugins(resident);
    if (resident.empty())
        return false;
    const std::string name = removeSpecialPatterns(
        removeSpecialPatterns(getOnlyFilenameOfFullFilename(pfad), "lib"), kPluginEndung);
    return resident.contains(orvo::orvoutil::tolower(name)) || resident.contains("alle");
}

bool OrvoPluginManager::ladePlugin(const std::string& pfad) { return ladePlugin(pfad, false); }

bool OrvoPluginManager::ladePlugin(const std::string& pfad, bool gelistet) {
    if (!nimmtAuftragAn("ladePlugin()"))
        return false;
    // Lasts while an exception is asked for its text, and while a library that was refused is closed.
    const Fremdarbeit fremdarbeit(*this);
    if (ladeBeobachter && !ladeBeobachter->ladeDatei(pfad))
        return false;
    const Spur spur(logger_, "ladePlugin()");
    protokolliere("Lese Bibliothek: ", pfad);
    // Outlives the exception that a plugin may throw, and with it the plugin's library does.
    OrvoPluginLoader loader;
    const bool geladen =
        fremdcode::rufe([&] { ladeBibliothek(loader, pfad, gelistet); },
                        [&](const char* grund) {
                            protokolliere("Plugin nicht geladen: ", grund);
                            if (ladeBeobachter)
                                ladeBeobachter->dateiAbgelehnt(pfad, Ladeschritt::aktueller(), grund);
                        });
    if (!geladen)
        return false;
    if (ladeBeobachter)
        ladeBeobachter->pluginGeladen(pfad, *plugins_.back());
    protokolliere("Plugin erfolgreich geladen");
    spur.ende();
    return true;
}

void OrvoPluginManager::ladeBibliothek(OrvoPluginLoader& loader, const std::string& pfad, bool gelistet) {
    auto bibliothek = std::make_unique<SharedLib>(pfad, false);
    if (gelistet)
        bibliothek->merkeListung();
    std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(bibliothek.release()));
    if (!plugin->isResident() && isResidentPlugin(pfad))
        plugin->setResident(true);
    plugins_.push_back(plugin.get());
    Ladeschritt::ist(ABLEHNUNG_BEOBACHTER);
    notifyLoad(plugin.release());
}

LadeBeobachter* OrvoPluginManager::setLadeBeobachter(LadeBeobachter* beobachter) {
    return std::exchange(ladeBeobachter, beobachter);
}

void OrvoPluginManager::addObserver(PluginObserver* observer) { observers_.anhaengen(observer); }

void OrvoPluginManager::removeObserver(PluginObserver* observer) { observers_.entfernen(observer); }

void OrvoPluginManager::notifyLoad(OrvoPlugin* plugin) { sageAllen(&PluginObserver::pluginErzeugt, plugin); }

void OrvoPluginManager::notifyUnload(OrvoPlugin* plugin) {
    sageAllen(&PluginObserver::pluginZerstoert, plugin);
}

void OrvoPluginManager::sageAllen(void (PluginObserver::*was)(OrvoPlugin*), OrvoPlugin* plugin) {
    const Fremdarbeit fremdarbeit(*this);
    std::exception_ptr erste;
    BeobachterListe<PluginObserver>::Durchlauf durchlauf(observers_);
    while (PluginObserver* const observer = durchlauf.naechster()) {
        try {
            (observer->*was)(plugin);
        } catch (...) {
            if (!erste)
                erste = std::current_exception();
        }
    }
    if (erste)
        std::rethrow_exception(erste);
}

void OrvoPluginManager::protokolliere(const char* text) const {
    if (logger_)
        logger_->tagged(kMarke, kOhneCode, text, kOhneCode);
}

void OrvoPluginManager::protokolliere(const char* vorspann, const std::string& wovon,
                                      const char* nachspann) const {
    if (!logger_ || !Logger::hatSenke())
        return;
    try {
        logger_->tagged(kMarke, kOhneCode, vorspann + wovon + nachspann, kOhneCode);
    } catch (const std::bad_alloc&) { // logging changes nothing else: there is no entry then
    }
}
