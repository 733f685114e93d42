#pragma once

#include "kern/Optionen.h"

#include <string>
#include <vector>

namespace werkzeug::check {

/// The files that the plugin manager would load from the directory that the options name, in its order, and the
/// subdirectories that cannot be read. Nothing is loaded.
/// Errors: `Unlesbar` when the directory cannot be read.
std::vector<std::string> pluginDateien(const Optionen& optionen);

} // namespace werkzeug::check
