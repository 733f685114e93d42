// Where the note lies in a file, and files that have none.

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/beschreibung/Notiz.h>
#include <orvoplugin/plugin/Beschreibungsplatz.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>

#include "Platzdateien.h"
#include "TestPlugins.h"
#include "support/Beschriftung.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::string inhaltVon(const std::string& pfad) {
    std::ifstream datei(pfad, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(datei), {});
}

class NotizTest : public testing::Test {
protected:
    Beschreibungsfund::Stand standVon(const std::string& bytes) const {
        return liesBeschreibung(verzeichnis_.schreibe("datei", bytes)).stand;
    }

    const Verzeichnis verzeichnis_;
    const std::string pfad_ = verzeichnis_.kopiere(test_plugins::StrippedOfDebugInformation, "liba.dylib");
};

TEST_F(NotizTest, LiesInTheFirstPageWhateverLinkerPutItThere) {
    for (const auto& [linker, datei] : kPlatzdateien) {
        const std::string pfad = verzeichnis_.kopiere(datei, "lib.dylib");
        const Beschreibungsfund fund = liesBeschreibung(pfad);
        EXPECT_EQ(fund.stand, Beschreibungsfund::LEER) << linker;
        EXPECT_EQ(fund.platz, 64u) << linker;
        EXPECT_LE(fund.stelle + fund.platz, 4096u) << linker;
        OrvoPluginV1 plugin(nullptr);
        trageEin(pfad, schreibeBeschreibung(plugin));
        EXPECT_EQ(liesBeschreibung(pfad).stand, Beschreibungsfund::GEFUNDEN) << linker;
    }
}

TEST_F(NotizTest, FilesOfOtherKindsHaveNone) {
    const int vorher = offeneDeskriptoren();
    mkfifo(verzeichnis_.pfad("fifo").c_str(), 0600);
    for (const std::string& pfad :
         {verzeichnis_.pfad(), verzeichnis_.pfad("fifo"), verzeichnis_.pfad("fehlt"), std::string(),
          std::string("/dev/zero"), std::string("/proc/self/exe"), pfad_ + std::string("\0", 1),
          verzeichnis_.schreibe("leer", ""), verzeichnis_.schreibe("text", std::string(9000, 'x')),
          std::string(test_plugins::WithoutEntryPoints)})
        for (const Beschreibungsfund& fund : {liesBeschreibung(pfad), Beschreibungsfund()}) {
            EXPECT_EQ(fund.stand, Beschreibungsfund::OHNE_PLATZ) << pfad;
            EXPECT_EQ(fund.stelle, 0u) << pfad;
            EXPECT_EQ(fund.platz, 0u) << pfad;
        }
    EXPECT_EQ(liesBeschreibung(pfad_).stand, Beschreibungsfund::LEER);
    EXPECT_EQ(offeneDeskriptoren(), vorher);
}

TEST_F(NotizTest, IsReadThroughAnyDescriptor) {
    const int eingang = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    const int vorher = offeneDeskriptoren();
    EXPECT_EQ(liesBeschreibung(pfad_).stand, Beschreibungsfund::LEER);
    EXPECT_EQ(offeneDeskriptoren(), vorher);
    dup2(eingang, STDIN_FILENO);
    close(eingang);
}

TEST_F(NotizTest, IsReadThroughADescriptorThatNoOtherProgramGets) {
    const int naechster = dup(STDOUT_FILENO);
    close(naechster);
    const Notiz notiz(pfad_);
    EXPECT_EQ(notiz.platz, liesBeschreibung(pfad_).platz);
    EXPECT_EQ(fcntl(naechster, F_GETFD), FD_CLOEXEC);
}

TEST_F(NotizTest, ATerminalThatIsReadDoesNotBecomeTheProcessesOwn) {
    const int gegenseite = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (gegenseite < 0 || grantpt(gegenseite) != 0 || unlockpt(gegenseite) != 0)
        GTEST_SKIP() << "there are no terminals here";
    const std::string terminal = ptsname(gegenseite);
    EXPECT_EXIT(
        {
            setsid();
            liesBeschreibung(terminal);
            _exit(open("/dev/tty", O_RDWR | O_CLOEXEC) < 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    close(gegenseite);
}

TEST_F(NotizTest, ALibraryOfAnotherMachineHasNone) {
    const std::string heil = inhaltVon(pfad_);
    const std::vector<std::size_t> stellen{0,
                                           EI_CLASS,
                                           EI_DATA,
                                           EI_VERSION,
                                           offsetof(ElfW(Ehdr), e_type),
                                           offsetof(ElfW(Ehdr), e_machine),
                                           offsetof(ElfW(Ehdr), e_phentsize)};
    for (const std::size_t stelle : stellen) {
        std::string bytes = heil;
        ++bytes[stelle];
        EXPECT_EQ(standVon(bytes), Beschreibungsfund::OHNE_PLATZ) << stelle;
    }
    EXPECT_EQ(standVon(heil), Beschreibungsfund::LEER);
}

TEST_F(NotizTest, AFileThatIsCutAnywhereIsReadSafely) {
    beschrifte(pfad_);
    const Beschreibungsfund heil = liesBeschreibung(pfad_);
    const std::string bytes = inhaltVon(pfad_);
    const std::size_t ende = heil.stelle + heil.bytes.size();
    for (std::size_t laenge = 0; laenge <= ende; ++laenge) {
        const Beschreibungsfund fund =
            liesBeschreibung(verzeichnis_.schreibe("datei", bytes.substr(0, laenge)));
        if (laenge == ende)
            EXPECT_EQ(fund.bytes, heil.bytes);
        else if (laenge < heil.stelle)
            ASSERT_NE(fund.stand, Beschreibungsfund::GEFUNDEN) << laenge;
        else
            ASSERT_EQ(fund.stand, Beschreibungsfund::ABGELEHNT) << laenge;
    }
}

/// A library's file with a table of segments behind its header, made by hand.
class NotizVonHand : public NotizTest {
protected:
    struct Segment {
        std::uint64_t ab, laenge, ausrichtung = 4;
        std::uint32_t art = PT_NOTE;
    };
    static std::string datei(const std::vector<Segment>& segmente, std::size_t laenge) {
        std::string bytes(laenge, '\0');
        ElfW(Ehdr) kopf;
        std::ifstream("/proc/self/exe", std::ios::binary).read(reinterpret_cast<char*>(&kopf), sizeof(kopf));
        kopf.e_type = ET_DYN;
        kopf.e_phoff = sizeof(kopf);
        kopf.e_phnum = static_cast<ElfW(Half)>(segmente.size());
        std::memcpy(bytes.data(), &kopf, sizeof(kopf));
        for (std::size_t i = 0; i < segmente.size(); ++i) {
            ElfW(Phdr) segment{};
            segment.p_type = segmente[i].art;
            segment.p_offset = segmente[i].ab;
            segment.p_filesz = segmente[i].laenge;
            segment.p_align = segmente[i].ausrichtung;
            std::memcpy(bytes.data() + sizeof(kopf) + i * sizeof(segment), &segment, sizeof(segment));
        }
        return bytes;
    }
    static std::string notiz(std::uint32_t art, const std::string& name, const std::string& inhalt,
                             std::size_t ausrichtung = 4) {
        const std::uint32_t kopf[] = {static_cast<std::uint32_t>(name.size() + 1),
                                      static_cast<std::uint32_t>(inhalt.size()), art};
        std::string bytes(reinterpret_cast<const char*>(kopf), sizeof(kopf));
        const auto fuelleAuf = [&] {
            bytes.resize((bytes.size() + ausrichtung - 1) / ausrichtung * ausrichtung);
        };
        bytes += name + '\0';
        fuelleAuf();
        bytes += inhalt;
        fuelleAuf();
        return bytes;
    }
    Beschreibungsfund fundIn(const std::vector<Segment>& segmente, std::size_t ab, const std::string& notizen,
                             std::size_t dahinter = 0) const {
        return liesBeschreibung(
            verzeichnis_.schreibe("datei", datei(segmente, ab) + notizen + std::string(dahinter, '\0')));
    }

    const std::string beschreibung_ = schreibeBeschreibung(OrvoPluginV1(nullptr));
    const std::string unsere_ = notiz(1, "Orvo", beschreibung_);
};

TEST_F(NotizVonHand, IsFoundBehindOthersAndInAnySegmentOfNotes) {
    const std::string andere = notiz(1, "GNU", "abc") + notiz(2, "Orvo", "x") + notiz(1, "Orwo", "") +
                               notiz(1, std::string("Orvo\0a", 6), "abcd") + notiz(0, "", "");
    const Beschreibungsfund fund =
        fundIn({{0, 100, 8, PT_LOAD}, {0, 0}, {300, 10}, {600, andere.size() + unsere_.size()}}, 600,
               andere + unsere_);
    EXPECT_EQ(fund.stand, Beschreibungsfund::GEFUNDEN);
    EXPECT_EQ(fund.stelle, 600 + andere.size() + 20);
    EXPECT_EQ(fund.bytes, beschreibung_);
    const std::string gemischte = notiz(5, "GNU", "abcd") + unsere_;
    EXPECT_EQ(fundIn({{600, gemischte.size(), 8}}, 600, gemischte).bytes, beschreibung_)
        << "in a segment of which the header says 8 bytes";
}

TEST_F(NotizVonHand, MayLieBehindTheFirstPage) {
    for (const std::size_t ab : {4000u, 4095u, 4096u, 20000u})
        EXPECT_EQ(fundIn({{ab, unsere_.size()}}, ab, unsere_).bytes, beschreibung_) << ab;
    EXPECT_EQ(fundIn({{40180, unsere_.size()}}, 40180, unsere_).stand, Beschreibungsfund::OHNE_PLATZ)
        << "too far away";
}

TEST_F(NotizVonHand, IsReadToTheLastByteThatIsLookedAt) {
    const std::size_t gelesene = 2 * 4096 + 32000, ab = gelesene - 20 - beschreibung_.size();
    EXPECT_EQ(fundIn({{ab, unsere_.size()}}, ab, unsere_, 100).bytes, beschreibung_);
    EXPECT_EQ(fundIn({{ab + 1, unsere_.size()}}, ab + 1, unsere_, 100).stand, Beschreibungsfund::ABGELEHNT);
    EXPECT_EQ(fundIn({{600, gelesene}}, 600, unsere_, 50000).bytes, beschreibung_);
    EXPECT_EQ(fundIn({{600, gelesene + 1}}, 600, unsere_, 50000).stand, Beschreibungsfund::OHNE_PLATZ);
}

TEST_F(NotizVonHand, IsSoughtInSegmentsOfNotesOnly) {
    EXPECT_EQ(fundIn({{600, unsere_.size(), 4, PT_LOAD}}, 600, unsere_).stand, Beschreibungsfund::OHNE_PLATZ);
}

TEST_F(NotizVonHand, HasRoomForNoMoreThanItSays) {
    const std::size_t platz = (beschreibung_.size() - 1) / 4 * 4;
    const std::string bytes = notiz(1, "Orvo", beschreibung_.substr(0, platz)) + beschreibung_.substr(platz);
    EXPECT_EQ(fundIn({{600, bytes.size()}}, 600, bytes).stand, Beschreibungsfund::ABGELEHNT)
        << "the end of the description lies behind the room";
}

TEST_F(NotizVonHand, IsTheFirstOne) {
    const std::uint64_t eine = unsere_.size();
    EXPECT_EQ(fundIn({{600, 2 * eine}}, 600, unsere_ + unsere_).stelle, 620u);
    EXPECT_EQ(fundIn({{600, eine}, {600 + eine, eine}}, 600, unsere_ + unsere_).stelle, 620u);
}

TEST_F(NotizVonHand, IsNotSoughtBehindTheTableOfSegments) {
    std::string bytes = datei({{300, 10}, {600, unsere_.size()}}, 600) + unsere_;
    EXPECT_EQ(standVon(bytes), Beschreibungsfund::GEFUNDEN);
    --bytes[offsetof(ElfW(Ehdr), e_phnum)];
    EXPECT_EQ(standVon(bytes), Beschreibungsfund::OHNE_PLATZ);
}

TEST_F(NotizVonHand, ALongDescriptionIsRead) {
    OrvoPluginV1 plugin(nullptr);
    OrvoPlugin::LabelEintrag label;
    label.text1 = label.text2 = label.text3 = label.text4 = std::string(1000, 'x');
    for (int i = 0; i < 7; ++i)
        plugin.addLabelInformation(label);
    const std::string lange = notiz(1, "Orvo", schreibeBeschreibung(plugin));
    EXPECT_EQ(fundIn({{600, lange.size()}}, 600, lange, 50000).stand, Beschreibungsfund::GEFUNDEN);
}

TEST_F(NotizVonHand, SegmentsAndLengthsThatLieAreSurvived) {
    const std::uint64_t weit = ~std::uint64_t{0};
    EXPECT_EQ(fundIn({{600, 19}}, 600, unsere_).stand, Beschreibungsfund::OHNE_PLATZ);
    EXPECT_EQ(fundIn({{600, unsere_.size() - 4}}, 600, unsere_).stand, Beschreibungsfund::OHNE_PLATZ)
        << "longer than its segment";
    EXPECT_EQ(fundIn({{600, weit}, {weit, 100}, {weit - 50, weit}, {600, 0}}, 600, unsere_).stand,
              Beschreibungsfund::OHNE_PLATZ);
    for (const std::size_t feld : {0u, 4u}) {
        std::string bytes = unsere_;
        bytes.replace(feld, 4, "\xFF\xFF\xFF\xFF");
        EXPECT_EQ(fundIn({{600, 0xFFFFFFFF}}, 600, bytes).stand, Beschreibungsfund::OHNE_PLATZ) << feld;
    }
    std::string viele = datei({}, 600);
    const ElfW(Half) anzahl = 0xFFFF;
    std::memcpy(viele.data() + offsetof(ElfW(Ehdr), e_phnum), &anzahl, sizeof(anzahl));
    EXPECT_EQ(standVon(viele), Beschreibungsfund::OHNE_PLATZ);
    // Sums with these positions wrap round; a sanitizer sees what is read before the buffer.
    for (const std::size_t davor : {std::size_t{1}, sizeof(ElfW(Phdr))}) {
        const auto ab = static_cast<ElfW(Off)>(0 - davor);
        std::memcpy(viele.data() + offsetof(ElfW(Ehdr), e_phoff), &ab, sizeof(ab));
        EXPECT_EQ(standVon(viele), Beschreibungsfund::OHNE_PLATZ) << davor;
    }
}

} // namespace
