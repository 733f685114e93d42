#include <stammdaten/DateiLeser.h>

#include <orvoutil/Latin1.h>

#include <fstream>
#include <string_view>

using orvo::orvoutil::Latin1Text;

namespace stammdaten {
namespace {

constexpr std::size_t kHoechsteGroesse = 1'048'576;
constexpr Latin1Text kNichtLesbar{u8"Datei nicht lesbar: "};
constexpr Latin1Text kZuGross{u8"Datei größer als ein Megabyte: "};

/// Reads one byte beyond the limit, so that a larger file is detected.
bool liesDatei(const std::string& pfad, std::string& inhalt) {
    std::ifstream datei(pfad, std::ios::binary);
    inhalt.resize(kHoechsteGroesse + 1);
    datei.read(inhalt.data(), static_cast<std::streamsize>(inhalt.size()));
    inhalt.resize(static_cast<std::size_t>(datei.gcount()));
    return datei.eof() || inhalt.size() > kHoechsteGroesse; // false for a directory too
}

bool istTrennzeile(std::string_view zeile) {
    if (zeile.ends_with('\r'))
        zeile.remove_suffix(1);
    return zeile.size() >= 3 && zeile.find_first_not_of('-') == std::string_view::npos;
}

std::vector<std::string> zerlege(std::string_view inhalt) {
    std::vector<std::string> texte(1);
    while (!inhalt.empty()) {
        const std::size_t ende = inhalt.find('\n');
        const std::string_view zeile = inhalt.substr(0, ende);
        inhalt.remove_prefix(ende == std::string_view::npos ? inhalt.size() : ende + 1);
        if (istTrennzeile(zeile))
            texte.emplace_back();
        else if (!zeile.starts_with('#'))
            texte.back().append(zeile).append(1, '\n');
    }
    return texte;
}

} // namespace

bool DateiLeser::lies(const std::string& pfad, std::vector<std::string>& datensaetze, std::string& grund) {
    datensaetze.clear();
    grund.clear();
    std::string inhalt;
    if (!liesDatei(pfad, inhalt))
        grund = kNichtLesbar.c_str() + pfad;
    else if (inhalt.size() > kHoechsteGroesse)
        grund = kZuGross.c_str() + pfad;
    else
        datensaetze = zerlege(inhalt);
    return grund.empty();
}

} // namespace stammdaten
