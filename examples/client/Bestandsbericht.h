#pragma once

#include <iosfwd>

class Erwartungen;
class LadeProtokoll;
class OrvoErweiterungsManager;
class OrvoPluginManager;
struct Szenario;

/// Prints what was loaded, what was refused and why, and which keys were offered twice.
void berichteBestand(std::ostream& aus, OrvoPluginManager& manager,
                     const OrvoErweiterungsManager& registratur, const LadeProtokoll& protokoll,
                     const Szenario& szenario, Erwartungen& erwartungen);
