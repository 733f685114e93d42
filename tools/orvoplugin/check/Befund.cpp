#include "check/Befund.h"

#include "kern/Sprache.h"

namespace werkzeug::check {

namespace {

constexpr std::size_t kGenannte = 5;

} // namespace

const char* urteilKennung(Urteil urteil) {
    switch (urteil) {
    case Urteil::BESTANDEN:
        return "passed";
    case Urteil::DURCHGEFALLEN:
        return "failed";
    case Urteil::WARNUNG:
        return "warning";
    case Urteil::UEBERSPRUNGEN:
        return "skipped";
    case Urteil::ABGESTUERZT:
        return "crashed";
    case Urteil::ZU_LANGSAM:
        break;
    }
    return "timed_out";
}

const char* urteilName(Urteil urteil) {
    return urteil == Urteil::ZU_LANGSAM ? "timed out" : urteilKennung(urteil);
}

std::string Befund::grund() const { return code == kBautAuf ? satz("builds on {1}", text) : text; }

bool istHindernis(Urteil urteil) { return urteil != Urteil::BESTANDEN && urteil != Urteil::WARNUNG; }

void Fundliste::nimm(Liste& liste, std::string text, const char* code) {
    if (liste.gesamt == 0)
        liste.code = code;
    if (liste.gesamt++ < kGenannte)
        liste.erste.push_back(std::move(text));
}

std::string Fundliste::text(const Liste& liste) {
    std::string text;
    for (const std::string& fund : liste.erste)
        text += (text.empty() ? "" : "; ") + fund;
    if (liste.gesamt > kGenannte)
        text += "; and " + std::to_string(liste.gesamt - kGenannte) + " more";
    return text;
}

Befund Fundliste::befund() const {
    if (fehler_.gesamt > 0)
        return durchgefallen(text(fehler_), fehler_.code);
    return warnungen_.gesamt > 0 ? check::warnung(text(warnungen_), warnungen_.code) : bestanden();
}

} // namespace werkzeug::check
