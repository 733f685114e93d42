#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <cstring>
#include <map>
#include <set>
#include <string>

class Service;
class ServiceGriffBasis;

namespace orvo::orvoutil {
class Logger;
}

/// An extension that hands out service objects, made by a factory function of the plugin library.
///
/// Each object handed out holds one use of the plugin, so the library stays open while any of its services is
/// out; giving the object back lets the use go. An extension that belongs to no plugin hands out nothing.
///
/// Ownership: the caller gives each object back with `release`, once for each time it got it; a `ServiceGriff` does
/// so by itself. Nobody deletes an object but the plugin, or, with `FLAG_SERVICE_LOESCHEN` set, `release`.
/// Errors: neither `holeService` nor `release` throws; what went wrong stands in the log. An exception that
/// leaves the factory counts as no object. When the library cannot be opened, the use that was never counted is
/// given back all the same, and the plugin's count then stands below zero until the plugin is loaded anew.
/// Threads: one thread at a time, as everywhere in this library.
class ORVOPLUGIN_API OrvoServiceErweiterung : public OrvoErweiterung {
public:
    ~OrvoServiceErweiterung() override;

    /// Returns: a service object, held by the caller until `release`; null when there is none.
    Service* holeService();

    /// Takes a service object back. With `FLAG_SERVICE_LOESCHEN` set it is deleted, and that at its first release
    /// even if it was handed out several times: plugins that set the flag make a new object each time. The
    /// further releases of such an object count, and touch it no more.
    /// An object that is not out, or null, is reported in the log and changes nothing.
    void release(Service* service);

    void setServiceFactoryName(const std::string& name);

    const std::string& getServiceFactoryName() const { return serviceFactoryName_; }
    /// The objects that are out, and how many times each.
    const std::map<Service*, int>& getInstanzen() const { return instanzen_; }

protected:
    OrvoServiceErweiterung(tag_erweiterung_typ typ, const std::string& factoryName);
    /// A copy carries over how many objects the original has out, but none of the objects: it answers their
    /// release with the warning. That is wanted, and binds whoever copies an extension in use.
    OrvoServiceErweiterung(const OrvoServiceErweiterung& other);

    /// Gets a service as the interface that it has. Returns: null too when it has another one; it is out then.
    template <class Schnittstelle>
    __attribute__((visibility("hidden"))) Schnittstelle* holeServiceAls();

private:
    friend class ServiceGriffBasis;

    Service* erzeugeService();
    void merkeAusgabe(Service* service);
    /// The object as the interface of this kind of extension; null if it has another one.
    template <class Schnittstelle>
    __attribute__((visibility("hidden"))) Schnittstelle* alsSchnittstelle(Service* service);

    std::map<Service*, int> instanzen_;
    std::string serviceFactoryName_;
    orvo::orvoutil::Logger* logger_;
    std::set<Service*> geloeschte_;       ///< objects that are still out by count, and deleted
    ServiceGriffBasis* griffe_ = nullptr; ///< the handles that hold one of the objects, the latest first
    std::map<Service*, int>::node_type freierEintrag_; ///< the last one taken out, for the next object
    const void* gepruefteTabelle_ = nullptr; ///< of the objects that are known to have the interface
};

/// A checked cast takes as long as all the rest. So it is made once for each kind of object: the table of virtual
/// functions that an object points to tells its class, and which part of it the `Service` is. The table is the
/// plugin library's, so what is known of it holds as long as one of the extension's objects keeps that open.
template <class Schnittstelle>
Schnittstelle* OrvoServiceErweiterung::alsSchnittstelle(Service* service) {
    const void* tabelle;
    std::memcpy(&tabelle, static_cast<const void*>(service), sizeof tabelle);
    if (tabelle == gepruefteTabelle_)
        return static_cast<Schnittstelle*>(service);
    auto* const schnittstelle = dynamic_cast<Schnittstelle*>(service);
    if (schnittstelle && static_cast<Service*>(schnittstelle) == service)
        gepruefteTabelle_ = tabelle;
    return schnittstelle;
}
