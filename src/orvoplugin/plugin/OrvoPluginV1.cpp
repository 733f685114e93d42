#include <orvoplugin/plugin/OrvoPluginV1.h>

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoplugin/plugin/Fremdcode.h>
#include <orvoplugin/plugin/Ladeschritt.h>
#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>
#include <orvoutil/StringUtil.h>

#include <sstream>
#include <typeinfo>

using namespace orvo::orvoutil;

namespace {

constexpr std::int32_t kTyp = 1;
constexpr int kOhneCode = 99;
constexpr char kInitialisierung[] = "orvo_plugin_initialize";
constexpr Latin1Text kFuegeAn{u8"Füge Erweiterung an Erweiterungsliste an"};

/// Where the virtual functions of an object lie: in the library that holds its class.
const void* ortDerKlasse(const OrvoErweiterung& erweiterung) {
    return *reinterpret_cast<const void* const*>(&erweiterung);
}

/// The clone, or an exception when it would not outlive the library.
std::unique_ptr<OrvoErweiterung> bestaendigerKlon(const OrvoErweiterung& erweiterung,
                                                  const SharedLib* bibliothek) {
    std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
    if (!klon)
        throw PluginInitException(PluginInitException::INITIALISIERUNGS_FEHLER,
                                  std::string("Kopie der Erweiterung fehlt. Klasse: ") +
                                      typeid(erweiterung).name());
    if (bibliothek && bibliothek->enthaelt(ortDerKlasse(*klon))) {
        const OrvoErweiterung& fremd = *klon;
        throw PluginInitException(PluginInitException::INITIALISIERUNGS_FEHLER,
                                  std::string("Klasse der Erweiterung liegt in der Plugin-Bibliothek: ") +
                                      typeid(fremd).name());
    }
    return klon;
}

} // namespace

OrvoPluginV1::OrvoPluginV1(SharedLib* sharedLib)
    : OrvoPlugin(orvo_plugin_version_t{kTyp}, sharedLib), logger_(loggerFuer("OrvoPluginV1", sharedLib)) {
    const KonstruktorSpur spur(logger_, "OrvoPluginV1()");
    spur.ende();
}

OrvoPluginV1::~OrvoPluginV1() {
    const DestruktorSpur spur(logger_, "OrvoPluginV1");
    for (OrvoErweiterung* const erweiterung : erweiterungen_)
        delete erweiterung;
    spur.ende();
}

void OrvoPluginV1::initialize() {
    const Spur spur(logger_, "OrvoPluginV1::initialize"); // has no exit line
    SharedLib* const bibliothek = getSharedLib();
    Ladeschritt::ist(ABLEHNUNG_OEFFNEN);
    if (!bibliothek || !oeffneBibliothek(*bibliothek)) {
        if (bibliothek && bibliothek->scheiterteVorDemOeffnen())
            Ladeschritt::ist(ABLEHNUNG_DATEIPRUEFUNG);
        throw PluginInitException(PluginInitException::GENERELL,
                                  "Bibliothek " + getBibliotheksname() +
                                      " konnte nicht geladen werden! Grund: " +
                                      (bibliothek ? bibliothek->getLastError() : std::string()));
    }

    Ladeschritt::ist(ABLEHNUNG_OHNE_INITIALISIERUNG);
    using Funktion = bool (*)(OrvoPluginV1*);
    const auto funktion = reinterpret_cast<Funktion>(bibliothek->getSymbol(kInitialisierung));
    if (!funktion) {
        schliesseBibliothek(*bibliothek);
        throw PluginInitException(PluginInitException::UNGUELTIGER_AUFBAU,
                                  "Initialisierungsfunktion \"orvo_plugin_initialize\" nicht gefunden.");
    }

    Ladeschritt::ist(ABLEHNUNG_AUSNAHME_INITIALISIERUNG);
    bool erfolg = false;
    {
        const Einsprungpunkt einsprungpunkt;
        erfolg = funktion(this);
    }
    Ladeschritt::ist(ABLEHNUNG_INITIALISIERUNG);
    schliesseBibliothek(*bibliothek);
    if (!erfolg) // misspelt for good: scripts look for this text
        throw PluginInitException(PluginInitException::INITIALISIERUNGS_FEHLER,
                                  "Fehler im Aufruf von orvo_plugin_initalize.");
}

void OrvoPluginV1::notifyUse() {
    const Spur spur(logger_, "OrvoPluginV1::notifyUse");
    if (getUseCount() == 0) {
        const Pluginaufruf aufruf; // the library's start-up code runs, and a log's reader hears of it
        if (logger_ && Logger::hatSenke())
            logger_->tagged("Plugin", kOhneCode, "Lade Plugin: " + getBibliotheksname(), kOhneCode);
        if (oeffne()) {
            merkeStatus(ORVO_PLUGIN_GELADEN);
            zaehleNutzerHoch();
            rufeHook(getOnLoadFuncName(), "Konnte Onload Funktion in Plugin nicht laden",
                     "Ausnahme in Onload Funktion: ");
        }
    } else {
        zaehleNutzerHoch();
        if (logger_ && logger_->isDebugEnabled())
            logger_->debug("Plugin: " + getBibliotheksname() + " schon geladen.");
    }
    if (logger_ && logger_->isDebugEnabled())
        logger_->leave("OrvoPluginV1::notifyUse(useCount=" + int2String(getUseCount()) + ")");
}

void OrvoPluginV1::release() {
    const Spur spur(logger_, "OrvoPluginV1::release");
    if (zaehleNutzerRunter() == 0 && !isResident()) {
        const Pluginaufruf aufruf; // the library's last code runs, and a log's reader hears of it
        if (logger_ && Logger::hatSenke())
            logger_->tagged("Plugin", kOhneCode, "Entlade Plugin: " + getBibliotheksname(), kOhneCode);
        rufeHook(getOnUnloadFuncName(), "Konnte OnUnload Funktion in Plugin nicht laden",
                 "Ausnahme in OnUnload Funktion: ");
        schliesse();
        merkeStatus(ORVO_PLUGIN_ENTLADEN);
    }
    if (logger_ && logger_->isDebugEnabled())
        logger_->leave("OrvoPluginV1::release(useCount=" + int2String(getUseCount()) + ")");
}

bool OrvoPluginV1::oeffne() {
    SharedLib* const bibliothek = getSharedLib();
    if (bibliothek && oeffneBibliothek(*bibliothek))
        return true;
    if (logger_ && logger_->isErrorEnabled())
        logger_->error("Konnte Plugin nicht laden: " +
                       (bibliothek ? bibliothek->getLastError() : std::string()));
    return false;
}

void OrvoPluginV1::schliesse() {
    SharedLib* const bibliothek = getSharedLib();
    // No blank behind this colon, unlike the message of a failed load; scripts split the line there.
    if ((!bibliothek || !schliesseBibliothek(*bibliothek)) && logger_ && logger_->isWarnEnabled())
        logger_->warn("Konnte Plugin nicht entladen:" +
                      (bibliothek ? bibliothek->getLastError() : std::string()));
}

void OrvoPluginV1::rufeHook(const std::string& name, const char* nichtGefunden, const char* ausnahme) {
    if (name.empty())
        return;
    SharedLib* const bibliothek = getSharedLib();
    using Hook = void (*)();
    if (const auto hook = bibliothek ? reinterpret_cast<Hook>(bibliothek->getSymbol(name)) : nullptr) {
        fremdcode::rufe(hook, [&](const char* grund) {
            if (logger_ && logger_->isWarnEnabled())
                logger_->warn(std::string(ausnahme) + grund);
        });
    } else if (logger_ && logger_->isWarnEnabled()) {
        logger_->warn(nichtGefunden);
    }
}

void OrvoPluginV1::addErweiterung(const OrvoErweiterung& erweiterung) {
    const Spur spur(logger_, "OrvoPluginV1::addErweiterung");
    std::unique_ptr<OrvoErweiterung> klon = bestaendigerKlon(erweiterung, getSharedLib());
    klon->setPlugin(this);
    if (logger_ && logger_->isDebugEnabled())
        logger_->debug(kFuegeAn.c_str());
    erweiterungen_.push_back(klon.get());
    ++erweiterungsZaehler_[klon.release()->getTyp()];
    spur.ende();
}

std::list<tag_erweiterung_typ>
OrvoPluginV1::providesUnterfallartUndVeranlagungszeitraum(const Unterfallart& ua,
                                                          const Veranlagungszeitraum& vz) {
    std::list<tag_erweiterung_typ> typen;
    for (OrvoErweiterung* const erweiterung : erweiterungen_) {
        if (!erweiterung || erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG)
            continue;
        auto* const uaVz = dynamic_cast<OrvoUaVzServiceErweiterung*>(erweiterung);
        if (!uaVz) {
            if (logger_ && logger_->isErrorEnabled())
                logger_->error("Cast auf UfaVzServiceErweiterung fehlgeschlagen");
        } else if (uaVz->istUnterfallartUndVeranlagungszeitraumUnterstuetzt(ua, vz)) {
            typen.push_back(erweiterung->getTyp());
        }
    }
    return typen;
}

std::string OrvoPluginV1::toString() const {
    std::ostringstream text(OrvoPlugin::toString(), std::ios_base::ate);
    text.imbue(std::locale::classic()); // the host's may write "1.234"
    text << "Erweiterungen:" << std::endl;
    for (const auto& [typ, anzahl] : erweiterungsZaehler_)
        text << typ << ": " << anzahl << std::endl;
    return text.str();
}

void OrvoPluginV1::behalteFrueheres(std::unique_ptr<OrvoPluginV1> frueheres) {
    frueheres->gibBibliothekAb();
    fruehere_ = std::move(frueheres->fruehere_);
    fruehere_.push_back(std::move(frueheres));
}
