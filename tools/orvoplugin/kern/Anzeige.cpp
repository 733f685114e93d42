#include "kern/Anzeige.h"

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoutil/Latin1.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <stdexcept>

using orvo::orvoutil::toUtf8;

namespace werkzeug {

namespace {

constexpr int kSchemaVersion = 2;
constexpr std::size_t kAbstand = 2; // between the columns of a table
constexpr std::size_t kBreiteste = 40;
constexpr std::size_t kBreitesteLetzte = 160; // it pads no row
constexpr std::size_t kSchmalste = 6;

/// The character at a place of valid UTF-8, and how many bytes it takes.
struct Zeichen {
    unsigned wert;
    std::size_t laenge;
};

Zeichen zeichenAn(std::string_view utf8, std::size_t i) {
    const auto byte = [&](std::size_t j) { return static_cast<unsigned char>(utf8[i + j]); };
    if (byte(0) < 0x80)
        return {byte(0), 1};
    if (byte(0) < 0xE0)
        return {(byte(0) & 0x1Fu) << 6 | (byte(1) & 0x3Fu), 2};
    if (byte(0) < 0xF0)
        return {(byte(0) & 0x0Fu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu), 3};
    return {(byte(0) & 0x07u) << 18 | (byte(1) & 0x3Fu) << 12 | (byte(2) & 0x3Fu) << 6 | (byte(3) & 0x3Fu),
            4};
}

/// Whether a terminal or an editor may interpret the character instead of showing it.
bool istBefehl(unsigned zeichen) {
    return zeichen < 0x20 || (zeichen >= 0x7F && zeichen < 0xA0) || zeichen == 0x2028 || zeichen == 0x2029 ||
           zeichen == 0x061C || zeichen == 0x200E || zeichen == 0x200F ||
           (zeichen >= 0x202A && zeichen <= 0x202E) || (zeichen >= 0x2066 && zeichen <= 0x2069) ||
           zeichen == 0xFEFF;
}

/// Replaces each such character of the text, which is valid UTF-8.
template <class Ersatz>
std::string ohneBefehle(std::string_view utf8, Ersatz&& ersatz) {
    std::string sauber;
    sauber.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const Zeichen zeichen = zeichenAn(utf8, i);
        if (istBefehl(zeichen.wert))
            sauber += ersatz(zeichen.wert);
        else
            sauber += utf8.substr(i, zeichen.laenge);
        i += zeichen.laenge;
    }
    return sauber;
}

std::string ausgeschrieben(unsigned zeichen) {
    char puffer[16];
    std::snprintf(puffer, sizeof puffer, zeichen < 0x100 ? "\\x%02x" : "\\u%04x", zeichen);
    return zeichen == '\n' ? "\\n" : zeichen == '\t' ? "\\t" : puffer;
}

} // namespace

std::size_t anzeigebreite(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string gekuerzt(const std::string& utf8, std::size_t spalten) {
    const std::size_t breite = anzeigebreite(utf8);
    if (breite <= spalten)
        return utf8;
    const std::size_t vorn = spalten / 2;
    const std::size_t hinten = breite - (spalten - std::min(spalten, vorn + 1)); // first that stays
    std::string kurz;
    std::size_t zeichen = 0;
    for (std::size_t i = 0; i < utf8.size(); zeichen += 1) {
        const std::size_t laenge = zeichenAn(utf8, i).laenge;
        if (zeichen < vorn || zeichen >= hinten)
            kurz += utf8.substr(i, laenge);
        else if (zeichen == vorn)
            kurz += "…";
        i += laenge;
    }
    return kurz;
}

std::string einzeilig(std::string_view text) { return ohneBefehle(toUtf8(text), ausgeschrieben); }

Json jsonText(std::string_view text) { return toUtf8(text); }

Json jsonKopf(const char* befehl) {
    Json kopf;
    kopf["schema_version"] = kSchemaVersion;
    kopf["command"] = befehl;
    return kopf;
}

Json jsonKopf(const char* befehl, const std::string& suchpfad) {
    Json kopf = jsonKopf(befehl);
    kopf["plugin_directory"] = jsonText(suchpfad);
    return kopf;
}

std::string alsText(const Json& dokument) {
    const std::string text = dokument.dump(2, ' ', false, Json::error_handler_t::replace);
    return ohneBefehle(text, [](unsigned zeichen) { // outside of strings the only one is the line feed
        if (zeichen == '\n')
            return std::string("\n");
        char puffer[16];
        std::snprintf(puffer, sizeof puffer, "\\u%04x", zeichen);
        return std::string(puffer);
    });
}

std::string anzeige(const UnterfallartFakt& unterfallart) { return einzeilig(unterfallart.name); }

std::string anzeige(const ZeitraumFakt& z) {
    char puffer[64];
    switch (z.typ) {
    case Veranlagungszeitraum::UNABHAENGIG:
    case Veranlagungszeitraum::IMMER:
    case Veranlagungszeitraum::UNGELESEN:
        return uebersetzt("any");
    case Veranlagungszeitraum::TAG:
        std::snprintf(puffer, sizeof puffer, "%04d-%02d-%02d", z.jahr, z.zeitraum, z.tag);
        return puffer;
    case Veranlagungszeitraum::MONAT:
        std::snprintf(puffer, sizeof puffer, "%04d-%02d", z.jahr, z.zeitraum);
        return puffer;
    case Veranlagungszeitraum::QUARTAL:
    case Veranlagungszeitraum::QUARTAL_ALTERNATIV:
        std::snprintf(puffer, sizeof puffer, "%04dQ%d", z.jahr, z.quartal % 10);
        return puffer;
    default:
        return std::to_string(z.jahr);
    }
}

namespace {

std::size_t gesamtbreite(const std::vector<std::size_t>& spalten) {
    std::size_t summe = 0;
    for (const std::size_t spalte : spalten)
        summe += (summe > 0 ? kAbstand : 0) + spalte;
    return summe;
}

} // namespace

std::vector<std::size_t> Tabelle::breiten() const {
    std::vector<std::size_t> liste;
    for (const Zeile& zeile : zeilen_) {
        liste.resize(std::max(liste.size(), zeile.zellen.size()));
        for (std::size_t i = 0; i < zeile.zellen.size(); ++i)
            liste[i] = std::max(liste[i], anzeigebreite(zeile.zellen[i].text));
    }
    for (std::size_t i = 0; i < liste.size(); ++i)
        liste[i] = std::min(liste[i], i + 1 < liste.size() ? kBreiteste : kBreitesteLetzte);
    return liste;
}

std::size_t Tabelle::breite() const { return gesamtbreite(breiten()); }

std::string Tabelle::alsText(const Farben& farben, std::size_t platz) const {
    std::vector<std::size_t> spalten = breiten();
    for (std::size_t zuviel = gesamtbreite(spalten); zuviel > platz; --zuviel) {
        const auto breiteste = std::max_element(spalten.begin(), spalten.end());
        if (*breiteste <= kSchmalste)
            break;
        --*breiteste;
    }
    std::string text;
    for (const Zeile& zeile : zeilen_) {
        const bool kopf = &zeile == &zeilen_.front();
        for (std::size_t i = 0; i < zeile.zellen.size(); ++i) {
            const Zelle& zelle = zeile.zellen[i];
            const std::string inhalt = gekuerzt(zelle.text, spalten[i]);
            const std::optional<Farbe> farbe = kopf ? Farbe::FETT : zelle.farbe;
            text += farbe ? farben(*farbe, inhalt) : inhalt;
            if (i + 1 < zeile.zellen.size())
                text.append(spalten[i] - anzeigebreite(inhalt) + kAbstand, ' ');
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
        for (const std::string& bemerkung : zeile.bemerkungen)
            text += std::string(spalten.empty() ? 0 : spalten[0] + kAbstand, ' ') + bemerkung + "\n";
    }
    return text;
}

void gibAus(const Optionen& optionen, const Json& dokument, std::string (*text)(const Json&, const Farben&)) {
    if (optionen.quiet)
        return;
    gibAus(optionen.json ? alsText(dokument) + "\n" : text(dokument, Farben(stdout)));
}

void gibAus(const std::string& alles) {
    if (std::fwrite(alles.data(), 1, alles.size(), stdout) != alles.size() || std::fflush(stdout) != 0)
        throw std::runtime_error(satz("cannot write the results: {1}", systemtext(errno)));
}

} // namespace werkzeug
