#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>

#include <list>

/// A minimal extension for sub-case types and periods.
class UaVzProbe : public OrvoUaVzServiceErweiterung {
public:
    UaVzProbe(const Unterfallart& ua, const Veranlagungszeitraum& vz)
        : OrvoUaVzServiceErweiterung(NONE, ua, vz, "fabrik") {}
    UaVzProbe(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz)
        : OrvoUaVzServiceErweiterung(NONE, uas, vz, "fabrik") {}
    UaVzProbe(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs)
        : OrvoUaVzServiceErweiterung(NONE, ua, vzs, "fabrik") {}
    explicit UaVzProbe(const VzMap& map) : OrvoUaVzServiceErweiterung(NONE, map, "fabrik") {}
    UaVzProbe(const UaVzProbe&) = default;
    OrvoErweiterung* clone() const override { return new UaVzProbe(*this); }

    using OrvoUaVzServiceErweiterung::init;

    bool unterstuetzt(const Unterfallart& ua, const Veranlagungszeitraum& vz) {
        return istUnterfallartUndVeranlagungszeitraumUnterstuetzt(ua, vz);
    }
};
