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

// Questions to the registry in the child process, once all plugins are loaded. The answers are the library's own.

template <class T>
using JeSchluessel = std::unordered_map<ErweiterungsSchluessel, T, ErweiterungsSchluessel>;

/// What the registry answers for one kind and sub-case type in every year. Parameters: `schluessel` are the keys of
/// that pair, by year; `orte` tells where each key of the registry stands among the facts.
ZeileFakt frageAlleJahre(const OrvoErweiterungsManager& registratur,
                         const std::vector<const ErweiterungsSchluessel*>& schluessel,
                         const JeSchluessel<std::uint32_t>& orte);

/// A key that several extensions want.
struct Umstritten {
    const ErweiterungsSchluessel* schluessel;
    const OrvoErweiterung* inhaber;
    std::vector<const OrvoErweiterung*> bewerber; ///< all that ever wanted it
};

/// Who would stand under each key if its holder's plugin were not there; absent when nobody would. The registry is
/// told that plugins go and come again, so that it settles the matter itself, and ends with all of them.
/// Parameters: `lebenszeichen` is called now and then, for many plugins can take long.
JeSchluessel<const OrvoErweiterung*> frageNachZweiten(OrvoErweiterungsManager& registratur,
                                                      const std::vector<Umstritten>& umstrittene,
                                                      const std::function<void()>& lebenszeichen);

} // namespace werkzeug
