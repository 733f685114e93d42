#include "Pruefbericht.h"

#include "Erwartungen.h"
#include "Stammdaten.h"
#include "Szenario.h"
#include "Tabelle.h"
#include "TextListe.h"

#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/PathUtil.h>
#include <steuer/Datensatz.h>

#include <algorithm>
#include <ostream>

using namespace orvo::orvoutil;

namespace {

/// The subject of the record: the name, and the tax office if known.
std::string werVon(const OrvoErweiterungsManager& registratur, const std::string& text) {
    const auto gelesen = steuer::liesDatensatz(text);
    const auto* const satz = std::get_if<steuer::Datensatz>(&gelesen);
    if (!satz)
        return {};
    std::string wer = latin1ToUtf8(satz->wert("Name"));
    const std::string amt = finanzamtName(registratur, std::string(satz->wert("Finanzamt")));
    if (!amt.empty())
        wer += (wer.empty() ? "Finanzamt " : ", Finanzamt ") + amt;
    return wer;
}

bool sindErwartet(const PruefErgebnis& ergebnis, const std::vector<Szenario::Meldung>& erwartete) {
    const auto& meldungen = ergebnis.getMeldungen();
    return std::equal(meldungen.begin(), meldungen.end(), erwartete.begin(), erwartete.end(),
                      [](const PruefErgebnis::Meldung& m, const Szenario::Meldung& e) {
                          return m.code == e.code && m.feld == e.feld;
                      });
}

void schreibe(std::ostream& aus, const PruefErgebnis& ergebnis) {
    Tabelle tabelle({"Code", "Feld", "Text"});
    for (const PruefErgebnis::Meldung& m : ergebnis.getMeldungen())
        tabelle.fuegeHinzu({std::to_string(m.code), latin1ToUtf8(m.feld), latin1ToUtf8(m.text)});
    if (!ergebnis.getMeldungen().empty())
        aus << tabelle;
}

/// Has the records checked, several of them also for consistency.
/// Returns: whether there is a service for them.
bool pruefe(const OrvoErweiterungsManager& registratur, const orvo::data::SteuerfallListe& liste,
            const Unterfallart& ua, const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis) {
    const ServiceGriff service(registratur.findeValidierungsServiceErweiterung(ua, vz));
    if (!service)
        return false;
    service->pruefe(liste, ua, vz, ergebnis);
    if (liste.getAnzahl() > 1)
        service->checkSammeldatenKonsistenz(liste, ua, vz, ergebnis);
    return true;
}

} // namespace

void berichtePruefungen(std::ostream& aus, const OrvoErweiterungsManager& registratur,
                        const std::string& datenverzeichnis, const Szenario& szenario,
                        Erwartungen& erwartungen) {
    for (const Szenario::Pruefung& pruefung : szenario.pruefungen) {
        const Unterfallart ua(pruefung.unterfallart.c_str());
        const Veranlagungszeitraum vz = liesZeitraum(pruefung.zeitraum);
        const TextListe liste(
            liesDatensaetze(registratur, ua, vz, concatPath(datenverzeichnis, pruefung.datei)));
        PruefErgebnis ergebnis;
        const bool geprueft = pruefe(registratur, liste, ua, vz, ergebnis);

        const std::size_t befunde = ergebnis.getMeldungen().size();
        aus << '\n'
            << erwartungen.pruefe(geprueft && sindErwartet(ergebnis, pruefung.meldungen),
                                  "Prüfung: " + pruefung.datei + " " + pruefung.zeitraum)
            << ' ' << pruefung.datei << " als " << pruefung.unterfallart << ' ' << pruefung.zeitraum << ": "
            << (befunde == 0 ? "ohne Befund"
                             : std::to_string(befunde) + (befunde == 1 ? " Befund" : " Befunde"))
            << '\n';
        for (std::size_t i = 0; i < liste.getAnzahl(); ++i)
            if (const std::string wer = werVon(registratur, liste.getDatensatz(i)); !wer.empty())
                aus << "  " << wer << '\n';
        schreibe(aus, ergebnis);
    }
}
