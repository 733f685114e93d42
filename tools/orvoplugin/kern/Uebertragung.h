#pragma once

#include "kern/Fakten.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace werkzeug {

/// The bytes that the parent got are not what a child of ours sends.
class UebertragungsFehler : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The facts as bytes, for the way from the child to the parent. `lebenszeichen`, if given, is called now and then.
std::string schreibe(const Bestand& bestand, const std::function<void()>& lebenszeichen = {});

/// The facts out of the bytes. Every length, place and enumeration is checked: the child has run the plugins' code.
/// Errors: `UebertragungsFehler`.
Bestand liesBestand(std::string_view bytes);

} // namespace werkzeug
