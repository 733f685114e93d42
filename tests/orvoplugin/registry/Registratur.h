#pragma once

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <string>

/// A test with a home directory of its own, for the settings to point to. The process's registry and plugin
/// manager, if the test makes them, go with it.
class Registratur : public testing::Test {
protected:
    Registratur();
    ~Registratur() override;

    /// Lays a plugin "plugins/lib<name>.dylib" that does what `auftraege` says. Returns: its path.
    std::string lege(const std::string& name, const std::string& auftraege) const;
    /// The process's registry; the first call loads the plugins.
    static OrvoErweiterungsManager& starte();
    /// Takes the plugin of that name out of the plugin manager as a single one goes: list, observers, object.
    static void entlade(const std::string& name);

    /// The first extension of the loaded plugin of that name.
    static OrvoErweiterung* erweiterungVon(const std::string& name);

    const Verzeichnis home_;
};

Veranlagungszeitraum jahr(int zahl);

/// "Registriere Erweiterung(<address>,<kind>)<rest>" as it stands in the log.
std::string registriere(const OrvoErweiterung* erweiterung, const std::string& rest = "");
/// The line that tells of a second extension under one key; `schluessel` is "kind/sub-case type/period".
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
