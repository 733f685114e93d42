#pragma once

#include <cstdint>
#include <string_view>

namespace steuer {

/// Errors of a tax identification number ("Identifikationsnummer"): the first rule that it breaks.
enum class SteuerIdFehler : std::uint8_t {
    KEINER,
    FORM,           ///< not eleven digits, and nothing else
    FUEHRENDE_NULL, ///< the first digit is 0
    WIEDERHOLUNG,   ///< not exactly one of the first ten digits occurs twice or three times
    DREI_IN_FOLGE,  ///< one digit occurs three times in a row
    PRUEFZIFFER     ///< the eleventh digit is not the check digit of the other ten
};

/// Checks a number as in a record, without blanks or separators. Accepts any bytes.
SteuerIdFehler pruefeSteuerId(std::string_view text) noexcept;

} // namespace steuer
