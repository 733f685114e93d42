#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

class Unterfallart;

/// A plugin of interface 1.
///
/// `initialize` opens the library, lets it describe itself and closes it again. From then on it is open only
/// while it has users: `notifyUse` opens it for the first one and calls its OnLoad function, `release` calls its
/// OnUnload function and closes it after the last one, unless the plugin is resident.
///
/// By contract the count has no floor: a `release` too many takes it below zero, and the next `notifyUse` then opens
/// nothing. Give each use back exactly once.
///
/// While an exception is under way or being handled, the library is not closed, because the class of the exception may
/// lie there. It is closed at the next use, release, load or unload of any plugin without one. A kept
/// `std::exception_ptr` cannot be seen: drop it before the last release.
///
/// Ownership: owns its extensions and its library. Services that are still out when the plugin is destroyed must not be
/// used any more.
/// Errors: `initialize` and `addErweiterung` throw; all others log. What a hook throws is logged as a warning.
class ORVOPLUGIN_API OrvoPluginV1 : public OrvoPlugin {
public:
    /// The number of the interface, as type records name it.
    enum : std::int32_t { SCHNITTSTELLE = 1 };

    /// Takes the library over, open or not.
    explicit OrvoPluginV1(orvo::orvoutil::SharedLib* sharedLib);
    ~OrvoPluginV1() override;

    void notifyUse() override;
    void release() override;
    /// The record's lines and the number of extensions of each kind.
    std::string toString() const override;

    /// Runs the library's `orvo_plugin_initialize`.
    /// Errors: `PluginInitException` when the library cannot be opened, has no such function, or the function
    /// refuses; the library is closed then. What the function throws passes through, with the library still open.
    void initialize() override;

    /// Keeps a clone of the extension, which points back to this plugin. For the plugin, while it initialises.
    /// Errors: `PluginInitException` for an extension whose class lies in the plugin library, and for one whose `clone`
    /// gives an object of another class.
    void addErweiterung(const OrvoErweiterung& erweiterung);

    /// The extensions in the order in which they were added, owned by the plugin.
    const std::vector<OrvoErweiterung*>& listeErweiterungen() const { return erweiterungen_; }

    /// Returns: the kind of each extension that serves the pair, in the order of the extensions.
    std::list<tag_erweiterung_typ>
    providesUnterfallartUndVeranlagungszeitraum(const Unterfallart& ua, const Veranlagungszeitraum& vz);

private:
    friend class OrvoPluginLoader;
    template <bool>
    friend class Beschreibungsstrom;

    explicit OrvoPluginV1(Bibliothekszeiger bibliothek);
    /// For a further type record of the same library: takes over the library and the earlier plugin.
    explicit OrvoPluginV1(std::unique_ptr<OrvoPluginV1> frueheres);

    /// Keeps an extension whose class outlives the plugin's library.
    void nimmAuf(std::unique_ptr<OrvoErweiterung> erweiterung);
    bool oeffne();
    void rufeHook(const std::string& name, const char* nichtGefunden, const char* ausnahme);

    std::map<tag_erweiterung_typ, std::int32_t> erweiterungsZaehler_;
    std::vector<OrvoErweiterung*> erweiterungen_;
    orvo::orvoutil::Log log_;
    std::vector<std::unique_ptr<OrvoPluginV1>> fruehere_; ///< of earlier type records of the library
};
