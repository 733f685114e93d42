#pragma once

#include <orvoplugin/service/ValidierungsService.h>
#include <pruefung/Satzaufbau.h>

namespace pruefung {

/// A check service based on rules: a plugin derives from it and names the kind of record that it expects for a sub-case
/// type ("Unterfallart").
class PruefService : public orvo::service::ValidierungsService {
public:
    /// Results of `pruefe` and `checkSammeldatenKonsistenz`.
    enum Status : int { OHNE_BEFUND = 0, MIT_BEFUND = 1, NICHT_PRUEFBAR = 2, NICHT_KONSISTENT = 4 };

    /// Checks each record of the list. With several records, messages say which one they are about.
    int pruefe(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua,
               const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis) override;

    /// Collected data is consistent unless a person occurs twice with the same beginning.
    int checkSammeldatenKonsistenz(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua,
                                   const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis) override;

private:
    /// Returns: the kind of record expected; null when the service does not know the sub-case type.
    virtual const Satzaufbau* aufbauFuer(const Unterfallart& ua) const = 0;
};

} // namespace pruefung
