#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>

#include <orvoplugin/plugin/OrvoPlugin.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#ifdef _LIBCPP_VERSION
// The type information of classes with bases, as the Itanium C++ ABI lays it out. libc++abi has these classes, but no
// header with them.
namespace __cxxabiv1 {
class __class_type_info : public std::type_info {
public:
    ~__class_type_info() override;
};
class __si_class_type_info : public __class_type_info {
public:
    ~__si_class_type_info() override;
    const __class_type_info* __base_type;
};
class __vmi_class_type_info : public __class_type_info {
public:
    ~__vmi_class_type_info() override;
    unsigned __flags;
    unsigned __base_count;
    struct {
        const __class_type_info* __base_type;
        long __offset_flags;
    } __base_info[1];
};
} // namespace __cxxabiv1

namespace {

/// Whether the object of that class at that address has a base of the class `gesucht`, and that one the base `service`.
bool enthaelt(const std::type_info& klasse, const char* objekt, const std::type_info& gesucht,
              const Service& service) {
    if (std::strcmp(klasse.name(), gesucht.name()) == 0) {
        if (gesucht == typeid(Service))
            return static_cast<const void*>(objekt) == &service;
        return enthaelt(klasse, objekt, typeid(Service), service);
    }
    if (const auto* const eine = dynamic_cast<const __cxxabiv1::__si_class_type_info*>(&klasse))
        return enthaelt(*eine->__base_type, objekt, gesucht, service);
    const auto* const mehrere = dynamic_cast<const __cxxabiv1::__vmi_class_type_info*>(&klasse);
    if (!mehrere)
        return false;
    return std::any_of(
        mehrere->__base_info, mehrere->__base_info + mehrere->__base_count, [&](const auto& basis) {
            enum : long { VIRTUELL = 1, ABSTAND = 8 };
            std::ptrdiff_t abstand = basis.__offset_flags >> ABSTAND;
            if (basis.__offset_flags & VIRTUELL) // then the distance is in the table of virtual functions
                std::memcpy(&abstand, *reinterpret_cast<const char* const*>(objekt) + abstand,
                            sizeof abstand);
            return enthaelt(*basis.__base_type, objekt + abstand, gesucht, service);
        });
}

} // namespace

bool ServiceGriffBasis::hatSchnittstelle(Service& service, const std::type_info& schnittstelle) {
    return enthaelt(typeid(service), static_cast<const char*>(dynamic_cast<const void*>(&service)),
                    schnittstelle, service);
}
#endif

void ServiceGriffBasis::gibZurueck() noexcept {
    verwaist_ = false;
    if (!service_)
        return;
    OrvoServiceErweiterung* const erweiterung = erweiterung_;
    Service* const service = service_;
    leere();
    erweiterung->release(service);
}

ServiceGriffBasis& ServiceGriffBasis::operator=(ServiceGriffBasis&& anderer) noexcept {
    if (this != &anderer) {
        gibZurueck();
        uebernimm(anderer);
    }
    return *this;
}

Service* ServiceGriffBasis::hole(OrvoServiceErweiterung& erweiterung) {
    Service* const service = erweiterung.hole(OrvoServiceErweiterung::Fehlversuch::ZaehltNicht);
    if (service)
        halte(*erweiterung.getPlugin(), erweiterung, *service);
    return service;
}

void ServiceGriffBasis::halte(OrvoPlugin& plugin, OrvoServiceErweiterung& erweiterung,
                              Service& service) noexcept {
    plugin_ = &plugin;
    erweiterung_ = &erweiterung;
    service_ = &service;
    reiheEin(DES_PLUGINS, plugin.griffe_);
    reiheEin(DER_ERWEITERUNG, erweiterung.griffe_);
}

void ServiceGriffBasis::uebernimm(ServiceGriffBasis& anderer) noexcept {
    verwaist_ = std::exchange(anderer.verwaist_, false);
    if (!anderer.service_)
        return;
    OrvoPlugin& plugin = *anderer.plugin_;
    OrvoServiceErweiterung& erweiterung = *anderer.erweiterung_;
    Service& service = *anderer.service_;
    anderer.leere();
    halte(plugin, erweiterung, service);
}

void ServiceGriffBasis::reiheEin(Liste liste, ServiceGriffBasis*& anfang) noexcept {
    Glied& glied = glieder_[liste];
    glied.naechster = anfang;
    glied.verweis = &anfang;
    if (anfang)
        anfang->glieder_[liste].verweis = &glied.naechster;
    anfang = this;
}

void ServiceGriffBasis::leere() noexcept {
    for (const Liste liste : {DES_PLUGINS, DER_ERWEITERUNG}) {
        const Glied& glied = glieder_[liste];
        *glied.verweis = glied.naechster;
        if (glied.naechster)
            glied.naechster->glieder_[liste].verweis = glied.verweis;
    }
    plugin_ = nullptr;
    erweiterung_ = nullptr;
    service_ = nullptr;
}

void ServiceGriffBasis::verwaise() noexcept {
    leere();
    verwaist_ = true;
}

void ServiceGriffBasis::verwaiseAlle(OrvoPlugin& plugin) noexcept {
    while (plugin.griffe_)
        plugin.griffe_->erweiterung_->verwaiseAlle();
}
