#include <orvoutil/StringUtil.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

namespace orvo::orvoutil {

namespace {

bool sindZiffern(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// The number that digits, after a minus if need be, stand for; none when it does not fit.
std::optional<std::int32_t> liesZahl(std::string_view text) {
    std::int32_t zahl = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), zahl);
    return fehler == std::errc() ? std::optional(zahl) : std::nullopt;
}

bool hatVorzeichen(std::string_view text) { return text.starts_with('+') || text.starts_with('-'); }

} // namespace

std::string int2String(int zahl) { return std::to_string(zahl); }

std::string long2String(long zahl) { return std::to_string(zahl); }

int string2Int(std::string_view text) noexcept {
    if (!sindZiffern(text.substr(hatVorzeichen(text) ? 1 : 0)))
        return 0;
    return liesZahl(text.substr(text.front() == '+' ? 1 : 0)).value_or(0);
}

bool isNumeric(std::string_view text) noexcept { return sindZiffern(text) && liesZahl(text); }

std::string formatNumeric(std::string_view text, std::size_t breite) {
    const std::size_t nullen = breite > text.size() ? breite - text.size() : 0;
    return std::string(nullen, '0').append(text);
}

std::string tolower(std::string_view text) {
    std::string klein(text);
    for (char& c : klein)
        c = tolower(c);
    return klein;
}

bool endsWith(std::string_view text, std::string_view ende) noexcept { return text.ends_with(ende); }

int compareIgnoreCase(std::string_view a, std::string_view b) noexcept {
    const std::size_t gemeinsam = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < gemeinsam; ++i) {
        const auto links = static_cast<unsigned char>(tolower(a[i]));
        const auto rechts = static_cast<unsigned char>(tolower(b[i]));
        if (links != rechts)
            return links < rechts ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

std::string removeSpecialPatterns(std::string_view text, std::string_view muster) {
    std::string ergebnis(text);
    if (const std::size_t stelle = ergebnis.find(muster); stelle != std::string::npos)
        ergebnis.erase(stelle, muster.size());
    return ergebnis;
}

} // namespace orvo::orvoutil
