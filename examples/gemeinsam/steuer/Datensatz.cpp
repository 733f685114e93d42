#include <steuer/Datensatz.h>

#include <algorithm>

namespace steuer {
namespace {

constexpr std::size_t kHoechsteGroesse = 65'536;
constexpr std::size_t kMeisteFelder = 200;

bool istBuchstabe(char c) noexcept { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool istNamenszeichen(char c) noexcept { return istBuchstabe(c) || (c >= '0' && c <= '9') || c == '_'; }

bool istName(std::string_view text) noexcept {
    return !text.empty() && istBuchstabe(text.front()) &&
           std::all_of(text.begin(), text.end(), istNamenszeichen);
}

/// A control character of Latin-1.
bool istSteuerzeichen(char c) noexcept {
    const auto zeichen = static_cast<unsigned char>(c);
    return zeichen < 0x20 || (zeichen >= 0x7F && zeichen < 0xA0);
}

std::string_view ohneRandblanks(std::string_view text) noexcept {
    const std::size_t erstes = text.find_first_not_of(' ');
    if (erstes == std::string_view::npos)
        return {};
    return text.substr(erstes, text.find_last_not_of(' ') - erstes + 1);
}

/// Removes and returns the next line, without its end ("\n" or "\r\n").
std::string_view naechsteZeile(std::string_view& text) noexcept {
    const std::size_t ende = text.find('\n');
    std::string_view zeile = text.substr(0, ende);
    text.remove_prefix(ende == std::string_view::npos ? text.size() : ende + 1);
    if (zeile.ends_with('\r'))
        zeile.remove_suffix(1);
    return zeile;
}

} // namespace

const Datensatz::Feld* Datensatz::finde(std::string_view name) const noexcept {
    const auto feld =
        std::find_if(felder_.begin(), felder_.end(), [&](const Feld& f) { return f.name == name; });
    return feld == felder_.end() ? nullptr : &*feld;
}

std::string_view Datensatz::wert(std::string_view name) const noexcept {
    const Feld* const feld = finde(name);
    return feld ? std::string_view(feld->wert) : std::string_view();
}

std::variant<Datensatz, Lesefehler> liesDatensatz(std::string_view text) {
    using Art = Lesefehler::Art;
    if (text.size() > kHoechsteGroesse)
        return Lesefehler{Art::ZU_GROSS};

    std::vector<Datensatz::Feld> felder;
    for (std::size_t nummer = 1; !text.empty(); ++nummer) {
        const std::string_view zeile = ohneRandblanks(naechsteZeile(text));
        if (zeile.empty())
            continue;
        const std::size_t gleich = zeile.find('=');
        const std::string_view name = ohneRandblanks(zeile.substr(0, gleich));
        if (gleich == std::string_view::npos || !istName(name))
            return Lesefehler{Art::ZEILE, nummer};
        const std::string_view wert = ohneRandblanks(zeile.substr(gleich + 1));
        if (std::any_of(wert.begin(), wert.end(), istSteuerzeichen))
            return Lesefehler{Art::ZEICHEN, nummer};
        if (felder.size() == kMeisteFelder)
            return Lesefehler{Art::ZU_GROSS, nummer};
        felder.push_back({std::string(name), std::string(wert)});
    }
    if (felder.empty())
        return Lesefehler{};
    return Datensatz(std::move(felder));
}

} // namespace steuer
