#pragma once

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoutil/SharedLib.h>

#include "TestPlugins.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// A real plugin from a library of its own: a copy of OffersEverything, initialised and closed again.
class Plugindatei {
public:
    Plugindatei()
        : pfad(verzeichnis.kopiere(test_plugins::OffersEverything, "libangebot.dylib")),
          plugin(std::make_unique<OrvoPluginV1>(new orvo::orvoutil::SharedLib(pfad))) {
        plugin->initialize();
    }

    bool istOffen() const { return istEingeblendet(pfad); }

    /// The plugin's extension of that kind, as its class.
    template <class Erweiterung>
    Erweiterung& erweiterung() const {
        for (OrvoErweiterung* const eine : plugin->listeErweiterungen())
            if (auto* const gesucht = dynamic_cast<Erweiterung*>(eine))
                return *gesucht;
        throw std::logic_error("no such extension in the plugin");
    }

    /// Number of living services of the plugin. The plugin must be in use.
    int lebende() const {
        return reinterpret_cast<int (*)()>(plugin->getSharedLib()->getSymbol("lebendeServices"))();
    }

    const Verzeichnis verzeichnis;
    const std::string pfad;
    std::unique_ptr<OrvoPluginV1> plugin;
};
