#pragma once

#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace werkzeug::check {

/// What the user asks of plugins beyond the catalogue: limits, and data to work on.
struct Vorgaben {
    std::map<std::string, std::string>
        baseline;               ///< library ("glibc"), and the newest version that a file may need
    std::size_t maxLog = 65536; ///< bytes in the host's log during one life of the plugin
    /// Milliseconds for each step.
    std::map<std::string, double> maxMs{{"open", kEndlos}, {"describe", kEndlos}, {"service", kEndlos}};
    std::vector<std::string> daten; ///< records for the check services, bytes as in the files

    static constexpr double kEndlos = std::numeric_limits<double>::infinity();
};

/// Adds the options to a command, which fill the object. They throw `AufrufFehler`, and `Unlesbar` for data.
void fuegeVorgabenHinzu(CLI::App& befehl, Vorgaben& vorgaben);

} // namespace werkzeug::check
