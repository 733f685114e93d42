#include "Tabelle.h"

#include <algorithm>
#include <ostream>

namespace {

constexpr char kEinzug[] = "  ";
constexpr char kAbstand[] = "   ";

/// Number of characters: UTF-8 bytes that do not continue one.
std::size_t breite(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string wiederhole(const char* zeichen, std::size_t anzahl) {
    std::string text;
    while (anzahl-- > 0)
        text += zeichen;
    return text;
}

} // namespace

Tabelle::Tabelle(Zeile kopf) { zeilen_.push_back(std::move(kopf)); }

std::ostream& operator<<(std::ostream& aus, const Tabelle& tabelle) {
    const std::size_t spalten = tabelle.zeilen_.front().size();
    std::vector<std::size_t> breiten(spalten);
    for (const Tabelle::Zeile& zeile : tabelle.zeilen_)
        for (std::size_t i = 0; i < spalten; ++i)
            breiten[i] = std::max(breiten[i], breite(zeile.at(i)));

    for (const Tabelle::Zeile& zeile : tabelle.zeilen_) {
        std::string text = kEinzug;
        for (std::size_t i = 0; i < spalten; ++i)
            text += zeile[i] + std::string(breiten[i] - breite(zeile[i]), ' ') + kAbstand;
        text.erase(text.find_last_not_of(' ') + 1);
        aus << text << '\n';
    }
    return aus;
}

void schreibeUeberschrift(std::ostream& aus, const std::string& text) {
    aus << '\n' << text << '\n' << wiederhole("─", breite(text)) << '\n';
}
