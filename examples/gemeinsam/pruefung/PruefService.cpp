#include <pruefung/PruefService.h>

#include <orvoutil/Latin1.h>
#include <pruefung/Befundcode.h>
#include <pruefung/Satzpruefer.h>
#include <pruefung/Zeitraum.h>
#include <steuer/Datensatz.h>

#include <set>
#include <string>
#include <utility>
#include <variant>

using orvo::data::SteuerfallListe;
using orvo::orvoutil::Latin1Text;

namespace pruefung {
namespace {

constexpr Latin1Text kUnbekannteUnterfallart{u8"Diese Unterfallart wird hier nicht geprüft: "};
constexpr Latin1Text kDoppelt{
    u8"Für diese Identifikationsnummer gibt es schon einen Datensatz mit demselben Beginn."};

/// The record that a message is about; nothing when there is only one.
std::string vorspannFuer(const SteuerfallListe& liste, std::size_t index) {
    return liste.getAnzahl() > 1 ? "Datensatz " + std::to_string(index + 1) + ": " : std::string();
}

} // namespace

int PruefService::pruefe(const SteuerfallListe& liste, const Unterfallart& ua, const Veranlagungszeitraum& vz,
                         PruefErgebnis& ergebnis) {
    const Satzaufbau* const aufbau = aufbauFuer(ua);
    if (!aufbau) {
        ergebnis.fuegeHinzu(UNTERFALLART_UNBEKANNT, "", kUnbekannteUnterfallart.c_str() + ua.getName());
        return NICHT_PRUEFBAR;
    }
    const auto zeitspanne = zeitspanneVon(vz);
    const std::size_t vorher = ergebnis.getMeldungen().size();
    for (std::size_t i = 0; i < liste.getAnzahl(); ++i)
        Satzpruefer(*aufbau, zeitspanne, vorspannFuer(liste, i), ergebnis).pruefe(liste.getDatensatz(i));
    return ergebnis.getMeldungen().size() == vorher ? OHNE_BEFUND : MIT_BEFUND;
}

int PruefService::checkSammeldatenKonsistenz(const SteuerfallListe& liste, const Unterfallart&,
                                             const Veranlagungszeitraum&, PruefErgebnis& ergebnis) {
    std::set<std::pair<std::string, std::string>> gesehen;
    int status = OHNE_BEFUND;
    for (std::size_t i = 0; i < liste.getAnzahl(); ++i) {
        const auto gelesen = steuer::liesDatensatz(liste.getDatensatz(i));
        const auto* const satz = std::get_if<steuer::Datensatz>(&gelesen);
        if (!satz || satz->wert(kIdNr).empty() || satz->wert(kBeginn).empty())
            continue; // `pruefe` reports invalid records and missing fields
        if (!gesehen.emplace(satz->wert(kIdNr), satz->wert(kBeginn)).second) {
            ergebnis.fuegeHinzu(DATENSATZ_DOPPELT, kIdNr, vorspannFuer(liste, i) + kDoppelt.c_str());
            status = NICHT_KONSISTENT;
        }
    }
    return status;
}

} // namespace pruefung
