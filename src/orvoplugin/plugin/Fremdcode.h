#pragma once

// Internal: running code that is not ours and may throw anything.

#include <exception>
#include <utility>

namespace fremdcode {

/// The text of an exception as it goes to the log; valid as long as the exception lives.
inline const char* grundVon(const std::exception& ausnahme) {
    const char* const text = ausnahme.what();
    return text ? text : "";
}

constexpr const char* kUnbekannteAusnahme = "unbekannte Ausnahme";

/// Calls `ruf`; hands the text of whatever it throws to `melde`. The exception is gone on return, so that the
/// library which may hold its class can be closed from then on.
/// Returns: whether `ruf` came back without an exception.
template <class Ruf, class Melde>
bool rufe(Ruf&& ruf, Melde&& melde) {
    try {
        std::forward<Ruf>(ruf)();
        return true;
    } catch (const std::exception& ausnahme) {
        melde(grundVon(ausnahme));
    } catch (...) {
        melde(kUnbekannteAusnahme);
    }
    return false;
}

} // namespace fremdcode
