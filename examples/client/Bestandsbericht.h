#pragma once

#include <iosfwd>

class Erwartungen;
class LadeProtokoll;
class OrvoErweiterungsManager;
class OrvoPluginManager;
struct Szenario;

/// Prints the loaded plugins, the refused files with the reasons, and the keys that were offered twice.
void berichteBestand(std::ostream& aus, OrvoPluginManager& manager,
                     const OrvoErweiterungsManager& registratur, const LadeProtokoll& protokoll,
                     const Szenario& szenario, Erwartungen& erwartungen);
