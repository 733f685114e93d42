#pragma once

#include "kern/Fakten.h"
#include "kern/Kindprozess.h"
#include "kern/Optionen.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace werkzeug {

/// One life of a plugin, in a child process of its own that says before each step which one it is.
struct Lebenslauf {
    Kindende ende;
    Schritt schritt = Schritt::KEINER; ///< the last that was begun
    Ursache ursache = Ursache::KEINE;  ///< of a bad end, if it is known
    bool faeden = false;               ///< whether its threads still ran just before its library was closed
    std::vector<ServiceFakt> services; ///< what came of those that were asked for
    std::string grenze;                ///< a limit of the process that was changed until then, as a sentence
};

/// Opens a plugin, has it describe itself, closes it, and waits a while for what it left running.
/// Parameters: `zeitlimit` in seconds, for each step; with `mitServices`, each of its services is made and given back.
Lebenslauf verfolgeLeben(const std::string& pfad, double zeitlimit, bool mitServices = false);

/// In a child: waits for what plugins may have left running, so that it does its damage, if any, before the child ends
/// well. Timers are made to expire.
void wartAufUeberbleibsel();

/// Makes the service of each of the extensions once, in child processes, and enters what came of it in their facts.
/// A crash costs that service only. Returns: whether plugin code crashed, ended its process or took too long.
bool probiereServices(Bestand& bestand, const std::set<ErweiterungsOrt>& erweiterungen,
                      const Optionen& optionen);

} // namespace werkzeug
