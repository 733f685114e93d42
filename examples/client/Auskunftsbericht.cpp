#include "Auskunftsbericht.h"

#include "Erwartungen.h"
#include "Szenario.h"
#include "Tabelle.h"

#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include <ostream>

namespace {

bool istErwartet(const OrvoErweiterungsManager& registratur, const Szenario::Anfrage& anfrage,
                 const OrvoErweiterung* antwort, Treffer treffer) {
    const bool unterstuetzt = registratur.istUnterfallartUndJahrUnterstuetzt(
        anfrage.dienst, Unterfallart(anfrage.unterfallart.c_str()), liesZeitraum(anfrage.zeitraum));
    const std::string datei = antwort ? dateiVon(*antwort->getPlugin()) : std::string();
    // Tax-office data has no sub-case type, so support for one cannot be queried.
    return datei == anfrage.datei && treffer == anfrage.treffer &&
           (treffer == Treffer::EINZIGER || unterstuetzt == (antwort != nullptr));
}

} // namespace

void berichteAuskunft(std::ostream& aus, const OrvoErweiterungsManager& registratur, const Szenario& szenario,
                      Erwartungen& erwartungen) {
    Tabelle tabelle({"Dienst", "Unterfallart", "Zeitraum", "Antwort", "Treffer", ""});
    for (const Szenario::Anfrage& anfrage : szenario.anfragen) {
        const Unterfallart ua(anfrage.unterfallart.c_str());
        const Veranlagungszeitraum vz = liesZeitraum(anfrage.zeitraum);
        const OrvoErweiterung* const antwort = frage(registratur, anfrage.dienst, ua, vz);
        const Treffer treffer = ordneEin(antwort, ua, vz);
        tabelle.fuegeHinzu({nameVon(anfrage.dienst), anfrage.unterfallart, anfrage.zeitraum,
                            dateiUndVersionVon(antwort), nameVon(treffer),
                            erwartungen.pruefe(istErwartet(registratur, anfrage, antwort, treffer),
                                               "Auskunft: " + nameVon(anfrage.dienst) + " " +
                                                   anfrage.unterfallart + " " + anfrage.zeitraum)});
    }
    aus << tabelle;
}
