#include <orvoplugin/plugin/OrvoPluginManager.h>

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoplugin/plugin/Einzelinstanz.h>
#include <orvoplugin/plugin/Fremdcode.h>
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
#include <iostream>
#include <memory>
#include <set>
#include <string_view>

using namespace orvo::orvoutil;

namespace {

constexpr char kMarke[] = "OrvoPluginManager"; // tag of this class's log entries
constexpr int kOhneCode = 99;
constexpr int kEinstellungGeaendert = 3;
constexpr char kHomeDir[] = "basis.home_dir";
constexpr char kPluginVerzeichnis[] = "plugins";
constexpr char kPluginEndung[] = ".dylib";

/// Libraries that once lay among the plugins and are none.
constexpr const char* kSperrliste[] = {
    "libquarvelin2009.dylib", "libquorbis2009.dylib", "libzelmak98.dylib",
    "libfrendolin.dylib",     "libbrosmat.dylib",     "libwendrup.dylib",
};

/// The resident plugins' names. Never destroyed: plugins may still be loaded while the process ends.
std::set<std::string>& residentePlugins() {
    static auto& namen = *new std::set<std::string>;
    return namen;
}

void liesResidentePlugins(std::set<std::string>& namen) {
    const std::string liste = Einstellungen().basisResidentPlugins();
    fuerJedenNamen(liste, [&](std::string_view name) {
        std::cout << "Resident Plugin: " << name << std::endl;
        namen.emplace(name);
    });
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
        std::unique_ptr<OrvoPlugin> plugin(plugins_.front());
        if (plugin->getStatus() == ORVO_PLUGIN_GELADEN && plugin->getSharedLib())
            protokolliere("entlade Plugin ", plugin->getSharedLib()->getName());
        plugins_.pop_front();
        fremdcode::rufe([&] { notifyUnload(plugin.get()); },
                        [&](const char* grund) {
                            if (logger_ && logger_->isErrorEnabled())
                                logger_->error(std::string("Ausnahme beim Abmelden eines Plugins: ") + grund);
                        });
        const Fremdarbeit fremdarbeit(*this); // the library's last code runs in here
        plugin.reset();
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
    const DirReader leser(ort, "*.*");
    bool erfolg = true;
    for (const std::string& datei : leser.getFiles()) {
        if (isPluginGesperrt(datei)) {
            protokolliere("Plugin ", datei, " in Sperrliste. Wird ignoriert");
            continue;
        }
        std::string voll = getFullFilename(ort, datei);
        std::string pfad, name, endung;
        if (extractPathFilenameExtension(voll, pfad, name, endung))
            voll = getFullFilename(pfad, name + "." + orvo::orvoutil::tolower(endung));
        if (endsWith(voll, kPluginEndung) && !ladePlugin(voll))
            erfolg = false;
    }
    for (const std::string& unterverzeichnis : leser.getDirectories())
        if (!ladePluginsRekursiv(getFullFilename(ort, unterverzeichnis)))
            erfolg = false;
    spur.ende();
    return erfolg;
}

bool OrvoPluginManager::isPluginGesperrt(const std::string& dateiname) const {
    return std::any_of(std::begin(kSperrliste), std::end(kSperrliste),
                       [&](const char* gesperrt) { return compareIgnoreCase(dateiname, gesperrt) == 0; });
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

bool OrvoPluginManager::ladePlugin(const std::string& pfad) {
    if (!nimmtAuftragAn("ladePlugin()"))
        return false;
    const Spur spur(logger_, "ladePlugin()");
    protokolliere("Lese Bibliothek: ", pfad);
    // Lasts while an exception is asked for its text, and while a library that was refused is closed.
    const Fremdarbeit fremdarbeit(*this);
    // Outlives the exception that a plugin may throw, and with it the plugin's library does.
    OrvoPluginLoader loader;
    const bool geladen =
        fremdcode::rufe([&] { ladeBibliothek(loader, pfad); },
                        [&](const char* grund) { protokolliere("Plugin nicht geladen: ", grund); });
    if (!geladen)
        return false;
    protokolliere("Plugin erfolgreich geladen");
    spur.ende();
    return true;
}

void OrvoPluginManager::ladeBibliothek(OrvoPluginLoader& loader, const std::string& pfad) {
    std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(new SharedLib(pfad, false)));
    if (!plugin->isResident() && isResidentPlugin(pfad))
        plugin->setResident(true);
    plugins_.push_back(plugin.get());
    notifyLoad(plugin.release());
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
    if (logger_ && Logger::hatSenke())
        logger_->tagged(kMarke, kOhneCode, vorspann + wovon + nachspann, kOhneCode);
}
