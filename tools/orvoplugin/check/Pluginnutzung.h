#pragma once

// How the checks in child processes load, use and describe a plugin. Everything here runs plugin code.

#include "check/Befund.h"
#include "kern/Sprache.h"

#include <orvoplugin/plugin/OrvoPluginV1.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class OrvoServiceErweiterung;
class Service;

namespace werkzeug::check {

/// The library refuses a plugin; the text, UTF-8, gives the reason. A check that does not catch it has failed.
class Ladefehler : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The text of the exception being handled, of any class and also without a text.
std::string laufendeAusnahme();

/// Loads a plugin as the manager does. Parameters: with `nachBeschreibung`, by the description in its file, if there is
/// one. Errors: `Ladefehler`.
std::unique_ptr<OrvoPluginV1> lade(const std::string& pfad, bool nachBeschreibung = false);

/// The plugin's extensions that hand out services, in their order.
std::vector<OrvoServiceErweiterung*> serviceErweiterungen(const OrvoPluginV1& plugin);

/// Gets a service of the interface that the extension declares. Returns: null when the factory gave none of that
/// interface; an object of another interface is then among the extension's instances.
Service* holeVomRichtigenTyp(OrvoServiceErweiterung& erweiterung);

/// Refuses a service that the library would delete, but that is a static object: the process would not survive it, or
/// not for long. Errors: `Ladefehler`; the extension then deletes nothing any more.
void verlangeLoeschbar(OrvoServiceErweiterung& erweiterung, const Service* service);

/// Releases all services of an extension. Errors: `Ladefehler`, see `verlangeLoeschbar`.
void gibAllesZurueck(OrvoServiceErweiterung& erweiterung);

/// Gets a service of each extension and releases it.
void benutze(const OrvoPluginV1& plugin);

/// Loads a plugin, gets and releases each of its services, and unloads it.
void ladeUndBenutze(const std::string& pfad);

/// The whole description of a plugin, as text lines.
std::vector<std::string> beschreibung(const OrvoPluginV1& plugin);

/// The first line in which two descriptions differ, as {1} and {2} of a text of the catalogue.
std::string unterschied(const std::vector<std::string>& erste, const std::vector<std::string>& zweite,
                        const char* text = N_("first {1}, then {2}"));
/// Reports it as {1} of a text of the catalogue.
void vergleicheBeschreibungen(const std::vector<std::string>& erste, const std::vector<std::string>& zweite,
                              const char* text, Fundliste& funde);

/// Whether the library of that file is mapped into the process.
bool istImProzess(const std::string& pfad);

/// To the microsecond.
double millisekundenSeit(std::chrono::steady_clock::time_point beginn);

/// The process's threads; 0 where they cannot be counted.
std::size_t laufendeThreads();

/// The process's limits (setrlimit), by name: "the limit of open files".
std::map<std::string, std::string> prozessgrenzen();
/// "the limit of open files was 1024 and is now 0", of the first limit that has changed since; empty if none has.
std::string geaenderteGrenze(const std::map<std::string, std::string>& vorher);

/// Sets a home directory without plugins, so that the process's manager and registry start empty.
void beginneOhnePlugins();

} // namespace werkzeug::check
