// Interfaces of which client and plugin share this header only: each has type information of its own for them.
#pragma once

#include <orvoplugin/service/Service.h>
#include <orvoplugin/service/ValidierungsService.h>

class Zaehler : public Service {
public:
    virtual int zaehle() = 0;
};

class Uhr : public Service {
public:
    virtual int stunde() = 0;
};

/// How a service implements `Zaehler`: the number of the sub-case type under which the plugin offers it.
enum Bauart : int { EINFACH = 1, AN_ZWEITER_STELLE, VIRTUELL, NICHT_OEFFENTLICH, DIE_UHR, UHR_MIT_ZAEHLER };
