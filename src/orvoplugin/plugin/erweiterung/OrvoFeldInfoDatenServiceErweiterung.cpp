#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>

#include <orvoplugin/plugin/intern/UaVzErweiterung.h>

ORVO_UA_VZ_ERWEITERUNG(OrvoFeldInfoDatenServiceErweiterung, ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG,
                       "orvo_plugin_get_feldinfo_daten_service")

Service* OrvoFeldInfoDatenServiceErweiterung::holeService() { return OrvoServiceErweiterung::holeService(); }
