#include <steuer/SteuerId.h>

#include <algorithm>
#include <array>

namespace steuer {
namespace {

constexpr std::size_t kStellen = 11;
constexpr std::size_t kOhnePruefziffer = 10;

bool istZiffer(char c) noexcept { return c >= '0' && c <= '9'; }

/// Check digit of the leading digits: ISO 7064, MOD 11,10.
int pruefziffer(std::string_view ziffern) noexcept {
    int produkt = 10;
    for (const char ziffer : ziffern) {
        const int summe = (ziffer - '0' + produkt) % 10;
        produkt = (summe == 0 ? 10 : summe) * 2 % 11;
    }
    return (11 - produkt) % 10;
}

/// Of ten digits, exactly one occurs twice or three times, and every other at most once.
bool istWiederholungGueltig(std::string_view ziffern) noexcept {
    std::array<int, 10> anzahl{};
    for (const char ziffer : ziffern)
        ++anzahl[static_cast<std::size_t>(ziffer - '0')];
    const auto mehrfache = std::count_if(anzahl.begin(), anzahl.end(), [](int n) { return n > 1; });
    return mehrfache == 1 && *std::max_element(anzahl.begin(), anzahl.end()) <= 3;
}

bool hatDreiInFolge(std::string_view ziffern) noexcept {
    for (std::size_t i = 2; i < ziffern.size(); ++i)
        if (ziffern[i] == ziffern[i - 1] && ziffern[i] == ziffern[i - 2])
            return true;
    return false;
}

} // namespace

SteuerIdFehler pruefeSteuerId(std::string_view text) noexcept {
    if (text.size() != kStellen || !std::all_of(text.begin(), text.end(), istZiffer))
        return SteuerIdFehler::FORM;
    if (text.front() == '0')
        return SteuerIdFehler::FUEHRENDE_NULL;
    const std::string_view zehn = text.substr(0, kOhnePruefziffer);
    if (!istWiederholungGueltig(zehn))
        return SteuerIdFehler::WIEDERHOLUNG;
    if (hatDreiInFolge(zehn))
        return SteuerIdFehler::DREI_IN_FOLGE;
    if (text.back() - '0' != pruefziffer(zehn))
        return SteuerIdFehler::PRUEFZIFFER;
    return SteuerIdFehler::KEINER;
}

} // namespace steuer
