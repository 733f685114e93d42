#pragma once

#include <cstdint>
#include <string_view>

namespace steuer {

/// What is wrong with a tax identification number ("Identifikationsnummer"), by the first rule that it breaks.
enum class SteuerIdFehler : std::uint8_t {
    KEINER,
    FORM,           ///< not eleven digits, and nothing else
    FUEHRENDE_NULL, ///< the first digit is 0
    WIEDERHOLUNG,   ///< not exactly one of the first ten digits stands there twice or three times
    DREI_IN_FOLGE,  ///< one digit stands there three times, side by side
    PRUEFZIFFER     ///< the eleventh digit is not the check digit of the other ten
};

/// Checks a number as it stands in a record: no blanks, no separators, any bytes at all.
SteuerIdFehler pruefeSteuerId(std::string_view text) noexcept;

} // namespace steuer
