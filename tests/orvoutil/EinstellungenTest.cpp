#include <orvoutil/Einstellungen.h>

#include "CurrentDirectory.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <dlfcn.h>

#include <array>
#include <atomic>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace orvo::orvoutil;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kHomeDir[] = "basis.home_dir";
constexpr char kResidentPlugins[] = "basis.resident_plugins";

/// Writes its name and each message to a common protocol, then calls a function.
struct Beobachter : AenderungsBeobachter {
    Beobachter(std::string n, std::vector<std::string>& p) : name(std::move(n)), protokoll(p) {
        Einstellungen().beobachterAnmelden(this);
    }
    ~Beobachter() override { Einstellungen().beobachterAbmelden(this); }

    void empfangeAenderungsNachricht(const AenderungsNachricht& nachricht) override {
        protokoll.push_back(name + ":" + std::to_string(nachricht.getArt()) + ":" +
                            nachricht.getSchluessel() + "=" +
                            Einstellungen().wert(nachricht.getSchluessel()));
        if (tue)
            tue();
    }

    std::string name;
    std::vector<std::string>& protokoll;
    std::function<void()> tue;
};

struct EinstellungenTest : testing::Test {
    ~EinstellungenTest() override {
        for (const char* const schluessel : {kHomeDir, kResidentPlugins, "k", "l"})
            einstellungen.setze(schluessel, "");
    }

    const Einstellungen einstellungen;
    std::vector<std::string> protokoll;
};

/// The output of a command.
std::string ausgabe(const std::string& befehl) {
    FILE* const rohr = popen(befehl.c_str(), "r");
    std::string text;
    std::array<char, 256> puffer;
    while (const std::size_t n = std::fread(puffer.data(), 1, puffer.size(), rohr))
        text.append(puffer.data(), n);
    return pclose(rohr) == 0 ? text : "failed: " + befehl;
}

} // namespace

TEST_F(EinstellungenTest, KnowsNothingAtFirst) {
    EXPECT_EQ(einstellungen.wert("k"), "");
    EXPECT_EQ(einstellungen.wert(""), "");
    EXPECT_EQ(einstellungen.wert(kHomeDir), "");
    EXPECT_EQ(einstellungen.basisResidentPlugins(), "");
}

TEST_F(EinstellungenTest, KeepsValuesForAllHandles) {
    einstellungen.setze("k", "wert");
    EXPECT_EQ(Einstellungen().wert("k"), "wert");
    EXPECT_EQ(Einstellungen().wert("K"), "");
}

TEST_F(EinstellungenTest, KeepsValuesByteForByte) {
    const std::string wert("a\0\xFC\n", 4);
    einstellungen.setze("k", wert);
    EXPECT_EQ(einstellungen.wert("k"), wert);
}

TEST_F(EinstellungenTest, KeepsKeysByteForByte) {
    const std::string schluessel("k\0l", 3);
    einstellungen.setze(schluessel, "wert");
    EXPECT_EQ(einstellungen.wert(schluessel), "wert");
    EXPECT_EQ(einstellungen.wert("k"), "");
    einstellungen.setze(schluessel, "");
    EXPECT_EQ(einstellungen.wert(schluessel), "");
}

TEST_F(EinstellungenTest, AnswersItsTwoKeysByName) {
    einstellungen.setze(kHomeDir, "/home/orvo");
    einstellungen.setze(kResidentPlugins, "a,b,");
    EXPECT_EQ(einstellungen.basisHomeDir(), "/home/orvo");
    EXPECT_EQ(einstellungen.basisResidentPlugins(), "a,b,");
}

TEST_F(EinstellungenTest, TakesTheLibrarysOwnDirectoryForAnUnsetHome) {
    // wherever the loader found it: LD_LIBRARY_PATH counts for more than where it was built
    void* const bibliothek =
        dlopen(std::filesystem::path(LIBORVOUTIL).filename().c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(bibliothek, nullptr) << dlerror();
    char verzeichnis[PATH_MAX];
    ASSERT_EQ(dlinfo(bibliothek, RTLD_DI_ORIGIN, verzeichnis), 0) << dlerror();
    dlclose(bibliothek);
    EXPECT_EQ(einstellungen.basisHomeDir(), verzeichnis);
    einstellungen.setze(kHomeDir, "/home/orvo");
    einstellungen.setze(kHomeDir, "");
    EXPECT_EQ(einstellungen.basisHomeDir(), verzeichnis);
}

TEST_F(EinstellungenTest, FindsTheLibrarysDirectoryAlsoWhenItWasNamedRelativeToOneLeftSince) {
    const Verzeichnis verzeichnis;
    verzeichnis.kopiere(LIBORVOUTIL, "lib/" + std::filesystem::path(LIBORVOUTIL).filename().string());
    const CurrentDirectory dort(verzeichnis.pfad());
    EXPECT_EQ(ausgabe("LD_LIBRARY_PATH=lib '" PRINTS_HOME_DIR "'"), verzeichnis.pfad("lib"));
}

TEST_F(EinstellungenTest, NeverTakesTheCurrentDirectoryForTheLibrarys) {
    const Verzeichnis verzeichnis;
    verzeichnis.kopiere(LIBORVOUTIL, "lib/" + std::filesystem::path(LIBORVOUTIL).filename().string());
    const CurrentDirectory dort(verzeichnis.pfad());
    EXPECT_EQ(ausgabe("KEIN_VERZEICHNIS=1 LD_LIBRARY_PATH=lib '" PRINTS_HOME_DIR "'"), "/");
}

TEST_F(EinstellungenTest, TellsObserversInTheOrderOfRegistrationAfterTheChange) {
    const Beobachter a("a", protokoll);
    const Beobachter b("b", protokoll);
    einstellungen.setze("k", "1");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "b:3:k=1"));
}

TEST_F(EinstellungenTest, TellsOfEveryChangeAndOnlyOfChanges) {
    const Beobachter a("a", protokoll);
    einstellungen.setze("k", "");
    EXPECT_THAT(protokoll, IsEmpty());
    einstellungen.setze("k", "1");
    einstellungen.setze("k", "1");
    einstellungen.setze("k", "2");
    einstellungen.setze("k", "");
    einstellungen.setze("k", "");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "a:3:k=2", "a:3:k="));
}

TEST_F(EinstellungenTest, IgnoresNullObservers) {
    einstellungen.beobachterAnmelden(nullptr);
    einstellungen.beobachterAbmelden(nullptr);
    EXPECT_NO_THROW(einstellungen.setze("k", "1"));
}

TEST_F(EinstellungenTest, TellsOneRegisteredTwiceTwiceAndTakesOneBackAtATime) {
    Beobachter a("a", protokoll);
    const Beobachter b("b", protokoll);
    einstellungen.beobachterAnmelden(&a);
    einstellungen.setze("k", "1");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "b:3:k=1", "a:3:k=1"));

    protokoll.clear();
    einstellungen.beobachterAbmelden(&a);
    einstellungen.setze("k", "2");
    EXPECT_THAT(protokoll, ElementsAre("b:3:k=2", "a:3:k=2"));
}

TEST_F(EinstellungenTest, LetsAnObserverRemoveItself) {
    Beobachter a("a", protokoll);
    const Beobachter b("b", protokoll);
    a.tue = [&] { einstellungen.beobachterAbmelden(&a); };
    einstellungen.setze("k", "1");
    einstellungen.setze("k", "2");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "b:3:k=1", "b:3:k=2"));
}

TEST_F(EinstellungenTest, DoesNotTellWhoWasRemovedMeanwhile) {
    Beobachter a("a", protokoll);
    auto b = std::make_unique<Beobachter>("b", protokoll);
    const Beobachter c("c", protokoll);
    a.tue = [&] { b.reset(); };
    einstellungen.setze("k", "1");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "c:3:k=1"));
}

TEST_F(EinstellungenTest, TellsWhoWasAddedMeanwhileFromTheNextChangeOn) {
    Beobachter a("a", protokoll);
    std::unique_ptr<Beobachter> b;
    a.tue = [&] {
        if (!b)
            b = std::make_unique<Beobachter>("b", protokoll);
    };
    einstellungen.setze("k", "1");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1"));
    einstellungen.setze("k", "2");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "a:3:k=2", "b:3:k=2"));
}

TEST_F(EinstellungenTest, LetsAnObserverChangeSettings) {
    Beobachter a("a", protokoll);
    const Beobachter b("b", protokoll);
    a.tue = [&] { einstellungen.setze("l", "x"); };
    einstellungen.setze("k", "1");
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "a:3:l=x", "b:3:l=x", "b:3:k=1"));
}

TEST_F(EinstellungenTest, TellsAllOthersAndThenPassesTheFirstExceptionOn) {
    Beobachter a("a", protokoll);
    Beobachter b("b", protokoll);
    const Beobachter c("c", protokoll);
    a.tue = [] { throw std::runtime_error("erste"); };
    b.tue = [] { throw 17; };
    EXPECT_THROW(
        {
            try {
                einstellungen.setze("k", "1");
            } catch (const std::runtime_error& ausnahme) {
                EXPECT_STREQ(ausnahme.what(), "erste");
                throw;
            }
        },
        std::runtime_error);
    EXPECT_THAT(protokoll, ElementsAre("a:3:k=1", "b:3:k=1", "c:3:k=1"));
    EXPECT_EQ(einstellungen.wert("k"), "1");

    a.tue = b.tue = nullptr;
    EXPECT_NO_THROW(einstellungen.setze("k", "2"));
}

TEST_F(EinstellungenTest, ServesSeveralThreadsAtOnce) {
    struct Zaehler : AenderungsBeobachter {
        void empfangeAenderungsNachricht(const AenderungsNachricht&) override { ++gehoert; }
        std::atomic<int> gehoert = 0;
    };
    constexpr int kRunden = 500;
    Zaehler immer;
    einstellungen.beobachterAnmelden(&immer);
    {
        std::vector<std::jthread> threads;
        for (const std::string schluessel : {"k", "l"})
            threads.emplace_back([schluessel] {
                for (int i = 1; i <= kRunden; ++i)
                    Einstellungen().setze(schluessel, std::to_string(i));
            });
        threads.emplace_back([] {
            static Zaehler fluechtig; // may still be told while it is being removed
            for (int i = 0; i < kRunden; ++i) {
                Einstellungen().beobachterAnmelden(&fluechtig);
                Einstellungen().wert("k");
                Einstellungen().beobachterAbmelden(&fluechtig);
            }
        });
    }
    einstellungen.beobachterAbmelden(&immer);
    EXPECT_EQ(immer.gehoert, 2 * kRunden);
}
