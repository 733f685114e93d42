#pragma once

#include "check/Katalog.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace werkzeug::check {

/// The result of one check of a file.
struct Pruefergebnis {
    const Pruefung* pruefung = nullptr;
    Befund befund;
};

/// The results of all checks of a file.
struct Dateiergebnis {
    std::string pfad;
    std::string unlesbar; ///< why the file cannot be read, UTF-8; then no check was run
    std::vector<Pruefergebnis> ergebnisse;
};

/// What to check, and how.
struct Pruefauftrag {
    std::vector<std::string> dateien;
    std::vector<const Pruefung*> auswahl; ///< in the catalogue's order
    std::chrono::duration<double> zeitlimit;
    std::string log; ///< level of the library's log, as in `Optionen::log`
    /// Called before each check of a file, to report progress; may be empty.
    std::function<void(const std::string& pfad, const Pruefung& pruefung)> vorPruefung;
};

/// The checks selected by `--only` and `--skip`, both lists of names; an empty `nur` means all.
/// Errors: `AufrufFehler` for an unknown name, with a suggestion, and when no check is left.
std::vector<const Pruefung*> waehle(const std::vector<std::string>& nur,
                                    const std::vector<std::string>& ohne);

/// Runs the checks, those that run plugin code in a child process each. A check is skipped when one that it depends on
/// was run and did not pass.
std::vector<Dateiergebnis> pruefe(const Pruefauftrag& auftrag);

} // namespace werkzeug::check
