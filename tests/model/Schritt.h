#pragma once

#include "Modell.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// The steps of a sequence of operations, and the generator of sequences.
namespace modell {

struct Schritt {
    enum class Art {
        BESCHREIBE,   ///< writes another description beside plugin file `wen`
        HOME,         ///< sets home directory `wen`
        LADE_DATEI,   ///< loads plugin file `wen`
        LADE_ALLE,    ///< loads everything below the search path again
        ENTLADE,      ///< unloads plugin `wen`, alone
        ENTLADE_ALLE, ///< all of them
        RELOAD,
        NEUSTART,    ///< destroys all objects of the process and starts anew
        SUCHE,       ///< looks `frage` up
        HOLE,        ///< looks `frage` up and gets a service from the result
        HOLE_VON,    ///< gets a service from extension `was` of plugin `wen`
        GIB,         ///< gives back service `wen` of those in use
        GIB_NOCHMAL, ///< gives back service `wen` of those that were given back
        GIB_ANDEREM, ///< gives service `wen` back to extension `was` of its plugin
        NUTZE,       ///< adds a use of plugin `wen`
        LASS,        ///< removes a use, also below zero
    };

    Art art = Art::SUCHE;
    /// An index is taken modulo the number of existing objects.
    std::size_t wen = 0;
    std::size_t was = 0;
    Frage frage;
    Beschreibung beschreibung;

    std::string text() const;
};

using Folge = std::vector<Schritt>;

/// Makes sequences at random; the same for the same seed, on every machine.
class Erzeuger {
public:
    explicit Erzeuger(std::uint64_t saat) : zufall_(saat) {}

    /// A sequence of that many steps, which begins with descriptions for the plugin files.
    Folge folge(std::size_t schritte, std::size_t dateien, std::size_t homes);
    Frage frage();

private:
    std::size_t unter(std::size_t grenze) { return static_cast<std::size_t>(zufall_() % grenze); }
    bool eineVon(std::size_t n) { return unter(n) == 0; }
    template <class T, std::size_t N>
    const T& eines(const T (&auswahl)[N]) {
        return auswahl[unter(N)];
    }

    Schritt schritt(std::size_t dateien, std::size_t homes);
    Schritt beschreibe(std::size_t datei);
    Beschreibung beschreibung();

    std::mt19937_64 zufall_;
};

} // namespace modell
