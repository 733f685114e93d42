#pragma once

#include <orvoplugin/service/ValidierungsService.h>
#include <pruefung/Satzaufbau.h>

namespace pruefung {

/// Check service that goes by rules: a plugin derives from it and says which kind of record it expects for a
/// sub-case type ("Unterfallart").
class PruefService : public orvo::service::ValidierungsService {
public:
    /// What `pruefe` and `checkSammeldatenKonsistenz` return.
    enum Status : int { OHNE_BEFUND = 0, MIT_BEFUND = 1, NICHT_PRUEFBAR = 2, NICHT_KONSISTENT = 4 };

    /// Checks each record of the list. Messages say which record they speak of when there are several.
    int pruefe(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua,
               const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis) override;

    /// Collected data goes together as long as nobody stands in it twice with the same beginning.
    int checkSammeldatenKonsistenz(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua,
                                   const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis) override;

private:
    /// Returns: the kind of record expected; null when the service does not know the sub-case type.
    virtual const Satzaufbau* aufbauFuer(const Unterfallart& ua) const = 0;
};

} // namespace pruefung
