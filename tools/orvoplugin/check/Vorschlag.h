#pragma once

#include "datei/Bibliotheksbild.h"

#include <string>
#include <string_view>

namespace werkzeug::check {

/// Why a library does not export a function of that name, and what may have been meant: another kind of symbol, a C++
/// function, a function with a similar name. One sentence, without the full stop.
/// Parameters: when `fest`, the name is prescribed and the export may be misspelt; otherwise the plugin chose the name,
/// and the name may be misspelt.
std::string warumNichtExportiert(const Bibliotheksinhalt& inhalt, std::string_view name, bool fest);

} // namespace werkzeug::check
