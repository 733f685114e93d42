#pragma once

#include <orvoplugin/Export.h>

/// Base of all service interfaces that plugins implement. A factory of the plugin makes the object; an extension
/// hands it out (`OrvoServiceErweiterung::holeService`) and takes it back.
///
/// Ownership: see `FLAG_SERVICE_LOESCHEN`. Do not use an object after it was given back or its plugin unloaded.
class ORVOPLUGIN_API Service {
public:
    virtual ~Service();
};
