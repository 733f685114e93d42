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
    bool nachVersion = false; ///< for any of them; for tax-office data the first file wins
};

/// Who answers for it: file and version.
std::string werAntwortet(const OrvoPlugin& anderes) {
    const std::string name = einzeilig(anderes.getSharedLib()->getName());
    if (anderes.getProduktVersion().empty())
        return satz("{1} (without a version)", name);
    return satz("{1} (version {2})", name, einzeilig(anderes.getProduktVersion()));
}

std::string text(const OrvoPlugin& anderes, const Verlust& verlust) {
    if (verlust.anzahl == 1)
        return satz("{1} is served by {2}", verlust.beispiel, werAntwortet(anderes));
    return satz("{1} and {2} more are served by {3}", verlust.beispiel, verlust.anzahl - 1,
                werAntwortet(anderes));
}

void pruefeUeberschneidungen(const Pruefling& p, Fundliste& funde) {
    if (p.andere.empty())
        return funde.uebersprungen(satz("no other plugin that can be loaded was given"), "no_other_plugin");
    std::vector<std::string> pfade = p.andere;
    pfade.push_back(p.pfad);
    std::sort(pfade.begin(), pfade.end()); // the manager's order within a directory
    Registratur registratur;
    const OrvoPluginV1* unseres = nullptr;
    for (const std::string& pfad : pfade)
        if (const OrvoPluginV1* const plugin = registratur.lade(pfad); pfad == p.pfad)
            unseres = plugin;
    if (!unseres)
        return funde.fehler(satz("the plugin manager does not load it"), "not_loaded");

    std::map<const OrvoPlugin*, Verlust> verluste;
    registratur.besuche(*unseres, [&](const Zuordnung& z) {
        const OrvoPlugin* const anderes = z.antwort ? z.antwort->getPlugin() : nullptr;
        if (!anderes || anderes == unseres)
            return;
        Verlust& verlust = verluste[anderes];
        if (verlust.anzahl++ == 0)
            verlust.beispiel = satz("{1} for {2}", art(*z.erweiterung), z.text);
        verlust.nachVersion |= z.erweiterung->getTyp() != ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG;
    });
    for (const auto& [anderes, verlust] : verluste) {
        if (!verlust.nachVersion)
            funde.warnung(satz("{1}, the first by its file name", text(*anderes, verlust)),
                          "file_name_decides");
        else if (OrvoVersion(anderes->getProduktVersion()) == OrvoVersion(unseres->getProduktVersion()))
            funde.fehler(satz("{1}, of the same version: the order of the file names decides",
                              text(*anderes, verlust)),
                         "same_version");
        else
            funde.warnung(text(*anderes, verlust), "newer_version");
    }
}

} // namespace

std::vector<Pruefung> reihenPruefungen() { return {{"overlaps", pruefeUeberschneidungen}}; }

} // namespace werkzeug::check
