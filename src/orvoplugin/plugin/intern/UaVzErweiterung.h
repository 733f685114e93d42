#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>

/// Defines the members that the extensions for sub-case types and periods have in common.
#define ORVO_UA_VZ_ERWEITERUNG(Klasse, typ, factory)                                                         \
    Klasse::Klasse(const Unterfallart& ua, const Veranlagungszeitraum& vz)                                   \
        : OrvoUaVzServiceErweiterung(typ, ua, vz, factory) {}                                                \
    Klasse::Klasse(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz)                       \
        : OrvoUaVzServiceErweiterung(typ, uas, vz, factory) {}                                               \
    Klasse::Klasse(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs)                       \
        : OrvoUaVzServiceErweiterung(typ, ua, vzs, factory) {}                                               \
    Klasse::Klasse(const VzMap& map) : OrvoUaVzServiceErweiterung(typ, map, factory) {}                      \
    Klasse::Klasse(const Klasse&) = default;                                                                 \
    Klasse::~Klasse() = default;                                                                             \
    OrvoErweiterung* Klasse::clone() const { return new Klasse(*this); }
