#pragma once

#include <string>

namespace werkzeug {

/// The versions of the tool and of the library that it uses, on one line.
std::string versionen();

/// A word, quoted for a shell where needed.
std::string fuerDieShell(const std::string& wort);

/// The command line, quoted for a shell, with the tool's name without its directory.
std::string befehlszeile(int argc, char** argv);

} // namespace werkzeug
