#include "kern/Bestandsermittlung.h"

#include "datei/Bibliotheksbild.h"
#include "kern/Anzeige.h"
#include "kern/Kindprozess.h"
#include "kern/Nachfrage.h"
#include "kern/Ordnung.h"
#include "kern/Protokoll.h"
#include "kern/Ursachen.h"

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/ErweiterungsSchluessel.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/StringUtil.h>

#include <dirent.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <memory>
#include <numeric>
#include <tuple>
#include <unordered_map>

using namespace orvo::orvoutil;

namespace werkzeug {

namespace {

constexpr char kHomeDir[] = "basis.home_dir";
constexpr char kResidente[] = "basis.resident_plugins";
constexpr char kBeschreibungen[] = "basis.plugin_beschreibungen";
/// A home directory that cannot have entries.
constexpr char kNirgends[] = "/dev/null";

// --- The library's values as facts ---

ZeitraumFakt alsFakt(const Veranlagungszeitraum& vz) {
    return {vz.getTyp(), vz.getJahr(), vz.getZeitraum(), vz.getTag(), vz.getQuartal(), vz.getText()};
}

UnterfallartFakt alsFakt(const Unterfallart& ua) { return {ua.getNummer(), ua.getName()}; }

template <class Liste>
std::vector<std::int32_t> typenVon(const Liste& liste) {
    std::vector<std::int32_t> typen;
    for (const auto& eintrag : liste)
        typen.push_back(eintrag.getTyp());
    return typen;
}

ErweiterungFakt alsFakt(const OrvoErweiterung& erweiterung) {
    ErweiterungFakt fakt;
    fakt.typ = erweiterung.getTyp();
    fakt.typName = erweiterungTypName(erweiterung.getTyp());
    for (int flag = FLAG_SERVICE_LOESCHEN; flag <= FLAG_RESERVIERT_4; ++flag)
        if (erweiterung.istFlagGesetzt(static_cast<orvo_erweiterung_flag_t>(flag)))
            fakt.flags.push_back(flag);
    fakt.abhaengigkeiten = typenVon(erweiterung.getAbhaengigkeiten());
    if (const auto* const service = dynamic_cast<const OrvoServiceErweiterung*>(&erweiterung))
        fakt.factory = service->getServiceFactoryName();
    if (const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(&erweiterung)) {
        fakt.bedientUnterfallarten = true;
        for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap()) {
            auto& [unterfallart, zeitraeume] = fakt.angebot.emplace_back();
            unterfallart = alsFakt(ua);
            for (const Veranlagungszeitraum& vz : vzs)
                zeitraeume.push_back(alsFakt(vz));
        }
    }
    if (const auto* const pruefung = dynamic_cast<const OrvoValidierungsServiceErweiterung*>(&erweiterung)) {
        fakt.vorbedingungen = typenVon(pruefung->getVorbedingungen());
        fakt.nachbedingungen = typenVon(pruefung->getNachbedingungen());
    } else if (const auto* const leser = dynamic_cast<const OrvoDatensatzReaderErweiterung*>(&erweiterung)) {
        fakt.vorbedingungen = typenVon(leser->getVorbedingungen());
        fakt.nachbedingungen = typenVon(leser->getNachbedingungen());
    }
    return fakt;
}

/// Reports progress once every so many steps: the evaluation runs no plugin code and has no time limit.
class Lebenszeichen {
public:
    explicit Lebenszeichen(const std::function<void(const std::string&)>& bevor) : bevor_(bevor) {}

    void operator()() {
        if (++schritte_ % kJeLebenszeichen == 0)
            bevor_({});
    }

private:
    static constexpr std::size_t kJeLebenszeichen = 1024;
    const std::function<void(const std::string&)>& bevor_;
    std::size_t schritte_ = 0;
};

PluginFakt alsFakt(const OrvoPlugin& plugin, Lebenszeichen& lebenszeichen) {
    PluginFakt fakt;
    fakt.typ = plugin.getTyp();
    fakt.status = plugin.getStatus();
    fakt.produktVersion = plugin.getProduktVersion();
    fakt.fileVersion = plugin.getFileVersion();
    fakt.resident = plugin.isResident();
    fakt.onLoad = plugin.getOnLoadFuncName();
    fakt.onUnload = plugin.getOnUnloadFuncName();
    for (const OrvoPlugin::LabelEintrag& label : plugin.getLabels()) {
        fakt.labels.push_back({label.zahl1, label.text1, alsFakt(label.zeitraum), label.text2, label.zahl2,
                               label.text3, label.text4});
        lebenszeichen();
    }
    if (const auto* const v1 = dynamic_cast<const OrvoPluginV1*>(&plugin))
        for (const OrvoErweiterung* const erweiterung : v1->listeErweiterungen()) {
            fakt.erweiterungen.push_back(alsFakt(*erweiterung));
            lebenszeichen();
        }
    return fakt;
}

// --- What the manager and the registry report ---

/// A file found by the walk, until the rows are sorted.
struct Fund {
    DateiFakt fakt;
    const OrvoPlugin* plugin = nullptr;
};

std::string verzeichnisVon(const std::string& pfad) {
    return pfad.substr(0, std::max<std::size_t>(pfad.rfind('/'), 1));
}

/// Lists all names in a directory. Returns: 0, or the errno why it cannot be read.
int liesNamen(const std::string& verzeichnis, std::vector<std::string>& namen) {
    struct Schliesser {
        void operator()(DIR* offenes) const { closedir(offenes); }
    };
    const std::unique_ptr<DIR, Schliesser> offen(opendir(verzeichnis.c_str()));
    if (!offen)
        return errno;
    while (const dirent* const eintrag = readdir(offen.get()))
        if (const std::string_view name = eintrag->d_name; name != "." && name != "..")
            namen.emplace_back(name);
    return 0;
}

class Ladenotizen : public LadeBeobachter {
public:
    /// Parameters: with `nurBeschriebene`, files without a description are not loaded.
    Ladenotizen(const Auftrag& auftrag, const std::set<std::string>& ueberspringe, bool nurBeschriebene,
                const std::function<void(const std::string&)>& bevor)
        : auftrag_(auftrag), ueberspringe_(ueberspringe), nurBeschriebene_(nurBeschriebene), bevor_(bevor) {}

    void betrittVerzeichnis(const std::string& verzeichnis) noexcept override {
        const int fehler = liesNamen(verzeichnis, eintraege.emplace_back());
        verzeichnisse.push_back({verzeichnis, fehler});
    }
    void findetDatei(const std::string&, const std::string& name, Dateiart art,
                     const std::string& pfad) noexcept override {
        gesehen.insert(verzeichnisse.back().pfad + "/" + name);
        if (auftrag_.ohne.contains(pfad))
            return;
        DateiFakt& datei = funde.emplace_back().fakt;
        datei.verzeichnis = static_cast<std::uint32_t>(verzeichnisse.size() - 1);
        datei.name = name;
        datei.pfad = pfad;
        if (art == GESPERRT) {
            datei.zustand = Zustand::GESPERRT;
            datei.grund = Grund::SPERRLISTE;
        } else if (art == UEBERGANGEN) {
            datei.grund = Grund::KEINE_ENDUNG;
        }
    }
    bool ladeDatei(const std::string& pfad) noexcept override {
        if (funde.empty() && pfad == auftrag_.einzeln) { // no walk has reported it
            DateiFakt& datei = funde.emplace_back().fakt;
            verzeichnisse.push_back({verzeichnisVon(pfad), 0});
            datei.name = getOnlyFilenameOfFullFilename(pfad);
            datei.pfad = pfad;
        }
        if (auftrag_.ohne.contains(pfad) || ueberspringe_.contains(pfad) ||
            (auftrag_.nur && !auftrag_.nur->contains(pfad)) || (nurBeschriebene_ && !istBeschrieben(pfad)))
            return false;
        achteAufGrenze();
        letzter_ = pfad;
        bevor_(pfad);
        return true;
    }
    void pluginGeladen(const std::string&, const OrvoPlugin& plugin) noexcept override {
        funde.back().plugin = &plugin;
        funde.back().fakt.zustand = Zustand::GELADEN;
    }
    void dateiAbgelehnt(const std::string&, orvo_plugin_ablehnung_t schritt,
                        const char* grund) noexcept override {
        DateiFakt& datei = funde.back().fakt;
        datei.zustand = Zustand::ABGELEHNT;
        datei.grund = static_cast<Grund>(schritt);
        datei.meldung = grund;
        datei.ursache = sucheUrsache(schritt, datei.pfad, datei.name, datei.meldung);
        achteAufGrenze();
        if (datei.ursache == Ursache::DESKRIPTOREN && !begrenzer_.empty())
            datei.meldung = einzeilig(datei.meldung) + "; " +
                            satz("the limit of open files was lowered by {1}", einzeilig(begrenzer_));
        if (schritt == ABLEHNUNG_BEOBACHTER) // the plugin is loaded nevertheless, as the last one
            funde.back().plugin = OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().back();
    }

    std::vector<VerzeichnisFakt> verzeichnisse;
    /// The entries of each. Read before plugin code runs, which may use up the file descriptors.
    std::vector<std::vector<std::string>> eintraege;
    std::vector<Fund> funde;
    std::set<std::string> gesehen; ///< full paths of all files that the manager reported

private:
    /// Notes it about a file that is not.
    bool istBeschrieben(const std::string& pfad) {
        const Beschreibungsfund fund = liesBeschreibung(pfad);
        if (fund.stand == Beschreibungsfund::GEFUNDEN)
            return true;
        DateiFakt& datei = funde.back().fakt;
        datei.zustand = Zustand::UNBESCHRIEBEN;
        datei.grund = Grund::NICHT_BESCHRIEBEN;
        datei.meldung = fund.grund;
        datei.ursache = fund.stand == Beschreibungsfund::ABGELEHNT ? Ursache::FALSCHE_BESCHREIBUNG
                                                                   : Ursache::OHNE_BESCHREIBUNG;
        return false;
    }

    /// Notes which plugin lowers the limit of open files: those after it are refused for want of descriptors.
    void achteAufGrenze() {
        rlimit jetzt{};
        getrlimit(RLIMIT_NOFILE, &jetzt);
        if (jetzt.rlim_cur < grenze_ && !letzter_.empty())
            begrenzer_ = getOnlyFilenameOfFullFilename(letzter_);
        grenze_ = jetzt.rlim_cur;
    }

    std::string letzter_;   ///< file whose code ran
    std::string begrenzer_; ///< empty while the limit has not been lowered
    rlim_t grenze_ = RLIM_INFINITY;
    const Auftrag& auftrag_;
    const std::set<std::string>& ueberspringe_;
    const bool nurBeschriebene_;
    const std::function<void(const std::string&)>& bevor_;
};

class Registernotizen : public RegisterBeobachter {
public:
    struct Ereignis {
        SchluesselEreignis::Art art;
        const OrvoErweiterung* wer;
        const OrvoErweiterung* gegen;
        std::int32_t regel;
        ZeitraumFakt zeitraum;
    };
    struct Eintrag {
        const OrvoErweiterung* inhaber = nullptr;
        std::vector<Ereignis> ereignisse;
    };

    void eingetragen(const ErweiterungsSchluessel& schluessel,
                     const OrvoErweiterung& erweiterung) noexcept override {
        notiere(schluessel, {SchluesselEreignis::Art::EINGETRAGEN, &erweiterung, nullptr, 0, {}}, true);
    }
    void verdraengt(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& neue,
                    const OrvoErweiterung& bisherige, orvo_register_regel_t regel) noexcept override {
        notiere(schluessel, {SchluesselEreignis::Art::VERDRAENGT, &neue, &bisherige, regel, {}}, true);
    }
    void abgewiesen(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& neue,
                    const OrvoErweiterung& bestehende, orvo_register_regel_t regel) noexcept override {
        notiere(schluessel, {SchluesselEreignis::Art::ABGEWIESEN, &neue, &bestehende, regel, {}}, false);
    }
    void uebergangen(const OrvoErweiterung& erweiterung) noexcept override {
        uebergangene.insert(&erweiterung);
    }
    void entfernt(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung&) noexcept override {
        eintraege.erase(schluessel);
    }

    std::unordered_map<ErweiterungsSchluessel, Eintrag, ErweiterungsSchluessel> eintraege;
    std::set<const OrvoErweiterung*> uebergangene;

private:
    void notiere(const ErweiterungsSchluessel& schluessel, Ereignis ereignis, bool gewonnen) {
        ereignis.zeitraum = alsFakt(schluessel.getVeranlagungszeitraum());
        Eintrag& eintrag = eintraege[schluessel];
        if (gewonnen)
            eintrag.inhaber = ereignis.wer;
        eintrag.ereignisse.push_back(std::move(ereignis));
    }
};

// --- Entries that the library skips silently ---

/// Why the walk did not visit a directory's entry; `KEINER` for a directory, which it did visit.
Grund grundFuerSchweigen(const std::string& pfad, const char* name) {
    struct stat eigenes;
    struct stat ziel;
    if (lstat(pfad.c_str(), &eigenes) != 0)
        return Grund::KEINE_DATEI;
    if (name[0] == '.')
        return Grund::VERSTECKT;
    if (S_ISDIR(eigenes.st_mode))
        return Grund::KEINER;
    if (stat(pfad.c_str(), &ziel) == 0) {
        if (S_ISDIR(ziel.st_mode))
            return Grund::VERZEICHNISLINK;
        if (S_ISREG(ziel.st_mode))
            return Grund::OHNE_PUNKT;
    }
    return Grund::KEINE_DATEI;
}

/// Adds a row for each entry of the directories that the manager did not report.
void ergaenze(Ladenotizen& notizen) {
    for (std::size_t i = 0; i < notizen.verzeichnisse.size(); ++i) {
        for (const std::string& name : notizen.eintraege[i]) {
            const std::string voll = notizen.verzeichnisse[i].pfad + "/" + name;
            if (notizen.gesehen.contains(voll))
                continue;
            const Grund grund = grundFuerSchweigen(voll, name.c_str());
            if (grund == Grund::KEINER)
                continue;
            DateiFakt& datei = notizen.funde.emplace_back().fakt;
            datei.verzeichnis = static_cast<std::uint32_t>(i);
            datei.name = name;
            datei.pfad = voll;
            datei.grund = grund;
        }
    }
}

/// Adds a row for each file to skip that no longer exists: its code has run, and ended the process.
void ergaenzeVerschwundene(Ladenotizen& notizen, const std::set<std::string>& ueberspringe) {
    for (const std::string& pfad : ueberspringe) {
        if (std::any_of(notizen.funde.begin(), notizen.funde.end(),
                        [&](const Fund& fund) { return fund.fakt.pfad == pfad; }))
            continue;
        const std::string wo = verzeichnisVon(pfad);
        const auto verzeichnis = std::find_if(notizen.verzeichnisse.begin(), notizen.verzeichnisse.end(),
                                              [&](const VerzeichnisFakt& v) { return v.pfad == wo; });
        const auto platz = verzeichnis - notizen.verzeichnisse.begin();
        if (verzeichnis == notizen.verzeichnisse.end())
            notizen.verzeichnisse.push_back({wo, 0});
        DateiFakt& datei = notizen.funde.emplace_back().fakt;
        datei.verzeichnis = static_cast<std::uint32_t>(platz);
        datei.name = getOnlyFilenameOfFullFilename(pfad);
        datei.pfad = pfad;
    }
}

// --- Putting the facts together ---

using Orte = std::unordered_map<const OrvoErweiterung*, ErweiterungsOrt>;

/// Adds the rows in their order. Returns: where each extension stands in them.
Orte uebernimmDateien(Bestand& bestand, Ladenotizen& laden, const Registernotizen& register_,
                      Lebenszeichen& lebenszeichen) {
    std::stable_sort(laden.funde.begin(), laden.funde.end(), [](const Fund& a, const Fund& b) {
        return std::tie(a.fakt.verzeichnis, a.fakt.name) < std::tie(b.fakt.verzeichnis, b.fakt.name);
    });
    Orte orte;
    bestand.verzeichnisse = std::move(laden.verzeichnisse);
    for (Fund& fund : laden.funde) {
        const auto platz = static_cast<std::uint32_t>(bestand.dateien.size());
        DateiFakt& datei = bestand.dateien.emplace_back(std::move(fund.fakt));
        if (!fund.plugin)
            continue;
        datei.plugin = alsFakt(*fund.plugin, lebenszeichen);
        const auto* const v1 = dynamic_cast<const OrvoPluginV1*>(fund.plugin);
        for (std::uint32_t i = 0; i < datei.plugin->erweiterungen.size(); ++i) {
            const OrvoErweiterung* const erweiterung = v1->listeErweiterungen()[i];
            datei.plugin->erweiterungen[i].uebergangen = register_.uebergangene.contains(erweiterung);
            orte[erweiterung] = {platz, i};
            lebenszeichen();
        }
    }
    return orte;
}

/// The keys of the facts, in their order.
using Schluesselreihe = std::vector<const ErweiterungsSchluessel*>;

Schluesselreihe uebernimmSchluessel(Bestand& bestand, const Registernotizen& register_, const Orte& orte,
                                    Lebenszeichen& lebenszeichen) {
    std::vector<std::pair<SchluesselFakt, const ErweiterungsSchluessel*>> gesammelt;
    for (const auto& [schluessel, eintrag] : register_.eintraege) {
        SchluesselFakt fakt;
        fakt.typ = schluessel.getTyp();
        fakt.typName = erweiterungTypName(schluessel.getTyp());
        fakt.unterfallart = alsFakt(schluessel.getUnterfallart());
        fakt.inhaber = orte.at(eintrag.inhaber);
        for (const Registernotizen::Ereignis& e : eintrag.ereignisse) {
            const ErweiterungsOrt wer = orte.at(e.wer);
            fakt.ereignisse.push_back({e.art, wer, e.gegen ? orte.at(e.gegen) : wer, e.regel, e.zeitraum});
            if (e.wer == eintrag.inhaber && e.art != SchluesselEreignis::Art::ABGEWIESEN)
                fakt.zeitraum = e.zeitraum;
            lebenszeichen();
        }
        gesammelt.emplace_back(std::move(fakt), &schluessel);
    }
    std::sort(gesammelt.begin(), gesammelt.end(), [&](const auto& a, const auto& b) {
        lebenszeichen();
        return schluesselrang(a.first) < schluesselrang(b.first);
    });
    Schluesselreihe reihe;
    for (auto& [fakt, schluessel] : gesammelt) {
        bestand.schluessel.push_back(std::move(fakt));
        reihe.push_back(schluessel);
        lebenszeichen();
    }
    return reihe;
}

JeSchluessel<std::uint32_t> plaetze(const Schluesselreihe& reihe) {
    JeSchluessel<std::uint32_t> plaetze;
    for (const ErweiterungsSchluessel* const schluessel : reihe)
        plaetze.emplace(*schluessel, static_cast<std::uint32_t>(plaetze.size()));
    return plaetze;
}

AntwortFakt beantworte(const OrvoErweiterungsManager& registratur, const Frage& frage,
                       const JeSchluessel<std::uint32_t>& plaetze) {
    const Veranlagungszeitraum vz = frage.format.empty()
                                        ? Veranlagungszeitraum()
                                        : Veranlagungszeitraum::parse(frage.zeitraum, frage.format.c_str());
    const auto typ = static_cast<tag_erweiterung_typ>(frage.typ);
    if (hatKeinePaare(typ)) { // whatever was asked for, its one key answers
        const auto einziger = std::find_if(plaetze.begin(), plaetze.end(),
                                           [&](const auto& platz) { return platz.first.getTyp() == typ; });
        if (einziger == plaetze.end())
            return {RegisterAuskunft::KEINER, 0, alsFakt(vz)};
        return {RegisterAuskunft::UNABHAENGIG, einziger->second, alsFakt(vz)};
    }
    const RegisterAuskunft auskunft =
        registratur.schlageNach(typ, Unterfallart(frage.unterfallart.c_str()), vz);
    return {auskunft.treffer, auskunft.schluessel ? plaetze.at(*auskunft.schluessel) : 0, alsFakt(vz)};
}

void uebernimmZeilen(Bestand& bestand, const OrvoErweiterungsManager& registratur,
                     const Schluesselreihe& reihe, const JeSchluessel<std::uint32_t>& plaetze,
                     Lebenszeichen& lebenszeichen) {
    for (std::size_t von = 0, bis = 0; von < reihe.size(); von = bis) {
        const SchluesselFakt& erster = bestand.schluessel[von];
        while (bis < reihe.size() && zeilenrang(bestand.schluessel[bis]) == zeilenrang(erster))
            ++bis;
        ZeileFakt& zeile = bestand.zeilen.emplace_back(
            frageAlleJahre(registratur,
                           Schluesselreihe(reihe.begin() + static_cast<std::ptrdiff_t>(von),
                                           reihe.begin() + static_cast<std::ptrdiff_t>(bis)),
                           plaetze));
        zeile.typ = erster.typ;
        zeile.typName = erster.typName;
        zeile.unterfallart = erster.unterfallart;
        lebenszeichen();
    }
}

/// Changes the registry for a while, so it must come last.
void uebernimmZweite(Bestand& bestand, OrvoErweiterungsManager& registratur, const Registernotizen& register_,
                     const Schluesselreihe& reihe, const Orte& orte,
                     const std::function<void(const std::string&)>& bevor) {
    std::vector<Umstritten> umstrittene;
    for (const ErweiterungsSchluessel* const schluessel : reihe) {
        const Registernotizen::Eintrag& eintrag = register_.eintraege.at(*schluessel);
        if (eintrag.ereignisse.size() < 2)
            continue;
        Umstritten& einer = umstrittene.emplace_back();
        einer.schluessel = schluessel;
        einer.inhaber = eintrag.inhaber;
        for (const Registernotizen::Ereignis& ereignis : eintrag.ereignisse)
            einer.bewerber.push_back(ereignis.wer);
    }
    const JeSchluessel<const OrvoErweiterung*> zweite =
        frageNachZweiten(registratur, umstrittene, [&] { bevor(std::string()); });
    for (std::size_t i = 0; i < reihe.size(); ++i)
        if (const auto zweiter = zweite.find(*reihe[i]); zweiter != zweite.end())
            bestand.schluessel[i].zweiter = orte.at(zweiter->second);
}

Export exportiert(const Bibliotheksbild& bild, const std::string& name) {
    return bild.exportiertFunktion(name) ? Export::JA : Export::NEIN;
}

void pruefeExporte(DateiFakt& datei) {
    const Bibliotheksbild bild(datei.pfad);
    if (!bild.istLadbar()) // it was loaded, but can no longer be read
        return;
    if (!datei.plugin->onLoad.empty())
        datei.plugin->onLoadExport = exportiert(bild, datei.plugin->onLoad);
    if (!datei.plugin->onUnload.empty())
        datei.plugin->onUnloadExport = exportiert(bild, datei.plugin->onUnload);
    for (ErweiterungFakt& erweiterung : datei.plugin->erweiterungen)
        erweiterung.factoryExport = exportiert(bild, erweiterung.factory);
}

/// Has the library load the plugins that the options name. If those do not name a home directory, the manager is
/// started with an empty one and then given the search path.
OrvoErweiterungsManager* lade(const Optionen& optionen, Protokoll* protokoll, Ladenotizen& laden,
                              Registernotizen& register_, const std::string& einzeln) {
    const Einstellungen einstellungen;
    einstellungen.setze(kResidente, optionen.resident);
    if (optionen.beschreibungen != Beschreibungen::UEBERGANGEN)
        einstellungen.setze(kBeschreibungen, "eingebettet");
    const auto beobachte = [&] {
        OrvoPluginManager::setLadeBeobachter(&laden);
        OrvoErweiterungsManager::setRegisterBeobachter(&register_);
    };
    if (optionen.dir.empty() && einzeln.empty()) {
        if (!optionen.home.empty())
            einstellungen.setze(kHomeDir, optionen.home);
        beobachte();
        return OrvoErweiterungsManager::getInstanz();
    }

    einstellungen.setze(kHomeDir, kNirgends);
    if (protokoll)
        protokoll->gewollt = false;
    OrvoErweiterungsManager* const registratur = OrvoErweiterungsManager::getInstanz();
    if (protokoll)
        protokoll->gewollt = true;
    beobachte();
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(nullptr);
    if (!einzeln.empty()) {
        manager->setPluginSuchPfad(verzeichnisVon(einzeln));
        manager->ladePlugin(einzeln);
    } else {
        manager->setPluginSuchPfad(optionen.dir);
        manager->ladePlugins();
    }
    return registratur;
}

} // namespace

Bestand ermittleBestand(const Optionen& optionen, const Auftrag& auftrag,
                        const std::set<std::string>& ueberspringe,
                        const std::function<void(const std::string&)>& bevor) {
    std::cout.rdbuf(nullptr); // the library echoes the resident plugins' names there
    const std::shared_ptr<Protokoll> protokoll = Protokoll::beginne(optionen.log);

    Ladenotizen laden(auftrag, ueberspringe, optionen.beschreibungen == Beschreibungen::NUR, bevor);
    Registernotizen register_;
    OrvoErweiterungsManager* const registratur =
        lade(optionen, protokoll.get(), laden, register_, auftrag.einzeln);
    if (OrvoPluginManager::setLadeBeobachter(nullptr) != &laden ||
        OrvoErweiterungsManager::setRegisterBeobachter(nullptr) != &register_)
        meldeKanalVerloren(); // plugin code has removed them
    bevor(std::string());

    Lebenszeichen lebenszeichen(bevor);
    Bestand bestand;
    bestand.suchpfad = OrvoPluginManager::getInstanz(nullptr)->getPluginSuchPfad();
    if (auftrag.einzeln.empty())
        ergaenze(laden);
    ergaenzeVerschwundene(laden, ueberspringe);
    const Orte orte = uebernimmDateien(bestand, laden, register_, lebenszeichen);
    const Schluesselreihe reihe = uebernimmSchluessel(bestand, register_, orte, lebenszeichen);
    if (auftrag.frage || !auftrag.fragen.empty() || auftrag.deckung) {
        const JeSchluessel<std::uint32_t> wo = plaetze(reihe);
        if (auftrag.frage)
            bestand.antwort = beantworte(*registratur, *auftrag.frage, wo);
        for (const Frage& frage : auftrag.fragen)
            bestand.antworten.push_back(beantworte(*registratur, frage, wo));
        if (auftrag.deckung)
            uebernimmZeilen(bestand, *registratur, reihe, wo, lebenszeichen);
    }
    for (DateiFakt& datei : bestand.dateien)
        if (datei.plugin && (auftrag.exporteVon == "*" || auftrag.exporteVon == datei.pfad))
            pruefeExporte(datei);
    Logger::setSink(nullptr);
    if (auftrag.deckung)
        uebernimmZweite(bestand, *registratur, register_, reihe, orte, bevor);
    return bestand;
}

} // namespace werkzeug
