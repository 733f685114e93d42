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
#include <orvoplugin/registry/intern/Suchindex.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Log.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/OrvoVersion.h>
#include <orvoutil/Spur.h>
#include <orvoutil/StringUtil.h>

#include <cstdint>
#include <ostream>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

using namespace orvo::orvoutil;

namespace {

constexpr std::int32_t kOhneJahr = 0;                    // the year of the period-independent period
constexpr char kRegistermarke[] = "ErweiterungsManager"; // tag of the registrations' log entries
constexpr char kUeberschrift[] = "Aktuell Registrierte Erweiterungen: ";
constexpr Latin1Text kSpeicherloch{u8"Noch Erweiterungen registriert. Speicherloch möglich!"};
constexpr Latin1Text kHoehereVersion{u8" nutze die Erweiterung mit der höheren Version."};

RegisterBeobachter* registerBeobachter = nullptr;

/// Null for a plugin of another interface.
OrvoPluginV1* alsPluginV1(OrvoPlugin* plugin) {
    return plugin && plugin->getTyp() == OrvoPluginV1::SCHNITTSTELLE ? dynamic_cast<OrvoPluginV1*>(plugin)
                                                                     : nullptr;
}

OrvoVersion produktVersionVon(const OrvoErweiterung& erweiterung) {
    const OrvoPlugin* const plugin = erweiterung.getPlugin();
    return OrvoVersion(plugin ? plugin->getProduktVersion() : std::string());
}

/// "Registriere Erweiterung(<address>,<kind>)", the address as a stream writes it.
std::string registrierungVon(const OrvoErweiterung* erweiterung) {
    std::string adresse;
    for (auto rest = reinterpret_cast<std::uintptr_t>(erweiterung); rest != 0; rest /= 16)
        adresse.insert(adresse.begin(), "0123456789abcdef"[rest % 16]);
    return "Registriere Erweiterung(" + ("0x" + adresse) + "," + erweiterungTypName(erweiterung->getTyp()) +
           ")";
}

std::string registrierungVon(const OrvoErweiterung* erweiterung, const Unterfallart& ua,
                             const std::list<Veranlagungszeitraum>& vzs) {
    std::string text = registrierungVon(erweiterung) + " : ua=" + ua.getName() + " vz=";
    const char* trenner = "";
    for (const Veranlagungszeitraum& vz : vzs)
        text.append(std::exchange(trenner, ",")).append(int2String(vz.getJahr()));
    return text;
}

/// By contract, beginning and end stand twice in the line.
std::string doppelter(const OrvoErweiterung* erweiterung, const Unterfallart& ua,
                      const Veranlagungszeitraum& vz) {
    const std::string anfang = "Es existiert schon eine Erweiterung mit dem Schluessel: ";
    return anfang + anfang + erweiterungTypName(erweiterung->getTyp()) + "/" + ua.getName() + "/" +
           vz.getText() + kHoehereVersion.c_str() + kHoehereVersion.c_str();
}

/// The fixed key of the tax-office data. By contract it is registered under "Y" and searched under "YYYY"; both give the
/// year 2000.
ErweiterungsSchluessel finanzamtsSchluessel(const char* muster) {
    return {ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, Unterfallart(0), Veranlagungszeitraum(0, muster)};
}

/// The kind that belongs to a class.
template <class Klasse>
constexpr auto kArt = NONE;
template <>
constexpr auto kArt<OrvoValidierungsServiceErweiterung> = ORVO_CHECK_SERVICE_ERWEITERUNG;
template <>
constexpr auto kArt<OrvoFeldInfoDatenServiceErweiterung> = ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG;
template <>
constexpr auto kArt<OrvoFTDatenServiceErweiterung> = ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG;
template <>
constexpr auto kArt<OrvoFADatenServiceErweiterung> = ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG;
template <>
constexpr auto kArt<OrvoXPathMappingServiceErweiterung> = ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG;
template <>
constexpr auto kArt<OrvoDatensatzReaderErweiterung> = ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG;

/// The extensions of a class and its kind, once for each of their keys.
template <class Klasse, class Register>
std::list<Klasse*> sammle(const Register& eintraege, Log log, const char* operation) {
    const Spur spur(log, operation);
    std::list<Klasse*> liste;
    for (const auto& [schluessel, erweiterung] : eintraege) {
        const bool vonDerArt =
            std::is_same_v<Klasse, OrvoErweiterung> || erweiterung->getTyp() == kArt<Klasse>;
        if (Klasse* const passende = vonDerArt ? dynamic_cast<Klasse*>(erweiterung) : nullptr)
            liste.push_back(passende);
    }
    spur.ende();
    return liste;
}

} // namespace

OrvoErweiterungsManager* OrvoErweiterungsManager::getInstanz() {
    // By contract "Manger".
    static constexpr EinzelinstanzTexte texte{kErweiterungsManagerName, "OrvoErweiterungsManager::getInstanz",
                                              "Hole OrvoErweiterungsManager",
                                              "OrvoErweiterungsManger nicht gefunden. Starte Manager"};
    return holeEinzelinstanz<OrvoErweiterungsManager>(texte, [] { return new OrvoErweiterungsManager; });
}

OrvoErweiterungsManager::OrvoErweiterungsManager()
    : log_(kErweiterungsManagerName), suchindex_(std::make_unique<Suchindex>()) {
    const Spur spur(log_, "OrvoErweiterungsManager::OrvoErweiterungsManager");
    initialisiere();
    spur.ende();
}

void OrvoErweiterungsManager::initialisiere() {
    const Spur spur(log_, "OrvoErweiterungsManager::initialisiere");
    // By contract with tag and text exchanged.
    log_.ereignis("Registriere am PluginManager..", "");
    OrvoPluginManager::getInstanz(this);
    status_ = 2;
    spur.ende();
}

OrvoErweiterungsManager::~OrvoErweiterungsManager() {
    const Spur spur(log_, "OrvoErweiterungsManager::~OrvoErweiterungsManager");
    log_.ereignis("OrvoErweiterungsManager", "Deregistriere Instanz am PluginManager..");
    // This must not start a manager.
    if (ObjectLifetimeManager::instance().getObject<OrvoPluginManager>(kPluginManagerName))
        OrvoPluginManager::getInstanz(nullptr)->removeObserver(this);
    if (!registrierteErweiterungen_.empty())
        log_.warn(kSpeicherloch);
    suchindex_->leere();
    registrierteErweiterungen_.clear();
    spur.ende();
}

void OrvoErweiterungsManager::pluginErzeugt(OrvoPlugin* plugin) {
    const Spur spur(log_, "OrvoErweiterungsManager::pluginErzeugt");
    if (OrvoPluginV1* const v1 = alsPluginV1(plugin)) {
        const std::vector<OrvoErweiterung*>& erweiterungen = v1->listeErweiterungen();
        alleErweiterungen_.insert(erweiterungen.begin(), erweiterungen.end());
        for (OrvoErweiterung* const erweiterung : erweiterungen) {
            if (erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG)
                registriereFinanzamtsDaten(erweiterung);
            else
                registriere(erweiterung);
        }
        checkAbhaengigkeiten();
    }
    spur.ende();
}

void OrvoErweiterungsManager::pluginZerstoert(OrvoPlugin* plugin) {
    const Spur spur(log_, "OrvoErweiterungsManager::pluginZerstoert");
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
    log_.ereignis(kRegistermarke, [&] { return registrierungVon(erweiterung); });
    // The first one stays, whatever the versions.
    const ErweiterungsSchluessel schluessel = finanzamtsSchluessel("Y");
    if (const Registerfund* const bestehender = suchindex_->finde(schluessel)) {
        if (registerBeobachter)
            registerBeobachter->abgewiesen(*bestehender->schluessel, *erweiterung, *bestehender->erweiterung,
                                           REGEL_ERSTER_BLEIBT);
        return;
    }
    nimmAuf(erweiterung, schluessel.getUnterfallart(), schluessel.getVeranlagungszeitraum());
}

void OrvoErweiterungsManager::registriere(OrvoErweiterung* erweiterung) {
    const auto* const uaVz = dynamic_cast<OrvoUaVzServiceErweiterung*>(erweiterung);
    if (!uaVz) {
        log_.warn("Cast auf UfaVzServiceErweiterung fehlgeschlagen");
        if (registerBeobachter)
            registerBeobachter->uebergangen(*erweiterung);
        return;
    }
    for (const auto& eintrag : uaVz->getVeranlagungszeitraumUnterfallartMap()) {
        log_.ereignis(kRegistermarke,
                      [&] { return registrierungVon(erweiterung, eintrag.first, eintrag.second); });
        for (const Veranlagungszeitraum& vz : eintrag.second)
            trageEin(erweiterung, eintrag.first, vz);
    }
}

void OrvoErweiterungsManager::trageEin(OrvoErweiterung* erweiterung, const Unterfallart& ua,
                                       const Veranlagungszeitraum& vz) {
    const Registerfund* const bestehender = suchindex_->finde(erweiterung->getTyp(), ua, vz.getJahr());
    if (!bestehender) {
        nimmAuf(erweiterung, ua, vz);
        return;
    }
    log_.ereignis(kRegistermarke, [&] { return doppelter(erweiterung, ua, vz); });
    const OrvoErweiterung& bisherige = *bestehender->erweiterung;
    const OrvoVersion neueVersion = produktVersionVon(*erweiterung);
    const OrvoVersion bisherigeVersion = produktVersionVon(bisherige);
    if (neueVersion > bisherigeVersion) {
        loesche(*bestehender->schluessel);
        const ErweiterungsSchluessel& schluessel = fuegeEin(erweiterung, ua, vz);
        if (registerBeobachter)
            registerBeobachter->verdraengt(schluessel, *erweiterung, bisherige, REGEL_HOEHERE_VERSION);
    } else if (registerBeobachter) {
        registerBeobachter->abgewiesen({erweiterung->getTyp(), ua, vz}, *erweiterung, bisherige,
                                       bisherigeVersion > neueVersion ? REGEL_NIEDRIGERE_VERSION
                                                                      : REGEL_GLEICHE_VERSION);
    }
}

void OrvoErweiterungsManager::nimmAuf(OrvoErweiterung* erweiterung, const Unterfallart& ua,
                                      const Veranlagungszeitraum& vz) {
    const ErweiterungsSchluessel& schluessel = fuegeEin(erweiterung, ua, vz);
    if (registerBeobachter)
        registerBeobachter->eingetragen(schluessel, *erweiterung);
}

/// Enters an absent key in the map and the index; on allocation failure in neither. Returns: the key.
const ErweiterungsSchluessel& OrvoErweiterungsManager::fuegeEin(OrvoErweiterung* erweiterung,
                                                                const Unterfallart& ua,
                                                                const Veranlagungszeitraum& vz) {
    const auto eintrag =
        registrierteErweiterungen_
            .emplace(std::piecewise_construct, std::forward_as_tuple(erweiterung->getTyp(), ua, vz),
                     std::forward_as_tuple(erweiterung))
            .first;
    try {
        suchindex_->trageEin(eintrag->first, erweiterung);
    } catch (...) {
        registrierteErweiterungen_.erase(eintrag);
        throw;
    }
    return eintrag->first;
}

/// Erases by key, whichever extension stands there.
void OrvoErweiterungsManager::entferne(const OrvoErweiterung* erweiterung) {
    if (erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG) {
        const ErweiterungsSchluessel schluessel = finanzamtsSchluessel("YYYY");
        streiche(suchindex_->finde(schluessel));
    } else if (const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(erweiterung)) {
        for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap())
            for (const Veranlagungszeitraum& vz : vzs)
                streiche(suchindex_->finde(erweiterung->getTyp(), ua, vz.getJahr()));
    }
}

/// Allocates nothing: an entry that stayed would dangle.
void OrvoErweiterungsManager::streiche(const Registerfund* fund) {
    if (!fund)
        return;
    if (registerBeobachter)
        registerBeobachter->entfernt(*fund->schluessel, *fund->erweiterung);
    loesche(*fund->schluessel);
}

void OrvoErweiterungsManager::loesche(const ErweiterungsSchluessel& schluessel) {
    const auto eintrag = registrierteErweiterungen_.find(schluessel);
    suchindex_->streiche(schluessel);
    registrierteErweiterungen_.erase(eintrag);
}

/// The one look-up: the entry of the year, else the period-independent one, else null.
const Registerfund* OrvoErweiterungsManager::suche(tag_erweiterung_typ typ, const Unterfallart& ua,
                                                   const Veranlagungszeitraum& vz) const noexcept {
    const Registerfund* const fund = suchindex_->finde(typ, ua, vz.getJahr());
    return fund ? fund : suchindex_->finde(typ, ua, kOhneJahr);
}

/// The same for the kind of a class; null too for an extension of another class.
template <class Klasse>
Klasse* OrvoErweiterungsManager::sucheAls(const Unterfallart& ua, const Veranlagungszeitraum& vz) const {
    const Registerfund* const fund = suche(kArt<Klasse>, ua, vz);
    return fund ? dynamic_cast<Klasse*>(fund->erweiterung) : nullptr;
}

OrvoValidierungsServiceErweiterung*
OrvoErweiterungsManager::findeValidierungsServiceErweiterung(const Unterfallart& ua,
                                                             const Veranlagungszeitraum& vz) const {
    // By contract both lines come before the search, and only this look-up has any.
    Spur(log_, "OrvoErweiterungsManager::findeValidierungsServiceErweiterung").ende();
    return sucheAls<OrvoValidierungsServiceErweiterung>(ua, vz);
}

OrvoFeldInfoDatenServiceErweiterung*
OrvoErweiterungsManager::findeFeldInfoDatenServiceErweiterung(const Unterfallart& ua,
                                                              const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoFeldInfoDatenServiceErweiterung>(ua, vz);
}

OrvoFTDatenServiceErweiterung*
OrvoErweiterungsManager::findeFehlertextDatenServiceErweiterung(const Unterfallart& ua,
                                                                const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoFTDatenServiceErweiterung>(ua, vz);
}

OrvoXPathMappingServiceErweiterung*
OrvoErweiterungsManager::findeXPathMappingServiceErweiterung(const Unterfallart& ua,
                                                             const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoXPathMappingServiceErweiterung>(ua, vz);
}

OrvoDatensatzReaderErweiterung*
OrvoErweiterungsManager::findeDatensatzReaderServiceErweiterung(const Unterfallart& ua,
                                                                const Veranlagungszeitraum& vz) const {
    return sucheAls<OrvoDatensatzReaderErweiterung>(ua, vz);
}

OrvoFADatenServiceErweiterung* OrvoErweiterungsManager::findeFADatenServiceErweiterung() const {
    const ErweiterungsSchluessel schluessel = finanzamtsSchluessel("YYYY");
    return sucheAls<OrvoFADatenServiceErweiterung>(schluessel.getUnterfallart(),
                                                   schluessel.getVeranlagungszeitraum());
}

bool OrvoErweiterungsManager::istUnterfallartUndJahrUnterstuetzt(const tag_erweiterung_typ& typ,
                                                                 const Unterfallart& ua,
                                                                 const Veranlagungszeitraum& vz) const {
    const Spur spur(log_, "OrvoErweiterungsManager::istUnterfallartUndJahrUnterstuetzt");
    const bool unterstuetzt = suche(typ, ua, vz) != nullptr;
    spur.ende();
    return unterstuetzt;
}

RegisterAuskunft OrvoErweiterungsManager::schlageNach(tag_erweiterung_typ typ, const Unterfallart& ua,
                                                      const Veranlagungszeitraum& vz) const {
    const Registerfund* const fund = suche(typ, ua, vz);
    if (!fund)
        return {};
    const Veranlagungszeitraum& gefunden = fund->schluessel->getVeranlagungszeitraum();
    const auto treffer = gefunden == vz                       ? RegisterAuskunft::GENAU
                         : gefunden.getJahr() == vz.getJahr() ? RegisterAuskunft::GLEICHES_JAHR
                                                              : RegisterAuskunft::UNABHAENGIG;
    return {treffer, fund->schluessel, fund->erweiterung};
}

RegisterBeobachter* OrvoErweiterungsManager::setRegisterBeobachter(RegisterBeobachter* beobachter) {
    return std::exchange(registerBeobachter, beobachter);
}

std::list<OrvoErweiterung*> OrvoErweiterungsManager::getRegistrierteErweiterungen() const {
    return sammle<OrvoErweiterung>(registrierteErweiterungen_, log_,
                                   "OrvoErweiterungsManager::getRegistrierteErweiterungen");
}

std::list<OrvoValidierungsServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteValidierungsServiceErweiterungen() const {
    return sammle<OrvoValidierungsServiceErweiterung>(
        registrierteErweiterungen_, log_,
        "OrvoErweiterungsManager::getRegistrierteValidierungsServiceErweiterungen");
}

std::list<OrvoFeldInfoDatenServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteFeldInfoDatenServiceErweiterungen() const {
    return sammle<OrvoFeldInfoDatenServiceErweiterung>(
        registrierteErweiterungen_, log_,
        "OrvoErweiterungsManager::getRegistrierteFeldInfoDatenServiceErweiterungen");
}

std::list<OrvoFTDatenServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteFehlertextDatenServiceErweiterungen() const {
    return sammle<OrvoFTDatenServiceErweiterung>(
        registrierteErweiterungen_, log_,
        "OrvoErweiterungsManager::getRegistrierteFehlertextDatenServiceErweiterungen");
}

std::list<OrvoFADatenServiceErweiterung*>
OrvoErweiterungsManager::getRegistrierteFinanzamtsDatenErweiterungen() const {
    return sammle<OrvoFADatenServiceErweiterung>(
        registrierteErweiterungen_, log_,
        "OrvoErweiterungsManager::getRegistrierteFinanzamtsDatenErweiterungen");
}

bool OrvoErweiterungsManager::checkAbhaengigkeiten() { return true; }

std::ostream& OrvoErweiterungsManager::dump(std::ostream& out) const {
    return out << kUeberschrift << std::endl;
}

void OrvoErweiterungsManager::dump(Logger* logger) const {
    Log(logger).info([] { return std::string(kUeberschrift) + "\n"; });
}
