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
    std::string fehler; ///< why checks are missing, UTF-8
    bool istUnlesbar =
        false; ///< the file cannot be read, and so no check was run; else the tool's process has ended
    std::vector<Pruefergebnis> ergebnisse;
};

/// What to check, and how.
struct Pruefauftrag {
    std::vector<std::string> dateien;
    std::vector<const Pruefung*> auswahl; ///< in the catalogue's order
    std::chrono::duration<double> zeitlimit;
    const Vorgaben* vorgaben; ///< never null
    std::string log;          ///< level of the library's log, as in `Optionen::log`
    std::size_t zugleich = 1; ///< files that are checked at the same time
    /// Called at intervals with a file that is being checked, counted from 0, and its check under way.
    std::function<void(std::size_t nummer, const Pruefung& pruefung)> takt = {};
    /// Called for each file, in their order, once it and all before it have been checked. When there are several, what
    /// looks at them together is not in it yet.
    std::function<void(const Dateiergebnis&)> fertig = {};
    /// The same, once that is in it too.
    std::function<void(const Dateiergebnis&)> ganzFertig = {};
};

/// The checks selected by `--only` and `--skip`, both lists of names; an empty `nur` means all.
/// Errors: `AufrufFehler` for an unknown name, with a suggestion, and when no check is left.
std::vector<const Pruefung*> waehle(const std::vector<std::string>& nur,
                                    const std::vector<std::string>& ohne);

/// Whether a check's result comes after those of all files, because it looks at several together.
bool kommtZuletzt(const Pruefung& pruefung, std::size_t dateien);

/// Runs the checks, those that run plugin code in a child process each. A check is skipped when one that it depends on
/// was run and did not pass. The results do not depend on how many files are checked at the same time.
/// Errors: as `verteile`.
std::vector<Dateiergebnis> pruefe(const Pruefauftrag& auftrag);

} // namespace werkzeug::check
