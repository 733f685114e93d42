#include <steuer/Datum.h>

namespace steuer {
namespace {

/// The number in the digits from `stelle` on; nothing when there is another character.
std::optional<int> zahl(std::string_view text, std::size_t stelle, std::size_t laenge) noexcept {
    int wert = 0;
    for (const char c : text.substr(stelle, laenge)) {
        if (c < '0' || c > '9')
            return std::nullopt;
        wert = wert * 10 + (c - '0');
    }
    return wert;
}

} // namespace

std::optional<Datum> liesDatum(std::string_view text) noexcept {
    constexpr std::string_view kMuster = "TT.MM.JJJJ";
    if (text.size() != kMuster.size() || text[2] != '.' || text[5] != '.')
        return std::nullopt;
    const auto tag = zahl(text, 0, 2);
    const auto monat = zahl(text, 3, 2);
    const auto jahr = zahl(text, 6, 4);
    if (!tag || !monat || !jahr || *jahr == 0) // there is no year 0
        return std::nullopt;
    const std::chrono::year_month_day datum{std::chrono::year(*jahr),
                                            std::chrono::month(static_cast<unsigned>(*monat)),
                                            std::chrono::day(static_cast<unsigned>(*tag))};
    if (!datum.ok())
        return std::nullopt;
    return Datum(datum);
}

} // namespace steuer
