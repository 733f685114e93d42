#pragma once

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/PluginObserver.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>

#include "TestPlugins.h"
#include "support/Mitschnitt.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <functional>
#include <string>
#include <vector>

using Zeilen = std::vector<std::string>;

/// A tagged line of the plugin manager, as `Mitschnitt` writes it.
inline std::string markiert(const std::string& text) { return "[OrvoPluginManager|99|" + text + "|99]"; }

/// File name of the plugin's library.
inline std::string dateiname(const OrvoPlugin& plugin) {
    return orvo::orvoutil::getOnlyFilenameOfFullFilename(plugin.getSharedLib()->getName());
}

/// File names of the manager's plugins, in their order.
inline Zeilen plugins(OrvoPluginManager& manager) {
    Zeilen namen;
    for (const OrvoPlugin* const plugin : manager.getRegistriertePlugins())
        namen.push_back(dateiname(*plugin));
    return namen;
}

/// A home directory, which is set as long as this object lives. Its end destroys the process-wide objects and resets
/// the settings, so the next test starts anew.
class Heimat {
public:
    explicit Heimat(bool eingestellt = true) {
        verzeichnis.legeAn("plugins");
        if (eingestellt)
            stelleEin();
    }
    Heimat(const Heimat&) = delete;
    Heimat& operator=(const Heimat&) = delete;
    ~Heimat() {
        orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
        orvo::orvoutil::Einstellungen().setze("basis.home_dir", "");
        orvo::orvoutil::Einstellungen().setze("test.neues_home", "");
    }

    void stelleEin() const { orvo::orvoutil::Einstellungen().setze("basis.home_dir", verzeichnis.pfad()); }

    /// Puts a copy of the library into the plugin directory. Returns: its path.
    std::string lege(const char* bibliothek, const std::string& name) const {
        return verzeichnis.kopiere(bibliothek, "plugins/" + name);
    }
    /// Puts a plugin there that describes itself as the text says.
    std::string beschreibe(const std::string& name, const std::string& text = "") const {
        verzeichnis.schreibe("plugins/" + name + ".txt", text);
        return lege(test_plugins::DescribedByFile, name);
    }
    /// The plugin directory, or a path in it.
    std::string ort() const { return verzeichnis.pfad("plugins"); }
    std::string ort(const std::string& name) const { return ort() + "/" + name; }

    const Verzeichnis verzeichnis;
};

/// An observer that records "+libx.dylib" and "-libx.dylib", then calls a function of the test.
class Zeuge : public PluginObserver {
public:
    using Tat = std::function<void(OrvoPlugin&)>;

    explicit Zeuge(Zeilen& ereignisse, std::string name = "")
        : ereignisse_(ereignisse), name_(std::move(name)) {}

    void pluginErzeugt(OrvoPlugin* plugin) override {
        ereignisse_.push_back(name_ + "+" + dateiname(*plugin));
        if (beimErzeugen)
            beimErzeugen(*plugin);
    }
    void pluginZerstoert(OrvoPlugin* plugin) override {
        ereignisse_.push_back(name_ + "-" + dateiname(*plugin));
        if (beimZerstoeren)
            beimZerstoeren(*plugin);
    }

    Tat beimErzeugen;
    Tat beimZerstoeren;

private:
    Zeilen& ereignisse_;
    std::string name_;
};
