#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoplugin/service/PruefErgebnis.h>
#include <orvoplugin/service/SteuerfallListe.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/SharedLib.h>

#include "TestPlugins.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::ObjectLifetimeManager;

namespace {

constexpr char kHomeDir[] = "basis.home_dir";
constexpr char kResidentPlugins[] = "basis.resident_plugins";
constexpr unsigned kNiemand = 65534;

const Veranlagungszeitraum& jahr() {
    static const Veranlagungszeitraum vz(2009, "YYYY");
    return vz;
}

std::string bietet(int unterfallart) {
    return "produktversion 1.0\nloeschen\ncheck " + std::to_string(unterfallart) + " 2009\n";
}

class EinFall : public orvo::data::SteuerfallListe {
public:
    std::size_t getAnzahl() const override { return 1; }
    const std::string& getDatensatz(std::size_t) const override { return satz_; }

private:
    std::string satz_ = "Datensatz";
};

/// The entries of that directory in the memory map, also of files that were removed.
std::vector<std::string> eingeblendetAus(const std::string& verzeichnis) {
    std::vector<std::string> zeilen;
    std::ifstream karte("/proc/self/maps");
    for (std::string zeile; std::getline(karte, zeile);)
        if (const auto beginn = zeile.find(verzeichnis); beginn != std::string::npos)
            zeilen.push_back(zeile.substr(beginn));
    return zeilen;
}

} // namespace

Stoerfall::Stoerfall()
    : vorher(lege(test_plugins::DescribedByFile, "libaaa.dylib", bietet(kVorher))),
      nachher(lege(test_plugins::DescribedByFile, "libzzz.dylib", bietet(kNachher))),
      deskriptoren_(offeneDeskriptoren()) {
    ObjectLifetimeManager::instance().destroyAll();
    Einstellungen().setze(kHomeDir, home.pfad());
}

Stoerfall::~Stoerfall() {
    ObjectLifetimeManager::instance().destroyAll();
    Einstellungen().setze(kHomeDir, "");
    Einstellungen().setze(kResidentPlugins, "");
}

void Stoerfall::TearDown() {
    ObjectLifetimeManager::instance().destroyAll();
    erwarteSpurlos();
}

std::string Stoerfall::lege(const char* vorlage, const std::string& name,
                            const std::string& beschreibung) const {
    if (!beschreibung.empty())
        home.schreibe("plugins/" + name + ".txt", beschreibung);
    return home.kopiere(vorlage, "plugins/" + name);
}

void Stoerfall::legeSchlechtes(const char* vorlage, const std::string& beschreibung) const {
    lege(vorlage, std::filesystem::path(schlechtes).filename().string(), beschreibung);
}

bool Stoerfall::starte() {
    log.leere();
    registry = OrvoErweiterungsManager::getInstanz();
    manager = OrvoPluginManager::getInstanz(nullptr);
    const int erfolgreich = log.anzahl("[OrvoPluginManager|99|erfolgreich gestartet|99]");
    EXPECT_EQ(erfolgreich + log.anzahl("[OrvoPluginManager|99|nicht erfolgreich gestartet|99]"), 1);
    return erfolgreich == 1;
}

bool Stoerfall::ladeNeu() {
    log.leere();
    manager->entladePlugins();
    EXPECT_EQ(eingeblendetAus(home.pfad()), Zeilen{});
    return manager->ladePlugins();
}

void Stoerfall::erwarteAusgang(bool erfolg, const Zeilen& plugins, const Zeilen& erwarteteAblehnungen,
                               const Zeilen& erwarteteWarnungen) {
    for (const bool start : {true, false}) {
        SCOPED_TRACE(start ? "first loading run" : "second loading run");
        EXPECT_EQ(start ? starte() : ladeNeu(), erfolg);
        EXPECT_EQ(geladene(), plugins);
        EXPECT_EQ(ablehnungen(), erwarteteAblehnungen);
        EXPECT_EQ(warnungen(), erwarteteWarnungen);
        erwarteSpurlos();
        erwarteHeileBrauchbar();
    }
}

void Stoerfall::erwarteAbgelehnt(const std::string& grund) {
    erwarteAusgang(false, {"libaaa.dylib", "libzzz.dylib"}, {ablehnung(grund)}, {});
}

void Stoerfall::erwarteNichtGeoeffnet(const std::string& grund) {
    erwarteAbgelehnt("BIBLIOTHEK_FEHLER: " + schlechtes + ": " + grund);
}

void Stoerfall::erwarteGeladen(const Zeilen& erwarteteWarnungen) {
    const std::string name = schlechtes.substr(plugin("").size());
    erwarteAusgang(true, {"libaaa.dylib", name, "libzzz.dylib"}, {}, erwarteteWarnungen);
}

void Stoerfall::erwarteUebergangen() {
    erwarteAusgang(true, {"libaaa.dylib", "libzzz.dylib"}, {}, {});
    EXPECT_EQ(log.anzahlMit(schlechtes), 0);
}

void Stoerfall::erwarteHeileBrauchbar() {
    erwarteBrauchbar(kVorher, vorher);
    erwarteBrauchbar(kNachher, nachher);
}

void Stoerfall::erwarteBrauchbar(int unterfallart, const std::string& pfad) {
    SCOPED_TRACE(pfad);
    OrvoPlugin* const geladen = geladenes(pfad);
    OrvoValidierungsServiceErweiterung* const erweiterung = finde(unterfallart);
    ASSERT_NE(geladen, nullptr);
    ASSERT_NE(erweiterung, nullptr);
    EXPECT_EQ(erweiterung->getPlugin(), geladen);

    orvo::service::ValidierungsService* const service = erweiterung->holeService();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(geladen->getUseCount(), 1);
    EXPECT_TRUE(istEingeblendet(pfad));
    PruefErgebnis ergebnis;
    EXPECT_EQ(service->pruefe(EinFall(), Unterfallart(unterfallart), jahr(), ergebnis), 0);

    erweiterung->release(service);
    EXPECT_EQ(geladen->getUseCount(), 0);
    EXPECT_EQ(istEingeblendet(pfad), geladen->isResident());
}

void Stoerfall::erwarteSpurlos() const {
    EXPECT_EQ(eingeblendetAus(home.pfad()), Zeilen{});
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren_);
}

OrvoValidierungsServiceErweiterung* Stoerfall::finde(int unterfallart) const {
    return registry->findeValidierungsServiceErweiterung(Unterfallart(unterfallart), jahr());
}

OrvoPlugin* Stoerfall::geladenes(const std::string& pfad) const {
    for (OrvoPlugin* const kandidat : manager->getRegistriertePlugins())
        if (kandidat->getSharedLib()->getName() == pfad)
            return kandidat;
    return nullptr;
}

Stoerfall::Zeilen Stoerfall::geladene() const {
    Zeilen namen;
    for (const OrvoPlugin* const geladen : manager->getRegistriertePlugins())
        namen.push_back(geladen->getSharedLib()->getName().substr(plugin("").size()));
    return namen;
}

Stoerfall::Zeilen Stoerfall::ablehnungen() const {
    Zeilen zeilen;
    for (const std::string& zeile : log.zeilen())
        if (zeile.starts_with("[OrvoPluginManager|99|Plugin nicht geladen: "))
            zeilen.push_back(zeile);
    return zeilen;
}

Stoerfall::Zeilen Stoerfall::warnungen() const {
    Zeilen zeilen;
    for (const std::string& zeile : log.zeilen())
        if (zeile.starts_with("W ") || zeile.starts_with("E "))
            zeilen.push_back(zeile);
    return zeilen;
}

std::string Stoerfall::ablehnung(const std::string& grund) {
    return "[OrvoPluginManager|99|Plugin nicht geladen: " + grund + "|99]";
}

void Stoerfall::imKindprozess(const std::function<void()>& was, Benutzer benutzer) {
    if (benutzer == Benutzer::NIEMAND)
        std::filesystem::permissions(home.pfad(), std::filesystem::perms(0755));
    std::cout.flush();
    std::fflush(nullptr);
    const pid_t kind = fork();
    ASSERT_NE(kind, -1);
    if (kind == 0) {
        deskriptoren_ =
            offeneDeskriptoren(); // a tool that watches the process may keep its own from the child
        // Permissions already apply to a user who is not root.
        if (benutzer == Benutzer::NIEMAND && geteuid() == 0 && (setgid(kNiemand) || setuid(kNiemand)))
            ADD_FAILURE() << "root cannot become nobody here, so nothing is proved about permissions";
        else if (access(home.pfad().c_str(), R_OK | X_OK) != 0)
            ADD_FAILURE() << "the temporary directory (TMPDIR) is for root only, so nothing is proved";
        else
            try {
                was();
            } catch (const std::exception& ausnahme) {
                ADD_FAILURE() << ausnahme.what();
            } catch (...) {
                ADD_FAILURE() << "an exception of no known class";
            }
        std::cout.flush();
        std::fflush(nullptr);
        _exit(HasFailure() ? 1 : 0);
    }
    int ausgang = -1;
    ASSERT_EQ(waitpid(kind, &ausgang, 0), kind);
    EXPECT_TRUE(WIFEXITED(ausgang)) << "the child process died of signal " << WTERMSIG(ausgang);
    EXPECT_EQ(WEXITSTATUS(ausgang), 0) << "see above for what failed in the child process";
}
