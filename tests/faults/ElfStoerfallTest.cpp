// Faults in the contents of a plugin's file, which must not reach the system's loader.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "TestPlugins.h"

#include <elf.h>
#include <link.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

std::string inhaltVon(const std::string& pfad) {
    std::ifstream datei(pfad, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(datei), {});
}

class ElfStoerfall : public Stoerfall {
protected:
    /// The bytes of a small, valid plugin.
    const std::string heil = inhaltVon(test_plugins::Small);

    void schreibeSchlechtes(const std::string& inhalt) const {
        home.schreibe("plugins/libmmm.dylib", inhalt);
    }

    /// A bad file for each number; in load order they are between the healthy ones, by number.
    std::string nummeriert(std::size_t nummer) const {
        char name[32];
        std::snprintf(name, sizeof name, "libm%06zu.dylib", nummer);
        return plugin(name);
    }
    void schreibeNummeriert(std::size_t nummer, const std::string& inhalt) const {
        std::ofstream(nummeriert(nummer), std::ios::binary) << inhalt;
    }
};

} // namespace

TEST_F(ElfStoerfall, TheSmallPluginIsInOrder) {
    schreibeSchlechtes(heil);
    erwarteGeladen();
}

TEST_F(ElfStoerfall, AnEmptyFileIsRefused) {
    schreibeSchlechtes("");
    erwarteNichtGeoeffnet("keine ELF-Datei");
}

TEST_F(ElfStoerfall, ATextIsRefused) {
    schreibeSchlechtes("Das ist kein Plugin.\n");
    erwarteNichtGeoeffnet("keine ELF-Datei");
}

TEST_F(ElfStoerfall, ALinkerScriptIsRefused) {
    schreibeSchlechtes("GROUP ( libc.so.6 )\n");
    erwarteNichtGeoeffnet("keine ELF-Datei");
}

TEST_F(ElfStoerfall, AProgramIsRefused) {
    std::filesystem::copy_file("/proc/self/exe", schlechtes);
    erwarteNichtGeoeffnet("ausf\xFChrbares Programm, keine Bibliothek");
}

TEST_F(ElfStoerfall, AnArchiveIsRefused) {
    schreibeSchlechtes("!<arch>\n" + heil);
    erwarteNichtGeoeffnet("keine ELF-Datei");
}

TEST_F(ElfStoerfall, AFileOfNullBytesIsRefused) {
    schreibeSchlechtes(std::string(heil.size(), '\0'));
    erwarteNichtGeoeffnet("keine ELF-Datei");
}

TEST_F(ElfStoerfall, AFileCutByItsLastByteIsRefused) {
    schreibeSchlechtes(heil.substr(0, heil.size() - 1));
    erwarteNichtGeoeffnet("abgeschnitten: Abschnittstabelle endet hinter der Datei");
}

TEST_F(ElfStoerfall, AFileCutAtAnyBlockOf64BytesIsRefused) {
    Zeilen erwartete;
    for (std::size_t laenge = 0; laenge < heil.size(); laenge += 64) {
        schreibeNummeriert(laenge, heil.substr(0, laenge));
        erwartete.push_back("BIBLIOTHEK_FEHLER: " + nummeriert(laenge) +
                            (laenge == 0 ? ": keine ELF-Datei" : ": abgeschnitten: "));
    }
    EXPECT_FALSE(starte());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
    EXPECT_EQ(warnungen(), Zeilen{});
    ASSERT_EQ(ablehnungen().size(), erwartete.size());
    const std::string ohneEnde = ablehnung("").substr(0, ablehnung("").find("|99]"));
    for (std::size_t i = 0; const std::string& zeile : ablehnungen())
        EXPECT_TRUE(zeile.starts_with(ohneEnde + erwartete[i++])) << zeile;
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(ElfStoerfall, ALibraryOfImmenseSizeInMemoryIsRefusedAndLeavesNothingMapped) {
    // The system's loader fails only after it has mapped the file, and leaves it mapped.
    std::string bytes = heil;
    ElfW(Ehdr) kopf;
    std::memcpy(&kopf, bytes.data(), sizeof kopf);
    for (std::size_t i = kopf.e_phnum; i-- > 0;) {
        char* const stelle = bytes.data() + kopf.e_phoff + i * sizeof(ElfW(Phdr));
        ElfW(Phdr) segment;
        std::memcpy(&segment, stelle, sizeof segment);
        if (segment.p_type != PT_LOAD)
            continue;
        segment.p_memsz = ~decltype(segment.p_memsz){0} >> 24;
        std::memcpy(stelle, &segment, sizeof segment);
        break;
    }
    schreibeSchlechtes(bytes);
    EXPECT_FALSE(starte());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
    ASSERT_EQ(ablehnungen().size(), 1u);
    EXPECT_TRUE(ablehnungen()[0].starts_with(
        "[OrvoPluginManager|99|Plugin nicht geladen: BIBLIOTHEK_FEHLER: " + schlechtes + ": "));
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(ElfStoerfall, AFileThatEndsInZerosFromAnyBlockOf64BytesOnIsRefused) {
    std::size_t anzahl = 0;
    for (std::size_t ab = 0; ab + 64 <= heil.size(); ab += 64, ++anzahl)
        schreibeNummeriert(ab, heil.substr(0, ab) + std::string(heil.size() - ab, '\0'));
    EXPECT_FALSE(starte());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
    EXPECT_EQ(warnungen(), Zeilen{});
    EXPECT_EQ(ablehnungen().size(), anzahl);
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

namespace {

/// One field of the header with a wrong value, and the expected reason; no reason means that the field is not used.
struct Kopffehler {
    const char* name;
    std::size_t stelle;
    std::size_t laenge;
    unsigned long long wert;
    const char* grund;
};

void PrintTo(const Kopffehler& fehler, std::ostream* out) { *out << fehler.name; }

class ElfKopfStoerfall : public ElfStoerfall, public testing::WithParamInterface<Kopffehler> {};

using Kopf = ElfW(Ehdr);
#define FELD(feld) offsetof(Kopf, feld), sizeof(Kopf::feld)
#define KENNBYTE(nummer) offsetof(Kopf, e_ident) + nummer, 1
constexpr auto kRiesig = ~0ULL;
constexpr char kKeinElf[] = "keine ELF-Datei";
constexpr char kKeineBibliothek[] = "ELF-Datei, aber keine Bibliothek";
constexpr char kGroesse[] = "ung\xFCltige Gr\xF6\xDF"
                            "e eines ELF-Kopfes";
constexpr char kTabelleAbgeschnitten[] = "abgeschnitten: Segmenttabelle endet hinter der Datei";
constexpr char kAbschnitteAbgeschnitten[] = "abgeschnitten: Abschnittstabelle endet hinter der Datei";

const Kopffehler kKopffehler[] = {
    {"Mark0", KENNBYTE(EI_MAG0), 'X', kKeinElf},
    {"Mark1", KENNBYTE(EI_MAG1), 'X', kKeinElf},
    {"Mark2", KENNBYTE(EI_MAG2), 'X', kKeinElf},
    {"Mark3", KENNBYTE(EI_MAG3), 'X', kKeinElf},
    {"OtherWordSize", KENNBYTE(EI_CLASS), sizeof(void*) == 8 ? ELFCLASS32 : ELFCLASS64,
     "ELF-Datei mit anderer Wortbreite"},
    {"NoWordSize", KENNBYTE(EI_CLASS), 0, "ELF-Datei mit anderer Wortbreite"},
    {"OtherByteOrder", KENNBYTE(EI_DATA), ELFDATA2MSB, "ELF-Datei mit anderer Byte-Reihenfolge"},
    {"IdentVersion", KENNBYTE(EI_VERSION), 0, "unbekannte ELF-Version"},
    {"System", KENNBYTE(EI_OSABI), 0xFF, "ELF file OS ABI invalid"},
    {"SystemVersion", KENNBYTE(EI_ABIVERSION), 0xFF, "ELF file ABI version invalid"},
    {"Padding", KENNBYTE(EI_PAD), 1, "nonzero padding in e_ident"},
    {"TypeNone", FELD(e_type), ET_NONE, kKeineBibliothek},
    {"TypeObject", FELD(e_type), ET_REL, kKeineBibliothek},
    {"TypeProgram", FELD(e_type), ET_EXEC, "ausf\xFChrbares Programm, keine Bibliothek"},
    {"TypeCore", FELD(e_type), ET_CORE, kKeineBibliothek},
    {"TypeUnknown", FELD(e_type), kRiesig, kKeineBibliothek},
    {"Version", FELD(e_version), 2, "unbekannte ELF-Version"},
    {"ForeignMachine", FELD(e_machine), EM_SPARCV9, "ELF-Datei f\xFCr einen anderen Prozessor, Kennung 43"},
    {"Entry", FELD(e_entry), kRiesig, nullptr},
    {"Flags", FELD(e_flags), 0, nullptr},
    {"SegmentsNowhere", FELD(e_phoff), kRiesig, kTabelleAbgeschnitten},
    {"SegmentsBehindTheFile", FELD(e_phoff), 1 << 30, kTabelleAbgeschnitten},
    {"HeaderSize", FELD(e_ehsize), 0, nullptr},
    {"SegmentSizeZero", FELD(e_phentsize), 0, kGroesse},
    {"SegmentSizeHuge", FELD(e_phentsize), kRiesig, kGroesse},
    {"NoSegments", FELD(e_phnum), 0, "keine Segmente"},
    {"TooManySegments", FELD(e_phnum), kRiesig, "zu viele Segmente"},
    {"SectionsNowhere", FELD(e_shoff), kRiesig, kAbschnitteAbgeschnitten},
    {"SectionsBehindTheFile", FELD(e_shoff), 1 << 30, kAbschnitteAbgeschnitten},
    {"NoSections", FELD(e_shoff), 0, nullptr},
    {"SectionSize", FELD(e_shentsize), 0, nullptr},
    {"TooManySections", FELD(e_shnum), kRiesig, kAbschnitteAbgeschnitten},
    {"SectionNames", FELD(e_shstrndx), 0xFF00, nullptr},
};
#undef FELD
#undef KENNBYTE

} // namespace

TEST_P(ElfKopfStoerfall, IsRefusedUnlessNobodyLooksAtIt) {
    std::string bytes = heil;
    for (std::size_t i = 0; i < GetParam().laenge; ++i)
        bytes[GetParam().stelle + i] = static_cast<char>(GetParam().wert >> (8 * i));
    schreibeSchlechtes(bytes);
    if (GetParam().grund)
        erwarteNichtGeoeffnet(GetParam().grund);
    else
        erwarteGeladen();
}

INSTANTIATE_TEST_SUITE_P(AWrongHeader, ElfKopfStoerfall, testing::ValuesIn(kKopffehler),
                         [](const auto& fall) { return std::string(fall.param.name); });
