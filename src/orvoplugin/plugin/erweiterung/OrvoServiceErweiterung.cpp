#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>

#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/plugin/intern/Pluginbibliothek.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>

#include <algorithm>
#include <new>

using namespace orvo::orvoutil;

constexpr char kKategorie[] = "orvo.plugin.erweiterung.OrvoServiceErweiterung";
constexpr Latin1Text kOhnePlugin{u8"Erweiterung gehört zu keinem Plugin. Kein Service."};
constexpr Latin1Text kOhneSpeicher{u8"Nicht genug Speicher. Kein Service."};
constexpr Latin1Text kUeberlebt{
    u8"Ein ServiceGriff hält einen Service über das Ende seines Plugins hinaus. Factory: "};
constexpr Latin1Text kNichtGeloescht{u8" und wird nicht gelöscht. Factory: "};
constexpr Latin1Text kVergeben{
    u8"Ein ServiceGriff hält einen Service, der schon zurückgegeben ist. Factory: "};

OrvoServiceErweiterung::OrvoServiceErweiterung(tag_erweiterung_typ typ, const std::string& factoryName)
    : OrvoErweiterung(typ), serviceFactoryName_(factoryName), log_(kKategorie) {
    KonstruktorSpur(log_, "OrvoServiceErweiterung::OrvoServiceErweiterung").ende();
}

OrvoServiceErweiterung::OrvoServiceErweiterung(const OrvoServiceErweiterung& other)
    : OrvoErweiterung(other), serviceFactoryName_(other.serviceFactoryName_), log_(kKategorie) {
    KonstruktorSpur(log_, "OrvoServiceErweiterung::OrvoServiceErweiterung").ende();
}

OrvoServiceErweiterung::~OrvoServiceErweiterung() { verwaiseAlle(); }

void OrvoServiceErweiterung::setServiceFactoryName(const std::string& name) {
    serviceFactoryName_ = name;
    oeffnung_ = 0;
}

Service* OrvoServiceErweiterung::holeService() { return hole(Fehlversuch::Zaehlt); }

Service* OrvoServiceErweiterung::hole(Fehlversuch fehlversuch) {
    const Spur spur(log_, "OrvoServiceErweiterung::holeService");
    Service* service = nullptr;
    OrvoPlugin* const plugin = getPlugin();
    if (!plugin) {
        log_.error(kOhnePlugin);
    } else if (!haltePlatzBereit()) {
        log_.error(kOhneSpeicher);
    } else {
        const std::int32_t vorher = plugin->getUseCount();
        plugin->notifyUse();
        const bool gezaehlt = plugin->getUseCount() != vorher;
        service = holeVon(*plugin);
        if (!service && (gezaehlt || fehlversuch == Fehlversuch::Zaehlt))
            plugin->release();
    }
    spur.ende();
    return service;
}

/// Returns: a service that is entered, or null.
Service* OrvoServiceErweiterung::holeVon(OrvoPlugin& plugin) {
    Service* const service = erzeugeService(plugin);
    if (!service)
        return nullptr;
    if (!verbucheAusgabe(service)) {
        log_.error(kOhneSpeicher);
        return nullptr;
    }
    zaehleAusgabe();
    return service;
}

Service* OrvoServiceErweiterung::erzeugeService(OrvoPlugin& plugin) {
    auto* const factory = sucheFactory(plugin);
    if (!factory) {
        log_.error([&] {
            return "Konnte Funktion: " + serviceFactoryName_ + " in Plugin " + plugin.getBibliotheksname() +
                   " nicht finden.";
        });
        if (plugin.bibliothek().istOffen())
            plugin.verdaechtigeBeschreibung();
        return nullptr;
    }
    Service* service = nullptr;
    const Laufend laufend(Lauf::Aufruf);
    Pluginbibliothek::rufe([&] { service = factory(); },
                           [&](const char* grund) {
                               log_.error([&] {
                                   return "Ausnahme in Funktion: " + serviceFactoryName_ + " in Plugin " +
                                          plugin.getBibliotheksname() + ": " + grund;
                               });
                           });
    return service;
}

/// Searched once for each opening of the library. Returns: null when there is no such function.
Service* (*OrvoServiceErweiterung::sucheFactory(OrvoPlugin& plugin))() {
    const SharedLib* const bibliothek = plugin.getSharedLib();
    const std::uintptr_t oeffnung = bibliothek ? bibliothek->getOeffnung() : 0;
    if (oeffnung == 0 || oeffnung != oeffnung_) {
        factory_ = plugin.bibliothek().funktion<Service*()>(serviceFactoryName_);
        oeffnung_ = factory_ ? oeffnung : 0;
    }
    return factory_;
}

/// Makes the entry of the next object beforehand. Returns: whether there was memory for it.
bool OrvoServiceErweiterung::haltePlatzBereit() noexcept {
    if (freierPlatz_)
        return true;
    try {
        std::map<Service*, int> neue;
        neue.emplace(nullptr, 0);
        freierPlatz_ = neue.extract(neue.begin());
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Enters the object, or counts it once more. Returns: whether there was memory for it.
bool OrvoServiceErweiterung::verbucheAusgabe(Service* service) noexcept {
    freierPlatz_.key() = service;
    auto ergebnis = instanzen_.insert(std::move(freierPlatz_));
    freierPlatz_ = std::move(ergebnis.node); // still free if the object was out already
    int& anzahl = ergebnis.position->second;
    if (anzahl > 0)
        try {
            geloeschte_.reserve(instanzen_.size()); // so that `release` needs no memory
        } catch (const std::bad_alloc&) {
            return false;
        }
    std::erase(geloeschte_, service); // a new object may stand where a deleted one stood
    ++anzahl;
    return true;
}

void OrvoServiceErweiterung::release(Service* service) {
    const Spur spur(log_, "OrvoServiceErweiterung::release");
    const auto eintrag = instanzen_.find(service);
    if (eintrag == instanzen_.end()) {
        log_.warn("Unbekannte Serviceinstanz. Ignoriere sie.");
        return;
    }
    const bool geloescht = std::find(geloeschte_.begin(), geloeschte_.end(), service) != geloeschte_.end();
    const bool loeschen = !geloescht && istFlagGesetzt(FLAG_SERVICE_LOESCHEN) && istLoeschbar(service);
    const int uebrige = --eintrag->second;
    const int verwaiste = verwaiseUeberzaehlige(service, loeschen ? 0 : uebrige);
    if (uebrige == 0) {
        freierPlatz_ = instanzen_.extract(eintrag);
        std::erase(geloeschte_, service);
    } else if (loeschen) {
        geloeschte_.push_back(service);
    }
    if (loeschen) {
        const Laufend laufend(Lauf::Aufruf);
        delete service;
    }
    zaehleRueckgabe();
    if (OrvoPlugin* const plugin = getPlugin())
        plugin->release();
    spur.ende();
    for (int i = 0; loeschen && i < std::min(verwaiste, uebrige); ++i) // what these handles held
        release(service);
}

/// Not so if the object lies in the plugin's library, as a variable of the plugin: deleting it would end the process.
bool OrvoServiceErweiterung::istLoeschbar(const Service* service) const {
    const OrvoPlugin* const plugin = getPlugin();
    if (!plugin || !plugin->bibliothek().enthaelt(service))
        return true;
    log_.error([&] {
        return "Service ist eine Variable des Plugins " + plugin->getBibliotheksname() +
               kNichtGeloescht.c_str() + serviceFactoryName_;
    });
    return false;
}

/// Takes the object from the handles that hold it, the latest first, until so many are left.
/// Returns: how many became orphaned.
int OrvoServiceErweiterung::verwaiseUeberzaehlige(const Service* service, int erlaubte) noexcept {
    int haltende = 0;
    for (ServiceGriffBasis* griff = griffe_; griff; griff = griff->naechsterDerErweiterung())
        haltende += griff->haelt(service);
    int verwaiste = 0;
    for (ServiceGriffBasis* griff = griffe_; haltende - verwaiste > erlaubte;) {
        ServiceGriffBasis* const naechster = griff->naechsterDerErweiterung();
        if (griff->haelt(service)) {
            griff->verwaise();
            ++verwaiste;
        }
        griff = naechster;
    }
    if (verwaiste > 0)
        log_.error([&] { return kVergeben.c_str() + serviceFactoryName_; });
    return verwaiste;
}

void OrvoServiceErweiterung::verwaiseAlle() noexcept {
    if (griffe_)
        log_.error([&] { return kUeberlebt.c_str() + serviceFactoryName_; });
    while (griffe_)
        griffe_->verwaise();
}
