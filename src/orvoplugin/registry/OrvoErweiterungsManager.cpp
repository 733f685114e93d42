#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/plugin/intern/Einzelinstanz.h>
#include <orvoplugin/registry/RegisterBeobachter.h>
#include <orvoplugin/registry/Suchtafel.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/OrvoVersion.h>
#include <orvoutil/Spur.h>

#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

using namespace orvo::orvoutil;

namespace {

constexpr std::int32_t kPluginTypEins = 1;
constexpr int kOhneCode = 99;
constexpr std::int32_t kOhneJahr = 0;            // of the period-independent period
constexpr char kMarke[] = "ErweiterungsManager"; // tag of the registrations' log entries
constexpr char kUeberschrift[] = "Aktuell Registrierte Erweiterungen: ";
constexpr Latin1Text kSpeicherloch{u8"Noch Erweiterungen registriert. Speicherloch möglich!"};
constexpr Latin1Text kHoehereVersion{u8" nutze die Erweiterung mit der höheren Version."};

RegisterBeobachter* registerBeobachter = nullptr;

/// The plugin as one of interface 1; null if it is another.
OrvoPluginV1* alsPluginV1(OrvoPlugin* plugin) {
    return plugin && plugin->getTyp() == kPluginTypEins ? dynamic_cast<OrvoPluginV1*>(plugin) : nullptr;
}

OrvoVersion produktVersionVon(const OrvoErweiterung& erweiterung) {
    const OrvoPlugin* const plugin = erweiterung.getPlugin();
    return OrvoVersion(plugin ? plugin->getProduktVersion() : std::string());
}

/// "Registriere Erweiterung(<address>,<kind>)"
void schreibeWen(std::ostream& text, const OrvoErweiterung* erweiterung) {
    text << "Registriere Erweiterung(" << static_cast<const void*>(erweiterung) << ","
         << erweiterung->getTyp() << ")";
}

void meldeRegistrierung(Logger* logger, const OrvoErweiterung* erweiterung) {
    if (!logger || !Logger::hatSenke())
        return;
    std::ostringstream text;
    text.imbue(std::locale::classic()); // the host's may write "2.009"
    schreibeWen(text, erweiterung);
    logger->tagged(kMarke, kOhneCode, text.str(), kOhneCode);
}

void meldeRegistrierung(Logger* logger, const OrvoErweiterung* erweiterung, const Unterfallart& ua,
                        const std::list<Veranlagungszeitraum>& vzs) {
    if (!logger || !Logger::hatSenke())
        return;
    std::ostringstream text;
    text.imbue(std::locale::classic());
    schreibeWen(text, erweiterung);
    text << " : ua=" << ua.getName() << " vz=";
    const char* trenner = "";
    for (const Veranlagungszeitraum& vz : vzs) {
        text << trenner << vz.getJahr();
        trenner = ",";
    }
    logger->tagged(kMarke, kOhneCode, text.str(), kOhneCode);
}

/// Beginning and end stand twice in the line. That is its wanted form: whoever reads the log looks for it.
void meldeDoppelten(Logger* logger, const OrvoErweiterung* erweiterung, const Unterfallart& ua,
                    const Veranlagungszeitraum& vz) {
    if (!logger || !Logger::hatSenke())
        return;
    const std::string anfang = "Es existiert schon eine Erweiterung mit dem Schluessel: ";
    const std::string einfach = anfang + erweiterungTypName(erweiterung->getTyp()) + "/" + ua.getName() +
                                "/" + vz.getText() + kHoehereVersion.c_str();
    logger->tagged(kMarke, kOhneCode, anfang + einfach + kHoehereVersion.c_str(), kOhneCode);
}

/// Every extension of that kind and class, once for each key that it holds.
template <class T, class Register>
std::list<T*> sammle(const Register& eintraege, tag_erweiterung_typ typ, Logger* logger,
                     const char* operation) {
    const Spur spur(logger, operation);
    std::list<T*> liste;
    for (const auto& [schluessel, erweiterung] : eintraege)
        if (erweiterung->getTyp() == typ)
            if (T* const passende = dynamic_cast<T*>(erweiterung))
                liste.push_back(passende);
    spur.ende();
    return liste;
}

} // namespace

OrvoErweiterungsManager* OrvoErweiterungsManager::getInstanz() {
    // "Manger" is the word that log readers look for.
    static constexpr EinzelinstanzTexte texte{kErweiterungsManagerName, "OrvoErweiterungsManager::getInstanz",
                                              "Hole OrvoErweiterungsManager",
                                              "OrvoErweiterungsManger nicht gefunden. Starte Manager"};
    return holeEinzelinstanz<OrvoErweiterungsManager>(texte, [] { return new OrvoErweiterungsManager; });
}

OrvoErweiterungsManager::OrvoErweiterungsManager()
    : logger_(Logger::getInstance(kErweiterungsManagerName)), suchtafel_(std::make_unique<Suchtafel>()) {
    const Spur spur(logger_, "OrvoErweiterungsManager::OrvoErweiterungsManager");
    initialisiere();
    spur.ende();
}

void OrvoErweiterungsManager::initialisiere() {
    const Spur spur(logger_, "OrvoErweiterungsManager::initialisiere");
    if (logger_) // tag and text stand the other way round, and only here; log readers know the line so
        logger_->tagged("Registriere am PluginManager..", kOhneCode, "", kOhneCode);
    OrvoPluginManager::getInstanz(this);
    status_ = 2;
    spur.ende();
}

OrvoErweiterungsManager::~OrvoErweiterungsManager() {
    const Spur spur(logger_, "OrvoErweiterungsManager::~OrvoErweiterungsManager");
    if (logger_)
        logger_->tagged("OrvoErweiterungsManager", kOhneCode, "Deregistriere Instanz am PluginManager..",
                        kOhneCode);
    // Only an existing manager is asked: this must not start one.
    if (ObjectLifetimeManager::instance().getObject<OrvoPluginManager>(kPluginManagerName))
        OrvoPluginManager::getInstanz(nullptr)->removeObserver(this);
    if (!registrierteErweiterungen_.empty() && logger_ && logger_->isWarnEnabled())
        logger_->warn(kSpeicherloch.c_str());
    suchtafel_->leere();
    registrierteErweiterungen_.clear();
    spur.ende();
}

void OrvoErweiterungsManager::pluginErzeugt(OrvoPlugin* plugin) {
    const Spur spur(logger_, "OrvoErweiterungsManager::pluginErzeugt");
    if (OrvoPluginV1* const v1 = alsPluginV1(plugin)) {
        const std::vector<OrvoErweiterung*>& erweiterungen = v1->listeErweiterungen();
        alleErweiterungen_.insert(erweiterungen.begin(), erweiterungen.end());
        for (OrvoErweiterung* const erweiterung : erweiterungen) {
            if (erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG)
                registriereFinanzamtsDaten(erweiterung);
            else if (OrvoUaVzServiceErweiterung* const uaVz = alsUaVz(erweiterung))
                registriere(uaVz);
        }
        checkAbhaengigkeiten();
    }
    spur.ende();
}

void OrvoErweiterungsManager::pluginZerstoert(OrvoPlugin* plugin) {
    const Spur spur(logger_, "OrvoErweiterungsManager::pluginZerstoert");
    if (OrvoPluginV1* const v1 = alsPluginV1(plugin)) {
        for (OrvoErweiterung* const erweiterung : v1->listeErweiterungen()) {
            entferne(erweiterung);
            alleErweiterungen_.erase(erweiterung);
        }
        checkAbhaengigkeiten();
    }
    spur.ende();
}

void OrvoErweiterungsManager::registriereFinanzamtsDaten(OrvoErweiterung* erweiterung) {
    meldeRegistrierung(logger_, erweiterung);
    // The first one stays, whatever the versions. "Y" here and "YYYY" elsewhere give the same year, 2000.
    const auto [bestehender, neu] = trageEinWennFrei(
        {ErweiterungsSchluessel(erweiterung->getTyp(), Unterfallart(0), Veranlagungszeitraum(0, "Y")),
         erweiterung});
    if (!registerBeobachter)
        return;
    if (neu)
        registerBeobachter->eingetragen(bestehender->first, *erweiterung);
    else
        registerBeobachter->abgewiesen(bestehender->first, *erweiterung, *bestehender->second,
                                       REGEL_ERSTER_BLEIBT);
}

void OrvoErweiterungsManager::registriere(OrvoUaVzServiceErweiterung* erweiterung) {
    for (const auto& [ua, vzs] : erweiterung->getVeranlagungszeitraumUnterfallartMap()) {
        meldeRegistrierung(logger_, erweiterung, ua, vzs);
        for (const Veranlagungszeitraum& vz : vzs)
            trageEin(erweiterung, ua, vz);
    }
}

void OrvoErweiterungsManager::trageEin(OrvoErweiterung* erweiterung, const Unterfallart& ua,
                                       const Veranlagungszeitraum& vz) {
    const Register::value_type eintrag(std::piecewise_construct,
                                       std::forward_as_tuple(erweiterung->getTyp(), ua, vz),
                                       std::forward_as_tuple(erweiterung));
    const auto [bestehender, neu] = trageEinWennFrei(eintrag);
    if (neu) {
        if (registerBeobachter)
            registerBeobachter->eingetragen(eintrag.first, *erweiterung);
        return;
    }
    meldeDoppelten(logger_, erweiterung, ua, vz);
    const OrvoErweiterung& bisherige = *bestehender->second;
    const OrvoVersion neueVersion = produktVersionVon(*erweiterung);
    const OrvoVersion bisherigeVersion = produktVersionVon(bisherige);
    if (neueVersion > bisherigeVersion) {
        suchtafel_->streiche(bestehender->first);
        registrierteErweiterungen_.erase(bestehender);
        trageEinWennFrei(eintrag);
        if (registerBeobachter)
            registerBeobachter->verdraengt(eintrag.first, *erweiterung, bisherige, REGEL_HOEHERE_VERSION);
    } else if (registerBeobachter) {
        registerBeobachter->abgewiesen(eintrag.first, *erweiterung, bisherige,
                                       bisherigeVersion > neueVersion ? REGEL_NIEDRIGERE_VERSION
                                                                      : REGEL_GLEICHE_VERSION);
    }
}

/// Enters the pair in the map and in the table beside it, if the key is absent. For want of memory, in neither.
std::pair<OrvoErweiterungsManager::Register::iterator, bool>
OrvoErweiterungsManager::trageEinWennFrei(const Register::value_type& eintrag) {
    suchtafel_->schaffePlatz();
    suchSchluessel_ = eintrag.first; // which then has the room that it takes to strike the key out again
    const auto ergebnis = registrierteErweiterungen_.insert(eintrag);
    if (ergebnis.second)
        suchtafel_->trageEin(ergebnis.first->first, eintrag.second);
    return ergebnis;
}

/// Erases by key, whichever extension stands there; see the class comment.
void OrvoErweiterungsManager::entferne(const OrvoErweiterung* erweiterung) {
    if (erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG) {
        streiche(erweiterung->getTyp(), Unterfallart(0), Veranlagungszeitraum(0, "YYYY"));
    } else if (const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(erweiterung)) {
        for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap())
            for (const Veranlagungszeitraum& vz : vzs)
                streiche(erweiterung->getTyp(), ua, vz);
    }
}

/// Needs no memory for a key that was entered: what stayed behind would refer to an extension that is gone.
void OrvoErweiterungsManager::streiche(tag_erweiterung_typ typ, const Unterfallart& ua,
                                       const Veranlagungszeitraum& vz) {
    suchSchluessel_.setze(typ, ua, vz);
    const auto eintrag = registrierteErweiterungen_.find(suchSchluessel_);
    if (eintrag == registrierteErweiterungen_.end())
        return;
    if (registerBeobachter)
        registerBeobachter->entfernt(eintrag->first, *eintrag->second);
    suchtafel_->streiche(eintrag->first);
    registrierteErweiterungen_.erase(eintrag);
}

OrvoUaVzServiceErweiterung* OrvoErweiterungsManager::alsUaVz(OrvoErweiterung* erweiterung) const {
    auto* const uaVz = dynamic_cast<OrvoUaVzServiceErweiterung*>(erweiterung);
    if (!uaVz && logger_ && logger_->isWarnEnabled())
        logger_->warn("Cast auf UfaVzServiceErweiterung fehlgeschlagen");
    if (!uaVz && registerBeobachter)
        registerBeobachter->uebergangen(*erweiterung);
    return uaVz;
}

/// The extension under the key itself, else under its period-independent one; null when there is neither.
OrvoErweiterung* OrvoErweiterungsManager::suche(tag_erweiterung_typ typ, const Unterfallart& ua,
                                                const Veranlagungszeitraum& vz) const {
    if (!Suchtafel::traegt(ua))
        return sucheImRegister(typ, ua, vz);
    const Suchtafel::Platz* const platz = suchtafel_->finde(typ, ua, vz.getJahr(), kOhneJahr);
    return platz ? platz->erweiterung : nullptr;
}

/// The same, as an extension of the class that a look-up of its kind gives; null too when it is of another one.
template <class Klasse>
Klasse* OrvoErweiterungsManager::sucheAls(tag_erweiterung_typ typ, const Unterfallart& ua,
                                          const Veranlagungszeitraum& vz) const {
    if (!Suchtafel::traegt(ua))
        return dynamic_cast<Klasse*>(sucheImRegister(typ, ua, vz));
    const Suchtafel::Platz* const platz = suchtafel_->finde(typ, ua, vz.getJahr(), kOhneJahr);
    if (!platz)
        return nullptr;
    return platz->vonIhrerKlasse ? static_cast<Klasse*>(platz->erweiterung)
                                 : dynamic_cast<Klasse*>(platz->erweiterung);
}

OrvoErweiterung* OrvoErweiterungsManager::sucheImRegister(tag_erweiterung_typ typ, const Unterfallart& ua,
                                                          const Veranlagungszeitraum& vz) const {
    suchSchluessel_.setze(typ, ua, vz);
    auto gefunden = registrierteErweiterungen_.find(suchSchluessel_);
    if (gefunden == registrierteErweiterungen_.end()) {
        suchSchluessel_.setzeVeranlagungszeitraum(Veranlagungszeitraum());
        gefunden = registrierteErweiterungen_.find(suchSchluessel_);
    }
    return gefunden == registrierteErweiterungen_.end() ? nullptr : gefunden->second;
}

OrvoValidierungsServiceErweiterung*
OrvoErweiterungsManager::findeValidierungsServiceErweiterung(const Unterfallart& ua,
                                                             const Veranlagungszeitraum& vz) const {
    const Spur spur(logger_, "OrvoErweiterungsManager::findeValidierungsServiceErweiterung");
    spur.ende(); // both lines come before the search, and only this one of the look-ups writes any
    return sucheAls<OrvoValidierungsServiceErweiterung>(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, vz);
}

OrvoFeldInfoDatenServiceErweiterung*
OrvoErweiterungsManager::findeFeldInfoDatenServiceErweiterung(const Unterfallart& ua,
                                                              const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoFeldInfoDatenServiceErweiterung>(ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG, ua, vz);
}

OrvoFTDatenServiceErweiterung*
OrvoErweiterungsManager::findeFehlertextDatenServiceErweiterung(const Unterfallart& ua,
                                                                const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoFTDatenServiceErweiterung>(ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG, ua, vz);
}

OrvoXPathMappingServiceErweiterung*
OrvoErweiterungsManager::findeXPathMappingServiceErweiterung(const Unterfallart& ua,
                                                             const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoXPathMappingServiceErweiterung>(ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG, ua, vz);
}

OrvoDatensatzReaderErweiterung*
OrvoErweiterungsManager::findeDatensatzReaderServiceErweiterung(const Unterfallart& ua,
                                                                const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoDatensatzReaderErweiterung>(ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG, ua, vz);
}

OrvoFADatenServiceErweiterung* OrvoErweiterungsManager::findeFADatenServiceErweiterung() const {
    return sucheAls<OrvoFADatenServiceErweiterung>(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, Unterfallart(0),
                                                   Veranlagungszeitraum(0, "YYYY"));
}

bool OrvoErweiterungsManager::istUnterfallartUndJahrUnterstuetzt(const tag_erweiterung_typ& typ,
                                                                 const Unterfallart& ua,
                                                                 const Veranlagungszeitraum& vz) const {
    const Spur spur(logger_, "OrvoErweiterungsManager::istUnterfallartUndJahrUnterstuetzt");
    const bool unterstuetzt = suche(typ, ua, vz) != nullptr;
    spur.ende();
    return unterstuetzt;
}

RegisterAuskunft OrvoErweiterungsManager::schlageNach(tag_erweiterung_typ typ, const Unterfallart& ua,
                                                      const Veranlagungszeitraum& vz) const {
    RegisterAuskunft auskunft;
    auskunft.erweiterung = suche(typ, ua, vz);
    if (!auskunft.erweiterung)
        return auskunft;
    // The answer came from the key itself if that has an entry, else from the period-independent one.
    auto eintrag = registrierteErweiterungen_.find(ErweiterungsSchluessel(typ, ua, vz));
    if (eintrag != registrierteErweiterungen_.end()) {
        const bool genau = eintrag->first.getVeranlagungszeitraum() == vz;
        auskunft.treffer = genau ? RegisterAuskunft::GENAU : RegisterAuskunft::GLEICHES_JAHR;
    } else {
        eintrag = registrierteErweiterungen_.find(ErweiterungsSchluessel(typ, ua, Veranlagungszeitraum()));
        auskunft.treffer = RegisterAuskunft::UNABHAENGIG;
    }
    auskunft.schluessel = &eintrag->first;
    return auskunft;
}

RegisterBeobachter* OrvoErweiterungsManager::setRegisterBeobachter(RegisterBeobachter* beobachter) {
    return std::exchange(registerBeobachter, beobachter);
}

std::list<OrvoErweiterung*> OrvoErweiterungsManager::getRegistrierteErweiterungen() const {
    const Spur spur(logger_, "OrvoErweiterungsManager::getRegistrierteErweiterungen");
    std::list<OrvoErweiterung*> liste;
    for (const auto& [schluessel, erweiterung] : registrierteErweiterungen_)
        liste.push_back(erweiterung);
    spur.ende();
    return liste;
}

std::list<OrvoValidierungsServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteValidierungsServiceErweiterungen() const {
    return sammle<OrvoValidierungsServiceErweiterung>(
        registrierteErweiterungen_, ORVO_CHECK_SERVICE_ERWEITERUNG, logger_,
        "OrvoErweiterungsManager::getRegistrierteValidierungsServiceErweiterungen");
}

std::list<OrvoFeldInfoDatenServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteFeldInfoDatenServiceErweiterungen() const {
    return sammle<OrvoFeldInfoDatenServiceErweiterung>(
        registrierteErweiterungen_, ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG, logger_,
        "OrvoErweiterungsManager::getRegistrierteFeldInfoDatenServiceErweiterungen");
}

std::list<OrvoFTDatenServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteFehlertextDatenServiceErweiterungen() const {
    return sammle<OrvoFTDatenServiceErweiterung>(
        registrierteErweiterungen_, ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG, logger_,
        "OrvoErweiterungsManager::getRegistrierteFehlertextDatenServiceErweiterungen");
}

std::list<OrvoFADatenServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteFinanzamtsDatenErweiterungen() const {
    return sammle<OrvoFADatenServiceErweiterung>(
        registrierteErweiterungen_, ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, logger_,
        "OrvoErweiterungsManager::getRegistrierteFinanzamtsDatenErweiterungen");
}

bool OrvoErweiterungsManager::checkAbhaengigkeiten() {
    // The walk over all extensions would stand here; with nothing to look at, it would leave no trace either.
    return true;
}

std::ostream& OrvoErweiterungsManager::dump(std::ostream& out) const {
    return out << kUeberschrift << std::endl;
}

void OrvoErweiterungsManager::dump(Logger* logger) const {
    if (logger && logger->isInfoEnabled())
        logger->info(std::string(kUeberschrift) + "\n");
}
