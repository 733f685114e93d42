#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>

#include <orvoplugin/plugin/OrvoPlugin.h>

#include <utility>

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
