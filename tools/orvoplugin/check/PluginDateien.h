#pragma once

#include "kern/Optionen.h"

#include <string>
#include <vector>

namespace werkzeug::check {

/// The files that the plugin manager would load from the directory that the options name, in its order, and the
/// subdirectories that cannot be read. Nothing is loaded.
/// Errors: `Unlesbar` when the directory cannot be read.
std::vector<std::string> pluginDateien(const Optionen& optionen);

/// Why a file cannot be read; empty when it can. Only regular files are opened, because others may block.
std::string warumUnlesbar(const std::string& pfad);

/// The path in a form that stays valid when a plugin changes the working directory.
std::string vollerPfad(const std::string& pfad);

} // namespace werkzeug::check
