#pragma once

#include "kern/Fakten.h"

#include <cstdint>
#include <optional>
#include <string>

namespace werkzeug {

/// Finds a file by a path as in the shell, a path below the plugin directory, its bare name, or its name without "lib"
/// and ".dylib". Returns: its index in `Bestand::dateien`; none when there is no such file.
/// Errors: `AufrufFehler` when several fit; it names them.
std::optional<std::uint32_t> findeDatei(const Bestand& bestand, const std::string& gemeint);

} // namespace werkzeug
