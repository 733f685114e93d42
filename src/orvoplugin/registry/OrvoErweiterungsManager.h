#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/PluginObserver.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>
#include <orvoplugin/registry/ErweiterungsSchluessel.h>
#include <orvoplugin/registry/OrvoHashmap.h>
#include <orvoplugin/registry/RegisterAuskunft.h>
#include <orvoutil/Log.h>

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <list>
#include <memory>
#include <set>

class OrvoDatensatzReaderErweiterung;
class OrvoFADatenServiceErweiterung;
class OrvoFTDatenServiceErweiterung;
class OrvoFeldInfoDatenServiceErweiterung;
class OrvoValidierungsServiceErweiterung;
class OrvoXPathMappingServiceErweiterung;
class RegisterBeobachter;
class Suchindex;
struct Registerfund;

namespace orvo::orvoutil {
class Logger;
}

/// Registry of the extensions of all loaded plugins: answers which extension serves a sub-case type
/// ("Unterfallart") for an assessment period ("Veranlagungszeitraum").
///
/// It observes the plugin manager and files each extension once per pair that it serves. Where two plugins offer
/// the same, the one with the higher product version stays, and on equal versions the one registered first. By contract,
/// when a plugin is unloaded, everything under its keys is removed, also the extension of another plugin: a caller that
/// unloads a single plugin reloads the rest.
///
/// One object serves the process: `getInstanz`. A test may make one of its own, which observes the process's plugin
/// manager only if it starts that.
///
/// Ownership: owns no extension. An extension found stays valid until its plugin is unloaded.
/// Errors: a look-up that finds nothing gives null, false or an empty list.
/// Threads: one at a time, with one exception: once the registry is made, several threads may call `getInstanz`, look up
/// and list at once, while no thread loads or unloads plugins or gets services.
class ORVOPLUGIN_API OrvoErweiterungsManager : public PluginObserver {
public:
    /// The process's registry. The first call makes it, starts the plugin manager and so loads all plugins.
    ///
    /// Returns: the registry, owned by the `ObjectLifetimeManager`; null once the process's objects are being
    /// destroyed, and for the start-up and last code of a library opened or closed while the registry is being made.
    /// Errors: `std::logic_error` while the registry is being made.
    static OrvoErweiterungsManager* getInstanz();

    OrvoErweiterungsManager();
    OrvoErweiterungsManager(const OrvoErweiterungsManager&) = delete;
    OrvoErweiterungsManager& operator=(const OrvoErweiterungsManager&) = delete;

    /// Files the plugin's extensions. One that should serve pairs but is of another class is skipped with a warning.
    void pluginErzeugt(OrvoPlugin* plugin) override;
    /// Removes whatever stands under the keys of the plugin's extensions.
    void pluginZerstoert(OrvoPlugin* plugin) override;
    ~OrvoErweiterungsManager() override;

    /// The extension for that year, else the period-independent one, else null.
    OrvoValidierungsServiceErweiterung*
    findeValidierungsServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz) const;
    OrvoFeldInfoDatenServiceErweiterung*
    findeFeldInfoDatenServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz) const;
    OrvoFTDatenServiceErweiterung*
    findeFehlertextDatenServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz) const;
    OrvoXPathMappingServiceErweiterung*
    findeXPathMappingServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz) const;
    OrvoDatensatzReaderErweiterung*
    findeDatensatzReaderServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz) const;
    /// The tax-office data extension; there is one at most.
    OrvoFADatenServiceErweiterung* findeFADatenServiceErweiterung() const;

    /// Whether a look-up of that kind would find an entry.
    bool istUnterfallartUndJahrUnterstuetzt(const tag_erweiterung_typ& typ, const Unterfallart& ua,
                                            const Veranlagungszeitraum& vz) const;

    /// The same look-up for any kind, with the key that answered. The class of the extension is not checked.
    RegisterAuskunft schlageNach(tag_erweiterung_typ typ, const Unterfallart& ua,
                                 const Veranlagungszeitraum& vz) const;

    /// Sets the observer of all registries; null for none. Set it before the first `getInstanz`: that registers all
    /// extensions. Returns: the observer before. Ownership: stays with the caller.
    static RegisterBeobachter* setRegisterBeobachter(RegisterBeobachter* beobachter);

    /// Every extension, once for each of its keys, in the table's order.
    std::list<OrvoErweiterung*> getRegistrierteErweiterungen() const;
    std::list<OrvoValidierungsServiceErweiterung*> getRegistrierteValidierungsServiceErweiterungen() const;
    std::list<OrvoFeldInfoDatenServiceErweiterung*> getRegistrierteFeldInfoDatenServiceErweiterungen() const;
    std::list<OrvoFTDatenServiceErweiterung*> getRegistrierteFehlertextDatenServiceErweiterungen() const;
    std::list<OrvoFADatenServiceErweiterung*> getRegistrierteFinanzamtsDatenErweiterungen() const;

    /// Checks nothing yet. Returns: true.
    bool checkAbhaengigkeiten();

    /// Writes the heading of the report, which is all of it.
    std::ostream& dump(std::ostream& out) const;
    /// Writes the same to a logger at level info; null is ignored.
    void dump(orvo::orvoutil::Logger* logger) const;

    /// 0 while the registry is being made, 2 from then on.
    std::int32_t getStatus() const { return status_; }

private:
    using Register = orvo::common::OrvoHashmap<ErweiterungsSchluessel, OrvoErweiterung*,
                                               ErweiterungsSchluessel, std::equal_to<ErweiterungsSchluessel>>;

    void initialisiere();

    void registriereFinanzamtsDaten(OrvoErweiterung* erweiterung);
    void registriere(OrvoErweiterung* erweiterung);
    void trageEin(OrvoErweiterung* erweiterung, const Unterfallart& ua, const Veranlagungszeitraum& vz);
    void nimmAuf(OrvoErweiterung* erweiterung, const Unterfallart& ua, const Veranlagungszeitraum& vz);
    const ErweiterungsSchluessel& fuegeEin(OrvoErweiterung* erweiterung, const Unterfallart& ua,
                                           const Veranlagungszeitraum& vz);
    void entferne(const OrvoErweiterung* erweiterung);
    void streiche(const Registerfund* fund);
    void loesche(const ErweiterungsSchluessel& schluessel);

    const Registerfund* suche(tag_erweiterung_typ typ, const Unterfallart& ua,
                              const Veranlagungszeitraum& vz) const noexcept;
    template <class Klasse>
    __attribute__((visibility("hidden"))) Klasse* sucheAls(const Unterfallart& ua,
                                                           const Veranlagungszeitraum& vz) const;

    Register registrierteErweiterungen_;
    std::set<OrvoErweiterung*> alleErweiterungen_;
    std::int32_t status_ = 0;
    orvo::orvoutil::Log log_;
    std::unique_ptr<Suchindex> suchindex_; ///< finds the entries of the map
};
