#pragma once

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <string>

/// A test with its own home directory, which the settings name. Its end destroys the process's registry and plugin
/// manager, if the test made them.
class Registratur : public testing::Test {
protected:
    Registratur();
    ~Registratur() override;

    /// Makes a plugin "plugins/lib<name>.dylib" that follows `auftraege`. Returns: its path.
    std::string lege(const std::string& name, const std::string& auftraege) const;
    /// The process's registry; the first call loads the plugins.
    static OrvoErweiterungsManager& starte();
    /// Unloads the single plugin of that name: takes it off the list, tells the observers, deletes it.
    static void entlade(const std::string& name);

    /// The first extension of the loaded plugin of that name.
    static OrvoErweiterung* erweiterungVon(const std::string& name);

    const Verzeichnis home_;
};

Veranlagungszeitraum jahr(int zahl);

/// "Registriere Erweiterung(<address>,<kind>)<rest>" as the log shows it.
std::string registriere(const OrvoErweiterung* erweiterung, const std::string& rest = "");
/// The line about a second extension under one key; `schluessel` is "kind/sub-case type/period".
std::string doppelt(const std::string& schluessel);

/// A plugin without a library, which a test describes and announces itself.
class LosesPlugin : public OrvoPluginV1 {
public:
    explicit LosesPlugin(const std::string& version) : OrvoPluginV1(nullptr) { setProduktVersion(version); }

    /// Returns: the clone that the plugin keeps.
    OrvoErweiterung* biete(const OrvoErweiterung& erweiterung) {
        addErweiterung(erweiterung);
        return listeErweiterungen().back();
    }
};
