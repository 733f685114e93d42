#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

/// \file
/// A service from one look-up in the process's registry: find the extension, get a service from it, hold that in a
/// `ServiceGriff`, which gives it back. One function for each kind of extension; each is the registry's look-up of the
/// same kind and nothing more, so the rules for years and period-independent entries are the registry's.
///
/// `T` is the interface wanted. It is the kind's own unless named; name one where client and plugin have settled on
/// an interface derived from it, or, for the kinds that only know `Service`, on one of theirs:
///
///     const auto leser = holeDatensatzReaderService<stammdaten::DateiLeserService>(UFA_LSTB, zeitraum);
///
/// Returns: a handle, empty when nothing serves the pair, when there is no service to be had, or when it is not a `T`;
/// see `ServiceGriff`.
/// Errors: as `OrvoErweiterungsManager::getInstanz`, which the first of these calls makes load all plugins.

/// The check service for the pair.
template <class T = orvo::service::ValidierungsService>
[[nodiscard]] ServiceGriff<T> holeValidierungsService(const Unterfallart& ua,
                                                      const Veranlagungszeitraum& vz) {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    return ServiceGriff<T>(registry ? registry->findeValidierungsServiceErweiterung(ua, vz) : nullptr);
}

/// The field information for the pair.
template <class T = Service>
[[nodiscard]] ServiceGriff<T> holeFeldInfoDatenService(const Unterfallart& ua,
                                                       const Veranlagungszeitraum& vz) {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    return ServiceGriff<T>(registry ? registry->findeFeldInfoDatenServiceErweiterung(ua, vz) : nullptr);
}

/// The error texts for the pair.
template <class T = Service>
[[nodiscard]] ServiceGriff<T> holeFehlertextDatenService(const Unterfallart& ua,
                                                         const Veranlagungszeitraum& vz) {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    return ServiceGriff<T>(registry ? registry->findeFehlertextDatenServiceErweiterung(ua, vz) : nullptr);
}

/// The XPath mapping for the pair.
template <class T = orvo::service::IXPathMappingService>
[[nodiscard]] ServiceGriff<T> holeXPathMappingService(const Unterfallart& ua,
                                                      const Veranlagungszeitraum& vz) {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    return ServiceGriff<T>(registry ? registry->findeXPathMappingServiceErweiterung(ua, vz) : nullptr);
}

/// The record reader for the pair.
template <class T = orvo::service::DatensatzReaderService>
[[nodiscard]] ServiceGriff<T> holeDatensatzReaderService(const Unterfallart& ua,
                                                         const Veranlagungszeitraum& vz) {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    return ServiceGriff<T>(registry ? registry->findeDatensatzReaderServiceErweiterung(ua, vz) : nullptr);
}

/// The tax-office data, of which there is one.
template <class T = Service>
[[nodiscard]] ServiceGriff<T> holeFADatenService() {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    return ServiceGriff<T>(registry ? registry->findeFADatenServiceErweiterung() : nullptr);
}
