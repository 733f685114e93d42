#include "deckung/Anforderung.h"

#include "kern/Eingabe.h"
#include "kern/Sprache.h"

#include <orvoutil/Latin1.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

using orvo::orvoutil::toUtf8;

namespace werkzeug {

namespace {

constexpr int kGroessteSpanne = 1000; // years

std::string liesGanz(const std::string& datei) {
    if (std::error_code keiner; std::filesystem::is_directory(datei, keiner))
        throw Unlesbar(toUtf8(datei) + ": " + systemtext(EISDIR));
    std::ifstream strom(datei, std::ios::binary);
    std::string inhalt((std::istreambuf_iterator<char>(strom)), {});
    if (!strom.is_open() || strom.bad())
        throw Unlesbar(toUtf8(datei) + ": " + systemtext(errno));
    return inhalt;
}

/// The words of a line, up to its comment.
std::vector<std::string> worte(const std::string& zeile) {
    std::vector<std::string> worte;
    std::size_t i = 0;
    const auto istLeer = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (true) {
        while (i < zeile.size() && istLeer(zeile[i]))
            ++i;
        if (i == zeile.size() || zeile[i] == '#')
            return worte;
        const std::size_t anfang = i;
        if (zeile[i] == '"') {
            const std::size_t ende = zeile.find('"', i + 1);
            if (ende == std::string::npos)
                throw AufrufFehler(satz("a quotation mark is not closed"));
            worte.push_back(zeile.substr(anfang + 1, ende - anfang - 1));
            i = ende + 1;
        } else {
            while (i < zeile.size() && !istLeer(zeile[i]))
                ++i;
            worte.push_back(zeile.substr(anfang, i - anfang));
        }
    }
}

/// A range "2009-2015"; anything else of that form is a period.
bool istSpanne(const std::string& text) {
    return text.size() == 9 && text[4] == '-' && std::count(text.begin(), text.end(), '-') == 1 &&
           text.find_first_not_of("0123456789-") == std::string::npos;
}

std::vector<std::string> zeitraeume(const std::string& text) {
    if (!istSpanne(text))
        return {text};
    const int von = std::stoi(text.substr(0, 4));
    const int bis = std::stoi(text.substr(5));
    if (von > bis || bis - von >= kGroessteSpanne)
        throw AufrufFehler(satz("\"{1}\" is no range of years", text));
    std::vector<std::string> jahre;
    for (int jahr = von; jahr <= bis; ++jahr) {
        const std::string ziffern = std::to_string(jahr);
        jahre.push_back(std::string(4 - ziffern.size(), '0') + ziffern);
    }
    return jahre;
}

void liesZeile(const std::string& zeile, std::size_t nummer, std::vector<VerlangteZelle>& zellen) {
    const std::vector<std::string> w = worte(zeile);
    if (w.empty())
        return;
    const std::int32_t typ = liesTyp(w[0]);
    if (w.size() == 1) {
        zellen.push_back({nummer, typ, {}, {}, {}});
        return;
    }
    if (w.size() != 3)
        throw AufrufFehler(
            satz("a line has a kind of extension, a sub-case type and a period, or a kind alone"));
    for (const std::string& zeitraum : zeitraeume(w[2])) {
        const Zeitraumtext gelesen = liesZeitraum(zeitraum);
        zellen.push_back(
            {nummer, typ, w[1], zeitraum, Frage{typ, liesUnterfallart(w[1]), gelesen.text, gelesen.format}});
    }
}

} // namespace

std::vector<VerlangteZelle> liesAnforderung(const std::string& datei) {
    std::vector<VerlangteZelle> zellen;
    std::string inhalt = liesGanz(datei);
    if (constexpr std::string_view kMarke = "\xEF\xBB\xBF";
        inhalt.starts_with(kMarke)) // some editors write a byte order mark
        inhalt.erase(0, kMarke.size());
    std::istringstream strom(inhalt);
    std::size_t nummer = 0;
    for (std::string zeile; std::getline(strom, zeile);) {
        try {
            liesZeile(zeile, ++nummer, zellen);
        } catch (const AufrufFehler& fehler) {
            throw AufrufFehler(toUtf8(datei) + ":" + std::to_string(nummer) + ": " + fehler.what());
        }
    }
    return zellen;
}

} // namespace werkzeug
