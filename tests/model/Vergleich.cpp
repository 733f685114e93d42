// How a run compares the libraries with the model.

#include "Lauf.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/SharedLib.h>

#include "support/Mitschnitt.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace modell {

namespace {

Veranlagungszeitraum zeitraum(const std::string& text) {
    if (text == "immer")
        return Veranlagungszeitraum();
    constexpr const char* kMuster = "YYYYMMTT";
    return Veranlagungszeitraum::parse(text, std::string(kMuster, text.size()).c_str());
}

OrvoErweiterung* finde(const OrvoErweiterungsManager& registry, int typ, const Unterfallart& ua,
                       const Veranlagungszeitraum& vz) {
    switch (typ) {
    case ORVO_CHECK_SERVICE_ERWEITERUNG:
        return registry.findeValidierungsServiceErweiterung(ua, vz);
    case ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG:
        return registry.findeFeldInfoDatenServiceErweiterung(ua, vz);
    case ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG:
        return registry.findeFehlertextDatenServiceErweiterung(ua, vz);
    case ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG:
        return registry.findeXPathMappingServiceErweiterung(ua, vz);
    case ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG:
        return registry.findeDatensatzReaderServiceErweiterung(ua, vz);
    default:
        return nullptr;
    }
}

template <class Liste>
std::multiset<OrvoErweiterung*> menge(const Liste& liste) {
    return {liste.begin(), liste.end()};
}

std::ostream& operator<<(std::ostream& out, const std::multiset<OrvoErweiterung*>& menge) {
    return out << menge.size() << " Erweiterungen";
}

std::ostream& operator<<(std::ostream& out, const std::map<const void*, int>& instanzen) {
    for (const auto& [instanz, anzahl] : instanzen)
        out << instanz << " x " << anzahl << " ";
    return out;
}

} // namespace

template <class T>
void Lauf::gleich(const char* was, const T& soll, const T& ist) {
    if (unterschied_ || soll == ist)
        return;
    std::ostringstream text;
    text << was << ": " << ist << " statt " << soll;
    unterschied_ = text.str();
}
template void Lauf::gleich(const char*, const bool&, const bool&);

void Lauf::vergleiche() {
    const auto& soll = modell_.plugins();
    const auto& ist = manager_->getRegistriertePlugins();
    gleich("Anzahl der Plugins", soll.size(), ist.size());
    auto naechstes = ist.begin();
    for (std::size_t i = 0; i < soll.size() && !unterschied_; ++i)
        vergleichePlugin(*soll[i], dynamic_cast<const OrvoPluginV1&>(**naechstes++));
    if (!unterschied_)
        vergleicheListen();
}

void Lauf::vergleichePlugin(const Plugin& soll, const OrvoPluginV1& ist) {
    gleich("Pfad", soll.pfad, ist.getSharedLib()->getName());
    gleich("beschrieben", eingebettet_, ist.istBeschrieben());
    gleich("Version", soll.beschreibung.version, ist.getProduktVersion());
    gleich("Nutzer", soll.nutzer, static_cast<int>(ist.getUseCount()));
    gleich("Status", soll.status, static_cast<int>(ist.getStatus()));
    gleich("resident", soll.beschreibung.resident, ist.isResident());
    gleich("offen", soll.offen, ist.getSharedLib()->isLoaded());
    gleich("Erweiterungen", soll.erweiterungen.size(), ist.listeErweiterungen().size());
    for (std::size_t i = 0; i < soll.erweiterungen.size() && !unterschied_; ++i) {
        const auto& erweiterung = dynamic_cast<const OrvoServiceErweiterung&>(*ist.listeErweiterungen()[i]);
        gleich("Art", soll.erweiterungen[i]->typ, static_cast<int>(erweiterung.getTyp()));
        gleich("ausgegeben", soll.erweiterungen[i]->ausgegeben,
               static_cast<int>(erweiterung.getAusgegeben()));
        const auto& instanzen = erweiterung.getInstanzen();
        gleich("Instanzen", soll.erweiterungen[i]->instanzen,
               std::map<const void*, int>(instanzen.begin(), instanzen.end()));
    }
    if (unterschied_)
        unterschied_ = "Plugin " + soll.pfad + ": " + *unterschied_;
}

void Lauf::vergleicheListen() {
    std::multiset<OrvoErweiterung*> alle;
    std::map<int, std::multiset<OrvoErweiterung*>> nachTyp;
    for (const Erweiterung* const erweiterung : modell_.registriert()) {
        alle.insert(echte(erweiterung));
        nachTyp[erweiterung->typ].insert(echte(erweiterung));
    }
    gleich("alle registrierten", alle, menge(registry_->getRegistrierteErweiterungen()));
    if (unterschied_)
        return;
    gleich("registrierte Art 1", nachTyp[1],
           menge(registry_->getRegistrierteValidierungsServiceErweiterungen()));
    gleich("registrierte Art 2", nachTyp[2],
           menge(registry_->getRegistrierteFeldInfoDatenServiceErweiterungen()));
    gleich("registrierte Art 3", nachTyp[3],
           menge(registry_->getRegistrierteFehlertextDatenServiceErweiterungen()));
    gleich("registrierte Art 4", nachTyp[4], menge(registry_->getRegistrierteFinanzamtsDatenErweiterungen()));
    OrvoErweiterung* const amt = registry_->findeFADatenServiceErweiterung();
    gleich("Finanzamtsdaten", echte(modell_.findeFinanzamt()), amt);
}

void Lauf::vergleicheSuche(const Frage& frage) {
    if (unterschied_ || frage.zeitraum.empty())
        return;
    const Unterfallart ua(frage.ua.c_str());
    const Veranlagungszeitraum vz = zeitraum(frage.zeitraum);
    const auto typ = static_cast<tag_erweiterung_typ>(frage.typ);
    gleich("unterstuetzt", modell_.istUnterstuetzt(frage),
           registry_->istUnterfallartUndJahrUnterstuetzt(typ, ua, vz));
    if (typ != ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG)
        gleich("gefunden", echte(modell_.finde(frage)), finde(*registry_, typ, ua, vz));
    if (unterschied_)
        unterschied_ = "Suche " + frage.text() + ": " + *unterschied_;
}

void Lauf::vergleicheAlleSuchen() {
    for (int typ = 0; typ <= 7; ++typ)
        for (const char* const ua : {"10", "0010", "12", "0", "LSTB", "lstb", "zmdo", "NOTSET", "10A", "13"})
            for (const char* const zeitraum : {"2008", "200901", "2010", "2000", "1998", "2011", "immer"})
                vergleicheSuche({typ, ua, zeitraum});
}

void Lauf::vergleicheKarte() {
    if (unterschied_)
        return;
    std::ifstream datei("/proc/self/maps");
    const std::string karte{std::istreambuf_iterator<char>(datei), {}};
    const auto& plugins = modell_.plugins();
    for (const std::string& pfad : aufbau_.dateien()) {
        const bool offen = std::any_of(plugins.begin(), plugins.end(), [&](const auto& plugin) {
            return plugin->offen && plugin->pfad == pfad;
        });
        gleich(("eingeblendet " + pfad).c_str(), offen, karte.find(pfad + "\n") != std::string::npos);
    }
}

void Lauf::vergleicheProtokoll() {
    if (!protokoll_)
        return;
    gleich("Meldungen doppelter Schluessel", modell_.doppelte,
           protokoll_->anzahlMit("|Es existiert schon eine "));
    gleich("Meldungen unbekannter Services", modell_.unbekannte,
           protokoll_->anzahl("W Unbekannte Serviceinstanz. Ignoriere sie."));
}

} // namespace modell
