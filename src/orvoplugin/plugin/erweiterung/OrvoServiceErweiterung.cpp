#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoplugin/plugin/Fremdcode.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>

using namespace orvo::orvoutil;

namespace {

constexpr char kKategorie[] = "orvo.plugin.erweiterung.OrvoServiceErweiterung";
constexpr Latin1Text kOhnePlugin{u8"Erweiterung gehört zu keinem Plugin. Kein Service."};
constexpr Latin1Text kUeberlebt{
    u8"Ein ServiceGriff hält einen Service über das Ende seines Plugins hinaus. Factory: "};

void spureBau(Logger* logger) {
    const KonstruktorSpur spur(logger, "OrvoServiceErweiterung::OrvoServiceErweiterung");
    spur.ende();
}

/// "<vorspann> <factory> in Plugin <name of the library>"
std::string woran(const char* vorspann, const std::string& factory, const SharedLib* bibliothek) {
    return vorspann + factory + " in Plugin " + (bibliothek ? bibliothek->getName() : std::string());
}

void meldeVerwaiste(Logger* logger, const std::string& factory) noexcept {
    try {
        if (logger && logger->isErrorEnabled())
            logger->error(kUeberlebt.c_str() + factory);
    } catch (...) { // no memory for the text: then there is no entry
    }
}

} // namespace

OrvoServiceErweiterung::OrvoServiceErweiterung(tag_erweiterung_typ typ, const std::string& factoryName)
    : OrvoErweiterung(typ), serviceFactoryName_(factoryName), logger_(Logger::getInstance(kKategorie)) {
    spureBau(logger_);
}

OrvoServiceErweiterung::OrvoServiceErweiterung(const OrvoServiceErweiterung& other)
    : OrvoErweiterung(other),
      serviceFactoryName_(other.serviceFactoryName_),
      logger_(Logger::getInstance(kKategorie)) {
    spureBau(logger_);
}

OrvoServiceErweiterung::~OrvoServiceErweiterung() {
    if (griffe_)
        meldeVerwaiste(logger_, serviceFactoryName_);
    while (griffe_)
        griffe_->verwaise();
}

void OrvoServiceErweiterung::setServiceFactoryName(const std::string& name) { serviceFactoryName_ = name; }

Service* OrvoServiceErweiterung::holeService() {
    const Spur spur(logger_, "OrvoServiceErweiterung::holeService");
    Service* service = nullptr;
    if (OrvoPlugin* const plugin = getPlugin()) {
        if (instanzen_.empty() || plugin->getUseCount() == 0)
            gepruefteTabelle_ = nullptr; // no object kept the library open: it may be another than before
        plugin->notifyUse();
        service = erzeugeService();
        if (service) {
            merkeAusgabe(service);
            zaehleAusgabe();
        } else {
            plugin->release();
        }
    } else if (logger_ && logger_->isErrorEnabled()) {
        logger_->error(kOhnePlugin.c_str());
    }
    spur.ende();
    return service;
}

void OrvoServiceErweiterung::merkeAusgabe(Service* service) {
    if (freierEintrag_) {
        freierEintrag_.key() = service;
        freierEintrag_.mapped() = 0;
        auto ergebnis = instanzen_.insert(std::move(freierEintrag_));
        freierEintrag_ = std::move(ergebnis.node); // still free if the object was out already
        ++ergebnis.position->second;
    } else {
        ++instanzen_[service];
    }
    if (!geloeschte_.empty())
        geloeschte_.erase(service); // a new object may stand where a deleted one stood
}

Service* OrvoServiceErweiterung::erzeugeService() {
    SharedLib* const bibliothek = getPlugin()->getSharedLib();
    using Factory = Service* (*)();
    const auto factory =
        bibliothek ? reinterpret_cast<Factory>(bibliothek->getSymbol(serviceFactoryName_)) : nullptr;
    if (!factory) {
        if (logger_ && logger_->isErrorEnabled())
            logger_->error(woran("Konnte Funktion: ", serviceFactoryName_, bibliothek) + " nicht finden.");
        return nullptr;
    }
    Service* service = nullptr;
    const Pluginaufruf aufruf;
    fremdcode::rufe([&] { service = factory(); },
                    [&](const char* grund) {
                        if (logger_ && logger_->isErrorEnabled())
                            logger_->error(woran("Ausnahme in Funktion: ", serviceFactoryName_, bibliothek) +
                                           ": " + grund);
                    });
    return service;
}

void OrvoServiceErweiterung::release(Service* service) {
    const Spur spur(logger_, "OrvoServiceErweiterung::release");
    const auto eintrag = instanzen_.find(service);
    if (eintrag == instanzen_.end()) {
        if (logger_ && logger_->isWarnEnabled())
            logger_->warn("Unbekannte Serviceinstanz. Ignoriere sie.");
        return;
    }
    const bool geloescht = !geloeschte_.empty() && geloeschte_.contains(service);
    const bool loeschen = !geloescht && istFlagGesetzt(FLAG_SERVICE_LOESCHEN);
    if (--eintrag->second == 0) {
        freierEintrag_ = instanzen_.extract(eintrag);
        if (geloescht)
            geloeschte_.erase(service);
    } else if (loeschen) {
        geloeschte_.insert(service);
    }
    if (loeschen) {
        const Pluginaufruf aufruf;
        delete service;
    }
    zaehleRueckgabe();
    if (OrvoPlugin* const plugin = getPlugin())
        plugin->release();
    spur.ende();
}
