#include "Gemeinsames.h"

#include <orvoutil/ObjectLifetimeManager.h>

extern "C" __attribute__((visibility("default"))) const void* finde_gemeinsames(const char* name) {
    return orvo::orvoutil::ObjectLifetimeManager::instance().getObject<Gemeinsames>(name);
}
