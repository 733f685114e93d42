#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>

#include <orvoplugin/plugin/intern/UaVzErweiterung.h>

ORVO_UA_VZ_ERWEITERUNG(OrvoDatensatzReaderErweiterung, ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG,
                       "orvo_plugin_get_datensatz_reader_service")

orvo::service::DatensatzReaderService* OrvoDatensatzReaderErweiterung::holeService() {
    return dynamic_cast<orvo::service::DatensatzReaderService*>(OrvoServiceErweiterung::holeService());
}

void OrvoDatensatzReaderErweiterung::addVorbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

// By contract among the pre-conditions.
void OrvoDatensatzReaderErweiterung::addNachbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

void OrvoDatensatzReaderErweiterung::setVorbedingungen(const std::list<Bedingung>& bedingungen) {
    vorbedingungen_ = bedingungen;
}

void OrvoDatensatzReaderErweiterung::setNachbedingungen(const std::list<Bedingung>& bedingungen) {
    nachbedingungen_ = bedingungen;
}
