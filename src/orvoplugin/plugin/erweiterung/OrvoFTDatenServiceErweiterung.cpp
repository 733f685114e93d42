#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>

#include <orvoplugin/plugin/intern/UaVzErweiterung.h>

ORVO_UA_VZ_ERWEITERUNG(OrvoFTDatenServiceErweiterung, ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG,
                       "orvo_plugin_get_fehlertext_daten_service")

Service* OrvoFTDatenServiceErweiterung::holeService() { return OrvoServiceErweiterung::holeService(); }
