#pragma once

// Counts what its program requests from the system, in all libraries: memory by `operator new`, and calls of the loader
// and of the file system. It replaces the system's functions for that, so it can also make allocations fail.

#include <new>

struct Zaehler {
    int zuteilungen = 0; ///< of memory
    int oeffnungen = 0;  ///< dlopen
    int schliessungen = 0;
    int symbolsuchen = 0;
    int verzeichnisse = 0; ///< listed
    int dateien = 0;       ///< opened, not by the loader
    int lesungen = 0;      ///< from such files
    int zustaende = 0;     ///< queries of the state of a directory entry or an open file
    int fragen = 0;        ///< whether a file is in memory
    int ansagen = 0;       ///< of files to be read ahead
    int sperren = 0;       ///< locks taken

    /// The counts since the start of the program.
    static Zaehler bisher();
    /// The counts while `tu` ran.
    template <class Tu>
    static Zaehler waehrend(Tu&& tu) {
        const Zaehler vorher = bisher();
        tu();
        const Zaehler nachher = bisher();
        return {nachher.zuteilungen - vorher.zuteilungen,
                nachher.oeffnungen - vorher.oeffnungen,
                nachher.schliessungen - vorher.schliessungen,
                nachher.symbolsuchen - vorher.symbolsuchen,
                nachher.verzeichnisse - vorher.verzeichnisse,
                nachher.dateien - vorher.dateien,
                nachher.lesungen - vorher.lesungen,
                nachher.zustaende - vorher.zustaende,
                nachher.fragen - vorher.fragen,
                nachher.ansagen - vorher.ansagen,
                nachher.sperren - vorher.sperren};
    }

    /// What the system answers to the question whether a file is in memory.
    enum class Speicherort { IM_SPEICHER, AUF_DER_PLATTE, LEER, UNBEKANNT };
    static void setzeSpeicherort(Speicherort ort);
    /// How many files were announced, at most, that had not been opened by the loader yet; since the last
    /// `setzeSpeicherort`.
    static int groessterVorsprung();
    /// How many bytes of the last file were announced; 0 for all.
    static int zuletztAngesagteBytes();

    /// Whether these calls are counted; a sanitizer replaces them itself.
    static bool zaehltLader();

    /// Runs `tu` with memory for so many allocations; the next one fails, later ones succeed again. Returns: whether
    /// `tu` returned without `std::bad_alloc`. Inside the system's loader none fails: a library's start-up code cannot
    /// handle it.
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
