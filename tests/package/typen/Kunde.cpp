// Asks for each service of the plugin under the interfaces of Dienste.h, and prints which handles are full. The home
// directory is the argument.
#include "Dienste.h"

#include <orvoplugin/registry/HoleService.h>
#include <orvoutil/Einstellungen.h>

#include <iostream>

int main(int, char** argv) {
    orvo::orvoutil::Einstellungen().setze("basis.home_dir", argv[1]);
    const Veranlagungszeitraum jahr(2009, "YYYY");
    for (int bauart = EINFACH; bauart <= UHR_MIT_ZAEHLER; ++bauart) {
        std::cout << bauart << ":";
        if (const auto zaehler = holeFeldInfoDatenService<Zaehler>(bauart, jahr))
            std::cout << " counts " << zaehler->zaehle();
        if (const auto uhr = holeFeldInfoDatenService<Uhr>(bauart, jahr))
            std::cout << " shows " << uhr->stunde();
        std::cout << "\n";
    }
    const auto pruefung = holeValidierungsService("LSTB", jahr);
    std::cout << "check service: " << (pruefung && dynamic_cast<Service*>(pruefung.get())) << "\n";
    auto* const registry = OrvoErweiterungsManager::getInstanz();
    auto* const gefunden = registry->findeValidierungsServiceErweiterung("LSTB", jahr);
    orvo::service::ValidierungsService* const service = gefunden ? gefunden->holeService() : nullptr;
    std::cout << "typed: " << (service != nullptr) << "\n";
    if (service)
        gefunden->release(service);
}
