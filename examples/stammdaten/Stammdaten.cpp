// A plugin with data services: a reader of record files for the sub-case types with records here and any period, and
// the tax offices.

#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <stammdaten/DateiLeser.h>
#include <stammdaten/Finanzaemter.h>

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion(PRODUKTVERSION);
    plugin->setFileVersion(PRODUKTVERSION ".3");

    const std::list<Unterfallart> unterfallarten{UFA_LSTB, UFA_10, UFA_50};
    OrvoDatensatzReaderErweiterung leser(unterfallarten, Veranlagungszeitraum());
    leser.setzeFlag(FLAG_SERVICE_LOESCHEN, true); // each get makes a new object
    plugin->addErweiterung(leser);

    plugin->addErweiterung(OrvoFADatenServiceErweiterung()); // without the flag: all users share one object
    return true;
}

Service* orvo_plugin_get_datensatz_reader_service() { return new stammdaten::DateiLeser; }

Service* orvo_plugin_get_finanzamt_daten_service() {
    static stammdaten::Finanzaemter finanzaemter;
    return &finanzaemter;
}
