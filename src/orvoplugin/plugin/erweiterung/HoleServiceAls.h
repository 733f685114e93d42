#pragma once

// Internal: how the extensions with an interface of their own give out a service.

#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoplugin/service/Service.h>

template <class Schnittstelle>
Schnittstelle* OrvoServiceErweiterung::holeServiceAls() {
    Service* const service = OrvoServiceErweiterung::holeService();
    return service ? alsSchnittstelle<Schnittstelle>(service) : nullptr;
}
