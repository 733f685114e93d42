#pragma once

#include <string>
#include <vector>

/// The result of a run of a program.
struct Ergebnis {
    int ausgang = -1; ///< exit code; 128 and the signal's number when a signal ended it
    std::string ausgabe;
    std::string fehler; ///< its standard error output
};

/// Runs a program with arguments, its standard input empty, and waits for its end.
/// Parameters: `umgebung` holds "NAME=value" to set on top of the test's own environment.
Ergebnis rufe(const std::string& programm, const std::vector<std::string>& argumente,
              const std::vector<std::string>& umgebung = {});

/// What makes the tool speak German, on a machine without a German locale, too.
inline const std::vector<std::string> kDeutsch{"LC_ALL=C.UTF-8", "LANGUAGE=de"};

/// Runs the tool. It speaks English unless the environment given says otherwise.
Ergebnis rufeTool(const std::vector<std::string>& argumente, const std::vector<std::string>& umgebung = {});
