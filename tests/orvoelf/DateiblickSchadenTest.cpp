// Damaged files: what the look promises to refuse, and with which finding. Damage to other single fields is left to the
// loader.

#include <orvoelf/Dateiblick.h>

#include "ElfDatei.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <functional>

using namespace orvo::orvoelf;
using namespace testing;
using enum orvo::orvoelf::Dateimangel;

namespace {

class Schaden : public Test {
protected:
    Dateibefund blick(const std::string& bytes) const {
        return blickeAufDatei(verzeichnis_.schreibe("beschaedigt.so", bytes));
    }

    const Verzeichnis verzeichnis_;
    const ElfDatei heil_{HAS_EVERYTHING};
};

/// One change to a valid library, and the expected finding.
struct Fall {
    const char* name;
    std::function<void(ElfDatei&)> aendere;
    Dateimangel mangel;
    const char* grund; // a regular expression
};

void PrintTo(const Fall& fall, std::ostream* strom) { *strom << fall.name; }

class EinzelnerSchaden : public TestWithParam<Fall> {};

constexpr ElfW(Addr) kAlleBits = ~ElfW(Addr){0};
constexpr ElfW(Addr) kWeit = sizeof(void*) == 8 ? kAlleBits >> 24 : kAlleBits - 0xFFFF; // room for no library

// Some processors' relocations have an addend of their own.
#if defined(__i386__) || defined(__arm__)
constexpr std::int64_t kRelo = DT_REL, kRelosz = DT_RELSZ, kReloent = DT_RELENT;
#else
constexpr std::int64_t kRelo = DT_RELA, kRelosz = DT_RELASZ, kReloent = DT_RELAENT;
#endif
#ifdef __riscv // has only tables of such functions
constexpr std::int64_t kEndfunktion = DT_FINI_ARRAY;
#else
constexpr std::int64_t kEndfunktion = DT_FINI;
#endif

auto setze(std::int64_t tag, ElfW(Addr) wert) {
    return [=](ElfDatei& d) { d.eintrag(tag).d_un.d_val = wert; };
}
auto verliere(std::int64_t tag) {
    return [=](ElfDatei& d) { d.eintrag(tag).d_tag = 0x60000001; };
}

} // namespace

TEST_F(Schaden, AFileCutAnywhereIsRefused) {
    const std::size_t laenge = heil_.bytes.size();
    for (std::size_t i = 0; i < laenge; i += i < 256 ? 1 : 97) {
        const Dateibefund befund = blick(heil_.bytes.substr(0, i));
        EXPECT_EQ(befund.mangel, i < SELFMAG ? KEINE_ELF_DATEI : ABGESCHNITTEN) << i << ": " << befund.grund;
    }
    EXPECT_EQ(blick(heil_.bytes.substr(0, laenge - 1)).grund,
              "abgeschnitten: Abschnittstabelle endet hinter der Datei");
}

TEST_F(Schaden, AFileThatEndsInZerosIsRefused) {
    const std::size_t laenge = heil_.bytes.size(), letztes = heil_.bytes.find_last_not_of('\0');
    ASSERT_GE(letztes, laenge - 2 * sizeof(ElfW(Addr))); // in the section table, its last number but one
    for (std::size_t i = 0; i <= letztes; i += i < 256 || i > laenge - 128 ? 1 : 97) {
        std::string bytes = heil_.bytes;
        bytes.replace(i, laenge - i, laenge - i, '\0');
        EXPECT_FALSE(blick(bytes).istLadbar()) << i;
        if (i > laenge / 2) {
            EXPECT_EQ(blick(bytes).mangel, NICHT_ZU_ENDE_GESCHRIEBEN) << i;
        }
    }
}

TEST_F(Schaden, ALargeFileCutOrEndingInZerosIsRefused) {
    const ElfDatei grosse(LIBORVOUTIL);
    const std::size_t laenge = grosse.bytes.size();
    ASSERT_GT(laenge, std::size_t{64} << 10);
    for (std::size_t i = 4096; i < laenge; i += laenge / 40) {
        EXPECT_EQ(blick(grosse.bytes.substr(0, i)).mangel, ABGESCHNITTEN) << i;
        std::string bytes = grosse.bytes;
        bytes.replace(i, laenge - i, laenge - i, '\0');
        EXPECT_FALSE(blick(bytes).istLadbar()) << i;
    }
}

TEST_P(EinzelnerSchaden, IsFound) {
    const Verzeichnis verzeichnis;
    ElfDatei datei(HAS_EVERYTHING);
    GetParam().aendere(datei);
    const Dateibefund befund = blickeAufDatei(verzeichnis.schreibe("beschaedigt.so", datei.bytes));
    EXPECT_EQ(befund.mangel, GetParam().mangel);
    EXPECT_THAT(befund.grund, ContainsRegex(GetParam().grund));
}

INSTANTIATE_TEST_SUITE_P(
    Kopf, EinzelnerSchaden,
    Values(
        Fall{"Machine", [](ElfDatei& d) { d.kopf().e_machine = EM_SPARCV9; }, ANDERER_PROZESSOR,
             "Kennung 43$"},
        Fall{"Class", [](ElfDatei& d) { d.kopf().e_ident[EI_CLASS] ^= 3; }, ANDERER_PROZESSOR, "Wortbreite$"},
        Fall{"ByteOrder", [](ElfDatei& d) { d.kopf().e_ident[EI_DATA] ^= 3; }, ANDERER_PROZESSOR,
             "Byte-Reihenfolge$"},
        Fall{"Version", [](ElfDatei& d) { d.kopf().e_version = 2; }, BESCHAEDIGT, "^unbekannte ELF-Version$"},
        Fall{"Object", [](ElfDatei& d) { d.kopf().e_type = ET_REL; }, KEINE_BIBLIOTHEK, "keine Bibliothek$"},
        Fall{"SegmentSize", [](ElfDatei& d) { d.kopf().e_phentsize = 0; }, BESCHAEDIGT, "eines ELF-Kopfes$"},
        Fall{"NoSegments", [](ElfDatei& d) { d.kopf().e_phnum = 0; }, BESCHAEDIGT, "^keine Segmente$"},
        Fall{"ManySegments", [](ElfDatei& d) { d.kopf().e_phnum = 0xFFFF; }, BESCHAEDIGT,
             "^zu viele Segmente$"},
        Fall{"SegmentsNowhere", [](ElfDatei& d) { d.kopf().e_phoff = kAlleBits; }, ABGESCHNITTEN,
             "Segmenttabelle"},
        Fall{"SectionsNowhere", [](ElfDatei& d) { d.kopf().e_shoff = kAlleBits; }, ABGESCHNITTEN,
             "Abschnittstabelle"}),
    [](const auto& fall) { return fall.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Segmente, EinzelnerSchaden,
    Values(Fall{"BehindTheFile", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_offset = kWeit; },
                ABGESCHNITTEN, "^abgeschnitten: Segment endet"},
           Fall{"LongerInTheFile", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_memsz = 1; }, BESCHAEDIGT,
                "Segment [0-9]+ ist in der Datei l\xE4nger"},
           Fall{"Immense", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_memsz = kWeit; }, BESCHAEDIGT,
                "Adressraum"},
           Fall{"OutOfOrder", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_vaddr = 0; }, BESCHAEDIGT,
                "liegt nicht hinter dem vorigen$"},
           Fall{"Alignment", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_align = 0x3000; }, BESCHAEDIGT,
                "ung\xFCltige Ausrichtung$"},
           Fall{"NoDynamic", [](ElfDatei& d) { d.segmentVom(PT_DYNAMIC).p_type = PT_NULL; }, BESCHAEDIGT,
                "^kein dynamischer Abschnitt$"},
           Fall{"DynamicNowhere", [](ElfDatei& d) { d.segmentVom(PT_DYNAMIC).p_vaddr = kWeit; }, BESCHAEDIGT,
                "^Der dynamische Abschnitt liegt nicht"},
           Fall{"ThreadLocalsNowhere",
                [](ElfDatei& d) { d.segmentVom(PT_TLS).p_filesz = 8, d.segmentVom(PT_TLS).p_vaddr = kWeit; },
                BESCHAEDIGT, "^Segment [0-9]+ liegt nicht"},
           Fall{"ProtectsFarAway", [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_memsz = kWeit; },
                BESCHAEDIGT, "Adressraum"}),
    [](const auto& fall) { return fall.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Dynamik, EinzelnerSchaden,
    Values(
        Fall{"NoTexts", verliere(DT_STRTAB), BESCHAEDIGT, "^DT_STRTAB fehlt"},
        Fall{"NoSymbols", verliere(DT_SYMTAB), BESCHAEDIGT, "^DT_SYMTAB fehlt"},
        Fall{"TextsNowhere", setze(DT_STRTAB, kWeit), BESCHAEDIGT, "^DT_STRTAB liegt nicht"},
        Fall{"TextsTooLong", setze(DT_STRSZ, kWeit), BESCHAEDIGT, "^DT_STRTAB liegt nicht"},
        Fall{"ANameBehindTheTexts", setze(DT_NEEDED, 0x100000), BESCHAEDIGT, "hinter der Texttabelle$"},
        Fall{"HashNowhere", setze(DT_GNU_HASH, kWeit), BESCHAEDIGT, "^DT_GNU_HASH liegt nicht"},
        Fall{"RelocationsNowhere", setze(kRelo, kWeit), BESCHAEDIGT, "^DT_RELA? liegt nicht"},
        Fall{"RelocationsWithoutALength", verliere(kRelosz), BESCHAEDIGT, "^DT_RELA? ist unvollst\xE4ndig$"},
        Fall{"RelocationsOfUnknownSize", setze(kReloent, 16), BESCHAEDIGT, "^DT_RELA? ist unvollst\xE4ndig$"},
        Fall{"StartFunctionsWithoutALength", verliere(DT_INIT_ARRAYSZ), BESCHAEDIGT, "^DT_INIT_ARRAY ist"},
        Fall{"EndFunctionNowhere", setze(kEndfunktion, kWeit), BESCHAEDIGT, "^DT_FINI(_ARRAY)? liegt nicht"},
        Fall{"VersionsNowhere", setze(DT_VERNEED, kWeit), BESCHAEDIGT, "^DT_VERNEED liegt nicht"},
        Fall{"JumpsOfUnknownKind", setze(DT_PLTREL, 1), BESCHAEDIGT, "^DT_JMPREL ist"},
        Fall{"NoEnd",
             [](ElfDatei& d) {
                 auto& s = d.segmentVom(PT_DYNAMIC);
                 s.p_filesz = 4 * sizeof(ElfW(Dyn));
             },
             BESCHAEDIGT, "hat kein Ende$"}),
    [](const auto& fall) { return fall.param.name; });
