#pragma once

#include "datei/Bibliotheksbild.h"

#include <string>
#include <string_view>

class OrvoErweiterung;
class Unterfallart;
class Veranlagungszeitraum;

namespace werkzeug::check {

// Texts of plugins and of the system for people: printable UTF-8 of limited length.

/// A text in quotes.
std::string zitiert(std::string_view text);
/// A symbol as written in the source, demangled if it is a C++ one.
std::string symbolname(const std::string& name);
/// The text of an exception; of one about the pattern of a period, with what patterns consist of.
std::string ausnahmetext(std::string_view text);
/// "LSTB 2009"
std::string paar(const Unterfallart& ua, const Veranlagungszeitraum& vz);
/// Kind of an extension.
std::string art(const OrvoErweiterung& erweiterung);

/// Said of a library that brings its own C++ library along, or its own operator new; else empty.
std::string eigenesCxx(const Bibliotheksbild& bild);
/// What follows another text: from its "; " on, or empty.
std::string alsZusatz(const std::string& text);

} // namespace werkzeug::check
