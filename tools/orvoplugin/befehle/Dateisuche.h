#pragma once

#include "kern/Fakten.h"

#include <cstdint>
#include <optional>
#include <string>

namespace werkzeug {

/// The file that a person means: a path as the shell has it, the path below the plugin directory, the bare name, or
/// the name without "lib" and ".dylib". Returns: its place in `Bestand::dateien`; none when there is no such file.
/// Errors: `AufrufFehler` when several fit; it names them.
std::optional<std::uint32_t> findeDatei(const Bestand& bestand, const std::string& gemeint);

} // namespace werkzeug
