#include <orvoelf/Dateiblick.h>

#include <orvoutil/SharedLib.h>

#include "ElfDatei.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <gnu/libc-version.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

using namespace orvo::orvoelf;
using orvo::orvoutil::SharedLib;
using namespace testing;

namespace {

int systemaufrufe = 0;
int letzteOeffnungsart = 0;

/// The next reading but so many yields that instead of the bytes: fewer of them, or an error number below zero.
struct Lesung {
    int nach = -1;
    ssize_t ergebnis = 0;
};
Lesung abweichende;

/// Faults of the system's other functions.
struct {
    bool fstat = false;
    bool istVerliehen = false; ///< opening fails unless it may wait
} stoerung;

} // namespace

// The linker replaces the system's functions with these.
extern "C" {

int __real_open(const char* pfad, int art, ...); // as the system's: callers pass arguments another way
int __real_close(int deskriptor);
ssize_t __real_pread(int deskriptor, void* ziel, std::size_t anzahl, off_t ab);
int __real_stat(const char* pfad, struct stat* zustand);
int __real_fstat(int deskriptor, struct stat* zustand);
int __wrap_open(const char* pfad, int art);
int __wrap_close(int deskriptor);
ssize_t __wrap_pread(int deskriptor, void* ziel, std::size_t anzahl, off_t ab);
int __wrap_stat(const char* pfad, struct stat* zustand);
int __wrap_fstat(int deskriptor, struct stat* zustand);

int __wrap_open(const char* pfad, int art) {
    ++systemaufrufe;
    letzteOeffnungsart = art;
    if (!stoerung.istVerliehen || !(art & O_NONBLOCK))
        return __real_open(pfad, art);
    errno = EWOULDBLOCK;
    return -1;
}
int __wrap_close(int deskriptor) { return ++systemaufrufe, __real_close(deskriptor); }
ssize_t __wrap_pread(int deskriptor, void* ziel, std::size_t anzahl, off_t ab) {
    ++systemaufrufe;
    const bool weichtAb = abweichende.nach >= 0 && abweichende.nach-- == 0;
    if (!weichtAb || abweichende.ergebnis >= 0)
        return __real_pread(deskriptor, ziel, weichtAb ? std::size_t(abweichende.ergebnis) : anzahl, ab);
    errno = static_cast<int>(-abweichende.ergebnis);
    return -1;
}
int __wrap_stat(const char* pfad, struct stat* zustand) {
    return ++systemaufrufe, __real_stat(pfad, zustand);
}
int __wrap_fstat(int deskriptor, struct stat* zustand) {
    return ++systemaufrufe, stoerung.fstat ? -1 : __real_fstat(deskriptor, zustand);
}
}

namespace {

constexpr char kKeineDatei[] = "keine gew\xF6hnliche Datei";
constexpr char kNichtZuOeffnen[] = "kann nicht ge\xF6"
                                   "ffnet werden: ";

int aufrufeBei(const std::string& pfad) {
    systemaufrufe = 0;
    EXPECT_EQ(blickeAufDatei(pfad).grund, "") << pfad;
    return systemaufrufe;
}

class DateiblickAufAlle : public TestWithParam<const char*> {};

/// A file with some bytes of another one.
std::string schreibe(const Verzeichnis& verzeichnis, const ElfDatei& datei) {
    return verzeichnis.schreibe("geaendert.so", datei.bytes);
}

/// A library with its dynamic section, its section table and, if wanted, its segment table far from the rest.
ElfDatei verstreute(bool auchSegmenttabelle) {
    ElfDatei datei(HAS_EVERYTHING);
    const ElfW(Phdr) dynamik = datei.segmentVom(PT_DYNAMIC);
    for (unsigned i = 0; i < datei.kopf().e_phnum; ++i) {
        auto& s = datei.segment(i);
        if (s.p_type != PT_LOAD || s.p_vaddr > dynamik.p_vaddr || dynamik.p_vaddr - s.p_vaddr >= s.p_filesz)
            continue;
        const std::string bytes = datei.bytes.substr(s.p_offset, s.p_filesz);
        s.p_offset += 0x80000;
        datei.bytes.resize(s.p_offset);
        datei.bytes += bytes;
        break;
    }
    datei.bytes.resize(0x100000);
    if (auchSegmenttabelle)
        datei.haengeSegmentAn();
    const std::string abschnitte =
        datei.bytes.substr(datei.kopf().e_shoff, datei.kopf().e_shnum * sizeof(ElfW(Shdr)));
    datei.bytes.resize(0x180000);
    datei.kopf().e_shoff = datei.bytes.size();
    datei.bytes += abschnitte;
    return datei;
}

} // namespace

/// The leak checker takes thread-local variables of a closed library for alive and follows what is in their place. So
/// it must leave out all of them.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options() { return "use_tls=0"; }

TEST_P(DateiblickAufAlle, PassesWhatThenWorks) {
    EXPECT_EQ(blickeAufDatei(GetParam()).grund, "");
    SharedLib bibliothek(GetParam());
    ASSERT_TRUE(bibliothek.load()) << bibliothek.getLastError();
    void* const zaehle = bibliothek.getSymbol("zaehle");
    ASSERT_NE(zaehle, nullptr);
    // Without the table, an exception ends the process.
    if (!std::strstr(GetParam(), "WithoutUnwinderTable")) {
        EXPECT_EQ(reinterpret_cast<int (*)()>(zaehle)(), 10);
    }
    EXPECT_TRUE(bibliothek.unload());
}

INSTANTIATE_TEST_SUITE_P(Linked, DateiblickAufAlle, Values(ALLE_BIBLIOTHEKEN),
                         [](const auto& fall) { return std::filesystem::path(fall.param).stem().string(); });

TEST(Dateiblick, PassesTheLibrariesOfThisSystem) {
    Dl_info bibliothek{};
    // A function that no sanitizer replaces.
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&gnu_get_libc_version), &bibliothek), 0);
    int gesehene = 0;
    for (const auto& eintrag :
         std::filesystem::directory_iterator(std::filesystem::path(bibliothek.dli_fname).parent_path())) {
        const std::string pfad = eintrag.path().string();
        if (!eintrag.is_regular_file() || pfad.find(".so") == std::string::npos || gesehene == 200)
            continue;
        const Dateibefund befund = blickeAufDatei(pfad);
        if (befund.mangel == Dateimangel::KEINE_ELF_DATEI) // scripts of the linker
            continue;
        EXPECT_EQ(befund.grund, "") << pfad;
        ++gesehene;
    }
    EXPECT_GT(gesehene, 20);
}

TEST(Dateiblick, TakesThreeSystemCallsForASmallFile) {
    if (std::filesystem::file_size(HAS_EVERYTHING_STRIPPED) > 32768U)
        GTEST_SKIP() << "linkers leave room for pages of 64 KB";
    EXPECT_EQ(aufrufeBei(HAS_EVERYTHING_STRIPPED), 3) << "open, read, close";
}

TEST(Dateiblick, TakesAtMostFiveSystemCallsHoweverLargeTheFileIs) {
    const Verzeichnis verzeichnis;
    EXPECT_LE(aufrufeBei(LIBORVOUTIL), 5);
    const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, "riesig.so");
    for (const std::uintmax_t laenge :
         {std::uintmax_t{100} << 10, std::uintmax_t{4} << 20, std::uintmax_t{5} << 30}) {
        std::filesystem::resize_file(pfad, laenge); // a sparse file
        EXPECT_LE(aufrufeBei(pfad), 5) << laenge;
    }
    Dl_info standardbibliothek{};
    ASSERT_NE(dladdr(dlsym(RTLD_DEFAULT, "_ZSt4cout"), &standardbibliothek), 0); // some megabytes
    EXPECT_LE(aufrufeBei(standardbibliothek.dli_fname), 5);
}

TEST(Dateiblick, ASectionWithoutBitsInsideASegmentWithBitsPasses) {
    // Like the procedure linkage table on some processors.
    const Verzeichnis verzeichnis;
    ElfDatei datei(HAS_EVERYTHING);
    datei.abschnittVom(SHT_INIT_ARRAY).sh_type = SHT_NOBITS;
    EXPECT_EQ(blickeAufDatei(schreibe(verzeichnis, datei)).grund, "");
}

TEST(Dateiblick, ALibraryWithoutASectionTablePasses) {
    const Verzeichnis verzeichnis;
    ElfDatei datei(HAS_EVERYTHING);
    datei.bytes.resize(datei.kopf().e_shoff);
    EXPECT_EQ(blickeAufDatei(schreibe(verzeichnis, datei)).mangel, Dateimangel::ABGESCHNITTEN);
    datei.ohneAbschnitte();
    EXPECT_EQ(blickeAufDatei(schreibe(verzeichnis, datei)).grund, "");
}

TEST(Dateiblick, MoreBytesBehindTheEndAndALinkPass) {
    const Verzeichnis verzeichnis;
    ElfDatei datei(HAS_EVERYTHING);
    datei.bytes.append(100000, 'x');
    EXPECT_EQ(blickeAufDatei(schreibe(verzeichnis, datei)).grund, "");
    std::filesystem::create_symlink(HAS_EVERYTHING, verzeichnis.pfad("link.so"));
    EXPECT_EQ(blickeAufDatei(verzeichnis.pfad("link.so")).grund, "");
}

TEST(Dateiblick, ProgramsAreNoLibraries) {
    for (const char* const pfad : {A_PROGRAM, A_POSITION_INDEPENDENT_PROGRAM, "/proc/self/exe"}) {
        const Dateibefund befund = blickeAufDatei(pfad);
        EXPECT_EQ(befund.mangel, Dateimangel::KEINE_BIBLIOTHEK) << pfad;
        EXPECT_EQ(befund.grund, "ausf\xFChrbares Programm, keine Bibliothek") << pfad;
    }
}

TEST(Dateiblick, ALibraryForAnotherReleaseIsRefused) {
    EXPECT_EQ(blickeAufDatei(NEEDS_ANOTHER_PLUGIN_RELEASE).mangel, Dateimangel::ANDERE_AUSGABE);
    EXPECT_EQ(blickeAufDatei(NEEDS_ANOTHER_PLUGIN_RELEASE).grund,
              "f\xFCr eine andere Ausgabe gebaut: braucht liborvoplugin.so.99, hier ist " LIBORVOPLUGIN);
    EXPECT_EQ(blickeAufDatei(NEEDS_ANOTHER_UTIL_RELEASE).grund,
              "f\xFCr eine andere Ausgabe gebaut: braucht liborvoutil.so.99, hier ist " LIBORVOUTIL_NAME);
    EXPECT_EQ(blickeAufDatei(NEEDS_THIS_PLUGIN_RELEASE).grund, "");
    EXPECT_EQ(blickeAufDatei(NEEDS_THIS_UTIL_RELEASE).grund, "");

    const Verzeichnis verzeichnis;
    ElfDatei laengere(NEEDS_ANOTHER_UTIL_RELEASE); // its number begins as this one's
    const std::string name = LIBORVOUTIL_NAME "0";
    const std::size_t stelle = laengere.bytes.find("liborvoutil.so.99");
    ASSERT_NE(stelle, std::string::npos);
    std::memcpy(&laengere.bytes[stelle], name.c_str(), name.size() + 1);
    EXPECT_EQ(blickeAufDatei(verzeichnis.schreibe("laengere.so", laengere.bytes)).grund,
              "f\xFCr eine andere Ausgabe gebaut: braucht " + name + ", hier ist " LIBORVOUTIL_NAME);
}

TEST(Dateiblick, SaysWhyAFileCannotBeOpened) {
    const Verzeichnis verzeichnis;
    std::filesystem::create_symlink("kreis.so", verzeichnis.pfad("kreis.so"));
    const auto grund = [](const std::string& pfad) {
        const Dateibefund befund = blickeAufDatei(pfad);
        EXPECT_EQ(befund.mangel, Dateimangel::NICHT_ZU_OEFFNEN);
        return befund.grund;
    };
    EXPECT_EQ(grund("/gibt/es/nicht.so"), std::string(kNichtZuOeffnen) + "No such file or directory");
    EXPECT_EQ(grund(HAS_EVERYTHING "/x"), std::string(kNichtZuOeffnen) + "Not a directory");
    EXPECT_EQ(grund("/" + std::string(5000, 'x')), std::string(kNichtZuOeffnen) + "File name too long");
    EXPECT_EQ(grund(verzeichnis.pfad("kreis.so")),
              std::string(kNichtZuOeffnen) + "Too many levels of symbolic links");
}

TEST(Dateiblick, NeverWaitsForWhatIsNoRegularFile) {
    const Verzeichnis verzeichnis;
    const std::string fifo = verzeichnis.pfad("fifo.so"), buchse = verzeichnis.pfad("buchse.so");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    sockaddr_un adresse{};
    adresse.sun_family = AF_UNIX;
    std::strncpy(adresse.sun_path, buchse.c_str(), sizeof(adresse.sun_path) - 1);
    const int horcher = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(horcher, reinterpret_cast<const sockaddr*>(&adresse), sizeof(adresse)), 0);
    for (const std::string& pfad : {fifo, buchse, verzeichnis.pfad(), std::string("/dev/null"),
                                    std::string("/dev/tty"), std::string("/dev/zero")}) {
        EXPECT_EQ(blickeAufDatei(pfad).grund, kKeineDatei) << pfad; // and does not block
        EXPECT_EQ(blickeAufDatei(pfad).mangel, Dateimangel::KEINE_DATEI) << pfad;
    }
    close(horcher);
}

TEST(Dateiblick, WaitsForTheEndOfAWriteLeaseAsTheLoaderDoes) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.kopiere(HAS_EVERYTHING, "verliehen.so");
    sigset_t bruch;
    sigemptyset(&bruch);
    sigaddset(&bruch, SIGIO);
    ASSERT_EQ(sigprocmask(SIG_BLOCK, &bruch, nullptr), 0);
    int bereit[2];
    ASSERT_EQ(pipe(bereit), 0);
    const pid_t inhaber = fork();
    if (inhaber == 0) { // gives the lease up when the file is opened
        const int deskriptor = __real_open(pfad.c_str(), O_RDWR);
        const char geliehen = fcntl(deskriptor, F_SETLEASE, F_WRLCK) == 0 ? 1 : 0;
        if (write(bereit[1], &geliehen, 1) != 1 || !geliehen)
            _exit(1);
        int signal = 0;
        sigwait(&bruch, &signal);
        fcntl(deskriptor, F_SETLEASE, F_UNLCK);
        _exit(0);
    }
    char geliehen = 0;
    ASSERT_EQ(read(bereit[0], &geliehen, 1), 1);
    if (geliehen) {
        EXPECT_EQ(blickeAufDatei(pfad).grund, "");
    }
    int ausgang = 0;
    waitpid(inhaber, &ausgang, 0);
    if (!geliehen)
        GTEST_SKIP() << "no leases on this file system";
    EXPECT_EQ(ausgang, 0) << "nobody asked for the file";
}

TEST(Dateiblick, AReadingThatIsCutShortMakesNoLibraryAnother) {
    const Verzeichnis verzeichnis;
    const std::string ganze = verzeichnis.kopiere(LIBORVOUTIL, "ganz.so");
    const std::string halbe = verzeichnis.kopiere(LIBORVOUTIL, "halb.so");
    std::filesystem::resize_file(halbe, std::filesystem::file_size(halbe) / 2);
    for (const int nach : {0, 1})
        for (const ssize_t bytes : {0, 1, 3, 63, 100, 1000, 8000}) {
            abweichende = {nach, bytes};
            EXPECT_EQ(blickeAufDatei(ganze).grund, "") << nach << " " << bytes;
            EXPECT_EQ(abweichende.nach, -1) << "there were fewer readings";
            abweichende = {nach, bytes};
            EXPECT_EQ(blickeAufDatei(halbe).mangel, Dateimangel::ABGESCHNITTEN) << nach << " " << bytes;
        }
}

TEST(Dateiblick, AnInterruptedReadingIsRepeatedAndAnErrorIsTheReason) {
    for (const int nach : {0, 1}) {
        abweichende = {nach, -EINTR};
        EXPECT_EQ(blickeAufDatei(LIBORVOUTIL).grund, "");
        EXPECT_EQ(abweichende.nach, -1) << "there were fewer readings";
        abweichende = {nach, -EIO};
        EXPECT_EQ(blickeAufDatei(LIBORVOUTIL).mangel, Dateimangel::NICHT_ZU_OEFFNEN);
        abweichende = {nach, -EIO};
        EXPECT_EQ(blickeAufDatei(LIBORVOUTIL).grund, std::string(kNichtZuOeffnen) + "Input/output error");
    }
    abweichende = {};
}

TEST(Dateiblick, FilesOfOtherKindsAreNoLibraries) {
    const Verzeichnis verzeichnis;
    for (const char* const inhalt : {"", "x", "Text\n", "#!/bin/sh\n", "!<arch>\n", "\x7f",
                                     "\x7f"
                                     "EL"}) {
        const Dateibefund befund = blickeAufDatei(verzeichnis.schreibe("text.so", inhalt));
        EXPECT_EQ(befund.mangel, Dateimangel::KEINE_ELF_DATEI) << inhalt;
        EXPECT_EQ(befund.grund, "keine ELF-Datei") << inhalt;
    }
}

TEST(Dateiblick, AnErrorOfTheLastReadingIsTheReason) {
    const Verzeichnis verzeichnis;
    ElfDatei datei = verstreute(false);
    datei.bytes.resize(datei.bytes.size() + 0x8000); // so that the reading before is a whole one
    const std::string pfad = schreibe(verzeichnis, datei);
    EXPECT_EQ(blickeAufDatei(pfad).grund, "");
    abweichende = {2, -EIO};
    EXPECT_EQ(blickeAufDatei(pfad).grund, std::string(kNichtZuOeffnen) + "Input/output error");
    EXPECT_EQ(abweichende.nach, -1) << "there were fewer readings";
    abweichende = {};
}

TEST(Dateiblick, LeavesToTheLoaderWhatTakesTooManyReadings) {
    const Verzeichnis verzeichnis;
    const std::string pfad = schreibe(verzeichnis, verstreute(true));
    EXPECT_EQ(blickeAufDatei(pfad).grund, "");
    stoerung = {.fstat = true};
    EXPECT_EQ(blickeAufDatei(pfad).grund, "abgeschnitten: Der dynamische Abschnitt endet hinter der Datei");
    stoerung = {};
}

TEST(Dateiblick, ReadsASmallFileOnceMoreWhenItIsCut) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.schreibe("kurz.so", ElfDatei(HAS_EVERYTHING).bytes.substr(0, 1000));
    systemaufrufe = 0;
    EXPECT_EQ(blickeAufDatei(pfad).mangel, Dateimangel::ABGESCHNITTEN);
    EXPECT_EQ(systemaufrufe, 6) << "open, read twice, two for the state, close";
}

TEST(Dateiblick, WaitsForNoLeaseOnWhatIsNoRegularFile) {
    const Verzeichnis verzeichnis;
    const std::string fifo = verzeichnis.pfad("fifo.so");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const int eingang = dup(STDIN_FILENO);
    stoerung = {.istVerliehen = true};
    EXPECT_EQ(blickeAufDatei(fifo).grund, kKeineDatei); // and does not block
    EXPECT_EQ(blickeAufDatei(verzeichnis.pfad("fehlt.so")).mangel, Dateimangel::NICHT_ZU_OEFFNEN);
    stoerung = {};
    EXPECT_NE(fcntl(STDIN_FILENO, F_GETFD), -1);
    dup2(eingang, STDIN_FILENO);
    close(eingang);
}

TEST(Dateiblick, TakesAnyDescriptorAndAnyFormerError) {
    const int eingang = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    const int vorher = offeneDeskriptoren();
    errno = EWOULDBLOCK;
    for (int i = 0; i < 2; ++i) {
        errno = EWOULDBLOCK;
        EXPECT_EQ(blickeAufDatei(HAS_EVERYTHING).grund, "");
    }
    EXPECT_EQ(offeneDeskriptoren(), vorher);
    dup2(eingang, STDIN_FILENO);
    close(eingang);
}

// Programs that are started meanwhile get no descriptor, and no terminal becomes the process's own.
TEST(Dateiblick, OpensForItselfAlone) {
    const Verzeichnis verzeichnis;
    blickeAufDatei(verzeichnis.pfad());
    EXPECT_EQ(letzteOeffnungsart, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    stoerung.istVerliehen = true;
    blickeAufDatei(verzeichnis.schreibe("verliehen", ""));
    stoerung.istVerliehen = false;
    EXPECT_EQ(letzteOeffnungsart, O_RDONLY | O_CLOEXEC | O_NOCTTY);
}

TEST(Dateiblick, NoDescriptorStaysOpen) {
    const Verzeichnis verzeichnis;
    const std::string text = verzeichnis.schreibe("text.so", "Text");
    const int vorher = offeneDeskriptoren();
    for (const std::string& pfad :
         {std::string(HAS_EVERYTHING), text, verzeichnis.pfad(), std::string("/dev/null"),
          std::string("/gibt/es/nicht"), std::string(A_PROGRAM)})
        blickeAufDatei(pfad);
    EXPECT_EQ(offeneDeskriptoren(), vorher);
}
