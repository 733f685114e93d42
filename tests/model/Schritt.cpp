#include "Schritt.h"

namespace modell {

namespace {

using Art = Schritt::Art;

constexpr const char* kVersionen[] = {"", "0.9", "1", "1.0.0", "1.2.0", "1.9", "1.10", "2", "10", "x", "2.x"};
constexpr const char* kArten[] = {"check",      "check",     "check", "feldinfo",
                                  "fehlertext", "finanzamt", "xpath", "reader"};
constexpr const char* kUnterfallarten[] = {"10",   "010",  "12",   "0",      "LSTB",
                                           "lstb", "Lstb", "ZMDO", "notset", "10a"};
constexpr const char* kJahre[] = {"2008", "2009", "0009", "2010", "0000", "2000", "0098", "1998", "immer"};
constexpr const char* kZeitraeume[] = {"2008", "2009", "200905", "200941", "20091231", "0009",
                                       "2010", "0",    "2000",   "1998",   "immer"};
constexpr const char* kFactories[] = {"",
                                      "",
                                      "",
                                      "",
                                      "gleicherService",
                                      "keinService",
                                      "falscherService",
                                      "werfenderService",
                                      "fehlenderService"};

/// Each kind of step as often as its weight.
constexpr Art kSchritte[] = {
    Art::BESCHREIBE,  Art::BESCHREIBE,   Art::HOME,      Art::HOME,     Art::LADE_DATEI, Art::LADE_DATEI,
    Art::LADE_DATEI,  Art::LADE_DATEI,   Art::LADE_ALLE, Art::ENTLADE,  Art::ENTLADE,    Art::ENTLADE,
    Art::ENTLADE,     Art::ENTLADE_ALLE, Art::RELOAD,    Art::NEUSTART, Art::SUCHE,      Art::HOLE,
    Art::HOLE,        Art::HOLE,         Art::HOLE,      Art::HOLE_VON, Art::HOLE_VON,   Art::HOLE_VON,
    Art::HOLE_VON,    Art::GIB,          Art::GIB,       Art::GIB,      Art::GIB,        Art::GIB,
    Art::GIB_NOCHMAL, Art::GIB_ANDEREM,  Art::NUTZE,     Art::NUTZE,    Art::LASS,       Art::LASS,
    Art::LASS,
};

std::string einzeilig(std::string text) {
    for (char& c : text)
        if (c == '\n')
            c = ';';
    return text;
}

} // namespace

std::string Schritt::text() const {
    const std::string n = std::to_string(wen);
    switch (art) {
    case Art::BESCHREIBE:
        return "beschreibe Datei " + n + ": " + einzeilig(beschreibung.text());
    case Art::HOME:
        return "home " + n;
    case Art::LADE_DATEI:
        return "lade Datei " + n;
    case Art::LADE_ALLE:
        return "lade alle";
    case Art::ENTLADE:
        return "entlade Plugin " + n;
    case Art::ENTLADE_ALLE:
        return "entlade alle";
    case Art::RELOAD:
        return "reload";
    case Art::NEUSTART:
        return "neustart";
    case Art::SUCHE:
        return "suche " + frage.text();
    case Art::HOLE:
        return "hole " + frage.text();
    case Art::HOLE_VON:
        return "hole von Plugin " + n + ", Erweiterung " + std::to_string(was);
    case Art::GIB:
        return "gib Service " + n;
    case Art::GIB_NOCHMAL:
        return "gib nochmals Service " + n;
    case Art::GIB_ANDEREM:
        return "gib Service " + n + " an Erweiterung " + std::to_string(was);
    case Art::NUTZE:
        return "nutze Plugin " + n;
    case Art::LASS:
        return "lass Plugin " + n;
    }
    return "?";
}

Folge Erzeuger::folge(std::size_t schritte, std::size_t dateien, std::size_t homes) {
    Folge folge;
    for (std::size_t datei = 0; datei < dateien; ++datei)
        folge.push_back(beschreibe(datei));
    for (std::size_t i = 0; i < schritte; ++i)
        folge.push_back(schritt(dateien, homes));
    return folge;
}

Schritt Erzeuger::schritt(std::size_t dateien, std::size_t homes) {
    Schritt schritt;
    schritt.art = eines(kSchritte);
    if (schritt.art == Art::BESCHREIBE)
        return beschreibe(unter(dateien));
    if (schritt.art == Art::LADE_DATEI)
        schritt.wen = unter(dateien);
    else if (schritt.art == Art::HOME)
        schritt.wen = unter(homes);
    else
        schritt.wen = unter(16);
    schritt.was = unter(4);
    schritt.frage = frage();
    return schritt;
}

Schritt Erzeuger::beschreibe(std::size_t datei) {
    Schritt schritt;
    schritt.art = Art::BESCHREIBE;
    schritt.wen = datei;
    schritt.beschreibung = beschreibung();
    return schritt;
}

Beschreibung Erzeuger::beschreibung() {
    Beschreibung b;
    b.version = eines(kVersionen);
    b.resident = eineVon(4);
    b.loeschen = eineVon(2);
    b.abgelehnt = eineVon(12);
    for (std::size_t n = unter(4); n > 0; --n) {
        Angebot angebot;
        angebot.art = eines(kArten);
        angebot.ua = eines(kUnterfallarten);
        for (std::size_t jahre = 1 + unter(3); jahre > 0; --jahre)
            angebot.jahre.push_back(eines(kJahre));
        angebot.factory = eines(kFactories);
        if (b.loeschen && angebot.factory == "gleicherService")
            angebot.factory.clear(); // an object that must not be deleted
        b.angebote.push_back(angebot);
    }
    return b;
}

Frage Erzeuger::frage() {
    Frage frage;
    frage.typ = static_cast<int>(eineVon(16) ? unter(9) : 1 + unter(6));
    frage.ua = eines(kUnterfallarten);
    frage.zeitraum = eines(kZeitraeume);
    return frage;
}

} // namespace modell
