#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Log.h>

#include <cassert>
#include <string>
#include <type_traits>
#include <typeinfo>

class OrvoPlugin;

/// The part of `ServiceGriff` that does not depend on the interface.
class ORVOPLUGIN_API ServiceGriffBasis {
public:
    /// Whether the service went while this handle held it: its plugin was unloaded, its extension destroyed, or the
    /// object given back past the handle. The handle is empty then.
    bool istVerwaist() const noexcept { return verwaist_; }

    /// Gives the service back before the handle ends. The handle is then empty.
    void gibZurueck() noexcept;

protected:
    ServiceGriffBasis() noexcept = default;
    ServiceGriffBasis(ServiceGriffBasis&& anderer) noexcept { uebernimm(anderer); }
    ServiceGriffBasis& operator=(ServiceGriffBasis&& anderer) noexcept;
    ~ServiceGriffBasis() { gibZurueck(); }

    /// Gets a service from the extension and holds it. Returns: the service; null when there is none.
    Service* hole(OrvoServiceErweiterung& erweiterung);
#ifdef _LIBCPP_VERSION
    /// Whether the service is part of an object of that class. Compares names: libc++'s dynamic_cast compares addresses,
    /// and client and plugin each have type information of their own for an interface whose header they share.
    static bool hatSchnittstelle(Service& service, const std::type_info& schnittstelle);
#endif

    OrvoServiceErweiterung* erweiterung_ = nullptr; // null, as is the service, in an empty handle
    Service* service_ = nullptr;

private:
    friend class OrvoPlugin;
    friend class OrvoServiceErweiterung;

    enum Liste { DES_PLUGINS, DER_ERWEITERUNG };
    /// Node of a doubly linked list.
    struct Glied {
        ServiceGriffBasis* naechster = nullptr;
        ServiceGriffBasis** verweis = nullptr; // what points to this handle
    };

    static void verwaiseAlle(OrvoPlugin& plugin) noexcept;

    ServiceGriffBasis* naechsterDerErweiterung() const noexcept {
        return glieder_[DER_ERWEITERUNG].naechster;
    }
    bool haelt(const Service* service) const noexcept { return service_ == service; }
    void halte(OrvoPlugin& plugin, OrvoServiceErweiterung& erweiterung, Service& service) noexcept;
    void uebernimm(ServiceGriffBasis& anderer) noexcept;
    void reiheEin(Liste liste, ServiceGriffBasis*& anfang) noexcept;
    void leere() noexcept;
    /// Lets go of the service without touching it.
    void verwaise() noexcept;

    OrvoPlugin* plugin_ = nullptr;
    Glied glieder_[2];
    bool verwaist_ = false;
};

/// Holds one service of interface `T`, and gives it back through its extension at its end. Like a `std::unique_ptr`
/// it moves, does not copy, and may be empty. `HoleService.h` makes one from one look-up.
///
///     if (const auto pruefung = holeValidierungsService(UFA_LSTB, Veranlagungszeitraum(2009, "YYYY")))
///         pruefung->pruefe(liste, UFA_LSTB, Veranlagungszeitraum(2009, "YYYY"), ergebnis);
///
/// **A handle must end, or be given back, before its plugin is unloaded**: before `OrvoPluginManager::reload`, before
/// a change of "basis.home_dir", before the end of the process's objects. An observer may still give it back in
/// `pluginZerstoert`. If a handle outlives its plugin, the library detects it: the handle becomes empty and orphaned
/// (`istVerwaist`), and the log says so at level error; the service object is lost. In debug builds (without `NDEBUG`) a
/// use of an empty handle through `->` or `*` ends the process with a message; in others it is the use of a null pointer.
///
/// A handle also becomes orphaned when its object is deleted at the first release of several (`FLAG_SERVICE_LOESCHEN`), or
/// given back past the handle with `OrvoServiceErweiterung::release`.
///
/// Parameters: `T` is `Service` or derives from it, not virtually.
/// Errors: throws nothing. Empty when there is no extension, when the factory gives nothing (the log says why), and when
/// the object is not a `T`: then it was given back, and the log names the interface at level warning. A failed opening
/// of the library leaves the plugin's use count as it was.
/// Threads: one thread at a time; unloading plugins counts as a use of every handle.
template <class T>
class [[nodiscard]] ServiceGriff : public ServiceGriffBasis {
    static_assert(std::is_base_of_v<Service, T>,
                  "ServiceGriff<T>: T is Service or an interface derived from it");

public:
    ServiceGriff() noexcept = default;
    /// Gets a service from the extension; null gives an empty handle.
    template <class Erweiterung>
    explicit ServiceGriff(Erweiterung* erweiterung) {
        Service* const service = erweiterung ? hole(*erweiterung) : nullptr;
        if (service && !istVerlangt(service)) {
            gibZurueck();
            meldeFalscheSchnittstelle();
        }
    }
    ServiceGriff(ServiceGriff&&) noexcept = default;
    /// Gives back what it held before.
    ServiceGriff& operator=(ServiceGriff&&) noexcept = default;
    ~ServiceGriff() = default;

    explicit operator bool() const noexcept { return service_ != nullptr; }
    /// The service, valid as long as the handle holds it; null in an empty handle.
    T* get() const& noexcept { return static_cast<T*>(service_); }
    T* get() const&& = delete;
    T* operator->() const noexcept {
        assert(!istVerwaist() && "ServiceGriff: the service's plugin was unloaded while the handle held it");
        assert(service_ && "ServiceGriff: use of an empty handle");
        return get();
    }
    T& operator*() const noexcept { return *operator->(); }
    /// The extension that the service came from; null in an empty handle.
    OrvoServiceErweiterung* getErweiterung() const noexcept { return erweiterung_; }

private:
    static bool istVerlangt(Service* service) {
        if constexpr (std::is_same_v<T, Service>)
            return true;
        else
#ifdef _LIBCPP_VERSION
            return hatSchnittstelle(*service, typeid(T));
#else
            return static_cast<Service*>(dynamic_cast<T*>(service)) == service;
#endif
    }

    static void meldeFalscheSchnittstelle() {
        orvo::orvoutil::Log("orvo.plugin.erweiterung.ServiceGriff").warn([] {
            return std::string("Service hat nicht die verlangte Schnittstelle: ") + typeid(T).name();
        });
    }
};

/// The handle for what an extension's own `holeService` gives: `ServiceGriff griff(erweiterung);`
template <class Erweiterung>
ServiceGriff(Erweiterung*)
    -> ServiceGriff<std::remove_pointer_t<decltype(static_cast<Erweiterung*>(nullptr)->holeService())>>;
