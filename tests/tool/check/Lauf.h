#pragma once

#include "../Aufruf.h"
#include "support/Verzeichnis.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

/// A copy of a test plugin in a temporary directory, with its text file of orders.
class Pruefplugin {
public:
    explicit Pruefplugin(const char* quelle, const std::string& auftraege = {},
                         const std::string& name = "libpruefling.dylib");

    const std::string& pfad() const { return pfad_; }

private:
    Verzeichnis verzeichnis_;
    std::string pfad_;
};

/// The output of `check --json` for one file.
struct Dateilauf {
    /// Names of the checks that neither passed nor were skipped, with their results.
    std::map<std::string, std::string> auffaellige;
    std::map<std::string, std::string> ergebnisse; ///< of all checks
    std::map<std::string, std::string> gruende;    ///< of all checks
};

/// Runs `check --json` with further arguments. The process's exit code goes to `ausgang`.
nlohmann::json pruefeAlsJson(std::vector<std::string> argumente, int& ausgang);
Dateilauf alsDateilauf(const nlohmann::json& datei);
/// The same for one file.
Dateilauf pruefe(const std::string& datei, std::vector<std::string> argumente = {});
