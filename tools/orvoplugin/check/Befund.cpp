#include "check/Befund.h"

namespace werkzeug::check {

const Urteilsart& artVon(Urteil urteil) {
    /// In the order of `Urteil`.
    static constexpr Urteilsart kArten[] = {{"passed", N_("passed"), Farbe::GRUEN, Ausgang::GUT},
                                            {"failed", N_("failed"), Farbe::ROT, Ausgang::BEFUNDE},
                                            {"warning", N_("warning"), Farbe::GELB, Ausgang::GUT},
                                            {"skipped", N_("skipped"), Farbe::BLASS, Ausgang::GUT},
                                            {"crashed", N_("crashed"), Farbe::ROT, Ausgang::ABGESTUERZT},
                                            {"timed_out", N_("timed out"), Farbe::ROT, Ausgang::ABGESTUERZT}};
    return kArten[static_cast<std::size_t>(urteil)];
}

const char* urteilName(Urteil urteil) { return uebersetzt(artVon(urteil).name); }

bool istHindernis(Urteil urteil) { return urteil != Urteil::BESTANDEN && urteil != Urteil::WARNUNG; }

bool istAuffaellig(Urteil urteil) { return urteil != Urteil::BESTANDEN && urteil != Urteil::UEBERSPRUNGEN; }

std::string Befund::grund() const { return code == kBautAuf ? satz("builds on {1}", text) : text; }

void Fundliste::nimm(Urteil urteil, std::string& text, const char* code) {
    constexpr std::size_t kGenannte = 5;
    Liste& liste = listen_[urteil];
    if (liste.gesamt == 0)
        liste.code = code;
    if (liste.gesamt++ < kGenannte)
        liste.erste.push_back(std::move(text));
}

Befund Fundliste::befund() const {
    Befund befund{Urteil::BESTANDEN, {}, {}, zahlen};
    for (const Urteil urteil :
         {Urteil::DURCHGEFALLEN, Urteil::WARNUNG, Urteil::UEBERSPRUNGEN, Urteil::BESTANDEN}) {
        const auto stelle = listen_.find(urteil);
        if (stelle == listen_.end())
            continue;
        const auto& [erste, code, gesamt] = stelle->second;
        befund.urteil = urteil;
        befund.code = code;
        for (const std::string& fund : erste)
            befund.text += (befund.text.empty() ? "" : "; ") + fund;
        if (gesamt > erste.size())
            befund.text += "; " + satz("and {1} more", gesamt - erste.size());
        break;
    }
    return befund;
}

} // namespace werkzeug::check
