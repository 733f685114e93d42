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
/// The count has no floor: a `release` too many takes it below zero, and then the next `notifyUse` is not a first
/// one and opens nothing. That is wanted, and binds callers: each use is given back once.
///
/// Ownership: owns its extensions and its library. Services that are still out when the plugin is destroyed must
/// not be touched any more; giving them back in time is the caller's duty.
/// Errors: `initialize` and `addErweiterung` throw; all others report in the log. What an OnLoad or OnUnload
/// function throws ends there, as a warning.
/// Threads: one thread at a time, as everywhere in this library.
class ORVOPLUGIN_API OrvoPluginV1 : public OrvoPlugin {
public:
    /// Takes the library over, open or not; does not touch it.
    explicit OrvoPluginV1(orvo::orvoutil::SharedLib* sharedLib);
    ~OrvoPluginV1() override;

    void notifyUse() override;
    void release() override;
    /// The record's lines and the number of extensions of each kind.
    std::string toString() const override;

    /// Runs the library's `orvo_plugin_initialize`.
    ///
    /// Errors: `PluginInitException` when the library cannot be opened, has no such function, or the function
    /// refuses; the library is closed then. Whatever the function itself throws passes through, and the library
    /// stays open until this object is destroyed: the class of what was thrown may live there.
    void initialize() override;

    /// Keeps a clone of the extension, which points back to this plugin. For the plugin, while it initialises.
    ///
    /// Errors: `PluginInitException` for an extension whose class lives in the plugin library: its code goes when
    /// the library is closed.
    void addErweiterung(const OrvoErweiterung& erweiterung);

    /// The extensions in the order in which they were added, owned by the plugin.
    const std::vector<OrvoErweiterung*>& listeErweiterungen() const { return erweiterungen_; }

    /// Returns: the kinds of the extensions that serve the pair, in the order of the extensions, repeats kept.
    /// Tax-office data extensions serve no pairs and are passed over.
    std::list<tag_erweiterung_typ>
    providesUnterfallartUndVeranlagungszeitraum(const Unterfallart& ua, const Veranlagungszeitraum& vz);

private:
    friend class OrvoPluginLoader;

    /// Keeps an earlier plugin of the same library, which lives as long as this one and no longer owns the
    /// library. For a library that declares its interface more than once.
    void behalteFrueheres(std::unique_ptr<OrvoPluginV1> frueheres);

    bool oeffne();
    void schliesse();
    void rufeHook(const std::string& name, const char* nichtGefunden, const char* ausnahme);

    std::map<tag_erweiterung_typ, std::int32_t> erweiterungsZaehler_;
    std::vector<OrvoErweiterung*> erweiterungen_;
    orvo::orvoutil::Logger* logger_;
    std::vector<std::unique_ptr<OrvoPluginV1>> fruehere_;
};
