#pragma once

#include "kern/Ausgang.h"
#include "kern/Optionen.h"

#include <memory>
#include <vector>

namespace CLI {
class App;
}

namespace werkzeug {

/// One command of the program. It lives as long as the program; the command line is read into its fields.
class Befehl {
public:
    virtual ~Befehl() = default;

    /// Adds the command's own arguments and options; the common ones are added by the program.
    virtual void beschreibe(CLI::App& unterbefehl) = 0;
    /// Whether it looks at the directory of --home and --dir; only then its help names them.
    virtual bool nimmtVerzeichnisOptionen() const { return true; }
    /// Whether it takes --described, because it needs no more than what plugins say of themselves.
    virtual bool nimmtBeschreibungen() const { return false; }
    /// Whether it takes --probe, because it says who serves what.
    virtual bool probiert() const { return false; }
    /// Runs the command: results go to standard output, messages to standard error.
    /// Errors: `AufrufFehler` for an invalid command line; anything else ends the program with `Ausgang::NICHT_LESBAR`
    /// and its text.
    virtual Ausgang fuehreAus(const Optionen& optionen) = 0;
};

/// A line in the table of commands.
struct BefehlEintrag {
    const char* name;
    const char* kurz; ///< one line for --help and the man page
    std::unique_ptr<Befehl> (*mache)();
    const char* beispiele = ""; ///< two or three command lines for --help and the man page, a line each
};

/// All commands, in the order of the help. To add one, add a file in befehle/ (or a folder beside it) and a line to the
/// table in befehle/Befehle.cpp.
const std::vector<BefehlEintrag>& alleBefehle();

} // namespace werkzeug
