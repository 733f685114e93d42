#pragma once

#include "kern/Fakten.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace werkzeug {

/// The bytes that the parent received are not a valid message from its child.
class UebertragungsFehler : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Serializes the facts for the parent. `lebenszeichen`, if given, is called at intervals.
std::string schreibe(const Bestand& bestand, const std::function<void()>& lebenszeichen = {});

/// Parses the facts. Checks every length, index and enumeration: the child has run plugin code.
/// Errors: `UebertragungsFehler`.
Bestand liesBestand(std::string_view bytes);

} // namespace werkzeug
