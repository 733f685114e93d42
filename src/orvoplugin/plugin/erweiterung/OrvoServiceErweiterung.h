#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>
#include <orvoutil/Log.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class Service;
class ServiceGriffBasis;

/// An extension that hands out service objects, made by a factory function of the plugin library.
///
/// Each object handed out holds one use of the plugin, which keeps the library open. An extension that belongs to no
/// plugin hands out nothing.
///
/// Ownership: the caller gives each object back with `release`, once for each time it got it; a `ServiceGriff` does
/// so by itself. Only the plugin deletes an object, or, with `FLAG_SERVICE_LOESCHEN` set, `release`.
/// Errors: neither `holeService` nor `release` throws; errors go to the log. An exception from the factory counts as no
/// object. By contract, when the library cannot be opened, `holeService` gives back a use that was never counted: the
/// count is then below zero, and the plugin is not opened again until it is reloaded. A `ServiceGriff` leaves the count
/// as it was.
class ORVOPLUGIN_API OrvoServiceErweiterung : public OrvoErweiterung {
public:
    ~OrvoServiceErweiterung() override;

    /// Returns: a service object, held by the caller until `release`; null when there is none.
    Service* holeService();

    /// Takes a service object back. With `FLAG_SERVICE_LOESCHEN` set it is deleted at its first release, even if it was
    /// handed out several times; further releases of that object are only counted. An object that is a variable in the
    /// plugin's library is not deleted; the log says so at level error.
    /// An object that is not out, or null, is logged and ignored. A handle whose object is given back here becomes
    /// orphaned (`ServiceGriff::istVerwaist`), and the log says so.
    void release(Service* service);

    void setServiceFactoryName(const std::string& name);

    const std::string& getServiceFactoryName() const { return serviceFactoryName_; }
    /// The objects that are out, and how many times each.
    const std::map<Service*, int>& getInstanzen() const { return instanzen_; }

protected:
    OrvoServiceErweiterung(tag_erweiterung_typ typ, const std::string& factoryName);
    /// By contract a copy takes over the number of objects that the original has out, but none of the objects.
    OrvoServiceErweiterung(const OrvoServiceErweiterung& other);

private:
    friend class OrvoPlugin;
    friend class ServiceGriffBasis;

    enum class Fehlversuch { Zaehlt, ZaehltNicht };

    Service* hole(Fehlversuch fehlversuch);
    Service* holeVon(OrvoPlugin& plugin);
    Service* erzeugeService(OrvoPlugin& plugin);
    Service* (*sucheFactory(OrvoPlugin& plugin))();
    bool haltePlatzBereit() noexcept;
    bool verbucheAusgabe(Service* service) noexcept;
    bool istLoeschbar(const Service* service) const;
    int verwaiseUeberzaehlige(const Service* service, int erlaubte) noexcept;
    void verwaiseAlle() noexcept;

    std::map<Service*, int> instanzen_;
    std::string serviceFactoryName_;
    orvo::orvoutil::Log log_;
    std::vector<Service*> geloeschte_;    ///< deleted, but not yet released by all holders
    ServiceGriffBasis* griffe_ = nullptr; ///< the handles that hold one of the objects, the latest first
    std::map<Service*, int>::node_type freierPlatz_; ///< for the next object, so that entering it cannot fail
    Service* (*factory_)() = nullptr;                ///< as found in an opening of the library
    std::uintptr_t oeffnung_ = 0;                    ///< the number of that opening
};
