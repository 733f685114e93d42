#pragma once

#include "check/Katalog.h"

#include <map>
#include <string>

namespace werkzeug::check {

// Why a check comes out badly, where that is known and can be told cheaply. Texts are empty for nothing known.

/// After plugin code has ended its child: lets the plugin live once more, in another child, and looks at what it leaves.
/// Returns: what follows the reason, from its "; " on.
std::string ursacheDesAbsturzes(const Pruefling& p);

/// "the limit of open files was 1024 and is now 0", of the first limit that has changed since.
std::string geaenderteGrenze(const std::map<std::string, std::string>& vorher);

/// Said of a library that brings its own C++ library along, or its own operator new, from its "; " on.
std::string eigenesCxx(const Bibliotheksbild& bild);

} // namespace werkzeug::check
