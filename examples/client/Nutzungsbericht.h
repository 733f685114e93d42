#pragma once

#include <iosfwd>
#include <string>
#include <vector>

class Erwartungen;
class LadeProtokoll;
class OrvoErweiterungsManager;

/// Takes two check services from one plugin, gives them back, and prints at each step how often the plugin is in
/// use and whether its library is in memory; then the same of a resident plugin, whose library stays.
void berichteNutzung(std::ostream& aus, const OrvoErweiterungsManager& registratur, LadeProtokoll& protokoll,
                     const std::string& datenverzeichnis, Erwartungen& erwartungen);

/// Prints that none of these libraries is in memory any more, resident or not.
void berichteAbgang(std::ostream& aus, const std::vector<std::string>& bibliotheken,
                    Erwartungen& erwartungen);
