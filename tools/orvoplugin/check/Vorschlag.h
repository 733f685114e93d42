#pragma once

#include "datei/Bibliotheksbild.h"

#include <string>
#include <string_view>

namespace werkzeug::check {

/// Why a library does not export a function of that name, and what may have been meant: another kind of symbol, a
/// C++ function, a function of nearly that name. One sentence, without the full stop.
/// Parameters: where the name is `fest`, what is exported may be misspelt; where it is the plugin's own choice, the
/// name may be.
std::string warumNichtExportiert(const Bibliotheksinhalt& inhalt, std::string_view name, bool fest);

/// Number of letters to put in, take out, replace or swap with the next to make one text the other; the case of
/// letters does not count.
std::size_t abstand(std::string_view a, std::string_view b);

} // namespace werkzeug::check
