#include "Registratur.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/SharedLib.h>

#include "TestPlugins.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <stdexcept>

using namespace orvo::orvoutil;

namespace {

std::list<OrvoPlugin*>& plugins() { return OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins(); }

std::list<OrvoPlugin*>::iterator sucheAlle(const std::string& name) {
    const auto gefunden = std::find_if(plugins().begin(), plugins().end(), [&](const OrvoPlugin* plugin) {
        return plugin->getSharedLib()->getName().ends_with("/lib" + name + ".dylib");
    });
    if (gefunden == plugins().end())
        throw std::invalid_argument("not loaded: " + name);
    return gefunden;
}

} // namespace

Registratur::Registratur() { Einstellungen().setze("basis.home_dir", home_.pfad()); }

Registratur::~Registratur() {
    ObjectLifetimeManager::instance().destroyAll();
    Einstellungen().setze("basis.home_dir", "");
}

std::string Registratur::lege(const std::string& name, const std::string& auftraege) const {
    const std::string datei = "plugins/lib" + name + ".dylib";
    home_.schreibe(datei + ".txt", auftraege);
    return home_.kopiere(test_plugins::DescribedByFile, datei);
}

OrvoErweiterungsManager& Registratur::starte() { return *OrvoErweiterungsManager::getInstanz(); }

void Registratur::entlade(const std::string& name) {
    const auto eintrag = sucheAlle(name);
    const std::unique_ptr<OrvoPlugin> plugin(*eintrag);
    plugins().erase(eintrag);
    OrvoPluginManager::getInstanz(nullptr)->notifyUnload(plugin.get());
}

OrvoErweiterung* Registratur::erweiterungVon(const std::string& name) {
    return dynamic_cast<OrvoPluginV1&>(**sucheAlle(name)).listeErweiterungen().at(0);
}

Veranlagungszeitraum jahr(int zahl) { return Veranlagungszeitraum(zahl, "YYYY"); }

std::string registriere(const OrvoErweiterung* erweiterung, const std::string& rest) {
    std::ostringstream text;
    text << "[ErweiterungsManager|99|Registriere Erweiterung(" << static_cast<const void*>(erweiterung) << ","
         << erweiterung->getTyp() << ")" << rest << "|99]";
    return text.str();
}

std::string doppelt(const std::string& schluessel) {
    const std::string ende = " nutze die Erweiterung mit der h\xF6"
                             "heren Version.";
    const std::string anfang = "Es existiert schon eine Erweiterung mit dem Schluessel: ";
    return "[ErweiterungsManager|99|" + anfang + anfang + schluessel + ende + ende + "|99]";
}
