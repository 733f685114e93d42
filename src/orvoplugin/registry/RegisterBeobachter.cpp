#include <orvoplugin/registry/RegisterBeobachter.h>

RegisterBeobachter::~RegisterBeobachter() = default;

void RegisterBeobachter::eingetragen(const ErweiterungsSchluessel&, const OrvoErweiterung&) noexcept {}
void RegisterBeobachter::verdraengt(const ErweiterungsSchluessel&, const OrvoErweiterung&,
                                    const OrvoErweiterung&, orvo_register_regel_t) noexcept {}
void RegisterBeobachter::abgewiesen(const ErweiterungsSchluessel&, const OrvoErweiterung&,
                                    const OrvoErweiterung&, orvo_register_regel_t) noexcept {}
void RegisterBeobachter::uebergangen(const OrvoErweiterung&) noexcept {}
void RegisterBeobachter::entfernt(const ErweiterungsSchluessel&, const OrvoErweiterung&) noexcept {}
