#include <orvoplugin/plugin/OrvoPluginV1.h>

#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/plugin/intern/Pluginbibliothek.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Spur.h>
#include <orvoutil/StringUtil.h>

#include <typeinfo>
#include <utility>

using namespace orvo::orvoutil;

namespace {

constexpr Latin1Text kFuegeAn{u8"Füge Erweiterung an Erweiterungsliste an"};
constexpr Latin1Text kNichtZurueck{u8"Services beim Entladen nicht zurückgegeben: "};

[[noreturn]] void lehneErweiterungAb(const std::string& grund) {
    throw PluginInitException(PluginInitException::INITIALISIERUNGS_FEHLER, grund);
}

/// Where the virtual functions of an object lie: in the library that holds its class.
const void* ortDerKlasse(const OrvoErweiterung& erweiterung) {
    return *reinterpret_cast<const void* const*>(&erweiterung);
}

/// A copy of the extension that outlives the plugin's library. Errors: `PluginInitException`.
std::unique_ptr<OrvoErweiterung> bestaendigerKlon(const OrvoErweiterung& erweiterung,
                                                  const Pluginbibliothek& bibliothek) {
    std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
    if (!klon)
        lehneErweiterungAb(std::string("Kopie der Erweiterung fehlt. Klasse: ") + typeid(erweiterung).name());
    const OrvoErweiterung& kopie = *klon;
    const std::type_info& typDerKopie = typeid(kopie);
    if (bibliothek.enthaelt(ortDerKlasse(kopie)))
        lehneErweiterungAb("Klasse der Erweiterung liegt in der Plugin-Bibliothek: " +
                           std::string(typDerKopie.name()));
    if (typDerKopie != typeid(erweiterung))
        lehneErweiterungAb("Kopie der Erweiterung hat eine andere Klasse: " +
                           std::string(typDerKopie.name()) + " statt " + typeid(erweiterung).name());
    return klon;
}

/// Names the services of an extension that nobody gave back: they are lost with their plugin.
void meldeAusstehende(const OrvoErweiterung* erweiterung, Log log) {
    const auto* const ausgebende = dynamic_cast<const OrvoServiceErweiterung*>(erweiterung);
    int anzahl = 0; // not that of the extension, which includes what it was copied with
    if (ausgebende)
        for (const auto& [service, mal] : ausgebende->getInstanzen())
            anzahl += mal;
    if (anzahl > 0)
        log.warn([&] {
            return kNichtZurueck.c_str() + int2String(anzahl) +
                   ". Erweiterung: " + erweiterungTypName(erweiterung->getTyp()) +
                   ", Factory: " + ausgebende->getServiceFactoryName();
        });
}

} // namespace

OrvoPluginV1::OrvoPluginV1(SharedLib* sharedLib) : OrvoPluginV1(Pluginbibliothek::fuer(sharedLib)) {}

OrvoPluginV1::OrvoPluginV1(Bibliothekszeiger bibliothek)
    : OrvoPlugin(orvo_plugin_version_t{SCHNITTSTELLE}, std::move(bibliothek)),
      log_(logFuer("OrvoPluginV1", getSharedLib())) {
    KonstruktorSpur(log_, "OrvoPluginV1()").ende();
}

OrvoPluginV1::OrvoPluginV1(std::unique_ptr<OrvoPluginV1> frueheres)
    : OrvoPluginV1(frueheres->gibBibliothekAb()) {
    fruehere_ = std::move(frueheres->fruehere_);
    fruehere_.push_back(std::move(frueheres));
}

OrvoPluginV1::~OrvoPluginV1() {
    const DestruktorSpur spur(log_, "OrvoPluginV1");
    for (OrvoErweiterung* const erweiterung : erweiterungen_) {
        meldeAusstehende(erweiterung, log_);
        delete erweiterung;
    }
    spur.ende();
}

void OrvoPluginV1::initialize() {
    static const std::string& kEinsprung =
        *new std::string("orvo_plugin_initialize");    // used to the end of the process
    const Spur spur(log_, "OrvoPluginV1::initialize"); // by contract without an exit line
    Pluginbibliothek& tuer = bibliothek();
    if (!tuer.oeffne())
        throw PluginInitException(PluginInitException::GENERELL,
                                  "Bibliothek " + getBibliotheksname() +
                                      " konnte nicht geladen werden! Grund: " + tuer.getGrund());

    auto* const initialisierung = tuer.funktion<bool(OrvoPluginV1*)>(kEinsprung);
    if (!initialisierung) {
        tuer.setzeSchritt(ABLEHNUNG_OHNE_INITIALISIERUNG);
        tuer.schliesse();
        throw PluginInitException(PluginInitException::UNGUELTIGER_AUFBAU,
                                  "Initialisierungsfunktion \"orvo_plugin_initialize\" nicht gefunden.");
    }

    tuer.setzeSchritt(ABLEHNUNG_AUSNAHME_INITIALISIERUNG);
    const bool erfolg = tuer.beschreibt(initialisierung, this);
    tuer.setzeSchritt(ABLEHNUNG_INITIALISIERUNG);
    tuer.schliesse();
    if (!erfolg) // by contract misspelt
        throw PluginInitException(PluginInitException::INITIALISIERUNGS_FEHLER,
                                  "Fehler im Aufruf von orvo_plugin_initalize.");
}

void OrvoPluginV1::notifyUse() {
    const Spur spur(log_, "OrvoPluginV1::notifyUse");
    Pluginbibliothek::schliesseAufgeschobene();
    if (getUseCount() == 0) {
        const Laufend laufend(Lauf::Aufruf); // a log sink may call back; refuse to unload
        log_.ereignis("Plugin", [&] { return "Lade Plugin: " + getBibliotheksname(); });
        if (oeffne()) {
            setzeStatus(ORVO_PLUGIN_GELADEN);
            zaehleNutzerHoch();
            rufeHook(getOnLoadFuncName(), "Konnte Onload Funktion in Plugin nicht laden",
                     "Ausnahme in Onload Funktion: ");
        }
    } else {
        zaehleNutzerHoch();
        log_.debug([&] { return "Plugin: " + getBibliotheksname() + " schon geladen."; });
    }
    log_.spure(&Logger::leave,
               [&] { return "OrvoPluginV1::notifyUse(useCount=" + int2String(getUseCount()) + ")"; });
}

void OrvoPluginV1::release() {
    const Spur spur(log_, "OrvoPluginV1::release");
    Pluginbibliothek::schliesseAufgeschobene();
    if (zaehleNutzerRunter() == 0 && !isResident()) {
        const Laufend laufend(Lauf::Aufruf); // a log sink may call back; refuse to unload
        log_.ereignis("Plugin", [&] { return "Entlade Plugin: " + getBibliotheksname(); });
        rufeHook(getOnUnloadFuncName(), "Konnte OnUnload Funktion in Plugin nicht laden",
                 "Ausnahme in OnUnload Funktion: ");
        bibliothek().schliesse(log_);
        setzeStatus(ORVO_PLUGIN_ENTLADEN);
    }
    log_.spure(&Logger::leave,
               [&] { return "OrvoPluginV1::release(useCount=" + int2String(getUseCount()) + ")"; });
}

/// Opens the library for its first user. What its start-up code throws counts as a failure.
bool OrvoPluginV1::oeffne() {
    bool offen = false;
    const auto melde = [&](std::string_view warum) {
        log_.error([&] { return std::string("Konnte Plugin nicht laden: ").append(warum); });
    };
    if (Pluginbibliothek::rufe([&] { offen = bibliothek().oeffne(); }, melde) && !offen)
        melde(bibliothek().getGrund());
    if (!offen)
        verdaechtigeBeschreibung();
    return offen;
}

void OrvoPluginV1::rufeHook(const std::string& name, const char* nichtGefunden, const char* ausnahme) {
    if (name.empty())
        return;
    auto* const hook = bibliothek().funktion<void()>(name);
    if (!hook) {
        log_.warn(nichtGefunden);
        verdaechtigeBeschreibung();
        return;
    }
    Pluginbibliothek::rufe(
        hook, [&](const char* grund) { log_.warn([&] { return std::string(ausnahme) + grund; }); });
}

void OrvoPluginV1::addErweiterung(const OrvoErweiterung& erweiterung) {
    const Spur spur(log_, "OrvoPluginV1::addErweiterung");
    nimmAuf(bestaendigerKlon(erweiterung, bibliothek()));
    spur.ende();
}

void OrvoPluginV1::nimmAuf(std::unique_ptr<OrvoErweiterung> erweiterung) {
    erweiterung->setPlugin(this);
    log_.debug(kFuegeAn);
    std::int32_t& anzahl = erweiterungsZaehler_[erweiterung->getTyp()];
    erweiterungen_.push_back(erweiterung.get());
    erweiterung.release();
    ++anzahl;
}

std::list<tag_erweiterung_typ>
OrvoPluginV1::providesUnterfallartUndVeranlagungszeitraum(const Unterfallart& ua,
                                                          const Veranlagungszeitraum& vz) {
    std::list<tag_erweiterung_typ> typen;
    for (OrvoErweiterung* const erweiterung : erweiterungen_) {
        if (!erweiterung || erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG)
            continue;
        auto* const uaVz = dynamic_cast<OrvoUaVzServiceErweiterung*>(erweiterung);
        if (!uaVz)
            log_.error("Cast auf UfaVzServiceErweiterung fehlgeschlagen");
        else if (uaVz->istUnterfallartUndVeranlagungszeitraumUnterstuetzt(ua, vz))
            typen.push_back(erweiterung->getTyp());
    }
    return typen;
}

std::string OrvoPluginV1::toString() const {
    std::string text = OrvoPlugin::toString() + "Erweiterungen:" + "\n";
    for (const auto& [typ, anzahl] : erweiterungsZaehler_)
        text.append(erweiterungTypName(typ)).append(": ").append(int2String(anzahl)).append("\n");
    return text;
}
