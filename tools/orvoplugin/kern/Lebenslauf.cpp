#include "kern/Lebenslauf.h"

#include "check/Pluginnutzung.h"
#include "kern/Anzeige.h"
#include "kern/Protokoll.h"

#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoutil/SharedLib.h>

#include <sys/time.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <list>
#include <map>
#include <memory>
#include <thread>

using namespace orvo::orvoutil;

namespace werkzeug {

namespace {

/// First byte of a record: its type.
constexpr char kVorSchritt = 'S';
constexpr char kService = 'D'; ///< what came of the next service
constexpr char kFaeden = 'F';  ///< see `Lebenslauf::faeden`
constexpr char kGrenze = 'G';  ///< see `Lebenslauf::grenze`

using Dienst = ServiceFakt::Art;

/// What the factory itself does, which the extension did not get a service from.
ServiceFakt rufeFactory(const OrvoServiceErweiterung& erweiterung, SharedLib& bibliothek) {
    const auto factory = reinterpret_cast<decltype(&orvo_plugin_get_check_service)>(
        bibliothek.getSymbol(erweiterung.getServiceFactoryName()));
    if (!factory)
        return {Dienst::NICHT_EXPORTIERT, {}, {}};
    try {
        return {factory() ? Dienst::GEMACHT : Dienst::NICHTS, {}, {}};
    } catch (...) {
        return {Dienst::AUSNAHME, {}, check::laufendeAusnahme()};
    }
}

ServiceFakt holeService(OrvoServiceErweiterung& erweiterung, SharedLib& bibliothek) {
    if (Service* const service = check::holeVomRichtigenTyp(erweiterung))
        return {erweiterung.istFlagGesetzt(FLAG_SERVICE_LOESCHEN) && bibliothek.enthaelt(service)
                    ? Dienst::STATISCH
                    : Dienst::GEMACHT,
                {},
                {}};
    if (!erweiterung.getInstanzen().empty())
        return {Dienst::ANDERE_SCHNITTSTELLE, {}, {}};
    return rufeFactory(erweiterung, bibliothek);
}

/// The life itself, in the child. The library is kept open from the first step to the last, so that each step is one.
class Leben {
public:
    Leben(const std::string& pfad, const Sender& sende) : pfad_(pfad), bibliothek_(pfad), sende_(sende) {}

    void lebe(const std::vector<std::uint32_t>& erweiterungen, bool mitServices) {
        const auto grenzen = check::prozessgrenzen();
        beginne(Schritt::OEFFNEN);
        const bool istOffen = bibliothek_.load();
        if (istOffen) {
            beginne(Schritt::TYPEN);
            nenneTypen();
        }
        beginne(Schritt::BESCHREIBEN);
        std::unique_ptr<OrvoPluginV1> plugin = beschreibe();
        if (!erweiterungen.empty())
            diene(plugin.get(), erweiterungen);
        else if (mitServices && plugin)
            benutze(*plugin);
        if (istStatisch_) { // closing would delete the object
            plugin.release();
            return;
        }
        beginne(Schritt::SCHLIESSEN);
        if (check::laufendeThreads() > 1)
            sende_(std::string(1, kFaeden));
        if (const std::string grenze = check::geaenderteGrenze(grenzen); !grenze.empty())
            sende_(kGrenze + grenze);
        if (plugin && plugin->getUseCount() > 0)
            plugin->release();
        bibliothek_.unload();
        beginne(Schritt::DANACH);
        wartAufUeberbleibsel();
    }

private:
    void beginne(Schritt schritt) { sende_(std::string{kVorSchritt, static_cast<char>(schritt)}); }

    void nenneTypen() {
        if (const auto typen = reinterpret_cast<decltype(&orvo_plugin_get_types)>(
                bibliothek_.getSymbol("orvo_plugin_get_types"))) {
            std::list<orvo_plugin_version_t> liste;
            try {
                typen(&liste);
            } catch (...) { // the next step meets it again
            }
        }
    }

    std::unique_ptr<OrvoPluginV1> beschreibe() {
        try {
            return check::lade(pfad_);
        } catch (const check::Ladefehler& fehler) {
            grund_ = fehler.what();
            return nullptr;
        }
    }

    static void benutze(const OrvoPluginV1& plugin) {
        try {
            check::benutze(plugin);
        } catch (...) { // the checks report it
        }
    }

    void diene(OrvoPluginV1* plugin, const std::vector<std::uint32_t>& erweiterungen) {
        beginne(Schritt::LADEHOOK);
        if (plugin)
            plugin->notifyUse();
        for (const std::uint32_t nummer : erweiterungen) {
            beginne(Schritt::FACTORY);
            auto* const erweiterung =
                plugin && nummer < plugin->listeErweiterungen().size()
                    ? dynamic_cast<OrvoServiceErweiterung*>(plugin->listeErweiterungen()[nummer])
                    : nullptr;
            const ServiceFakt fakt = erweiterung ? holeService(*erweiterung, bibliothek_)
                                                 : ServiceFakt{Dienst::NICHT_GEOEFFNET, {}, grund_};
            sende_(std::string{kService, static_cast<char>(fakt.art)} + fakt.meldung);
            istStatisch_ |= fakt.art == Dienst::STATISCH;
            beginne(Schritt::RUECKGABE);
            if (erweiterung && fakt.art != Dienst::STATISCH)
                check::gibAllesZurueck(*erweiterung);
        }
    }

    std::string pfad_;
    SharedLib bibliothek_;
    const Sender& sende_;
    std::string grund_;
    bool istStatisch_ = false;
};

Lebenslauf laufe(const std::string& pfad, const std::vector<std::uint32_t>& erweiterungen, double zeitlimit,
                 bool mitServices = false) {
    Lebenslauf leben;
    leben.ende = laufeImKind(
        [&](const Sender& sende) {
            Protokoll::beginne({});
            check::beginneOhnePlugins();
            Leben(pfad, sende).lebe(erweiterungen, mitServices);
        },
        [&](std::string_view satz) {
            if (satz.size() == 2 && satz[0] == kVorSchritt)
                leben.schritt = static_cast<Schritt>(satz[1]);
            else if (satz.size() >= 2 && satz[0] == kService && satz[1] <= static_cast<char>(Dienst::ZEIT))
                leben.services.push_back({static_cast<Dienst>(satz[1]), {}, std::string(satz.substr(2))});
            else if (satz[0] == kFaeden)
                leben.faeden = true;
            else if (satz[0] == kGrenze)
                leben.grenze = satz.substr(1);
        },
        std::chrono::duration<double>(zeitlimit));
    if (leben.ende.art == Kindende::Art::SIGNAL && leben.schritt >= Schritt::SCHLIESSEN && leben.faeden)
        leben.ursache = Ursache::FADEN;
    else if (leben.ende.art == Kindende::Art::SIGNAL && leben.ende.zahl == SIGKILL)
        leben.ursache = Ursache::GETOETET;
    return leben;
}

ServiceFakt alsFakt(const Lebenslauf& leben) {
    const Dienst art = leben.ende.art == Kindende::Art::ZEIT      ? Dienst::ZEIT
                       : leben.ende.art == Kindende::Art::BEENDET ? Dienst::BEENDET
                                                                  : Dienst::ABGESTUERZT;
    return {art, leben.schritt, leben.ende.text()};
}

/// Tries the services of one plugin. Returns: whether its code ended a process.
bool probiere(DateiFakt& datei, std::vector<std::uint32_t> offene, double zeitlimit) {
    bool istGestorben = false;
    while (!offene.empty()) {
        const Lebenslauf leben = laufe(datei.pfad, offene, zeitlimit);
        const auto trageEin = [&](std::size_t von, std::size_t bis, const ServiceFakt& fakt) {
            for (std::size_t i = von; i < bis; ++i)
                datei.plugin->erweiterungen.at(offene[i]).service = fakt;
        };
        const std::size_t gemeldete = std::min(leben.services.size(), offene.size());
        for (std::size_t i = 0; i < gemeldete; ++i)
            trageEin(i, i + 1, leben.services[i]);
        if (leben.ende.istGut())
            return istGestorben;
        istGestorben = true;
        const bool imDienst = leben.schritt == Schritt::FACTORY || leben.schritt == Schritt::RUECKGABE;
        if (!imDienst) { // whichever service a client gets, this is what it meets
            trageEin(0, offene.size(), alsFakt(leben));
            return true;
        }
        const std::size_t schuld =
            leben.schritt == Schritt::FACTORY || gemeldete == 0 ? gemeldete : gemeldete - 1;
        trageEin(schuld, std::min(schuld + 1, offene.size()), alsFakt(leben));
        offene.erase(offene.begin(),
                     offene.begin() + static_cast<std::ptrdiff_t>(std::min(schuld + 1, offene.size())));
    }
    return istGestorben;
}

} // namespace

void wartAufUeberbleibsel() {
    constexpr std::chrono::milliseconds kNachlauf{150};  // for threads
    constexpr std::chrono::milliseconds kRechenzeit{50}; // for timers that count processor time
    bool laeuft = false;
    for (const auto art : {ITIMER_REAL, ITIMER_VIRTUAL, ITIMER_PROF}) {
        itimerval zeit{};
        if (getitimer(art, &zeit) != 0 || (zeit.it_value.tv_sec == 0 && zeit.it_value.tv_usec == 0))
            continue;
        zeit.it_value = {0, 1};
        setitimer(art, &zeit, nullptr);
        laeuft = true;
    }
    for (const std::clock_t beginn = std::clock();
         laeuft && (std::clock() - beginn) * 1000 / CLOCKS_PER_SEC < kRechenzeit.count();) {
    }
    std::this_thread::sleep_for(kNachlauf);
}

Lebenslauf verfolgeLeben(const std::string& pfad, double zeitlimit, bool mitServices) {
    return laufe(pfad, {}, zeitlimit, mitServices);
}

bool probiereServices(Bestand& bestand, const std::set<ErweiterungsOrt>& erweiterungen,
                      const Optionen& optionen) {
    Fortschritt fortschritt(!optionen.quiet);
    std::map<std::uint32_t, std::vector<std::uint32_t>> jeDatei;
    for (const ErweiterungsOrt& ort : erweiterungen)
        if (bestand.erweiterung(ort).factoryExport != Export::NEIN)
            jeDatei[ort.datei].push_back(ort.erweiterung);
    bool istGestorben = false;
    std::size_t nummer = 0;
    for (auto& [datei, offene] : jeDatei) {
        fortschritt.zeige(satz("making services: {1}/{2}", ++nummer, jeDatei.size()));
        istGestorben |= probiere(bestand.dateien.at(datei), std::move(offene), optionen.zeitlimit);
    }
    return istGestorben;
}

} // namespace werkzeug
