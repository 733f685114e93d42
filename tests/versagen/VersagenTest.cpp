// One life for each call of the system that can fail: start-up, getting and giving back a service, reload of an unchanged
// and of a changed directory, another home, unload. The call fails in every way that makes sense. Afterwards a small
// model says what may be lost, and what the log has to say; nothing leaks, and the next try succeeds.

#include "Versager.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/HoleService.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/SharedLib.h>

#include "TestPlugins.h"
#include "support/Beschriftung.h"
#include "support/Mitschnitt.h"
#include "support/Prozess.h"
#include "support/Sanitizer.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace {

namespace fs = std::filesystem;
using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::LogEntry;
using orvo::orvoutil::LogKind;
using orvo::orvoutil::LogLevel;
using orvo::orvoutil::ObjectLifetimeManager;
using Griff = ServiceGriff<orvo::service::ValidierungsService>;

/// One of each kind first.
constexpr Versager::Weise kWeisen[] = {
    {Versager::FEHLER, EIO},       {Versager::HALB},           {Versager::ENDE},
    {Versager::AUSFALL},           {Versager::EIN_BYTE},       {Versager::FEHLER, EINTR},
    {Versager::FEHLER, EMFILE},    {Versager::FEHLER, ENFILE}, {Versager::FEHLER, EACCES},
    {Versager::FEHLER, ENOMEM},    {Versager::FEHLER, ENOENT}, {Versager::FEHLER, EAGAIN},
    {Versager::FEHLER, EOVERFLOW},
};

#ifdef ORVO_ADDRESS_SANITIZER
constexpr bool kMitSanitizer = true;
#else
constexpr bool kMitSanitizer = false;
#endif
/// How many of them are tried. With AddressSanitizer a life takes ten times as long.
constexpr std::size_t kAnzahlWeisen = kMitSanitizer ? 4 : std::size(kWeisen);

struct Umstaende {
    bool mitProtokoll;
    bool beschrieben; ///< the plugins are loaded from the descriptions in their files
};

/// A plugin that is expected, by the sub-case type that it serves.
struct Erwartetes {
    int ua;
    std::string pfad;
};

class Versagen : public testing::TestWithParam<Umstaende> {
protected:
    Versagen() {
        lege(home_.pfad("plugins/liba.dylib"), 1);
        lege(home_.pfad("lager/libb"), 2);
        fs::create_symlink("../lager/libb", home_.pfad("plugins/libb.dylib"));
        lege(home_.pfad("plugins/unter/libc.dylib"), 3);
        home_.kopiere(test_plugins::WithoutEntryPoints, "plugins/libohne.dylib");
        home_.kopiere(test_plugins::OffersSubcase4, "plugins/libcut.dylib");
        fs::resize_file(home_.pfad("plugins/libcut.dylib"), 5000);
        lege(anderes_.pfad("plugins/libd.dylib"), 4);
        alle_ = {{1, home_.pfad("plugins/liba.dylib")},
                 {2, home_.pfad("plugins/libb.dylib")},
                 {3, home_.pfad("plugins/unter/libc.dylib")}};
        setzeHome(home_);
        if (GetParam().beschrieben)
            Einstellungen().setze("basis.plugin_beschreibungen", "eingebettet");
        if (GetParam().mitProtokoll)
            mitschnitt_.emplace();
    }
    ~Versagen() override {
        mitschnitt_.reset();
        Einstellungen().setze("basis.home_dir", "");
        Einstellungen().setze("basis.plugin_beschreibungen", "");
    }

    void lege(const std::string& pfad, int ua) const {
        constexpr const char* kPlugins[] = {test_plugins::OffersSubcase1, test_plugins::OffersSubcase2,
                                            test_plugins::OffersSubcase3, test_plugins::OffersSubcase4};
        fs::create_directories(fs::path(pfad).parent_path());
        fs::copy_file(kPlugins[ua - 1], pfad);
        if (GetParam().beschrieben)
            beschrifte(pfad);
    }

    static void setzeHome(const Verzeichnis& home) { Einstellungen().setze("basis.home_dir", home.pfad()); }
    static OrvoErweiterungsManager& registry() { return *OrvoErweiterungsManager::getInstanz(); }
    static OrvoPluginManager& manager() {
        registry(); // first, so that it hears of the plugins
        return *OrvoPluginManager::getInstanz(nullptr);
    }
    static OrvoValidierungsServiceErweiterung* check(int ua) {
        return registry().findeValidierungsServiceErweiterung(ua, {2009, "YYYY"});
    }
    static bool istGeladen(const Erwartetes& plugin) {
        const auto& alle = manager().getRegistriertePlugins();
        return std::any_of(alle.begin(), alle.end(),
                           [&](const OrvoPlugin* p) { return p->getSharedLib()->getName() == plugin.pfad; });
    }

    /// Lives a life for each way and each call in `tu` that can fail so. `pruefe` looks at what is left, and `alle` are
    /// the plugins that the next reload has to find.
    void fuerJedenAusfall(const std::function<void()>& bereiteVor, const std::function<void()>& tu,
                          const std::function<void()>& pruefe, const std::vector<Erwartetes>& alle) {
        for (int i = 0; i < 2; ++i) // fills what is kept for all lives
            lebe(bereiteVor, tu, pruefe, alle, kWeisen[0], 1 << 20);
        const Rest rest = rest_;
        for (const Versager::Weise& weise : std::span(kWeisen).first(kAnzahlWeisen))
            for (int n = 0; lebe(bereiteVor, tu, pruefe, alle, weise, n); ++n, ++versuche_)
                ASSERT_TRUE(rest_ == rest && !HasFailure())
                    << "call " << n << ", way " << weise.art << ", error " << weise.fehlernummer << ": "
                    << rest_.deskriptoren - rest.deskriptoren << " descriptors and "
                    << rest_.bloecke - rest.bloecke << " blocks of memory more";
        RecordProperty("versuche", versuche_);
    }

    /// Returns: whether a call failed.
    bool lebe(const std::function<void()>& bereiteVor, const std::function<void()>& tu,
              const std::function<void()>& pruefe, const std::vector<Erwartetes>& alle, Versager::Weise weise,
              int n) {
        bereiteVor();
        if (mitschnitt_)
            mitschnitt_->leere();
        weise_ = weise;
        {
            const Versager versager(weise, n);
            tu();
        }
        const std::string ruf(Versager::ruf());
        {
            SCOPED_TRACE(ruf + " of \"" + std::string(Versager::ort()) + "\"");
            pruefe();
            manager().reload();
            erwarteVollstaendig(alle);
        }
        ObjectLifetimeManager::instance().destroyAll();
        erwarteGeschlossen();
        if (mitschnitt_)
            mitschnitt_->leere();
        rest_ = {offeneDeskriptoren(), Versager::belegteBloecke()};
        return !ruf.empty();
    }

    /// The model: only these may lose anything, and of a file only if what was read is no answer.
    bool darfVerlieren(const std::string& pfad) const {
        constexpr std::string_view kVerlierende[] = {"open",  "opendir", "readdir", "fstatat",
                                                     "pread", "dlopen",  "dlsym"};
        const bool istVerlierend =
            std::count(std::begin(kVerlierende), std::end(kVerlierende), Versager::ruf()) > 0;
        const bool wirdWiederholt =
            Versager::ruf() == "pread" && (weise_.art != Versager::FEHLER || weise_.fehlernummer == EINTR);
        const std::string ort = fs::weakly_canonical(Versager::ort()).string();
        const std::string ziel = fs::weakly_canonical(pfad).string();
        return istVerlierend && !wirdWiederholt && !ort.empty() &&
               (ziel == ort || ziel.starts_with(ort + "/") || pfad.starts_with(ort + "/"));
    }

    /// Whether the log has to say it: not of what is not there, or what the system itself does not tell.
    bool istZuMelden() const {
        const bool fehlt =
            weise_.fehlernummer == ENOENT && Versager::ruf() != "open" && Versager::ruf() != "pread";
        return mitschnitt_ && !fehlt && weise_.art != Versager::ENDE;
    }

    /// What the log says of the system's reason, where it has one.
    std::string grund() const {
        return weise_.art == Versager::FEHLER ? std::generic_category().message(weise_.fehlernummer)
               : Versager::ruf() == "dlsym"   ? ""
                                              : Versager::kGrundDesLaders;
    }

    /// Whether a line for operators names the file or directory and the reason.
    bool istGemeldet(const std::string& pfad) const {
        std::string gelesene; // the file of the lines that follow
        for (const LogEntry& e : mitschnitt_->eintraege()) {
            constexpr std::string_view kLese = "Lese Bibliothek: ";
            if (e.text.starts_with(kLese))
                gelesene = e.text.substr(kLese.size());
            const bool nenntPfad =
                e.text.find(pfad) != std::string::npos ||
                e.text.find(fs::path(Versager::ort()).string()) != std::string::npos ||
                e.category.find("(" + fs::path(pfad).filename().string() + ")") != std::string::npos;
            const bool istAblehnung = e.text.starts_with("Plugin nicht geladen: ");
            const bool istWarnung = e.kind == LogKind::Message && e.level >= LogLevel::Warn;
            if (((istAblehnung && gelesene == pfad) || (istWarnung && nenntPfad)) &&
                e.text.find(grund()) != std::string::npos)
                return true;
        }
        return false;
    }

    std::string protokoll() const {
        std::string text;
        for (const std::string& zeile : mitschnitt_ ? mitschnitt_->meldungen() : std::vector<std::string>())
            text += zeile + "\n";
        return text;
    }

    /// Each plugin is loaded, registered and usable; or missing for a reason, and the log says so.
    void erwarteStimmig(const std::vector<Erwartetes>& alle) const {
        std::size_t geladene = 0;
        for (const Erwartetes& plugin : alle) {
            const bool istDa = istGeladen(plugin);
            geladene += istDa;
            ASSERT_EQ(check(plugin.ua) != nullptr, istDa) << plugin.pfad;
            if (!istDa) {
                EXPECT_TRUE(darfVerlieren(plugin.pfad)) << plugin.pfad << "\n" << protokoll();
                EXPECT_TRUE(!istZuMelden() || istGemeldet(plugin.pfad)) << plugin.pfad << "\n" << protokoll();
            }
        }
        EXPECT_EQ(manager().getRegistriertePlugins().size(), geladene);
        EXPECT_EQ(registry().getRegistrierteErweiterungen().size(), geladene);
        for (const Erwartetes& plugin : alle)
            if (istGeladen(plugin))
                erwarteBrauchbar(plugin);
    }

    static void erwarteBrauchbar(const Erwartetes& plugin) {
        EXPECT_TRUE(Griff(check(plugin.ua))) << plugin.pfad;
        EXPECT_EQ(check(plugin.ua)->getAusgegeben(), 0);
        EXPECT_EQ(check(plugin.ua)->getPlugin()->getUseCount(), 0);
    }

    static void erwarteVollstaendig(const std::vector<Erwartetes>& alle) {
        for (const Erwartetes& plugin : alle)
            ASSERT_TRUE(istGeladen(plugin)) << plugin.pfad;
        EXPECT_EQ(manager().getRegistriertePlugins().size(), alle.size());
        EXPECT_EQ(registry().getRegistrierteErweiterungen().size(), alle.size());
        for (const Erwartetes& plugin : alle)
            erwarteBrauchbar(plugin);
    }

    /// So that no test passes because nothing could fail.
    static void erwarteRufe(std::initializer_list<std::string_view> rufe) {
        for (const std::string_view ruf : rufe)
            EXPECT_TRUE(Versager::gabEs(ruf) || (kMitSanitizer && ruf == "dlsym")) << ruf;
    }

    /// No file of these directories is in the process.
    void erwarteGeschlossen() const {
        std::ifstream datei("/proc/self/maps");
        const std::string karte(std::istreambuf_iterator<char>(datei), {});
        EXPECT_EQ(karte.find(home_.pfad()), karte.npos) << karte;
        EXPECT_EQ(karte.find(anderes_.pfad()), karte.npos) << karte;
    }

    const Verzeichnis home_, anderes_;
    std::vector<Erwartetes> alle_;
    std::optional<Mitschnitt> mitschnitt_;
    Versager::Weise weise_ = kWeisen[0];
    struct Rest {
        int deskriptoren;
        long bloecke;
        bool operator==(const Rest&) const = default;
    } rest_{}; ///< what the last life left
    int versuche_ = 0;
};

} // namespace

TEST_P(Versagen, AtTheStartCostsNoMoreThanWhatTheCallWasFor) {
    fuerJedenAusfall([] {}, [] { registry(); }, [&] { erwarteStimmig(alle_); }, alle_);
    erwarteRufe({"open", "close", "pread", "preadv2", "posix_fadvise", "stat", "fstat", "fstatat", "opendir",
                 "readdir", "closedir"});
}

TEST_P(Versagen, OfALookUpNeverComes) {
    registry();
    fuerJedenAusfall([] { registry(); },
                     [] {
                         check(1);
                         check(99);
                         registry().getRegistrierteErweiterungen();
                     },
                     [] { EXPECT_EQ(Versager::ruf(), ""); }, alle_);
}

TEST_P(Versagen, OfGettingAServiceGivesTheUseBack) {
    for (const Erwartetes& plugin : alle_) {
        std::optional<Griff> griff;
        fuerJedenAusfall([] { registry(); }, [&] { griff.emplace(check(plugin.ua)); },
                         [&] {
                             const bool lader = Versager::ruf() == "dlsym" || Versager::ruf() == "dlopen";
                             EXPECT_TRUE(*griff || darfVerlieren(plugin.pfad)) << protokoll();
                             EXPECT_TRUE((*griff && !lader) || !istZuMelden() || istGemeldet(plugin.pfad))
                                 << protokoll();
                             EXPECT_EQ(check(plugin.ua)->getPlugin()->getUseCount(), *griff ? 1 : 0);
                             griff.reset();
                             erwarteVollstaendig(alle_);
                         },
                         alle_);
    }
    erwarteRufe({"open", "pread", "close", "dlopen", "dlsym", "dlerror"});
}

TEST_P(Versagen, OfGivingBackChangesNothing) {
    for (const Erwartetes& plugin : alle_) {
        std::optional<Griff> griff;
        fuerJedenAusfall(
            [&] {
                griff.emplace(check(plugin.ua));
                ASSERT_TRUE(*griff);
            },
            [&] { griff.reset(); },
            [&] {
                const bool istZuNennen = Versager::ruf() == "dlsym" || Versager::ruf() == "dlclose";
                EXPECT_TRUE(!istZuNennen || !istZuMelden() || istGemeldet(plugin.pfad)) << protokoll();
                erwarteVollstaendig(alle_);
            },
            alle_);
    }
    erwarteRufe({"dlsym", "dlclose"});
}

TEST_P(Versagen, OfAReloadIsMendedByTheNext) {
    fuerJedenAusfall([&] { erwarteVollstaendig(alle_); }, [] { manager().reload(); },
                     [&] { erwarteStimmig(alle_); }, alle_);
    erwarteRufe({"dlclose"});
}

TEST_P(Versagen, OfAReloadWithChangesIsMendedByTheNext) {
    const std::string neues = home_.pfad("plugins/unter/libneu.dylib"), altes = alle_.front().pfad;
    lege(home_.pfad("lager/libneu"), 4);
    const std::vector<Erwartetes> danach = {alle_[1], alle_[2], {4, neues}};
    fuerJedenAusfall(
        [&] {
            fs::remove(neues);
            fs::copy_file(test_plugins::OffersSubcase1, altes, fs::copy_options::overwrite_existing);
            registry();
            fs::remove(altes);
            fs::copy_file(home_.pfad("lager/libneu"), neues);
        },
        [] { manager().reload(); },
        [&] {
            EXPECT_EQ(check(1), nullptr);
            erwarteStimmig(danach);
        },
        danach);
}

TEST_P(Versagen, OfAChangeOfTheHomeIsMendedByAReload) {
    const std::vector<Erwartetes> danach = {{4, anderes_.pfad("plugins/libd.dylib")}};
    fuerJedenAusfall(
        [&] {
            setzeHome(home_);
            erwarteVollstaendig(alle_);
        },
        [&] { setzeHome(anderes_); }, [&] { erwarteStimmig(danach); }, danach);
}

TEST_P(Versagen, OfAnUnloadKeepsNothing) {
    fuerJedenAusfall([&] { erwarteVollstaendig(alle_); }, [] { EXPECT_TRUE(manager().entladePlugins()); },
                     [&] {
                         EXPECT_TRUE(manager().getRegistriertePlugins().empty());
                         EXPECT_TRUE(registry().getRegistrierteErweiterungen().empty());
                         erwarteGeschlossen();
                     },
                     alle_);
}

INSTANTIATE_TEST_SUITE_P(, Versagen,
                         testing::Values(Umstaende{true, false}, Umstaende{true, true},
                                         Umstaende{false, true}),
                         [](const auto& fall) {
                             return std::string(fall.param.mitProtokoll ? "WithALog" : "WithoutALog") +
                                    (fall.param.beschrieben ? "FromDescriptions" : "");
                         });
