// Checks of a plugin together with the other given ones.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "check/Registratur.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoutil/OrvoVersion.h>
#include <orvoutil/SharedLib.h>

#include <algorithm>
#include <map>

using namespace orvo::orvoutil;

namespace werkzeug::check {

namespace {

/// The keys that another plugin answers for.
struct Verlust {
    std::size_t anzahl = 0;
    std::string beispiel;
    bool nachVersion =
        false; ///< whether the version decides for any of them; for tax-office data the first file wins
};

std::string text(const OrvoPlugin& anderes, const Verlust& verlust) {
    const std::string mehr =
        verlust.anzahl > 1 ? " and " + std::to_string(verlust.anzahl - 1) + " more are" : " is";
    const std::string version = anderes.getProduktVersion().empty()
                                    ? "without a version"
                                    : "version " + einzeilig(anderes.getProduktVersion());
    return verlust.beispiel + mehr + " served by " + einzeilig(anderes.getSharedLib()->getName()) + " (" +
           version + ")";
}

Befund pruefeUeberschneidungen(const Pruefling& p) {
    if (p.andere.empty())
        return uebersprungen("no other plugin that can be loaded was given", "no_other_plugin");
    std::vector<std::string> pfade = p.andere;
    pfade.push_back(p.pfad);
    std::sort(pfade.begin(), pfade.end()); // the manager's order within a directory
    Registratur registratur;
    const OrvoPluginV1* unseres = nullptr;
    for (const std::string& pfad : pfade)
        if (const OrvoPluginV1* const plugin = registratur.lade(pfad); pfad == p.pfad)
            unseres = plugin;
    if (!unseres)
        return durchgefallen("the plugin manager does not load it", "not_loaded");

    std::map<const OrvoPlugin*, Verlust> verluste;
    registratur.besuche(*unseres, [&](const Zuordnung& z) {
        const OrvoPlugin* const anderes = z.antwort ? z.antwort->getPlugin() : nullptr;
        if (!anderes || anderes == unseres)
            return;
        Verlust& verlust = verluste[anderes];
        if (verlust.anzahl++ == 0)
            verlust.beispiel = art(*z.erweiterung) + " for " + z.text;
        verlust.nachVersion |= z.erweiterung->getTyp() != ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG;
    });
    Fundliste funde;
    for (const auto& [anderes, verlust] : verluste) {
        if (!verlust.nachVersion)
            funde.warnung(text(*anderes, verlust) + ", the first by its file name", "file_name_decides");
        else if (OrvoVersion(anderes->getProduktVersion()) == OrvoVersion(unseres->getProduktVersion()))
            funde.fehler(text(*anderes, verlust) +
                             ", of the same version: the order of the file names decides",
                         "same_version");
        else
            funde.warnung(text(*anderes, verlust), "newer_version");
    }
    return funde.befund();
}

} // namespace

std::vector<Pruefung> reihenPruefungen() {
    return {
        {"overlaps",
         N_("No other of the given plugins answers in place of this one."),
         {"describes"},
         Ort::KIND_REIHE,
         pruefeUeberschneidungen},
    };
}

} // namespace werkzeug::check
