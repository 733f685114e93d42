#pragma once

#include "kern/Fakten.h"

#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

class OrvoErweiterungsManager;
class OrvoErweiterung;

namespace werkzeug {

// Queries of the registry in the child process, once all plugins are loaded. The library gives the answers.

template <class T>
using JeSchluessel = std::unordered_map<ErweiterungsSchluessel, T, ErweiterungsSchluessel>;

/// What the registry answers for one kind and sub-case type in every year.
/// Parameters: `schluessel` are the keys of that pair, by year; `orte` maps each key of the registry to its place among
/// the facts.
ZeileFakt frageAlleJahre(const OrvoErweiterungsManager& registratur,
                         const std::vector<const ErweiterungsSchluessel*>& schluessel,
                         const JeSchluessel<std::uint32_t>& orte);

/// A key that several extensions offer.
struct Umstritten {
    const ErweiterungsSchluessel* schluessel;
    const OrvoErweiterung* inhaber;
    std::vector<const OrvoErweiterung*> bewerber; ///< all that offered it
};

/// Which extension would hold each key if the holder's plugin were missing; no entry when none would. The registry is
/// told to remove and add plugins, so that it decides itself; in the end all are added again.
/// Parameters: `lebenszeichen` is called at intervals, because many plugins take long.
JeSchluessel<const OrvoErweiterung*> frageNachZweiten(OrvoErweiterungsManager& registratur,
                                                      const std::vector<Umstritten>& umstrittene,
                                                      const std::function<void()>& lebenszeichen);

} // namespace werkzeug
