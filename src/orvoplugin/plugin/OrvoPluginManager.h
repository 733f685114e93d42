#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/PluginObserver.h>
#include <orvoutil/AenderungsBeobachter.h>
#include <orvoutil/BeobachterListe.h>
#include <orvoutil/Log.h>

#include <cstdint>
#include <list>
#include <string>

class LadeBeobachter;
class OrvoPlugin;
class OrvoPluginLoader;
class Vorlauf;

/// Owner of all loaded plugins. It finds the plugin libraries below the subdirectory "plugins" of the home
/// directory, loads each, and tells its observers; when the setting "basis.home_dir" changes it unloads them all
/// and loads what lies below the new one.
///
/// With the setting "basis.plugin_beschreibungen" at "eingebettet", as it is at the beginning of a loading run, a plugin
/// whose file describes it is loaded from that (`Beschreibung.h`), and its library is not opened.
///
/// One object serves the process: `getInstanz`. A bad plugin is logged and skipped; the others are unaffected.
///
/// Nothing is unloaded while code of a plugin is on the stack or the manager is loading or unloading: `entladePlugins` and
/// `reload` then only log a warning. (`entladePlugins` returns true all the same; `getRegistriertePlugins` shows what is
/// left.) A change of the home directory meanwhile is carried out when the manager has finished; if it comes from a hook,
/// a factory or the end of a service, at the next call that loads or unloads. An observer that is told of a plugin may
/// load another one with `ladePlugin`, but not one that is still being loaded.
///
/// Ownership: owns the plugins, not the observers; an observer removes itself before it is destroyed.
/// Errors: throws only `std::bad_alloc`, except where an operation says so.
/// Threads: one at a time, except `getInstanz`. A settings change is handled on the thread that makes it.
class ORVOPLUGIN_API OrvoPluginManager : public orvo::orvoutil::AenderungsBeobachter {
public:
    /// The process's manager. The first call makes it, with that observer (or none, for null), and so loads all
    /// plugins; later calls ignore the observer.
    /// Returns: the manager, owned by the `ObjectLifetimeManager`; null once the process's objects are being
    /// destroyed, and for the start-up and last code of a library opened or closed while the manager is being made.
    /// Errors: `std::logic_error` while the manager is being made.
    /// Threads: any, once the manager is made.
    static OrvoPluginManager* getInstanz(PluginObserver* observer);

    /// Loads all plugins; the observer, unless null, is told of each.
    explicit OrvoPluginManager(PluginObserver* observer);
    OrvoPluginManager(const OrvoPluginManager&) = delete;
    OrvoPluginManager& operator=(const OrvoPluginManager&) = delete;

    /// Reloads everything when the home directory changed.
    void empfangeAenderungsNachricht(const orvo::orvoutil::AenderungsNachricht& nachricht) override;
    ~OrvoPluginManager() override;

    /// Computes the search path and loads all plugins. Returns: as `ladePlugins`.
    bool initialisiere();
    /// Unloads every plugin, resident ones too, in the order of loading. Returns: true, also if refused.
    bool entladePlugins();
    /// Unloads all plugins and loads everything below the search path.
    void reload();

    /// Stores the absolute form of the path.
    void setPluginSuchPfad(const std::string& pfad);
    const std::string& getPluginSuchPfad() const { return pluginSuchPfad_; }
    /// Takes the search path from the settings: "plugins" below the home directory.
    void initPluginSuchPfad();

    /// Loads everything below the search path. Returns: whether every plugin file found was loaded.
    bool ladePlugins();
    /// Loads the plugin files of a directory and then those of its subdirectories, in bytewise order of names. Returns:
    /// whether every plugin file found was loaded. A failure does not end the walk.
    bool ladePluginsRekursiv(const std::string& verzeichnis);
    /// Loads one library. Returns: whether it was loaded and every observer took it; the log says why not.
    bool ladePlugin(const std::string& pfad);

    /// Whether the file name is on the block list ("Sperrliste"), in any letter case.
    bool isPluginGesperrt(const std::string& dateiname) const;
    /// Whether the plugin of that file is to be resident, by the setting "basis.resident_plugins": names, each followed by
    /// a comma; "alle" stands for every plugin. The list is read once for the process, as soon as it has an entry; the
    /// entries are echoed to the standard output.
    bool isResidentPlugin(const std::string& pfad) const;

    /// Appends an observer; null is ignored, one added twice is told twice.
    void addObserver(PluginObserver* observer);
    /// Removes the first entry of that observer; null and unknown ones are ignored.
    void removeObserver(PluginObserver* observer);
    /// Both tell every observer. Errors: the first exception that an observer threw, after all have been told.
    void notifyLoad(OrvoPlugin* plugin);
    void notifyUnload(OrvoPlugin* plugin);

    /// Sets the observer of all managers; null for none. Set it before the first `getInstanz`: that loads all plugins.
    /// Returns: the observer before. Ownership: stays with the caller.
    static LadeBeobachter* setLadeBeobachter(LadeBeobachter* beobachter);

    /// The plugins in the order of loading.
    std::list<OrvoPlugin*>& getRegistriertePlugins() { return plugins_; }
    /// 0 while the manager is being made, 1 after its first loading run, 2 while it is being destroyed.
    std::int32_t getStatus() const { return status_; }

private:
    enum class Arbeit : std::uint8_t {
        Keine,
        ImGang,  ///< plugins are looked for, loaded or unloaded
        Meldung, ///< observers are told of a plugin that was loaded
    };
    class Arbeitend;
    struct Ladevorgang;

    bool darfEntladen() const;
    bool wirdGeladen(const std::string& pfad) const;
    bool lehneAb(const char* auftrag) const;
    void entladeAlle();
    void beginneLauf();
    bool ladeAlle();
    void wechsleHome();
    void holeWechselNach();
    void benachrichtigeAlle(void (PluginObserver::*operation)(OrvoPlugin*), OrvoPlugin* plugin);
    bool durchsuche(const std::string& verzeichnis);
    bool nimmDatei(const std::string& verzeichnis, const std::string& datei, Vorlauf& vorlauf);
    bool ladeDatei(const std::string& pfad);
    OrvoPlugin* ladeBibliothek(OrvoPluginLoader& loader, const std::string& pfad);

    std::int32_t status_ = 0;
    std::list<OrvoPlugin*> plugins_;
    orvo::orvoutil::BeobachterListe<PluginObserver> observers_;
    std::string pluginSuchPfad_;
    orvo::orvoutil::Log log_;
    Arbeit arbeit_ = Arbeit::Keine;
    const Ladevorgang* ladevorgang_ = nullptr; ///< the innermost one
    bool wechselSteht_ = false;                ///< a change of the home directory is to be carried out
    bool nimmtBeschreibungen_ = false;         ///< by the setting, as of the last loading run
};
