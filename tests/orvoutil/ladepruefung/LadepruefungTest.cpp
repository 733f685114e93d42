#include <orvoutil/ladepruefung/Ladepruefung.h>

#include <orvoutil/SharedLib.h>
#include <orvoutil/Vorwissen.h>

#include "Valgrind.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <link.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

using orvo::orvoutil::grundGegenLaden;
using orvo::orvoutil::SharedLib;
using orvo::orvoutil::Vorwissen;
using namespace testing;

namespace {

constexpr char kKeineDatei[] = "keine gew\xF6hnliche Datei";
constexpr char kNichtZuOeffnen[] = "kann nicht ge\xF6"
                                   "ffnet werden: ";
constexpr char kProgramm[] = "ausf\xFChrbares Programm, keine Bibliothek";

} // namespace

/// The search for leaks takes the thread-local variables of a library that was closed for still there, and follows
/// what stands in their place; so it leaves all of them out.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options() { return "use_tls=0"; }

TEST(Ladepruefung, ALibraryInOrderPasses) {
    EXPECT_EQ(grundGegenLaden(HAS_EVERYTHING), "");
    EXPECT_EQ(grundGegenLaden(LIBORVOUTIL), "");
}

TEST(Ladepruefung, ALinkToALibraryPasses) {
    const Verzeichnis verzeichnis;
    std::filesystem::create_symlink(HAS_EVERYTHING, verzeichnis.pfad("link.so"));
    EXPECT_EQ(grundGegenLaden(verzeichnis.pfad("link.so")), "");
}

TEST(Ladepruefung, ProgramsAreNoLibraries) {
    for (const char* const pfad : {A_PROGRAM, A_POSITION_INDEPENDENT_PROGRAM, "/proc/self/exe"})
        EXPECT_EQ(grundGegenLaden(pfad), kProgramm) << pfad;
}

TEST(Ladepruefung, TheProgramThatRunsThisIsNoLibrary) {
    EXPECT_EQ(grundGegenLaden(std::filesystem::canonical("/proc/self/exe").string()), kProgramm);
}

TEST(Ladepruefung, ALibraryForAnotherReleaseIsRefused) {
    EXPECT_EQ(grundGegenLaden(NEEDS_ANOTHER_PLUGIN_RELEASE),
              "f\xFCr eine andere Ausgabe gebaut: braucht liborvoplugin.so.99, hier ist " LIBORVOPLUGIN);
    EXPECT_EQ(grundGegenLaden(NEEDS_ANOTHER_UTIL_RELEASE),
              "f\xFCr eine andere Ausgabe gebaut: braucht liborvoutil.so.99, hier ist " LIBORVOUTIL_NAME);
}

TEST(Ladepruefung, ALibraryForThisReleasePasses) {
    EXPECT_EQ(grundGegenLaden(NEEDS_THIS_PLUGIN_RELEASE), "");
    EXPECT_EQ(grundGegenLaden(NEEDS_THIS_UTIL_RELEASE), "");
}

TEST(Ladepruefung, SaysWhyAFileCannotBeOpened) {
    EXPECT_EQ(grundGegenLaden("/gibt/es/nicht.so"),
              std::string(kNichtZuOeffnen) + "No such file or directory");
    EXPECT_EQ(grundGegenLaden(HAS_EVERYTHING "/x"), std::string(kNichtZuOeffnen) + "Not a directory");
    EXPECT_EQ(grundGegenLaden("/" + std::string(5000, 'x')),
              std::string(kNichtZuOeffnen) + "File name too long");
}

TEST(Ladepruefung, SaysThatALinkLeadsNowhere) {
    const Verzeichnis verzeichnis;
    std::filesystem::create_symlink("gibt es nicht", verzeichnis.pfad("hohl.so"));
    std::filesystem::create_symlink("kreis.so", verzeichnis.pfad("kreis.so"));
    EXPECT_EQ(grundGegenLaden(verzeichnis.pfad("hohl.so")),
              std::string(kNichtZuOeffnen) + "No such file or directory");
    EXPECT_EQ(grundGegenLaden(verzeichnis.pfad("kreis.so")),
              std::string(kNichtZuOeffnen) + "Too many levels of symbolic links");
}

TEST(Ladepruefung, SaysThatAFileMustNotBeRead) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, "geheim.so");
    std::filesystem::permissions(verzeichnis.pfad(), std::filesystem::perms::all);
    std::filesystem::permissions(pfad, std::filesystem::perms::none);
    const pid_t kind = fork();
    if (kind == 0) { // the superuser may read everything, so the child is somebody else
        const bool istNiemand = geteuid() != 0 || seteuid(65534) == 0;
        const bool gesagt = grundGegenLaden(pfad) == std::string(kNichtZuOeffnen) + "Permission denied";
        _exit(istNiemand && gesagt ? 0 : 1);
    }
    int ausgang = 0;
    waitpid(kind, &ausgang, 0);
    EXPECT_EQ(ausgang, 0);
}

TEST(Ladepruefung, WhatIsNoRegularFileIsNeverOpened) {
    const Verzeichnis verzeichnis;
    const std::string fifo = verzeichnis.pfad("fifo.so");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    sockaddr_un adresse{};
    adresse.sun_family = AF_UNIX;
    std::strncpy(adresse.sun_path, verzeichnis.pfad("buchse.so").c_str(), sizeof(adresse.sun_path) - 1);
    const int buchse = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(buchse, reinterpret_cast<const sockaddr*>(&adresse), sizeof(adresse)), 0);
    for (const std::string& pfad :
         {fifo, verzeichnis.pfad("buchse.so"), verzeichnis.pfad(), std::string("/dev/null"),
          std::string("/dev/tty"), std::string("/dev/zero")})
        EXPECT_EQ(grundGegenLaden(pfad), kKeineDatei) << pfad; // and comes back
    close(buchse);
}

TEST(Ladepruefung, FilesOfOtherKindsAreNoLibraries) {
    const Verzeichnis verzeichnis;
    for (const char* const inhalt : {"", "x", "Text\n", "#!/bin/sh\n", "!<arch>\n"})
        EXPECT_EQ(grundGegenLaden(verzeichnis.schreibe("text.so", inhalt)), "keine ELF-Datei") << inhalt;
}

TEST(Ladepruefung, AHugeFileCostsNoMoreThanASmallOne) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, "riesig.so");
    std::filesystem::resize_file(pfad, std::uintmax_t{5} << 30); // takes no room on the disk
    EXPECT_EQ(grundGegenLaden(pfad), "");
    const std::string leer = verzeichnis.schreibe("leer.so", "");
    std::filesystem::resize_file(leer, std::uintmax_t{5} << 30);
    EXPECT_EQ(grundGegenLaden(leer), "keine ELF-Datei");
}

TEST(Ladepruefung, NamesThatTheLoaderWouldChangeAreRefused) {
    const Verzeichnis verzeichnis;
    for (const char* const name : {"$ORIGIN", "$LIB", "$PLATFORM", "${ORIGIN}", "${LIB}", "${PLATFORM}"}) {
        EXPECT_EQ(grundGegenLaden(std::string("./") + name + "/x.so"),
                  std::string("Platzhalter im Namen: ") + name);
        EXPECT_EQ(grundGegenLaden(verzeichnis.kopiere(HAS_EVERYTHING, std::string("x") + name)),
                  std::string("Platzhalter im Namen: ") + name);
    }
    EXPECT_EQ(grundGegenLaden("/$$ORIGIN"), "Platzhalter im Namen: $ORIGIN");
    EXPECT_EQ(grundGegenLaden("/${ORIGIN}x"), "Platzhalter im Namen: ${ORIGIN}");
    EXPECT_EQ(grundGegenLaden("/$x$LIB.so"), "Platzhalter im Namen: $LIB");
}

TEST(Ladepruefung, NamesWithADollarThatTheLoaderLeavesAlonePass) {
    const Verzeichnis verzeichnis;
    for (const char* const name :
         {"$", "a$", "$ORIGINAL", "${ORIGIN", "$origin", "$LIB_", "${}", "$PLATFORM2", "${LIB"}) {
        const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, name);
        EXPECT_EQ(grundGegenLaden(pfad), "") << name;
        if (laeuftUnterValgrind()) // which takes the way the loader compares names for an error
            continue;
        SharedLib bibliothek(pfad);
        EXPECT_TRUE(bibliothek.load()) << bibliothek.getLastError();
    }
}

/// What the quick look says, when a listing has shown the file and when not.
void erwarteDasselbe(const std::string& pfad) {
    const std::string grund = grundGegenLaden(pfad);
    for (const bool gelistet : {false, true}) {
        Vorwissen vorwissen{.gelistet = gelistet, .geprueft = {}};
        EXPECT_EQ(grundGegenLaden(pfad, vorwissen), grund) << pfad << ", listed: " << gelistet;
        EXPECT_FALSE(vorwissen.gelistet) << "holds once only";
        EXPECT_TRUE(grund.empty() || !vorwissen.geprueft.istDatei()) << pfad;
    }
}

TEST(Ladepruefung, TheQuickLookSaysTheSame) {
    const Verzeichnis verzeichnis;
    const std::string fifo = verzeichnis.pfad("fifo.so");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::filesystem::create_symlink("gibt es nicht", verzeichnis.pfad("hohl.so"));
    for (const std::string& pfad :
         {std::string(HAS_EVERYTHING), std::string(LIBORVOUTIL), std::string(A_PROGRAM),
          std::string("/proc/self/exe"), fifo, verzeichnis.pfad(), verzeichnis.pfad("hohl.so"),
          verzeichnis.pfad("fehlt.so"), std::string("/dev/null"), verzeichnis.schreibe("leer.so", ""),
          verzeichnis.schreibe("text.so", "Text"), verzeichnis.kopiere(HAS_EVERYTHING, "$ORIGIN")})
        erwarteDasselbe(pfad);
}

TEST(Ladepruefung, TheQuickLookSaysTheSameOfFilesOfAnyLength) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, "datei.so");
    const auto ganz = std::filesystem::file_size(pfad);
    constexpr std::uintmax_t kImSpeicher = 32768; // so much is taken in at once
    for (const std::uintmax_t laenge :
         {kImSpeicher - 1, kImSpeicher, kImSpeicher + 1, kImSpeicher * 5, std::uintmax_t{5} << 30}) {
        std::filesystem::resize_file(pfad, std::max(laenge, ganz)); // longer by zeros
        erwarteDasselbe(pfad);
    }
    for (std::uintmax_t laenge = ganz; laenge > 0; laenge -= std::min<std::uintmax_t>(laenge, 509)) {
        std::filesystem::resize_file(pfad, laenge);
        erwarteDasselbe(pfad);
    }
}

/// Turns a byte in the middle of the header into another one, and puts the time back to what it was.
void verdirb(const std::string& pfad) {
    const auto vorher = std::filesystem::last_write_time(pfad);
    std::fstream datei(pfad, std::ios::in | std::ios::out | std::ios::binary);
    datei.seekp(offsetof(ElfW(Ehdr), e_machine));
    datei.put('\x7F');
    datei.close();
    std::filesystem::last_write_time(pfad, vorher);
}

TEST(Ladepruefung, AFileThatPassedIsReadAgainOnceItHasChanged) {
    const Verzeichnis verzeichnis;
    const std::string ueberschrieben = verzeichnis.kopiere(HAS_EVERYTHING, "ueberschrieben.so");
    const std::string ausgetauscht = verzeichnis.kopiere(HAS_EVERYTHING, "ausgetauscht.so");
    const std::string andere = verzeichnis.kopiere(HAS_EVERYTHING, "andere.so");
    verdirb(andere);
    std::this_thread::sleep_for(std::chrono::milliseconds(2100)); // the coarsest step that times may have
    std::map<std::string, Vorwissen> vorwissen;
    for (const std::string& pfad : {ueberschrieben, ausgetauscht}) {
        ASSERT_EQ(grundGegenLaden(pfad, vorwissen[pfad]), "");
        const Vorwissen gemerkt = vorwissen[pfad];
        ASSERT_TRUE(gemerkt.geprueft.istDatei()) << "its times are old enough to be trusted";
        EXPECT_EQ(grundGegenLaden(pfad, vorwissen[pfad]), "");
        EXPECT_EQ(vorwissen[pfad].geprueft, gemerkt.geprueft);
    }
    verdirb(ueberschrieben);
    std::filesystem::rename(andere, ausgetauscht);
    for (const std::string& pfad : {ueberschrieben, ausgetauscht}) {
        EXPECT_THAT(grundGegenLaden(pfad, vorwissen[pfad]), HasSubstr("Prozessor")) << pfad;
        EXPECT_FALSE(vorwissen[pfad].geprueft.istDatei()) << pfad;
    }
}

TEST(Ladepruefung, AFileIsNotRememberedWhileAChangeMightNotShow) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, "datei.so");
    std::filesystem::last_write_time(pfad,
                                     std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    Vorwissen vorwissen;
    EXPECT_EQ(grundGegenLaden(pfad, vorwissen), "");
    EXPECT_FALSE(vorwissen.geprueft.istDatei());
}

TEST(Ladepruefung, NoDescriptorStaysOpen) {
    const Verzeichnis verzeichnis;
    const std::string text = verzeichnis.schreibe("text.so", "Text");
    const int vorher = offeneDeskriptoren();
    for (const std::string& pfad :
         {std::string(HAS_EVERYTHING), text, verzeichnis.pfad(), std::string("/dev/null"),
          std::string("/gibt/es/nicht"), std::string(A_PROGRAM)})
        grundGegenLaden(pfad);
    EXPECT_EQ(offeneDeskriptoren(), vorher);
}

TEST(Ladepruefung, StandsBeforeTheLoader) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, "kurz.so");
    std::filesystem::resize_file(pfad, 4096); // the loader would fall over it
    SharedLib bibliothek(pfad);
    EXPECT_FALSE(bibliothek.load());
    EXPECT_THAT(bibliothek.getLastError(),
                MatchesRegex(pfad + ": abgeschnitten: Segment [0-9] endet hinter der Datei"));

    SharedLib text(verzeichnis.schreibe("text.so", "Text"));
    EXPECT_FALSE(text.load());
    EXPECT_EQ(text.getLastError(), text.getName() + ": keine ELF-Datei");
}

TEST(Ladepruefung, LetsALibraryThroughThatThenWorks) {
    for (const char* const pfad :
         {HAS_EVERYTHING, HAS_EVERYTHING_STRIPPED, HAS_EVERYTHING_OLD_HASH, HAS_EVERYTHING_PACKED,
          HAS_EVERYTHING_ONE_MAPPING, HAS_EVERYTHING_OWN_START}) {
        SharedLib bibliothek(pfad);
        ASSERT_TRUE(bibliothek.load()) << bibliothek.getLastError();
        void* const zaehle = bibliothek.getSymbol("zaehle");
        ASSERT_NE(zaehle, nullptr) << pfad;
        EXPECT_EQ(reinterpret_cast<int (*)()>(zaehle)(), 10) << pfad;
        EXPECT_TRUE(bibliothek.unload());
    }
}
