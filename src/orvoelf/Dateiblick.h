#pragma once

#include <cstdint>
#include <string>

namespace orvo::orvoelf {

/// What is wrong with a file ("Mangel": defect).
enum class Dateimangel : std::int32_t {
    KEINER = 0,
    NICHT_ZU_OEFFNEN,          ///< missing, no permission, an error of the device
    KEINE_DATEI,               ///< a directory, FIFO, socket or device
    KEINE_ELF_DATEI,           ///< another file altogether
    ANDERER_PROZESSOR,         ///< for a machine of another kind
    KEINE_BIBLIOTHEK,          ///< a program or an object file
    ABGESCHNITTEN,             ///< ends too early
    NICHT_ZU_ENDE_GESCHRIEBEN, ///< has its full length, but ends in zeros that should be something else
    BESCHAEDIGT,               ///< its headers contradict each other
    ANDERE_AUSGABE,            ///< needs these libraries in another release
    BENOETIGTE_BIBLIOTHEK,     ///< a library that it needs is one of the above
};

/// What a look at a file has found.
struct Dateibefund {
    Dateimangel mangel = Dateimangel::KEINER;
    std::string grund; ///< for people, in Latin-1 and without the path; empty when nothing is wrong

    bool istLadbar() const { return mangel == Dateimangel::KEINER; }
};

/// Looks at a library's file before the system's loader does, because a truncated file can end the process instead of
/// failing to load. On systems other than Linux only the kind of the file is checked.
///
/// Refuses a file that was cut off or not written to its end; of all else, only what the loader would refuse or not
/// survive. In doubt, the loader decides. Takes at most five system calls for a file that passes, whatever its size:
/// relocations, symbols and sections are not read. The file can still change before the loader opens it.
///
/// Looks in the same way at the libraries that the file needs, as far as the loader searches them relative to the file's
/// directory (`$ORIGIN`) before it searches anywhere else, and at those that they need. A missing one is no defect.
///
/// Parameters: `pfad` names a file, with a slash in it, as the loader gets it.
/// Errors: throws only std::bad_alloc. Threads: any.
Dateibefund blickeAufDatei(const std::string& pfad);

} // namespace orvo::orvoelf
