#pragma once

#include "check/Katalog.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace werkzeug::check {

/// What one check said of a file.
struct Pruefergebnis {
    const Pruefung* pruefung = nullptr;
    Befund befund;
};

/// What all checks said of a file.
struct Dateiergebnis {
    std::string pfad;
    std::string unlesbar; ///< why the file cannot be read, UTF-8; then no check was made
    std::vector<Pruefergebnis> ergebnisse;
};

/// What to check, and how.
struct Pruefauftrag {
    std::vector<std::string> dateien;
    std::vector<const Pruefung*> auswahl; ///< in the catalogue's order
    std::chrono::duration<double> zeitlimit;
    std::string log; ///< level of the library's log, as `Optionen::log` has it
    /// Called before each check of a file, for a report of progress; may be empty.
    std::function<void(const std::string& pfad, const Pruefung& pruefung)> vorPruefung;
};

/// The checks that `--only` and `--skip` leave, both being lists of names; an empty `nur` means all.
/// Errors: `AufrufFehler` for a name that no check has, with the one that may have been meant, and for no check left.
std::vector<const Pruefung*> waehle(const std::vector<std::string>& nur,
                                    const std::vector<std::string>& ohne);

/// Makes the checks, each that runs plugin code in a child process of its own. A check is skipped when one that it
/// builds on, and that was made, did not come out well.
std::vector<Dateiergebnis> pruefe(const Pruefauftrag& auftrag);

} // namespace werkzeug::check
