#pragma once

#include "kern/Ausgang.h"

#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

namespace werkzeug {

/// What becomes of the descriptions in plugins' files.
enum class Beschreibungen {
    UEBERGANGEN, ///< every plugin is asked
    GENUTZT,     ///< as by a client that takes them: a plugin without one is asked
    NUR,         ///< a plugin without one is not loaded, so that no plugin code runs
};

/// What every command takes.
struct Optionen {
    std::string home;      ///< --home: home directory, plugins lie below its "plugins"; empty when not given
    std::string dir;       ///< --dir: the plugin directory itself; empty when not given
    std::string resident;  ///< --resident: the resident plugins' names, as the setting has them
    std::string log;       ///< --log: "debug", "info", "warn" or "error"; empty for none
    bool json = false;     ///< --json
    bool quiet = false;    ///< --quiet: no results in text form, no progress; the exit code tells
    bool probe = false;    ///< --probe, of some commands: services are made
    double zeitlimit = 10; ///< --timeout: seconds that a plugin may take before its process is killed
    Beschreibungen beschreibungen = Beschreibungen::UEBERGANGEN; ///< --described, of some commands: NUR

    std::string aufruf; ///< the whole command line, quoted for a shell
};

/// Adds the options to a command or to the program.
void fuegeOptionenHinzu(CLI::App& app, Optionen& optionen);
/// The same for `--described`, and for `--probe`.
void fuegeDescribedHinzu(CLI::App& app, Optionen& optionen);
void fuegeProbeHinzu(CLI::App& app, Optionen& optionen);

/// The option that a directory belongs to: "--home" if it has a subdirectory "plugins", else "--dir".
const char* ortsoption(const std::string& verzeichnis);
/// What to do about a plugin directory that cannot be read, to follow the message: names --home and --dir.
std::string ortshinweis(const Optionen& optionen);

/// The options with the directory that a command was given as an argument, if any, in place of --dir.
/// Errors: `AufrufFehler` if they name a directory, too.
Optionen mitVerzeichnis(Optionen optionen, const std::string& verzeichnis);

/// The command line is well-formed but invalid (a bad period, for instance). The program prints the text, which is
/// UTF-8, and ends with `Ausgang::FALSCHER_AUFRUF`.
class AufrufFehler : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace werkzeug
