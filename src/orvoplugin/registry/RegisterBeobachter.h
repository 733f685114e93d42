#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>

class ErweiterungsSchluessel;
class OrvoErweiterung;

/// The rule that settled which of two extensions stands under a key. Values are never reused.
enum orvo_register_regel_t : std::int32_t {
    REGEL_HOEHERE_VERSION = 1,    ///< the newcomer's product version is higher: it takes the place
    REGEL_GLEICHE_VERSION = 2,    ///< the versions are equal: the first one stays
    REGEL_NIEDRIGERE_VERSION = 3, ///< the newcomer's product version is lower: the first one stays
    REGEL_ERSTER_BLEIBT = 4,      ///< tax-office data: the first one stays, whatever the versions
};

/// Told which extension got which key of the registry, and by which rule: for tools that show an
/// operator which extension answers, and why no other. See `OrvoErweiterungsManager::setRegisterBeobachter`.
///
/// Ownership: everything handed over stays the library's. Keys are valid until the operation returns, extensions
/// until their plugin is unloaded.
class ORVOPLUGIN_API RegisterBeobachter {
public:
    virtual ~RegisterBeobachter();

    /// The extension got a free key.
    virtual void eingetragen(const ErweiterungsSchluessel& schluessel,
                             const OrvoErweiterung& erweiterung) noexcept;
    /// The extension replaced another one.
    virtual void verdraengt(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& neue,
                            const OrvoErweiterung& bisherige, orvo_register_regel_t regel) noexcept;
    /// The extension did not get a key that another one has.
    virtual void abgewiesen(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& neue,
                            const OrvoErweiterung& bestehende, orvo_register_regel_t regel) noexcept;
    /// The extension is of no class that serves sub-case types, and gets no key at all.
    virtual void uebergangen(const OrvoErweiterung& erweiterung) noexcept;
    /// A key was removed, because a plugin that had offered it is unloaded. The extension may be another plugin's.
    virtual void entfernt(const ErweiterungsSchluessel& schluessel,
                          const OrvoErweiterung& erweiterung) noexcept;
};
