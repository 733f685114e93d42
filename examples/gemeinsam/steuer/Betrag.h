#pragma once

#include <cstdint>
#include <string_view>

namespace steuer {

/// Errors of an amount of money ("Betrag").
enum class BetragFehler : std::uint8_t {
    KEINER,
    FORM,    ///< not of the form 1234 or 1234,56
    NEGATIV, ///< well formed, but less than zero
    ZU_GROSS ///< more than `kHoechsterBetrag`
};

/// The largest amount accepted, in cents. A thousand times this amount still fits, so that shares can be compared.
constexpr std::int64_t kHoechsterBetrag = 99'999'999'999'999;

struct GelesenerBetrag {
    BetragFehler fehler = BetragFehler::FORM;
    std::int64_t cent = 0; ///< the amount, when there is no error
};

/// Reads an amount in euros: digits without needless leading zeros, then nothing, or a comma and two digits.
GelesenerBetrag liesBetrag(std::string_view text) noexcept;

} // namespace steuer
