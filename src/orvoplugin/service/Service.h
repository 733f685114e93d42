#pragma once

#include <orvoplugin/Export.h>

/// Base of all service interfaces that plugins implement. A factory of the plugin makes the object; an extension
/// hands it out (`OrvoServiceErweiterung::holeService`) and takes it back.
///
/// Ownership: see `FLAG_SERVICE_LOESCHEN`. The object's code lies in the plugin: it must not be touched after it
/// was given back, nor after its plugin was unloaded.
class ORVOPLUGIN_API Service {
public:
    Service() = default;
    Service(const Service&) = default;
    Service& operator=(const Service&) = default;
    virtual ~Service();
};
