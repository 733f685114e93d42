#include <steuer/Betrag.h>

#include <algorithm>

namespace steuer {
namespace {

constexpr std::size_t kNachkommastellen = 2;

bool sindZiffern(std::string_view text) noexcept {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// The digits as a number; more than `kHoechsterBetrag` for any number beyond it.
std::int64_t gesaettigteZahl(std::string_view ziffern) noexcept {
    std::int64_t zahl = 0;
    for (const char ziffer : ziffern) {
        zahl = zahl * 10 + (ziffer - '0');
        if (zahl > kHoechsterBetrag)
            return zahl;
    }
    return zahl;
}

} // namespace

GelesenerBetrag liesBetrag(std::string_view text) noexcept {
    const bool negativ = text.starts_with('-');
    if (negativ)
        text.remove_prefix(1);

    const std::size_t komma = text.find(',');
    const bool hatCent = komma != std::string_view::npos;
    const std::string_view euro = text.substr(0, komma);
    const std::string_view cent = hatCent ? text.substr(komma + 1) : "00";
    if (!sindZiffern(euro) || (euro.size() > 1 && euro.front() == '0') || cent.size() != kNachkommastellen ||
        !sindZiffern(cent))
        return {BetragFehler::FORM};

    const std::int64_t ganze = gesaettigteZahl(euro);
    if (ganze > kHoechsterBetrag / 100)
        return {negativ ? BetragFehler::NEGATIV : BetragFehler::ZU_GROSS};
    const std::int64_t betrag = ganze * 100 + gesaettigteZahl(cent);
    if (negativ)
        return {betrag == 0 ? BetragFehler::FORM : BetragFehler::NEGATIV};
    return {BetragFehler::KEINER, betrag};
}

} // namespace steuer
