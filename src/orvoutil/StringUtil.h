#pragma once

/// \file
/// Small helpers for texts. Letter case is that of ASCII, whatever the locale; all other bytes stay as they are.
/// Errors: `std::bad_alloc`.

#include <orvoutil/Export.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace orvo::orvoutil {

/// The digits of a number, with a minus if it is negative.
class Ziffernfolge {
public:
    constexpr explicit Ziffernfolge(std::int32_t zahl) noexcept {
        std::uint32_t rest = static_cast<std::uint32_t>(zahl);
        if (zahl < 0)
            rest = 0 - rest;
        do {
            zeichen_[--anfang_] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (zahl < 0)
            zeichen_[--anfang_] = '-';
    }

    constexpr std::string_view text() const noexcept { return {zeichen_ + anfang_, kLaenge - anfang_}; }

private:
    enum : std::size_t { kLaenge = 11 }; // sign and ten digits

    char zeichen_[kLaenge] = {};
    std::size_t anfang_ = kLaenge;
};

/// The number in decimal.
inline std::string int2String(int zahl) { return std::string(Ziffernfolge(zahl).text()); }
/// The number in decimal.
ORVOUTIL_API std::string long2String(long zahl);

/// The number that the whole text is: digits, with an optional sign. None for any other text, and for a number that does
/// not fit 32 signed bits.
constexpr std::optional<std::int32_t> liesZahl(std::string_view text) noexcept {
    const bool negativ = text.starts_with('-');
    if (negativ || text.starts_with('+'))
        text.remove_prefix(1);
    if (text.empty())
        return std::nullopt;
    std::int64_t zahl = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        zahl = zahl * 10 + (negativ ? '0' - c : c - '0');
        if (zahl < std::numeric_limits<std::int32_t>::min() ||
            zahl > std::numeric_limits<std::int32_t>::max())
            return std::nullopt;
    }
    return static_cast<std::int32_t>(zahl);
}

/// The same. Returns: 0 where there is no such number.
constexpr int string2Int(std::string_view text) noexcept { return liesZahl(text).value_or(0); }
/// Whether the text is digits only, at least one, and their value fits 32 signed bits.
constexpr bool isNumeric(std::string_view text) noexcept {
    return !text.starts_with('-') && !text.starts_with('+') && liesZahl(text);
}
/// The text, padded with zeros on its left to that many bytes; never cut.
ORVOUTIL_API std::string formatNumeric(std::string_view text, std::size_t breite);

/// The text in lower case.
ORVOUTIL_API std::string tolower(std::string_view text);
/// The letter in lower case; any other character as it is.
constexpr char tolower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
/// Whether the text ends so, letter case included.
ORVOUTIL_API bool endsWith(std::string_view text, std::string_view ende) noexcept;
/// Compares bytewise, ignoring letter case. Returns: -1, 0 or 1.
constexpr int compareIgnoreCase(std::string_view a, std::string_view b) noexcept {
    if (a == b)
        return 0;
    const std::size_t gemeinsam = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < gemeinsam; ++i) {
        const auto links = static_cast<unsigned char>(tolower(a[i]));
        const auto rechts = static_cast<unsigned char>(tolower(b[i]));
        if (links != rechts)
            return links < rechts ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}
/// Whether `compareIgnoreCase` gives 0. Compares from the end, where names such as "Anmeldung_1" and "Anmeldung_2" differ.
constexpr bool equalsIgnoreCase(std::string_view a, std::string_view b) noexcept {
    std::size_t rest = a.size();
    if (rest != b.size())
        return false;
    while (rest > 0 && tolower(a[rest - 1]) == tolower(b[rest - 1]))
        --rest;
    return rest == 0;
}
/// The text without the first occurrence of the pattern.
ORVOUTIL_API std::string removeSpecialPatterns(std::string_view text, std::string_view muster);

} // namespace orvo::orvoutil
