#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoplugin/plugin/Fremdcode.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>

using namespace orvo::orvoutil;

namespace {

constexpr char kKategorie[] = "orvo.plugin.erweiterung.OrvoServiceErweiterung";
constexpr Latin1Text kOhnePlugin{u8"Erweiterung gehört zu keinem Plugin. Kein Service."};

void spureBau(Logger* logger) {
    const KonstruktorSpur spur(logger, "OrvoServiceErweiterung::OrvoServiceErweiterung");
    spur.ende();
}

/// "<vorspann> <factory> in Plugin <name of the library>"
std::string woran(const char* vorspann, const std::string& factory, const SharedLib* bibliothek) {
    return vorspann + factory + " in Plugin " + (bibliothek ? bibliothek->getName() : std::string());
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

OrvoServiceErweiterung::~OrvoServiceErweiterung() = default;

void OrvoServiceErweiterung::setServiceFactoryName(const std::string& name) { serviceFactoryName_ = name; }

Service* OrvoServiceErweiterung::holeService() {
    const Spur spur(logger_, "OrvoServiceErweiterung::holeService");
    Service* service = nullptr;
    if (OrvoPlugin* const plugin = getPlugin()) {
        plugin->notifyUse();
        service = erzeugeService();
        if (service) {
            ++instanzen_[service];
            geloeschte_.erase(service); // a new object may stand where a deleted one stood
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
    const bool loeschen = istFlagGesetzt(FLAG_SERVICE_LOESCHEN) && !geloeschte_.contains(service);
    if (--eintrag->second == 0) {
        instanzen_.erase(eintrag);
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
