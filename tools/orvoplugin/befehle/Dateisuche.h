#pragma once

#include "kern/Fakten.h"
#include "kern/Optionen.h"

#include <cstdint>
#include <optional>
#include <string>

namespace werkzeug {

/// The file that a path with a slash names when no directory is given: it is looked at by itself, wherever it lies.
/// Returns: its full path; empty when the file is to be looked for below the plugin directory.
/// Errors: `Unlesbar` when it cannot be read.
std::string einzelneDatei(const Optionen& optionen, const std::string& gemeint);

/// Finds a file by a path as in the shell, a path below the plugin directory, its bare name, or its name without "lib"
/// or ".dylib". Returns: its index in `Bestand::dateien`; none when there is no such file.
/// Errors: `AufrufFehler` when several fit; it names them.
std::optional<std::uint32_t> findeDatei(const Bestand& bestand, const std::string& gemeint);

/// The message that there is no such file, with the name of a similar one.
std::string keineDatei(const Bestand& bestand, const std::string& gemeint);

} // namespace werkzeug
