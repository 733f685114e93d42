#include "Vorfuehrung.h"

#include "Auskunftsbericht.h"
#include "Bestandsbericht.h"
#include "Erwartungen.h"
#include "LadeProtokoll.h"
#include "Nutzungsbericht.h"
#include "Pruefbericht.h"
#include "Szenario.h"
#include "Tabelle.h"

#include <orvoplugin/plugin/LibraryVersion.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace orvo::orvoutil;

namespace {

std::string bibliotheksversion() {
    char puffer[16];
    getOrvoSharedLibProductversion(puffer);
    return puffer;
}

std::vector<std::string> bibliothekenVon(OrvoPluginManager& manager) {
    std::vector<std::string> pfade;
    for (const OrvoPlugin* const plugin : manager.getRegistriertePlugins())
        pfade.push_back(plugin->getSharedLib()->getName());
    return pfade;
}

} // namespace

Vorfuehrung::Vorfuehrung(std::string erstesHome, std::string zweitesHome, std::string datenverzeichnis)
    : erstesHome_(std::move(erstesHome)),
      zweitesHome_(std::move(zweitesHome)),
      datenverzeichnis_(std::move(datenverzeichnis)) {}

bool Vorfuehrung::laufe() const {
    std::ostream& aus = std::cout;
    Erwartungen erwartungen;
    const Szenario erstes = erstesSzenario();
    const Szenario zweites = zweitesSzenario();

    // Set the sink first: log entries without a sink are lost.
    const auto protokoll = std::make_shared<LadeProtokoll>();
    Logger::setSink(protokoll);
    const Einstellungen einstellungen;
    einstellungen.setze("basis.resident_plugins", kResidentePlugins);
    einstellungen.setze("basis.home_dir", erstesHome_);

    schreibeUeberschrift(aus, "1  Start mit dem ersten Home-Verzeichnis");
    aus << "  Bibliothek " << bibliotheksversion() << ", Home " << toUtf8(einstellungen.basisHomeDir())
        << "\n\n";
    OrvoErweiterungsManager& registratur = *OrvoErweiterungsManager::getInstanz(); // loads all plugins
    OrvoPluginManager& manager = *OrvoPluginManager::getInstanz(nullptr);
    aus << '\n';
    berichteBestand(aus, manager, registratur, *protokoll, erstes, erwartungen);

    schreibeUeberschrift(aus, "2  Wer antwortet");
    berichteAuskunft(aus, registratur, erstes, erwartungen);

    schreibeUeberschrift(aus, "3  Geprüfte Datensätze");
    berichtePruefungen(aus, registratur, datenverzeichnis_, erstes, erwartungen);

    schreibeUeberschrift(aus, "4  Nutzung und Speicher");
    berichteNutzung(aus, registratur, *protokoll, datenverzeichnis_, erwartungen);

    schreibeUeberschrift(aus, "5  Wechsel auf das zweite Home-Verzeichnis");
    const std::vector<std::string> bisherige = bibliothekenVon(manager);
    protokoll->leere();
    einstellungen.setze("basis.home_dir", zweitesHome_); // unloads all plugins, loads the others
    aus << "  Home " << toUtf8(einstellungen.basisHomeDir()) << "\n\n";
    berichteAbgang(aus, bisherige, erwartungen);
    aus << '\n';
    berichteBestand(aus, manager, registratur, *protokoll, zweites, erwartungen);
    aus << '\n';
    berichteAuskunft(aus, registratur, zweites, erwartungen);
    berichtePruefungen(aus, registratur, datenverzeichnis_, zweites, erwartungen);

    schreibeUeberschrift(aus, "Ergebnis");
    for (const std::string& warnung : protokoll->getWarnungen())
        aus << "  Warnung: " << warnung << '\n';
    erwartungen.pruefe(protokoll->getWarnungen().empty(), "keine Warnungen der Bibliothek");
    aus << erwartungen << std::flush;
    return erwartungen.sindErfuellt() && aus.good();
}
