// Requests the check service for LSTB 2009, uses it, and prints the result. The home directory is an optional argument.
#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/StreamLogSink.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

using namespace orvo::orvoutil;

namespace {

bool istAbgebildet(const std::string& datei) {
    std::ifstream abbildungen("/proc/self/maps");
    for (std::string zeile; std::getline(abbildungen, zeile);)
        if (zeile.find(datei) != std::string::npos)
            return true;
    return false;
}

} // namespace

int main(int argc, char** argv) {
    Logger::setSink(std::make_shared<StreamLogSink>(std::cerr));
    Logger::setLevel(LogLevel::Info);
    if (argc > 1)
        Einstellungen().setze("basis.home_dir", argv[1]);
    std::cout << "home: " << Einstellungen().basisHomeDir() << "\n";

    auto* const erweiterung = OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(
        UFA_LSTB, Veranlagungszeitraum(2009, "YYYY"));
    if (!erweiterung) {
        std::cout << "nobody answers\n";
        return 1;
    }
    orvo::service::ValidierungsService* const service = erweiterung->holeService();
    if (!service) {
        std::cout << "no service\n";
        return 1;
    }
    std::cout << "features: " << service->getSupportedFeatures().size() << "\n";
    std::cout << "mapped in use: " << istAbgebildet("libwohngeld.dylib") << "\n";
    erweiterung->release(service);
    std::cout << "mapped after: " << istAbgebildet("libwohngeld.dylib") << "\n";
}
