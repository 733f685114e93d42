#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Logger.h>

#include <cassert>
#include <string>
#include <type_traits>
#include <typeinfo>

/// What the handles of all interfaces have in common: the extension, the object, and a place in the extension's list
/// of handles. Use `ServiceGriff`.
class ServiceGriffBasis {
public:
    /// Whether the service's plugin was unloaded while this handle still held it. The handle is empty then.
    bool istVerwaist() const noexcept { return verwaist_; }

    /// Gives the service back before the handle ends; it is empty from then on. An empty handle stays as it is.
    void gibZurueck() {
        verwaist_ = false;
        if (!service_)
            return;
        OrvoServiceErweiterung* const erweiterung = erweiterung_;
        Service* const service = service_;
        leere();
        erweiterung->release(service);
    }

protected:
    ServiceGriffBasis() noexcept = default;
    ServiceGriffBasis(ServiceGriffBasis&& anderer) noexcept { uebernimm(anderer); }
    ServiceGriffBasis& operator=(ServiceGriffBasis&& anderer) {
        if (this != &anderer) {
            gibZurueck();
            uebernimm(anderer);
        }
        return *this;
    }
    ~ServiceGriffBasis() { gibZurueck(); }

    /// Holds a service that the extension has just handed out.
    void halte(OrvoServiceErweiterung& erweiterung, Service& service) noexcept {
        erweiterung_ = &erweiterung;
        service_ = &service;
        reiheEin(erweiterung.griffe_);
    }

    template <class T>
    static T* alsSchnittstelle(OrvoServiceErweiterung& erweiterung, Service* service) {
        return erweiterung.alsSchnittstelle<T>(service);
    }

    OrvoServiceErweiterung* erweiterung_ = nullptr; // null, as is the service, in an empty handle
    Service* service_ = nullptr;
    bool verwaist_ = false;

private:
    friend class OrvoServiceErweiterung;

    void reiheEin(ServiceGriffBasis*& stelle) noexcept {
        naechster_ = stelle;
        verweis_ = &stelle;
        stelle = this;
        if (naechster_)
            naechster_->verweis_ = &naechster_;
    }

    void leere() noexcept {
        *verweis_ = naechster_;
        if (naechster_)
            naechster_->verweis_ = verweis_;
        erweiterung_ = nullptr;
        service_ = nullptr;
    }

    void uebernimm(ServiceGriffBasis& anderer) noexcept {
        verwaist_ = anderer.verwaist_;
        anderer.verwaist_ = false;
        if (!anderer.service_)
            return;
        OrvoServiceErweiterung& erweiterung = *anderer.erweiterung_;
        Service& service = *anderer.service_;
        anderer.leere();
        halte(erweiterung, service);
    }

    /// The extension goes, and the service's code with it: neither is touched any more.
    void verwaise() noexcept {
        leere();
        verwaist_ = true;
    }

    ServiceGriffBasis* naechster_ = nullptr; // in the extension's list
    ServiceGriffBasis** verweis_ = nullptr;  // what points to this handle in that list
};

/// Holds one service of interface `T`, and gives it back through its extension at its end. Like a `std::unique_ptr`
/// it moves, does not copy, and may be empty. It saves a client the pair of `holeService` and `release`; both stay
/// available beside it. `HoleService.h` makes one from one look-up.
///
///     if (const auto pruefung = holeValidierungsService(UFA_LSTB, Veranlagungszeitraum(2009, "YYYY")))
///         pruefung->pruefe(liste, UFA_LSTB, Veranlagungszeitraum(2009, "YYYY"), ergebnis);
///
/// **A handle must end, or be given back, before its plugin is unloaded**: before `OrvoPluginManager::reload`, before
/// a change of "basis.home_dir", before the end of the process's objects. An observer may still give it back while it
/// hears `pluginZerstoert`. One that does outlive its plugin is found out, whatever the build: when the extension
/// goes it empties the handle, which touches neither of them from then on, and the log says so at level error. The
/// service object itself is lost: its code has left the process. In debug builds (without `NDEBUG`) a use of such a
/// handle through `->` or `*` ends the process with a message; in others it is the use of a null pointer.
///
/// Parameters: `T` is `Service` or derives from it, not virtually.
/// Errors: empty when there is no extension, when the factory gives nothing (the log says why), and when the object
/// is not a `T`: then it has been given back at once, so that nothing keeps the plugin's library open, and the log
/// names the interface at level warning. Throws nothing but for want of memory.
/// Costs: the given operations and a few pointers set; it allocates nothing.
/// Threads: one thread at a time, as everywhere in this library; the unloading of plugins included.
template <class T>
class [[nodiscard]] ServiceGriff : public ServiceGriffBasis {
    static_assert(std::is_base_of_v<Service, T>,
                  "ServiceGriff<T>: T is Service or an interface derived from it");

public:
    ServiceGriff() noexcept = default;
    /// Gets a service from the extension; null gives an empty handle.
    template <class Erweiterung>
    explicit ServiceGriff(Erweiterung* erweiterung) {
        Service* const service = erweiterung ? erweiterung->OrvoServiceErweiterung::holeService() : nullptr;
        if (!service)
            return;
        halte(*erweiterung, *service);
        constexpr bool istEigene = std::is_same_v<T*, decltype(erweiterung->holeService())>;
        if (!istVerlangt<istEigene>(*erweiterung, service)) {
            gibZurueck();
            meldeFalscheSchnittstelle();
        }
    }
    ServiceGriff(ServiceGriff&&) noexcept = default;
    /// Gives back what it held before. Moving a handle onto itself changes nothing.
    ServiceGriff& operator=(ServiceGriff&&) = default;
    /// Gives the service back.
    ~ServiceGriff() = default;

    explicit operator bool() const noexcept { return service_ != nullptr; }
    /// The service, owned by the plugin or the extension and never by the caller; null in an empty handle. Valid as
    /// long as the handle holds it.
    T* get() const noexcept { return static_cast<T*>(service_); }
    /// The handle must not be empty.
    T* operator->() const noexcept {
        assert(!verwaist_ && "ServiceGriff: the service's plugin was unloaded while the handle held it");
        assert(service_ && "ServiceGriff: use of an empty handle");
        return get();
    }
    T& operator*() const noexcept { return *operator->(); }
    /// The extension that the service came from; null in an empty handle.
    OrvoServiceErweiterung* getErweiterung() const noexcept { return erweiterung_; }

private:
    template <bool istEigene> // of the extension's kind: then it knows the class of its objects
    static bool istVerlangt(OrvoServiceErweiterung& erweiterung, Service* service) {
        T* verlangter;
        if constexpr (std::is_same_v<T, Service>)
            verlangter = service;
        else if constexpr (istEigene)
            verlangter = alsSchnittstelle<T>(erweiterung, service);
        else
            verlangter = dynamic_cast<T*>(service);
        return verlangter && static_cast<Service*>(verlangter) == service;
    }

    static void meldeFalscheSchnittstelle() {
        auto* const logger = orvo::orvoutil::Logger::getInstance("orvo.plugin.erweiterung.ServiceGriff");
        if (logger && logger->isWarnEnabled())
            logger->warn(std::string("Service hat nicht die verlangte Schnittstelle: ") + typeid(T).name());
    }
};

/// The handle for what an extension's own `holeService` gives: `ServiceGriff griff(erweiterung);`
template <class Erweiterung>
ServiceGriff(Erweiterung*)
    -> ServiceGriff<std::remove_pointer_t<decltype(static_cast<Erweiterung*>(nullptr)->holeService())>>;
