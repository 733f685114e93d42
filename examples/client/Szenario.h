#pragma once

#include "Auskunft.h"

#include <string>
#include <vector>

/// The results that this client expects of one home directory. `scripts/demo` sets up the two that it is run with.
struct Szenario {
    struct Plugin {
        std::string datei;
        std::string version;
        bool resident;
    };
    struct Ablehnung {
        std::string datei;
        std::string grund; ///< a part of the reason
    };
    /// A service that a second plugin offers, and the plugin that keeps it.
    struct Kollision {
        tag_erweiterung_typ dienst;
        std::string unterfallart;
        std::string zeitraum;
        std::string gewinner;
    };
    /// A look-up, and its answer; no file when there is none.
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
    /// A file of records to check, and the expected findings.
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

/// Plugins that stay open after their first use, as the setting lists them.
constexpr char kResidentePlugins[] = "stammdaten,";
