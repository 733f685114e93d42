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
/// A service from one look-up in the process's registry, held in a `ServiceGriff`, which gives it back. One function for
/// each kind of extension; see the registry's look-up of the same kind.
///
/// `T` is the interface of the service. Name one where client and plugin have agreed on an interface derived from the
/// kind's own:
///
///     const auto leser = holeDatensatzReaderService<stammdaten::DateiLeserService>(UFA_LSTB, zeitraum);
///
/// Returns: a handle, empty when nothing serves the pair, when there is no service, or when it is not a `T`.
/// Errors: as `OrvoErweiterungsManager::getInstanz`, which loads all plugins at the first call.

/// The service of the extension that `finde`, one of the registry's look-ups, gives for the arguments.
template <class T, class Suche, class... Argumente>
[[nodiscard]] ServiceGriff<T> holeServiceUeber(Suche finde, const Argumente&... argumente) {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    return ServiceGriff<T>(registry ? (registry->*finde)(argumente...) : nullptr);
}

/// The check service for the pair.
template <class T = orvo::service::ValidierungsService>
[[nodiscard]] ServiceGriff<T> holeValidierungsService(const Unterfallart& ua,
                                                      const Veranlagungszeitraum& vz) {
    return holeServiceUeber<T>(&OrvoErweiterungsManager::findeValidierungsServiceErweiterung, ua, vz);
}

/// The field information for the pair.
template <class T = Service>
[[nodiscard]] ServiceGriff<T> holeFeldInfoDatenService(const Unterfallart& ua,
                                                       const Veranlagungszeitraum& vz) {
    return holeServiceUeber<T>(&OrvoErweiterungsManager::findeFeldInfoDatenServiceErweiterung, ua, vz);
}

/// The error texts for the pair.
template <class T = Service>
[[nodiscard]] ServiceGriff<T> holeFehlertextDatenService(const Unterfallart& ua,
                                                         const Veranlagungszeitraum& vz) {
    return holeServiceUeber<T>(&OrvoErweiterungsManager::findeFehlertextDatenServiceErweiterung, ua, vz);
}

/// The XPath mapping for the pair.
template <class T = orvo::service::IXPathMappingService>
[[nodiscard]] ServiceGriff<T> holeXPathMappingService(const Unterfallart& ua,
                                                      const Veranlagungszeitraum& vz) {
    return holeServiceUeber<T>(&OrvoErweiterungsManager::findeXPathMappingServiceErweiterung, ua, vz);
}

/// The record reader for the pair.
template <class T = orvo::service::DatensatzReaderService>
[[nodiscard]] ServiceGriff<T> holeDatensatzReaderService(const Unterfallart& ua,
                                                         const Veranlagungszeitraum& vz) {
    return holeServiceUeber<T>(&OrvoErweiterungsManager::findeDatensatzReaderServiceErweiterung, ua, vz);
}

/// The tax-office data, of which there is one.
template <class T = Service>
[[nodiscard]] ServiceGriff<T> holeFADatenService() {
    return holeServiceUeber<T>(&OrvoErweiterungsManager::findeFADatenServiceErweiterung);
}
