#pragma once

#include <orvoutil/Einstellungen.h>

#include "TestPlugins.h"
#include "support/Verzeichnis.h"

#include <string>

/// A home directory with a number of plugins, each with check services for two sub-case types and three years.
class Home {
public:
    explicit Home(int plugins) {
        for (int i = 0; i < plugins; ++i) {
            const std::string datei = "plugins/libplugin" + std::to_string(100 + i) + ".dylib";
            verzeichnis_.kopiere(test_plugins::DescribedByFile, datei);
            verzeichnis_.schreibe(datei + ".txt", "produktversion 1." + std::to_string(i) + "\ncheck " +
                                                      std::to_string(100 + i) +
                                                      " 2008,2009,2010\ncheck AntraegeRechteLoeschen" +
                                                      std::to_string(i) + " 2009,immer\n" +
                                                      "factory gleicherService\nfeldinfo 10 2009\n");
        }
    }

    void waehle() const { orvo::orvoutil::Einstellungen().setze("basis.home_dir", verzeichnis_.pfad()); }
    const std::string& pfad() const { return verzeichnis_.pfad(); }

private:
    Verzeichnis verzeichnis_;
};
