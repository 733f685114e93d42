#include "Bestandsbericht.h"

#include "Erwartungen.h"
#include "LadeProtokoll.h"
#include "Szenario.h"
#include "Tabelle.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Latin1.h>

#include <algorithm>
#include <ostream>

using orvo::orvoutil::latin1ToUtf8;

namespace {

void berichteGeladene(std::ostream& aus, OrvoPluginManager& manager, const Szenario& szenario,
                      Erwartungen& erwartungen) {
    Tabelle tabelle({"Geladen", "Produktversion", "Dateiversion", "resident", ""});
    const auto& plugins = manager.getRegistriertePlugins();
    for (const OrvoPlugin* const plugin : plugins) {
        const std::string datei = dateiVon(*plugin);
        const std::string version = latin1ToUtf8(plugin->getProduktVersion());
        const bool erwartet =
            std::any_of(szenario.plugins.begin(), szenario.plugins.end(), [&](const Szenario::Plugin& p) {
                return p.datei == datei && p.version == version && p.resident == plugin->isResident();
            });
        tabelle.fuegeHinzu({datei, version, latin1ToUtf8(plugin->getFileVersion()),
                            jaNein(plugin->isResident()), erwartungen.pruefe(erwartet, "geladen: " + datei)});
    }
    aus << tabelle;
    erwartungen.pruefe(plugins.size() == szenario.plugins.size(), "Anzahl der geladenen Plugins");
}

void berichteAbgelehnte(std::ostream& aus, const LadeProtokoll& protokoll, const Szenario& szenario,
                        Erwartungen& erwartungen) {
    Tabelle tabelle({"Abgelehnt", "Grund", ""});
    for (const LadeProtokoll::Ablehnung& a : protokoll.getAblehnungen()) {
        const bool erwartet = std::any_of(
            szenario.ablehnungen.begin(), szenario.ablehnungen.end(), [&](const Szenario::Ablehnung& e) {
                return e.datei == a.datei && a.grund.find(e.grund) != std::string::npos;
            });
        tabelle.fuegeHinzu({a.datei, a.grund, erwartungen.pruefe(erwartet, "abgelehnt: " + a.datei)});
    }
    if (!protokoll.getAblehnungen().empty())
        aus << '\n' << tabelle;
    erwartungen.pruefe(protokoll.getAblehnungen().size() == szenario.ablehnungen.size(),
                       "Anzahl der abgelehnten Dateien");
}

void berichteKollisionen(std::ostream& aus, const OrvoErweiterungsManager& registratur,
                         const LadeProtokoll& protokoll, const Szenario& szenario, Erwartungen& erwartungen) {
    Tabelle tabelle({"Doppelt angeboten", "Unterfallart", "Zeitraum", "als zweites von", "es bleibt", ""});
    for (const LadeProtokoll::Kollision& k : protokoll.getKollisionen()) {
        const tag_erweiterung_typ dienst = dienstNamens(k.dienst);
        const OrvoErweiterung* const bleibt =
            frage(registratur, dienst, Unterfallart(k.unterfallart.c_str()), liesZeitraum(k.zeitraum));
        const bool erwartet = std::any_of(
            szenario.kollisionen.begin(), szenario.kollisionen.end(), [&](const Szenario::Kollision& e) {
                return e.dienst == dienst && e.unterfallart == k.unterfallart && e.zeitraum == k.zeitraum &&
                       bleibt && e.gewinner == dateiVon(*bleibt->getPlugin());
            });
        tabelle.fuegeHinzu(
            {nameVon(dienst), k.unterfallart, k.zeitraum, k.zweiter, dateiUndVersionVon(bleibt),
             erwartungen.pruefe(erwartet, "doppelt angeboten: " + k.unterfallart + " " + k.zeitraum)});
    }
    if (!protokoll.getKollisionen().empty())
        aus << '\n' << tabelle;
    erwartungen.pruefe(protokoll.getKollisionen().size() == szenario.kollisionen.size(),
                       "Anzahl der doppelt angebotenen Schlüssel");
}

} // namespace

void berichteBestand(std::ostream& aus, OrvoPluginManager& manager,
                     const OrvoErweiterungsManager& registratur, const LadeProtokoll& protokoll,
                     const Szenario& szenario, Erwartungen& erwartungen) {
    berichteGeladene(aus, manager, szenario, erwartungen);
    berichteAbgelehnte(aus, protokoll, szenario, erwartungen);
    berichteKollisionen(aus, registratur, protokoll, szenario, erwartungen);
}
