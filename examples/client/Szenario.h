#pragma once

#include "Auskunft.h"

#include <string>
#include <vector>

/// What this client expects of one home directory. `scripts/demo` lays out the two that it is shown with.
struct Szenario {
    struct Plugin {
        std::string datei;
        std::string version;
        bool resident;
    };
    struct Ablehnung {
        std::string datei;
        std::string grund; ///< must be part of the reason given
    };
    /// A service that a second plugin offers, and the plugin whose stays.
    struct Kollision {
        tag_erweiterung_typ dienst;
        std::string unterfallart;
        std::string zeitraum;
        std::string gewinner;
    };
    /// A question to the registry, and its answer; no file for nobody.
    struct Anfrage {
        tag_erweiterung_typ dienst;
        std::string unterfallart;
        std::string zeitraum;
        std::string datei;
        Treffer treffer;
    };
    struct Meldung {
        int code;
        std::string feld;
    };
    /// A file of records to check, and what is found in it.
    struct Pruefung {
        std::string datei;
        std::string unterfallart;
        std::string zeitraum;
        std::vector<Meldung> meldungen;
    };

    std::vector<Plugin> plugins;
    std::vector<Ablehnung> ablehnungen;
    std::vector<Kollision> kollisionen;
    std::vector<Anfrage> anfragen;
    std::vector<Pruefung> pruefungen;
};

/// The first home directory: all three plugins, two of which offer the same, and two files that are refused.
Szenario erstesSzenario();
/// The second one: without the newer check package.
Szenario zweitesSzenario();

/// Plugins that stay open once they were used, as the setting wants it.
constexpr char kResidentePlugins[] = "stammdaten,";
