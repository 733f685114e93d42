#include "Lauf.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "TestPlugins.h"
#include "support/Beschriftung.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::ObjectLifetimeManager;

namespace modell {

namespace {

constexpr std::size_t kHoechstzahl = 30; // bounds how often everything is loaded again

/// Services that are not deleted any more. The list keeps them from being reported as leaks.
auto& verwaiste = *new std::vector<const void*>;

/// Services in use go with their plugin and are not touched any more.
void lassVerwaisen(const Plugin& plugin) {
    for (const auto& erweiterung : plugin.erweiterungen)
        for (const auto& [service, anzahl] : erweiterung->instanzen)
            verwaiste.push_back(service);
}

/// The service as the extension's own class returns it; null if the object is of another class.
::Service* holeTypisiert(OrvoErweiterung* erweiterung) {
    if (auto* const check = dynamic_cast<OrvoValidierungsServiceErweiterung*>(erweiterung))
        return check->holeService();
    if (auto* const xpath = dynamic_cast<OrvoXPathMappingServiceErweiterung*>(erweiterung))
        return xpath->holeService();
    if (auto* const reader = dynamic_cast<OrvoDatensatzReaderErweiterung*>(erweiterung))
        return reader->holeService();
    return dynamic_cast<OrvoServiceErweiterung&>(*erweiterung).holeService();
}

void schreibe(const std::string& datei, const std::string& text) {
    std::filesystem::remove(datei); // overwriting a file waits for the disk on some file systems
    std::ofstream(datei) << text;
}

} // namespace

Aufbau::Aufbau() {
    homes_.emplace_back("", std::vector<std::size_t>());
    homes_.emplace_back(verzeichnis_.legeAn("leer"), std::vector<std::size_t>());
    const auto erstes = lege({"a/plugins/liba.dylib", "a/plugins/libb.dylib", "a/plugins/libc.dylib",
                              "a/plugins/unter/libd.dylib"});
    homes_.emplace_back(verzeichnis_.pfad("a"), erstes);
    const auto zweites = lege({"b/plugins/liba.dylib", "b/plugins/libe.dylib"});
    homes_.emplace_back(verzeichnis_.pfad("b"), zweites);
    lege({"lose/libf.dylib", "lose/libg.dylib", "lose/libh.dylib"});
    befragte_ = verzeichnis_.kopiere(test_plugins::DescribedByFile, "befragte.dylib");
}

std::vector<std::size_t> Aufbau::lege(const std::vector<std::string>& namen) {
    std::vector<std::size_t> nummern;
    for (const std::string& name : namen) {
        nummern.push_back(dateien_.size());
        dateien_.push_back(verzeichnis_.kopiere(test_plugins::DescribedByFile, name));
        texte_.emplace_back();
        eingebettete_.emplace_back("not filled yet");
    }
    return nummern;
}

void Aufbau::beschreibe(std::size_t datei, const std::string& text, bool eingebettet) {
    if (texte_[datei] != text)
        schreibe(dateien_[datei] + ".txt", text);
    texte_[datei] = text;
    if (eingebettet && eingebettete_[datei] != text)
        bette(datei, text);
}

void Aufbau::bette(std::size_t datei, const std::string& text) {
    const auto [eintrag, istNeu] = beschreibungen_.try_emplace(text);
    if (istNeu) {
        schreibe(befragte_ + ".txt", text);
        try {
            eintrag->second = erfragteBeschreibung(befragte_);
        } catch (const PluginInitException&) { // it refuses; so the file has no description
        }
    }
    trageEin(dateien_[datei], eintrag->second);
    eingebettete_[datei] = text;
}

Lauf::Lauf(Aufbau& aufbau, bool eingebettet, const Mitschnitt* protokoll)
    : aufbau_(aufbau),
      eingebettet_(eingebettet),
      protokoll_(protokoll),
      beschreibungen_(aufbau.dateien().size()) {
    for (std::size_t datei = 0; datei < beschreibungen_.size(); ++datei)
        aufbau_.beschreibe(datei, beschreibungen_[datei].text(), eingebettet_);
    Einstellungen().setze("basis.plugin_beschreibungen", eingebettet_ ? "eingebettet" : "");
    Einstellungen().setze("basis.home_dir", aufbau_.home(home_));
    beginne();
}

Lauf::~Lauf() {
    entladeAlle();
    ObjectLifetimeManager::instance().destroyAll();
    Einstellungen().setze("basis.home_dir", "");
    Einstellungen().setze("basis.plugin_beschreibungen", "");
}

std::optional<std::string> Lauf::fuehreAus(const Folge& folge) {
    vergleiche();
    for (std::size_t i = 0; i < folge.size() && !unterschied_; ++i) {
        fuehreAus(folge[i]);
        vergleiche();
        vergleicheSuche(folge[i].frage);
    }
    vergleicheAlleSuchen();
    vergleicheKarte();
    vergleicheProtokoll();
    return unterschied_;
}

void Lauf::fuehreAus(const Schritt& schritt) {
    const auto& plugins = modell_.plugins();
    const std::size_t wen = plugins.empty() ? 0 : schritt.wen % plugins.size();
    switch (schritt.art) {
    case Schritt::Art::BESCHREIBE:
        beschreibungen_[schritt.wen] = schritt.beschreibung;
        return aufbau_.beschreibe(schritt.wen, schritt.beschreibung.text(), eingebettet_);
    case Schritt::Art::HOME:
        return setzeHome(schritt.wen);
    case Schritt::Art::LADE_DATEI:
        if (plugins.size() < kHoechstzahl) {
            const bool soll = modell_.lade(aufbau_.dateien()[schritt.wen], beschreibungen_[schritt.wen]);
            gleich("geladen", soll, manager_->ladePlugin(aufbau_.dateien()[schritt.wen]));
        }
        return;
    case Schritt::Art::LADE_ALLE:
        if (plugins.size() < kHoechstzahl) {
            ladeAlle();
            manager_->ladePlugins();
        }
        return;
    case Schritt::Art::ENTLADE:
        if (!plugins.empty())
            entlade(wen);
        return;
    case Schritt::Art::ENTLADE_ALLE:
        entladeAlle();
        manager_->entladePlugins();
        return;
    case Schritt::Art::RELOAD:
        entladeAlle();
        ladeAlle();
        return manager_->reload();
    case Schritt::Art::NEUSTART:
        entladeAlle();
        ObjectLifetimeManager::instance().destroyAll();
        return beginne();
    case Schritt::Art::SUCHE:
        return; // a look-up follows every step
    case Schritt::Art::HOLE:
        return hole(modell_.finde(schritt.frage));
    case Schritt::Art::HOLE_VON:
        return hole(waehle(schritt.wen, schritt.was));
    case Schritt::Art::GIB:
        if (!ausgaben_.empty()) {
            const auto ausgabe =
                ausgaben_.begin() + static_cast<std::ptrdiff_t>(schritt.wen % ausgaben_.size());
            const Ausgabe zurueck = *ausgabe;
            ausgaben_.erase(ausgabe);
            zurueckgegebene_.push_back(zurueck);
            gib(zurueck.erweiterung, zurueck.service);
        }
        return;
    case Schritt::Art::GIB_NOCHMAL:
        if (!zurueckgegebene_.empty()) {
            const Ausgabe& ausgabe = zurueckgegebene_[schritt.wen % zurueckgegebene_.size()];
            gib(ausgabe.erweiterung, ausgabe.service);
        }
        return;
    case Schritt::Art::GIB_ANDEREM:
        if (!ausgaben_.empty()) {
            const Ausgabe& ausgabe = ausgaben_[schritt.wen % ausgaben_.size()];
            const auto& andere = ausgabe.erweiterung->plugin->erweiterungen;
            gib(andere[schritt.was % andere.size()].get(), ausgabe.service);
        }
        return;
    case Schritt::Art::NUTZE:
        if (!plugins.empty()) {
            Modell::nutze(*plugins[wen]);
            echtes(*plugins[wen]).notifyUse();
        }
        return;
    case Schritt::Art::LASS:
        if (!plugins.empty() && Modell::darfLassen(*plugins[wen])) {
            Modell::lass(*plugins[wen]);
            echtes(*plugins[wen]).release();
        }
        return;
    }
}

void Lauf::beginne() {
    registry_ = OrvoErweiterungsManager::getInstanz();
    manager_ = OrvoPluginManager::getInstanz(nullptr);
    ladeAlle();
}

void Lauf::setzeHome(std::size_t home) {
    if (home != home_) {
        entladeAlle();
        home_ = home;
        ladeAlle();
    }
    Einstellungen().setze("basis.home_dir", aufbau_.home(home));
}

void Lauf::ladeAlle() {
    for (const std::size_t datei : aufbau_.dateienIn(home_))
        modell_.lade(aufbau_.dateien()[datei], beschreibungen_[datei]);
}

/// Unloads a single plugin: takes it off the manager's list and tells the observers.
void Lauf::entlade(std::size_t welches) {
    auto& liste = manager_->getRegistriertePlugins();
    const auto eintrag = std::next(liste.begin(), static_cast<std::ptrdiff_t>(welches));
    const std::unique_ptr<OrvoPlugin> plugin(*eintrag);
    liste.erase(eintrag);
    manager_->notifyUnload(plugin.get());

    const Plugin* const gehendes = modell_.plugins()[welches].get();
    const auto gehtMit = [&](const Ausgabe& ausgabe) { return ausgabe.erweiterung->plugin == gehendes; };
    std::erase_if(ausgaben_, gehtMit);
    std::erase_if(zurueckgegebene_, gehtMit);
    lassVerwaisen(*gehendes);
    modell_.entlade(welches);
}

/// In the model only.
void Lauf::entladeAlle() {
    for (const auto& plugin : modell_.plugins())
        lassVerwaisen(*plugin);
    ausgaben_.clear();
    zurueckgegebene_.clear();
    modell_.entladeAlle();
}

Erweiterung* Lauf::waehle(std::size_t plugin, std::size_t erweiterung) const {
    const auto& plugins = modell_.plugins();
    if (plugins.empty())
        return nullptr;
    const auto& erweiterungen = plugins[plugin % plugins.size()]->erweiterungen;
    return erweiterungen.empty() ? nullptr : erweiterungen[erweiterung % erweiterungen.size()].get();
}

void Lauf::hole(Erweiterung* erweiterung) {
    if (!erweiterung)
        return;
    const Service soll = Modell::hole(*erweiterung);
    OrvoErweiterung* const echteErweiterung = echte(erweiterung);
    ::Service* service = holeTypisiert(echteErweiterung);
    gleich("Service", soll == Service::PASSENDER, service != nullptr);
    if (soll == Service::KEINER || unterschied_)
        return;
    if (!service) // the object of the wrong class is an instance too
        for (const auto& [instanz, anzahl] :
             dynamic_cast<OrvoServiceErweiterung&>(*echteErweiterung).getInstanzen())
            if (const auto bekannte = erweiterung->instanzen.find(instanz);
                bekannte == erweiterung->instanzen.end() || bekannte->second != anzahl)
                service = instanz;
    Modell::merke(*erweiterung, service);
    ausgaben_.push_back({erweiterung, service});
    if (!erweiterung->plugin->beschreibung.loeschen)
        verwaiste.push_back(service);
}

void Lauf::gib(Erweiterung* erweiterung, ::Service* service) {
    auto& echteErweiterung = dynamic_cast<OrvoServiceErweiterung&>(*echte(erweiterung));
    modell_.gib(*erweiterung, service);
    echteErweiterung.release(service);
}

OrvoPluginV1& Lauf::echtes(const Plugin& plugin) const {
    const auto& plugins = modell_.plugins();
    const auto stelle =
        std::find_if(plugins.begin(), plugins.end(), [&](const auto& p) { return p.get() == &plugin; });
    const auto& liste = manager_->getRegistriertePlugins();
    return dynamic_cast<OrvoPluginV1&>(**std::next(liste.begin(), stelle - plugins.begin()));
}

OrvoErweiterung* Lauf::echte(const Erweiterung* erweiterung) const {
    if (!erweiterung)
        return nullptr;
    const auto& nachbarn = erweiterung->plugin->erweiterungen;
    const auto stelle =
        std::find_if(nachbarn.begin(), nachbarn.end(), [&](const auto& e) { return e.get() == erweiterung; });
    return echtes(*erweiterung->plugin)
        .listeErweiterungen()
        .at(static_cast<std::size_t>(stelle - nachbarn.begin()));
}

} // namespace modell
