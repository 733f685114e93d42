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
/// Gives an entry another tag and value.
auto mache(std::int64_t tag, std::int64_t neuer, ElfW(Addr) wert) {
    return [=](ElfDatei& d) {
        auto& e = d.eintrag(tag);
        e.d_tag = neuer;
        e.d_un.d_val = wert;
    };
}
auto verliere(std::int64_t tag) {
    return [=](ElfDatei& d) { d.eintrag(tag).d_tag = 0x60000001; };
}

/// The number of the segment that is loaded last, in which the dynamic section lies.
unsigned letztesLadbare(ElfDatei& d) {
    unsigned nummer = d.kopf().e_phnum;
    while (d.segment(--nummer).p_type != PT_LOAD)
        ;
    return nummer;
}

/// Leaves the first segment only to be loaded, of that length in the file and in memory.
void nurLadbare(ElfDatei& d, unsigned inDerDatei, unsigned imSpeicher) {
    for (unsigned i = letztesLadbare(d); d.segment(i).p_type == PT_LOAD && i > 0; --i)
        d.segment(i).p_type = PT_NULL;
    d.segmentVom(PT_LOAD).p_filesz = inDerDatei;
    d.segmentVom(PT_LOAD).p_memsz = imSpeicher;
}

/// Makes the note a segment of that type, at an address where nothing is loaded.
void verlege(ElfDatei& d, std::uint32_t typ, unsigned laenge) {
    auto& s = d.segmentVom(PT_NOTE);
    s.p_type = typ;
    s.p_vaddr = kWeit;
    s.p_filesz = laenge;
}

} // namespace

TEST_F(Schaden, AFileCutAnywhereIsRefused) {
    const std::size_t laenge = heil_.bytes.size();
    for (std::size_t i = 0; i < laenge; i += i < 256 ? 1 : 97) {
        const Dateibefund befund = blick(heil_.bytes.substr(0, i));
        EXPECT_EQ(befund.mangel, i < SELFMAG ? KEINE_ELF_DATEI : ABGESCHNITTEN) << i << ": " << befund.grund;
    }
    EXPECT_EQ(blick(heil_.bytes.substr(0, 20)).grund, "abgeschnitten: ELF-Kopf endet hinter der Datei");
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
    ElfDatei ohneSegmente = grosse;
    ohneSegmente.kopf().e_phoff = kAlleBits;
    EXPECT_EQ(blick(ohneSegmente.bytes).mangel, ABGESCHNITTEN);
}

TEST_F(Schaden, ATableMustLieInTheFileToItsLastByte) {
    const struct {
        std::int64_t tag;
        std::uint64_t laenge; // of the least one
        std::string name;
    } tabellen[] = {
        {DT_SYMTAB, sizeof(ElfW(Sym)), "DT_SYMTAB"},
        {DT_HASH, 8, "DT_HASH"},
        {DT_GNU_HASH, 16, "DT_GNU_HASH"},
        {DT_INIT, 1, "DT_INIT"},
        {DT_FINI, 1, "DT_FINI"},
        {DT_VERSYM, 2, "DT_VERSYM"},
        {DT_VERNEED, sizeof(ElfW(Verneed)), "DT_VERNEED"},
        {DT_VERDEF, sizeof(ElfW(Verdef)), "DT_VERDEF"},
    };
    for (const auto& [tag, laenge, name] : tabellen) {
        ElfDatei datei = heil_;
        auto& eintrag = datei.hat(tag) ? datei.eintrag(tag) : datei.nebensache();
        eintrag.d_tag = tag;
        const ElfW(Phdr)& erstes = datei.segmentVom(PT_LOAD);
        eintrag.d_un.d_ptr = erstes.p_vaddr + erstes.p_filesz - laenge;
        EXPECT_EQ(blick(datei.bytes).grund, "") << name;
        ++eintrag.d_un.d_ptr;
        EXPECT_EQ(blick(datei.bytes).grund, name + " liegt nicht im geladenen Teil der Datei");
    }
    ElfDatei ganz = heil_; // a table that is all of its segment
    const ElfW(Phdr)& erstes = ganz.segmentVom(PT_LOAD);
    ganz.eintrag(DT_STRTAB).d_un.d_ptr = erstes.p_vaddr;
    ganz.eintrag(DT_STRSZ).d_un.d_val = erstes.p_filesz;
    EXPECT_EQ(blick(ganz.bytes).grund, "");
    ++ganz.eintrag(DT_STRSZ).d_un.d_val;
    EXPECT_EQ(blick(ganz.bytes).grund, "DT_STRTAB liegt nicht im geladenen Teil der Datei");
}

TEST_F(Schaden, EntriesOfOtherTagsDoNotMatter) {
    for (const std::int64_t tag : {-1l, 38l, 0x60000001l, 0x6000000El, 0x6FFFFFEEl}) {
        ElfDatei datei = heil_;
        auto& eintrag = datei.nebensache();
        eintrag.d_tag = static_cast<decltype(eintrag.d_tag)>(tag);
        eintrag.d_un.d_val = kWeit;
        if (datei.hat(DT_PLTGOT))
            datei.eintrag(DT_PLTGOT).d_tag = DT_DEBUG; // matters in programs only
        EXPECT_EQ(blick(datei.bytes).grund, "") << tag;
    }
}

TEST_F(Schaden, TablesOfOtherRelocationsAreLookedAtToo) {
    const struct {
        std::int64_t tag, laenge, eintragsgroesse;
        std::size_t eintrag;
        std::string name;
    } tabellen[] = {{DT_REL, DT_RELSZ, DT_RELENT, sizeof(ElfW(Rel)), "DT_REL"},
                    {36, 35, 37, sizeof(ElfW(Addr)), "DT_RELR"}};
    for (const auto& [tag, laenge, eintragsgroesse, eintrag, name] : tabellen) {
        ElfDatei datei = heil_;
        if (datei.hat(tag) || !datei.hat(DT_INIT) || !datei.hat(DT_FINI) || !datei.hat(DT_PLTGOT))
            continue;
        mache(DT_INIT, tag, datei.eintrag(DT_SYMTAB).d_un.d_ptr)(datei);
        mache(DT_FINI, laenge, static_cast<ElfW(Addr)>(eintrag))(datei);
        mache(DT_PLTGOT, eintragsgroesse, static_cast<ElfW(Addr)>(eintrag))(datei);
        datei.nebensache() = {0x60000001, {kWeit}};
        EXPECT_EQ(blick(datei.bytes).grund, "") << name;
        ++datei.eintrag(eintragsgroesse).d_un.d_val;
        EXPECT_EQ(blick(datei.bytes).grund, name + " ist unvollst\xE4ndig");
        --datei.eintrag(eintragsgroesse).d_un.d_val;
        datei.eintrag(tag).d_un.d_ptr = kWeit;
        EXPECT_EQ(blick(datei.bytes).grund, name + " liegt nicht im geladenen Teil der Datei");
    }
}

TEST_F(Schaden, AsManyAs64SegmentsAreLookedAt) {
    ElfDatei datei = heil_;
    while (datei.kopf().e_phnum < 64)
        datei.haengeSegmentAn();
    EXPECT_EQ(blick(datei.bytes).grund, "");
    datei.haengeSegmentAn();
    EXPECT_EQ(blick(datei.bytes).grund, "zu viele Segmente");
}

TEST_F(Schaden, ASegmentWithoutBytesLiesNowhereInTheFile) {
    ElfDatei datei = heil_;
    auto& neues = datei.haengeSegmentAn();
    neues.p_vaddr = static_cast<ElfW(Addr)>(datei.speicherende());
    neues.p_type = PT_LOAD;
    neues.p_memsz = 1;
    neues.p_offset = kWeit;
    EXPECT_EQ(blick(datei.bytes).grund, "");
    neues.p_filesz = 1;
    EXPECT_EQ(blick(datei.bytes).grund, "abgeschnitten: Segment endet hinter der Datei");
}

TEST_F(Schaden, AProgramIsKnownByItsMarkOrItsInterpreter) {
    ElfDatei datei(A_POSITION_INDEPENDENT_PROGRAM);
    ElfDatei nurMarkiertes = datei;
    nurMarkiertes.segmentVom(PT_INTERP).p_type = PT_NULL;
    EXPECT_EQ(blick(nurMarkiertes.bytes).mangel, KEINE_BIBLIOTHEK);
    datei.eintrag(DT_FLAGS_1).d_un.d_val &= ~ElfW(Addr){DF_1_PIE};
    EXPECT_EQ(blick(datei.bytes).mangel, KEINE_BIBLIOTHEK);
    datei.segmentVom(PT_INTERP).p_type = PT_NULL;
    EXPECT_EQ(blick(datei.bytes).grund, "");
}

TEST_F(Schaden, TheNameOfAnotherReleaseIsFoundAtBothEndsOfTheTexts) {
    ElfDatei datei(NEEDS_ANOTHER_UTIL_RELEASE);
    ElfW(Dyn)& benoetigte = datei.eintrag(DT_NEEDED);
    const std::uint64_t davor = benoetigte.d_un.d_val - 1;
    for (const std::int64_t andere : {DT_SONAME, DT_RPATH, DT_RUNPATH})
        if (datei.hat(andere))
            datei.eintrag(andere).d_tag = 0x60000001;
    const std::string name =
        datei.bytes.data() + datei.stelle(datei.eintrag(DT_STRTAB).d_un.d_ptr) + davor + 1;
    ASSERT_EQ(name, "liborvoutil.so.99");
    const auto nurDieser = [&](ElfDatei& d) {
        benoetigte.d_tag = 0x60000001;
        while (d.hat(DT_NEEDED))
            d.eintrag(DT_NEEDED).d_tag = 0x60000001;
        benoetigte.d_tag = DT_NEEDED;
    };
    nurDieser(datei);
    benoetigte.d_un.d_val = 1;
    datei.eintrag(DT_STRTAB).d_un.d_ptr += davor;
    datei.eintrag(DT_STRSZ).d_un.d_val = name.size() + 2;
    EXPECT_THAT(blick(datei.bytes).grund, HasSubstr("braucht liborvoutil.so.99"));

    datei.haengeSegmentAn(); // moves the table of segments, so a segment's bytes can lie last
    auto& letztes = datei.segment(datei.kopf().e_phnum - 1u);
    letztes.p_vaddr = static_cast<ElfW(Addr)>(datei.speicherende() + 0x10000);
    letztes.p_type = PT_LOAD;
    letztes.p_flags = PF_R;
    letztes.p_offset = datei.bytes.size();
    letztes.p_filesz = letztes.p_memsz = name.size() + 2;
    datei.eintrag(DT_STRTAB).d_un.d_ptr = letztes.p_vaddr;
    datei.ohneAbschnitte();
    datei.bytes += '\0' + name + '\0';
    EXPECT_THAT(blick(datei.bytes).grund, HasSubstr("braucht liborvoutil.so.99"));
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
             "^ELF-Datei f\xFCr einen anderen Prozessor, Kennung 43$"},
        Fall{"Class", [](ElfDatei& d) { d.kopf().e_ident[EI_CLASS] ^= 3; }, ANDERER_PROZESSOR, "Wortbreite$"},
        Fall{"ByteOrder", [](ElfDatei& d) { d.kopf().e_ident[EI_DATA] ^= 3; }, ANDERER_PROZESSOR,
             "Byte-Reihenfolge$"},
        Fall{"Version", [](ElfDatei& d) { d.kopf().e_version = 2; }, BESCHAEDIGT, "^unbekannte ELF-Version$"},
        Fall{"Object", [](ElfDatei& d) { d.kopf().e_type = ET_REL; }, KEINE_BIBLIOTHEK, "keine Bibliothek$"},
        Fall{"SegmentSize", [](ElfDatei& d) { d.kopf().e_phentsize = 0; }, BESCHAEDIGT,
             "^ung\xFCltige Gr\xF6\xDF"
             "e eines ELF-Kopfes$"},
        Fall{"OneSegment", [](ElfDatei& d) { d.kopf().e_phnum = 1; }, BESCHAEDIGT,
             "^kein dynamischer Abschnitt$"},
        Fall{"NoSegments", [](ElfDatei& d) { d.kopf().e_phnum = 0; }, BESCHAEDIGT, "^keine Segmente$"},
        Fall{"ManySegments", [](ElfDatei& d) { d.kopf().e_phnum = 0xFFFF; }, BESCHAEDIGT,
             "^zu viele Segmente$"},
        Fall{"SegmentsNowhere", [](ElfDatei& d) { d.kopf().e_phoff = kAlleBits; }, ABGESCHNITTEN,
             "Segmenttabelle"},
        Fall{"SectionsNowhere", [](ElfDatei& d) { d.kopf().e_shoff = kAlleBits; }, ABGESCHNITTEN,
             "Abschnittstabelle"},
        Fall{"OneSectionNowhere", [](ElfDatei& d) { d.kopf().e_shoff = kAlleBits, d.kopf().e_shnum = 1; },
             ABGESCHNITTEN, "Abschnittstabelle"},
        Fall{"SectionsFromTheFirstByte", [](ElfDatei& d) { d.kopf().e_shoff = 1, d.kopf().e_shnum = 0xFFFF; },
             ABGESCHNITTEN, "Abschnittstabelle"},
        Fall{"TwoSectionsOfZeros", [](ElfDatei& d) { d.abschnitt(1) = {}, d.kopf().e_shnum = 2; },
             NICHT_ZU_ENDE_GESCHRIEBEN, "^nicht zu Ende geschrieben: Abschnittstabelle endet mit Nullen$"},
        Fall{"OneSection", [](ElfDatei& d) { d.kopf().e_shnum = 1; }, KEINER, "^$"},
        Fall{"NoSections", [](ElfDatei& d) { d.kopf().e_shnum = 0, d.kopf().e_shoff = kAlleBits; }, KEINER,
             "^$"},
        Fall{"SectionsWithoutAPlace", [](ElfDatei& d) { d.kopf().e_shnum = 0xFFFF, d.kopf().e_shoff = 0; },
             KEINER, "^$"},
        Fall{"SectionsOfUnknownSize",
             [](ElfDatei& d) { d.bytes.resize(d.kopf().e_shoff), d.kopf().e_shentsize = 0; }, KEINER, "^$"}),
    [](const auto& fall) { return fall.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Segmente, EinzelnerSchaden,
    Values(Fall{"BehindTheFile", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_offset = kWeit; },
                ABGESCHNITTEN, "^abgeschnitten: Segment endet"},
           Fall{"LongerInTheFile", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_memsz = 1; }, BESCHAEDIGT,
                "^Segment [0-9]+ ist in der Datei l\xE4nger als im Speicher$"},
           Fall{"Immense", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_memsz = kWeit; }, BESCHAEDIGT,
                "^Segment 1 reicht \xFC"
                "ber den Adressraum hinaus$"},
           Fall{"HalfOfTheAddresses", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_memsz = 1u << 31; },
                BESCHAEDIGT, "^Segment 1 liegt nicht hinter dem vorigen$"},
           Fall{"ToTheHalfOfTheAddresses",
                [](ElfDatei& d) {
                    auto& s = d.segment(letztesLadbare(d));
                    s.p_memsz = (1u << 31) - s.p_vaddr;
                },
                KEINER, "^$"},
           Fall{"BeyondTheHalfOfTheAddresses",
                [](ElfDatei& d) {
                    auto& s = d.segment(letztesLadbare(d));
                    s.p_memsz = (1u << 31) - s.p_vaddr + 1;
                },
                BESCHAEDIGT, "Adressraum"},
           Fall{"AlignedToBytes", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_align = 1; }, KEINER, "^$"},
           Fall{"NothingToLoad", [](ElfDatei& d) { nurLadbare(d, 0, 0); }, BESCHAEDIGT,
                "^kein ladbares Segment$"},
           Fall{"OneByteToLoad", [](ElfDatei& d) { nurLadbare(d, 1, 1); }, BESCHAEDIGT,
                " liegt nicht im geladenen Teil der Datei$"},
           Fall{"NothingInTheFile",
                [](ElfDatei& d) {
                    nurLadbare(d, 0, 1);
                    d.ohneAbschnitte();
                },
                BESCHAEDIGT, " liegt nicht im geladenen Teil der Datei$"},
           Fall{"NotToBeLoaded", [](ElfDatei& d) { d.segmentVom(PT_GNU_EH_FRAME).p_offset = kWeit; }, KEINER,
                "^$"},
           Fall{"ANoteNowhere", [](ElfDatei& d) { verlege(d, PT_NOTE, 1); }, BESCHAEDIGT,
                "^Segment [0-9]+ liegt nicht"},
           Fall{"ASegmentTableNowhere", [](ElfDatei& d) { verlege(d, PT_PHDR, 8); }, BESCHAEDIGT,
                "^Segment [0-9]+ liegt nicht"},
           Fall{"PropertiesNowhere", [](ElfDatei& d) { verlege(d, PT_GNU_PROPERTY, 8); }, BESCHAEDIGT,
                "^Segment [0-9]+ liegt nicht"},
           Fall{"ProtectsAPageMore",
                [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_memsz = d.speicherende() + 0x10000; }, KEINER,
                "^$"},
           Fall{"ProtectsMoreThanAPageMore",
                [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_memsz = d.speicherende() + 0x10001; },
                BESCHAEDIGT, "Adressraum"},
           Fall{"ProtectsFromTheEndOn",
                [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_vaddr = d.speicherende(); }, KEINER, "^$"},
           Fall{"ProtectsFromBehindTheEndOn",
                [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_vaddr = d.speicherende() + 1; }, BESCHAEDIGT,
                "Adressraum"},
           Fall{"DynamicWriteProtected", [](ElfDatei& d) { d.segment(letztesLadbare(d)).p_flags = PF_R; },
                BESCHAEDIGT, "^Der dynamische Abschnitt liegt in einem Segment ohne Schreibrecht$"},
           Fall{"OutOfOrder", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_vaddr = 0; }, BESCHAEDIGT,
                "liegt nicht hinter dem vorigen$"},
           Fall{"Alignment", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_align = 0x3000; }, BESCHAEDIGT,
                "^Segment [0-9]+ hat eine ung\xFCltige Ausrichtung$"},
           Fall{"NoDynamic", [](ElfDatei& d) { d.segmentVom(PT_DYNAMIC).p_type = PT_NULL; }, BESCHAEDIGT,
                "^kein dynamischer Abschnitt$"},
           Fall{"DynamicNowhere", [](ElfDatei& d) { d.segmentVom(PT_DYNAMIC).p_vaddr = kWeit; }, BESCHAEDIGT,
                "^Der dynamische Abschnitt liegt nicht"},
           Fall{"ThreadLocalsNowhere",
                [](ElfDatei& d) { d.segmentVom(PT_TLS).p_filesz = 8, d.segmentVom(PT_TLS).p_vaddr = kWeit; },
                BESCHAEDIGT, "^Segment [0-9]+ liegt nicht"},
           Fall{"ThreadLocalsImmense", [](ElfDatei& d) { d.segmentVom(PT_TLS).p_memsz = kWeit; }, BESCHAEDIGT,
                "Adressraum"},
           Fall{"NotReadable", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_flags &= ~ElfW(Word){PF_R}; },
                BESCHAEDIGT, " liegt nicht im geladenen Teil der Datei$"},
           Fall{"DynamicOnlyToBeRead",
                [](ElfDatei& d) {
                    d.segment(letztesLadbare(d)).p_flags = PF_R;
                    d.segmentVom(PT_DYNAMIC).p_flags = PF_R;
                },
                KEINER, "^$"},
           Fall{"ALaterDynamicOne",
                [](ElfDatei& d) {
                    const ElfW(Phdr) bisheriger = d.segmentVom(PT_DYNAMIC);
                    d.haengeSegmentAn() = bisheriger;
                    d.segmentVom(PT_DYNAMIC).p_vaddr = kWeit;
                },
                KEINER, "^$"},
           Fall{"ProtectsFarAway", [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_memsz = kWeit; },
                BESCHAEDIGT, "Adressraum"}),
    [](const auto& fall) { return fall.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Dynamik, EinzelnerSchaden,
    Values(
        Fall{"NoTexts", verliere(DT_STRTAB), BESCHAEDIGT, "^DT_STRTAB fehlt im dynamischen Abschnitt$"},
        Fall{"NoSymbols", verliere(DT_SYMTAB), BESCHAEDIGT, "^DT_SYMTAB fehlt"},
        Fall{"TextsNowhere", setze(DT_STRTAB, kWeit), BESCHAEDIGT, "^DT_STRTAB liegt nicht"},
        Fall{"TextsTooLong", setze(DT_STRSZ, kWeit), BESCHAEDIGT, "^DT_STRTAB liegt nicht"},
        Fall{"ANameBehindTheTexts", setze(DT_NEEDED, 0x100000), BESCHAEDIGT, "hinter der Texttabelle$"},
        Fall{"ANameAtTheEndOfTheTexts",
             [](ElfDatei& d) { d.eintrag(DT_NEEDED).d_un.d_val = d.eintrag(DT_STRSZ).d_un.d_val; },
             BESCHAEDIGT, "^Ein Name liegt hinter der Texttabelle$"},
        Fall{"ItsNameBehindTheTexts", mache(DT_NEEDED, DT_SONAME, 0x100000), BESCHAEDIGT,
             "hinter der Texttabelle$"},
        Fall{"APathBehindTheTexts", mache(DT_NEEDED, DT_RPATH, 0x100000), BESCHAEDIGT,
             "hinter der Texttabelle$"},
        Fall{"ALaterPathBehindTheTexts", mache(DT_NEEDED, DT_RUNPATH, 0x100000), BESCHAEDIGT,
             "hinter der Texttabelle$"},
        Fall{"NoNames",
             [](ElfDatei& d) {
                 while (d.hat(DT_NEEDED))
                     d.eintrag(DT_NEEDED).d_tag = 0x60000001;
                 d.eintrag(DT_STRSZ).d_un.d_val = 1;
             },
             KEINER, "^$"},
        Fall{"HashNowhere", setze(DT_GNU_HASH, kWeit), BESCHAEDIGT, "^DT_GNU_HASH liegt nicht"},
        Fall{"RelocationsNowhere", setze(kRelo, kWeit), BESCHAEDIGT, "^DT_RELA? liegt nicht"},
        Fall{"RelocationsWithoutALength", verliere(kRelosz), BESCHAEDIGT, "^DT_RELA? ist unvollst\xE4ndig$"},
        Fall{"RelocationsOfUnknownSize", setze(kReloent, 16), BESCHAEDIGT, "^DT_RELA? ist unvollst\xE4ndig$"},
        Fall{"StartFunctionsWithoutALength", verliere(DT_INIT_ARRAYSZ), BESCHAEDIGT, "^DT_INIT_ARRAY ist"},
        Fall{"StartFunctionsNowhere", setze(DT_INIT_ARRAY, kWeit), BESCHAEDIGT, "^DT_INIT_ARRAY liegt nicht"},
        Fall{"NoStartFunctionsNowhere",
             [](ElfDatei& d) {
                 setze(DT_INIT_ARRAY, kWeit)(d);
                 setze(DT_INIT_ARRAYSZ, 0)(d);
             },
             KEINER, "^$"},
        Fall{"EndFunctionsNowhere", setze(DT_FINI_ARRAY, kWeit), BESCHAEDIGT, "^DT_FINI_ARRAY liegt nicht"},
        Fall{"EndFunctionsWithoutALength", verliere(DT_FINI_ARRAYSZ), BESCHAEDIGT, "^DT_FINI_ARRAY ist"},
        Fall{"ALengthWithoutEndFunctions", verliere(DT_FINI_ARRAY), BESCHAEDIGT, "^DT_FINI_ARRAY ist"},
        Fall{"JumpsNowhere", setze(DT_JMPREL, kWeit), BESCHAEDIGT, "^DT_JMPREL liegt nicht"},
        Fall{"JumpsWithoutALength", verliere(DT_PLTRELSZ), BESCHAEDIGT, "^DT_JMPREL ist"},
        Fall{"ALengthWithoutRelocations", verliere(kRelo), BESCHAEDIGT, "^DT_RELA? ist unvollst\xE4ndig$"},
        Fall{"ATableNamedAgain",
             [](ElfDatei& d) {
                 d.nebensache() = {DT_GNU_HASH, {kWeit}};
             },
             BESCHAEDIGT, "^DT_GNU_HASH liegt nicht"},
        Fall{"EndFunctionNowhere", setze(kEndfunktion, kWeit), BESCHAEDIGT, "^DT_FINI(_ARRAY)? liegt nicht"},
        Fall{"VersionsNowhere", setze(DT_VERNEED, kWeit), BESCHAEDIGT, "^DT_VERNEED liegt nicht"},
        Fall{"JumpsOfUnknownKind", setze(DT_PLTREL, 1), BESCHAEDIGT, "^DT_JMPREL ist"},
        Fall{"NoEnd",
             [](ElfDatei& d) {
                 auto& s = d.segmentVom(PT_DYNAMIC);
                 s.p_filesz = 4 * sizeof(ElfW(Dyn));
             },
             BESCHAEDIGT, "^Der dynamische Abschnitt hat kein Ende$"},
        Fall{"NoEndByOneEntry",
             [](ElfDatei& d) {
                 auto& s = d.segmentVom(PT_DYNAMIC);
                 s.p_filesz = static_cast<ElfW(Addr)>(reinterpret_cast<char*>(&d.eintrag(DT_NULL)) -
                                                      (d.bytes.data() + s.p_offset));
             },
             BESCHAEDIGT, "^Der dynamische Abschnitt hat kein Ende$"}),
    [](const auto& fall) { return fall.param.name; });
