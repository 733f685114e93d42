#pragma once

#include "kern/Ausgang.h"
#include "kern/Optionen.h"

#include <stdexcept>
#include <string>

namespace werkzeug {

/// A plugin cannot be described, for a reason of its own or of this machine; the text is UTF-8.
class NichtBeschreibbar : public std::runtime_error {
public:
    explicit NichtBeschreibbar(const std::string& text, Ausgang a = Ausgang::BEFUNDE, bool hier = false)
        : std::runtime_error(text), ausgang(a), nurHier(hier) {}
    const Ausgang ausgang;
    const bool nurHier; ///< the fault may be this machine's
};

/// Has a plugin describe itself in a child process, and again in another one with another environment, working directory
/// and locale: a description in a file must hold wherever the file is used.
///
/// Returns: the description, as `schreibeBeschreibung` gives it.
/// Errors: `NichtBeschreibbar`.
std::string befrage(const std::string& pfad, const Optionen& optionen);

} // namespace werkzeug
