#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include <orvoplugin/plugin/intern/UaVzErweiterung.h>

ORVO_UA_VZ_ERWEITERUNG(OrvoValidierungsServiceErweiterung, ORVO_CHECK_SERVICE_ERWEITERUNG,
                       "orvo_plugin_get_check_service")

orvo::service::ValidierungsService* OrvoValidierungsServiceErweiterung::holeService() {
    return dynamic_cast<orvo::service::ValidierungsService*>(OrvoServiceErweiterung::holeService());
}

void OrvoValidierungsServiceErweiterung::addVorbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

// By contract among the pre-conditions.
void OrvoValidierungsServiceErweiterung::addNachbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

void OrvoValidierungsServiceErweiterung::setVorbedingungen(const std::list<Bedingung>& bedingungen) {
    vorbedingungen_ = bedingungen;
}

void OrvoValidierungsServiceErweiterung::setNachbedingungen(const std::list<Bedingung>& bedingungen) {
    nachbedingungen_ = bedingungen;
}
