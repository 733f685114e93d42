// What an observer of the loading hears of each file, and that the observer changes nothing else.

#include <orvoplugin/plugin/LadeBeobachter.h>

#include "Werkstatt.h"

#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Records everything that it hears, and skips the files that a test names.
class Horcher : public LadeBeobachter {
public:
    Horcher() : vorher_(OrvoPluginManager::setLadeBeobachter(this)) {}
    ~Horcher() override { OrvoPluginManager::setLadeBeobachter(vorher_); }

    void betrittVerzeichnis(const std::string& verzeichnis) noexcept override {
        gehoert.push_back("in " + orvo::orvoutil::getOnlyFilenameOfFullFilename(verzeichnis));
    }
    void findetDatei(const std::string& verzeichnis, const std::string& name, Dateiart art,
                     const std::string& pfad) noexcept override {
        constexpr const char* kArten[] = {"plugin ", "gesperrt ", "uebergangen "};
        gehoert.push_back(kArten[art] + name);
        if (pfad != verzeichnis + "/" + name)
            gehoert.back() += " als " + orvo::orvoutil::getOnlyFilenameOfFullFilename(pfad);
    }
    bool ladeDatei(const std::string& pfad) noexcept override {
        gehoert.push_back("lade " + orvo::orvoutil::getOnlyFilenameOfFullFilename(pfad));
        return pfad.find(ueberspringe) == std::string::npos;
    }
    void pluginGeladen(const std::string& pfad, const OrvoPlugin& plugin) noexcept override {
        gehoert.push_back("geladen " + orvo::orvoutil::getOnlyFilenameOfFullFilename(pfad) + " " +
                          plugin.getProduktVersion());
    }
    void dateiAbgelehnt(const std::string& pfad, orvo_plugin_ablehnung_t schritt,
                        const char* grund) noexcept override {
        gehoert.push_back("abgelehnt " + orvo::orvoutil::getOnlyFilenameOfFullFilename(pfad));
        schritte.push_back(schritt);
        gruende.push_back(grund);
    }

    std::string ueberspringe = "/kein solches";
    Zeilen gehoert;
    std::vector<orvo_plugin_ablehnung_t> schritte;
    Zeilen gruende;

private:
    LadeBeobachter* vorher_;
};

/// The step at which the only library of a plugin directory is refused; 0 if it is loaded.
int schrittVon(const char* bibliothek) {
    const Heimat heimat;
    heimat.lege(bibliothek, "libx.dylib");
    const Horcher horcher;
    const OrvoPluginManager manager(nullptr);
    return horcher.schritte.empty() ? 0 : horcher.schritte.front();
}

} // namespace

TEST(LadeBeobachter, HearsOfEachFileWhatTheManagerTakesItFor) {
    const Heimat heimat;
    heimat.beschreibe("libb.dylib", "produktversion 1.2");
    heimat.verzeichnis.schreibe("plugins/libfrendolin.dylib", "");
    heimat.verzeichnis.schreibe("plugins/liesmich.txt", "");
    heimat.beschreibe("unter/libc.dylib", "produktversion 3");
    const Horcher horcher;
    const OrvoPluginManager manager(nullptr);
    EXPECT_THAT(horcher.gehoert,
                ElementsAre("in plugins", "plugin libb.dylib", "lade libb.dylib", "geladen libb.dylib 1.2",
                            "uebergangen libb.dylib.txt", "gesperrt libfrendolin.dylib",
                            "uebergangen liesmich.txt", "in unter", "plugin libc.dylib", "lade libc.dylib",
                            "geladen libc.dylib 3", "uebergangen libc.dylib.txt"));
    EXPECT_THAT(horcher.schritte, IsEmpty());
}

TEST(LadeBeobachter, HearsUnderWhichPathAFileIsLoaded) {
    const Heimat heimat;
    heimat.lege(test_plugins::DescribedByFile, "libx.DYLIB");
    heimat.lege(test_plugins::DescribedByFile, "LIBZELMAK98.DYLIB");
    const Horcher horcher;
    const OrvoPluginManager manager(nullptr);
    EXPECT_THAT(horcher.gehoert,
                ElementsAre("in plugins", "gesperrt LIBZELMAK98.DYLIB", "plugin libx.DYLIB als libx.dylib",
                            "lade libx.dylib", "abgelehnt libx.dylib"));
    EXPECT_THAT(horcher.schritte, ElementsAre(ABLEHNUNG_DATEIPRUEFUNG));
}

TEST(LadeBeobachter, HearsAtWhichStepEachFileIsRefused) {
    EXPECT_EQ(schrittVon(test_plugins::DescribedByFile), 0);
    EXPECT_EQ(schrittVon("/etc/passwd"), ABLEHNUNG_DATEIPRUEFUNG);
    EXPECT_EQ(schrittVon(test_plugins::NeedsAMissingLibrary), ABLEHNUNG_OEFFNEN);
    EXPECT_EQ(schrittVon(test_plugins::WithoutEntryPoints), ABLEHNUNG_OHNE_TYPEN);
    EXPECT_EQ(schrittVon(test_plugins::ThrowsIntFromTypes), ABLEHNUNG_AUSNAHME_TYPEN);
    EXPECT_EQ(schrittVon(test_plugins::DeclaresNoType), ABLEHNUNG_LEERE_TYPEN);
    EXPECT_EQ(schrittVon(test_plugins::DeclaresTypeTwo), ABLEHNUNG_PLUGINVERSION);
    EXPECT_EQ(schrittVon(test_plugins::DeclaresTypesOneAndTwo), ABLEHNUNG_PLUGINVERSION);
    EXPECT_EQ(schrittVon(test_plugins::WithoutInitialize), ABLEHNUNG_OHNE_INITIALISIERUNG);
    EXPECT_EQ(schrittVon(test_plugins::ThrowsOwnClassFromInitialize), ABLEHNUNG_AUSNAHME_INITIALISIERUNG);
    EXPECT_EQ(schrittVon(test_plugins::ThrowsLoaderException), ABLEHNUNG_AUSNAHME_INITIALISIERUNG);
    EXPECT_EQ(schrittVon(test_plugins::AddsExtensionOfItsOwnClass), ABLEHNUNG_AUSNAHME_INITIALISIERUNG);
}

TEST(LadeBeobachter, HearsOfStepsWithTheNumbersThatHostsWereCompiledWith) {
    EXPECT_EQ(ABLEHNUNG_DATEIPRUEFUNG, 1);
    EXPECT_EQ(ABLEHNUNG_OEFFNEN, 2);
    EXPECT_EQ(ABLEHNUNG_OHNE_TYPEN, 3);
    EXPECT_EQ(ABLEHNUNG_AUSNAHME_TYPEN, 4);
    EXPECT_EQ(ABLEHNUNG_LEERE_TYPEN, 5);
    EXPECT_EQ(ABLEHNUNG_PLUGINVERSION, 6);
    EXPECT_EQ(ABLEHNUNG_OHNE_INITIALISIERUNG, 7);
    EXPECT_EQ(ABLEHNUNG_AUSNAHME_INITIALISIERUNG, 8);
    EXPECT_EQ(ABLEHNUNG_INITIALISIERUNG, 9);
    EXPECT_EQ(ABLEHNUNG_BEOBACHTER, 10);
}

TEST(LadeBeobachter, TellsARefusalByThePluginFromAnException) {
    const Heimat heimat;
    heimat.beschreibe("libx.dylib", "abgelehnt");
    const Horcher horcher;
    const OrvoPluginManager manager(nullptr);
    EXPECT_THAT(horcher.schritte, ElementsAre(ABLEHNUNG_INITIALISIERUNG));
}

TEST(LadeBeobachter, HearsTheReasonThatTheLogGives) {
    const Heimat heimat;
    heimat.lege(test_plugins::ThrowsOwnStandardExceptionFromInitialize, "libx.dylib");
    const Mitschnitt mitschnitt;
    const Horcher horcher;
    const OrvoPluginManager manager(nullptr);
    ASSERT_EQ(horcher.gruende.size(), 1u);
    EXPECT_EQ(mitschnitt.anzahl(markiert("Plugin nicht geladen: " + horcher.gruende.front())), 1);
}

TEST(LadeBeobachter, HearsOfAPluginThatAnObserverOfTheManagerRefused) {
    const Heimat heimat;
    heimat.beschreibe("libx.dylib");
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    zeuge.beimErzeugen = [](OrvoPlugin&) { throw std::runtime_error("mag nicht"); };
    const Horcher horcher;
    OrvoPluginManager manager(&zeuge);
    EXPECT_THAT(horcher.schritte, ElementsAre(ABLEHNUNG_BEOBACHTER));
    EXPECT_THAT(horcher.gruende, ElementsAre("mag nicht"));
    EXPECT_THAT(plugins(manager), ElementsAre("libx.dylib"));
    manager.removeObserver(&zeuge);
}

TEST(LadeBeobachter, HasFilesPassedOverThatAreThenNotLoadedAndNotLogged) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    heimat.beschreibe("libb.dylib");
    const Mitschnitt mitschnitt;
    Horcher horcher;
    horcher.ueberspringe = "/liba.dylib";
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("libb.dylib"));
    EXPECT_EQ(mitschnitt.anzahlMit("liba.dylib"), 0);
    EXPECT_FALSE(manager.ladePlugin(heimat.ort("liba.dylib")));
}

TEST(LadeBeobachter, ChangesNeitherLogNorResult) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib", "check 10 2009");
    heimat.lege(test_plugins::ThrowsIntFromInitialize, "libb.dylib");
    heimat.verzeichnis.schreibe("plugins/libc.dylib", "kein Plugin");
    const auto lauf = [] {
        const Mitschnitt mitschnitt;
        OrvoPluginManager manager(nullptr);
        Zeilen zeilen = mitschnitt.zeilen();
        for (const std::string& name : plugins(manager))
            zeilen.push_back(name);
        return zeilen;
    };
    const Zeilen ohne = lauf();
    const Horcher horcher;
    EXPECT_EQ(lauf(), ohne);
    EXPECT_EQ(horcher.schritte.size(), 2u);
}

TEST(LadeBeobachter, IsToldNothingOnceItIsTakenOut) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    Horcher horcher;
    OrvoPluginManager manager(nullptr);
    horcher.gehoert.clear();
    EXPECT_EQ(OrvoPluginManager::setLadeBeobachter(nullptr), &horcher);
    manager.reload();
    EXPECT_THAT(horcher.gehoert, IsEmpty());
}

TEST(LadeBeobachter, IsToldNothingMoreWhenItTakesItselfOutInTheMiddleOfALoading) {
    class Einmaliger : public Horcher {
    public:
        bool ladeDatei(const std::string& pfad) noexcept override {
            OrvoPluginManager::setLadeBeobachter(nullptr);
            return Horcher::ladeDatei(pfad);
        }
    };
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    heimat.verzeichnis.schreibe("plugins/libb.dylib", "kein Plugin");
    heimat.verzeichnis.schreibe("plugins/unter/libc.dylib", "kein Plugin");
    const Einmaliger horcher;
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(horcher.gehoert, ElementsAre("in plugins", "plugin liba.dylib", "lade liba.dylib"));
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib"));
    const Einmaliger anderer;
    EXPECT_FALSE(manager.ladePlugin(heimat.ort("libb.dylib")));
    EXPECT_THAT(anderer.gehoert, ElementsAre("lade libb.dylib"));
    EXPECT_THAT(anderer.gruende, IsEmpty()) << "not of the refusal either";
}

TEST(LadeBeobachter, HearsOfADirectoryBeforeItIsRead) {
    class Vorbereiter : public Horcher {
    public:
        explicit Vorbereiter(const Heimat& heimat) : heimat_(heimat) {}
        void betrittVerzeichnis(const std::string&) noexcept override {
            heimat_.verzeichnis.entferne("plugins/liba.dylib");
            heimat_.beschreibe("libb.dylib");
        }

    private:
        const Heimat& heimat_;
    };
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    const Vorbereiter vorbereiter(heimat);
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("libb.dylib"));
    EXPECT_THAT(vorbereiter.schritte, IsEmpty());
}

TEST(LadeBeobachter, IsRefusedWhateverItAsksTheManagerToLoadOrUnload) {
    class Besteller : public LadeBeobachter {
    public:
        void betrittVerzeichnis(const std::string&) noexcept override { bestelle(); }
        void findetDatei(const std::string&, const std::string&, Dateiart,
                         const std::string&) noexcept override {
            bestelle();
        }
        bool ladeDatei(const std::string&) noexcept override {
            bestelle();
            return true;
        }
        void pluginGeladen(const std::string&, const OrvoPlugin&) noexcept override { bestelle(); }
        void dateiAbgelehnt(const std::string&, orvo_plugin_ablehnung_t, const char*) noexcept override {
            bestelle();
        }

        OrvoPluginManager* manager = nullptr;
        int bestellungen = 0;

    private:
        void bestelle() {
            if (++bestellungen < 20) // otherwise it would never end
                manager->reload();
        }
    };
    const Heimat heimat;
    heimat.verzeichnis.schreibe("plugins/liba.dylib", "kein Plugin");
    heimat.lege(test_plugins::ThrowsIntFromInitialize, "libfrendolin.dylib");
    heimat.beschreibe("libx.dylib");
    OrvoPluginManager manager(nullptr);
    const Mitschnitt mitschnitt(orvo::orvoutil::LogLevel::Warn);
    Besteller besteller;
    besteller.manager = &manager;
    LadeBeobachter* const vorher = OrvoPluginManager::setLadeBeobachter(&besteller);
    manager.entladePlugins();
    manager.ladePlugins();
    EXPECT_EQ(besteller.bestellungen, 9)
        << "a directory, four files, two to be loaded, and what became of them";
    EXPECT_TRUE(manager.ladePlugin(heimat.ort("libx.dylib")));
    OrvoPluginManager::setLadeBeobachter(vorher);
    EXPECT_EQ(besteller.bestellungen, 11);
    EXPECT_THAT(plugins(manager), ElementsAre("libx.dylib", "libx.dylib"));
}

TEST(LadeBeobachter, NeedsToTakeNoteOfNothing) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    heimat.verzeichnis.schreibe("plugins/libb.dylib", "kein Plugin");
    LadeBeobachter gleichgueltig;
    OrvoPluginManager::setLadeBeobachter(&gleichgueltig);
    OrvoPluginManager manager(nullptr);
    OrvoPluginManager::setLadeBeobachter(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib"));
}
