// A client library: starts the registry.

#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>

extern "C" __attribute__((visibility("default"))) bool starteRegistry() {
    orvo::orvoutil::Einstellungen().setze("basis.home_dir", "/nirgends");
    return OrvoErweiterungsManager::getInstanz() != nullptr;
}
