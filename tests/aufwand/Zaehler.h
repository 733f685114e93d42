#pragma once

// Counts what the program it is linked into asks of the system, from whichever library: memory by `operator new`, and
// the calls of the loader and of the file system. It does so by standing before the system's own functions. So it can
// also let memory run out.

#include <new>

struct Zaehler {
    int zuteilungen = 0; ///< of memory
    int oeffnungen = 0;  ///< dlopen
    int schliessungen = 0;
    int symbolsuchen = 0;
    int verzeichnisse = 0; ///< listed
    int dateien = 0;       ///< opened, not by the loader
    int lesungen = 0;      ///< from such files
    int zustaende = 0;     ///< asked for: what an entry of a directory or an open file is

    /// What there was since the program began.
    static Zaehler bisher();
    /// What there was while `tu` ran.
    template <class Tu>
    static Zaehler waehrend(Tu&& tu) {
        const Zaehler vorher = bisher();
        tu();
        const Zaehler nachher = bisher();
        return {nachher.zuteilungen - vorher.zuteilungen,     nachher.oeffnungen - vorher.oeffnungen,
                nachher.schliessungen - vorher.schliessungen, nachher.symbolsuchen - vorher.symbolsuchen,
                nachher.verzeichnisse - vorher.verzeichnisse, nachher.dateien - vorher.dateien,
                nachher.lesungen - vorher.lesungen,           nachher.zustaende - vorher.zustaende};
    }

    /// Whether these calls are counted; a sanitizer stands before them itself.
    static bool zaehltLader();

    /// Runs `tu` with memory for so many allocations; the next one fails, and those after it succeed again. Returns:
    /// whether `tu` came to its end, and did not throw `std::bad_alloc`. Under the system's loader none fails: a library's
    /// start-up code cannot be saved from that.
    template <class Tu>
    static bool mitSpeicherFuer(int zuteilungen, Tu&& tu) {
        const Speichermangel mangel(zuteilungen);
        try {
            tu();
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    /// Whether an allocation failed in the last `mitSpeicherFuer`.
    static bool fehlteSpeicher();

private:
    struct Speichermangel {
        explicit Speichermangel(int zuteilungen);
        Speichermangel(const Speichermangel&) = delete;
        Speichermangel& operator=(const Speichermangel&) = delete;
        ~Speichermangel();
    };
};
