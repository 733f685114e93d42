#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>

OrvoFADatenServiceErweiterung::OrvoFADatenServiceErweiterung()
    : OrvoServiceErweiterung(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG,
                             "orvo_plugin_get_finanzamt_daten_service") {}

OrvoFADatenServiceErweiterung::OrvoFADatenServiceErweiterung(const OrvoFADatenServiceErweiterung&) = default;
OrvoFADatenServiceErweiterung::~OrvoFADatenServiceErweiterung() = default;

OrvoErweiterung* OrvoFADatenServiceErweiterung::clone() const {
    return new OrvoFADatenServiceErweiterung(*this);
}

Service* OrvoFADatenServiceErweiterung::holeService() { return OrvoServiceErweiterung::holeService(); }
