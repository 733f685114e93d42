#include <orvoutil/StringUtil.h>

#include <algorithm>

namespace orvo::orvoutil {

std::string long2String(long zahl) { return std::to_string(zahl); }

std::string formatNumeric(std::string_view text, std::size_t breite) {
    return std::string(breite - std::min(breite, text.size()), '0').append(text);
}

std::string tolower(std::string_view text) {
    std::string klein(text);
    for (char& c : klein)
        c = tolower(c);
    return klein;
}

bool endsWith(std::string_view text, std::string_view ende) noexcept { return text.ends_with(ende); }

std::string removeSpecialPatterns(std::string_view text, std::string_view muster) {
    std::string ergebnis(text);
    if (const std::size_t stelle = ergebnis.find(muster); stelle != std::string::npos)
        ergebnis.erase(stelle, muster.size());
    return ergebnis;
}

} // namespace orvo::orvoutil
