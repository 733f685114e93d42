#pragma once

// What the checks in child processes do with a plugin. All of it runs the plugin's code.

#include "check/Befund.h"

#include <orvoplugin/plugin/OrvoPluginV1.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class OrvoServiceErweiterung;
class Service;

namespace werkzeug::check {

/// The library refuses a plugin; the text, UTF-8, says why. A check that this leaves has failed.
class Ladefehler : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The text of an exception that is being handled, whatever it is; null texts and foreign classes included.
std::string laufendeAusnahme();

/// Loads a plugin as the manager does. Errors: `Ladefehler`.
std::unique_ptr<OrvoPluginV1> lade(const std::string& pfad);

/// The plugin's extensions that hand out services, in their order.
std::vector<OrvoServiceErweiterung*> serviceErweiterungen(const OrvoPluginV1& plugin);

/// Gets a service of the interface that the extension declares. Returns: null when there is none of it; an object of
/// another interface is then among the extension's instances.
Service* holeVomRichtigenTyp(OrvoServiceErweiterung& erweiterung);

/// Gives back everything that an extension has out.
void gibAllesZurueck(OrvoServiceErweiterung& erweiterung);

/// Gets a service of each extension and gives it back.
void benutze(const OrvoPluginV1& plugin);

/// The whole life of a plugin: loaded, described, each of its services got and given back, its hooks called, closed.
void ladeUndBenutze(const std::string& pfad);

/// All that a plugin says of itself, a line each, for people.
std::vector<std::string> beschreibung(const OrvoPluginV1& plugin);

/// Adds the first line in which two descriptions differ.
void vergleicheBeschreibungen(const std::vector<std::string>& erste, const std::vector<std::string>& zweite,
                              const std::string& wann, Fundliste& funde);

/// Whether the library of that file is in the process.
bool istImProzess(const std::string& pfad);

/// Points the settings at a home directory without plugins, so that the process's manager and registry begin empty.
void beginneOhnePlugins();

} // namespace werkzeug::check
