#include <orvoutil/ladepruefung/ElfPruefung.h>

#include "ElfFall.h"

#include <gmock/gmock.h>

using namespace testing;

namespace {

class ElfPruefungFall : public ElfFall {};

TEST_P(ElfPruefungFall, IsRefusedWithItsReason) { pruefe(HAS_EVERYTHING); }

constexpr std::uint64_t kWeit = std::uint64_t{1} << 40;
const std::string kAusrichtung = "Segment [0-9]+ hat eine ung\xFCltige Ausrichtung";
const std::string kNichtGeladen = " liegt nicht im geladenen Teil der Datei";

INSTANTIATE_TEST_SUITE_P(
    Kopf, ElfPruefungFall,
    Values(Fall{"AWrongMark", [](ElfDatei& d) { d.kopf().e_ident[EI_MAG3] = 'G'; }, "^keine ELF-Datei$"},
           Fall{"AnotherWordSize", [](ElfDatei& d) { d.kopf().e_ident[EI_CLASS] = ELFCLASS32; },
                "^ELF-Datei mit anderer Wortbreite$"},
           Fall{"AnotherByteOrder", [](ElfDatei& d) { d.kopf().e_ident[EI_DATA] = ELFDATA2MSB; },
                "^ELF-Datei mit anderer Byte-Reihenfolge$"},
           Fall{"AnotherVersionInTheMark", [](ElfDatei& d) { d.kopf().e_ident[EI_VERSION] = 2; },
                "^unbekannte ELF-Version$"},
           Fall{"AnotherVersion", [](ElfDatei& d) { d.kopf().e_version = 0; }, "^unbekannte ELF-Version$"},
           Fall{"AnotherProcessor", [](ElfDatei& d) { d.kopf().e_machine = EM_S390; },
                "^ELF-Datei f\xFCr einen anderen Prozessor, Kennung 22$"},
           Fall{"AProgram", [](ElfDatei& d) { d.kopf().e_type = ET_EXEC; },
                "^ausf\xFChrbares Programm, keine Bibliothek$"},
           Fall{"AnObjectFile", [](ElfDatei& d) { d.kopf().e_type = ET_REL; },
                "^ELF-Datei, aber keine Bibliothek$"},
           Fall{"ACoreFile", [](ElfDatei& d) { d.kopf().e_type = ET_CORE; },
                "^ELF-Datei, aber keine Bibliothek$"},
           Fall{"AnotherHeaderSize", [](ElfDatei& d) { d.kopf().e_ehsize = 52; },
                "^ung\xFCltige Gr\xF6\xDF"
                "e eines ELF-Kopfes$"},
           Fall{"AnotherSegmentHeaderSize", [](ElfDatei& d) { d.kopf().e_phentsize = 32; },
                "^ung\xFCltige Gr\xF6\xDF"
                "e eines ELF-Kopfes$"},
           Fall{"NoSegments", [](ElfDatei& d) { d.kopf().e_phnum = 0; }, "^keine Segmente$"},
           Fall{"TooManySegments", [](ElfDatei& d) { d.kopf().e_phnum = 513; }, "^zu viele Segmente$"},
           Fall{"ASegmentTableBehindTheFile", [](ElfDatei& d) { d.kopf().e_phoff = kWeit; },
                "^abgeschnitten: Segmenttabelle endet hinter der Datei$"},
           Fall{"ASegmentTableThatWrapsAround", [](ElfDatei& d) { d.kopf().e_phoff = ~std::uint64_t{7}; },
                "^abgeschnitten: Segmenttabelle endet hinter der Datei$"},
           Fall{"ASegmentTableAtAnOddPlace", [](ElfDatei& d) { d.kopf().e_phoff += 1; },
                "^Segmenttabelle ist nicht ausgerichtet$"},
           Fall{"ASectionTableBehindTheFile", [](ElfDatei& d) { d.kopf().e_shoff = kWeit; },
                "^abgeschnitten: Abschnittstabelle endet hinter der Datei$"},
           Fall{"MoreSectionsThanTheFileHas", [](ElfDatei& d) { d.kopf().e_shnum = 0xFE00; },
                "^abgeschnitten: Abschnittstabelle endet hinter der Datei$"},
           Fall{"AnotherSectionHeaderSize", [](ElfDatei& d) { d.kopf().e_shentsize = 1; },
                "^unbekannte Form der Abschnittstabelle$"},
           Fall{"NoSuchSectionOfNames", [](ElfDatei& d) { d.kopf().e_shstrndx = d.kopf().e_shnum; },
                "^Abschnitte ohne Namen$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Segmente, ElfPruefungFall,
    Values(Fall{"ASegmentBehindTheFile", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_offset += 0x100000; },
                "^abgeschnitten: Segment 1 endet hinter der Datei$"},
           Fall{"ASegmentLongerThanTheFile",
                [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_filesz = d.segmentVom(PT_LOAD).p_memsz = kWeit; },
                "^abgeschnitten: Segment 0 endet hinter der Datei$"},
           Fall{"ASegmentThatWrapsAround",
                [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_offset = ~std::uint64_t{0xFFF}; },
                "^abgeschnitten: Segment 1 endet hinter der Datei$"},
           Fall{"ANoteBehindTheFile", [](ElfDatei& d) { d.segmentVom(PT_NOTE).p_offset = kWeit; },
                "^abgeschnitten: Segment [0-9]+ endet hinter der Datei$"},
           Fall{"ASegmentShorterInMemory", [](ElfDatei& d) { --d.segmentVom(PT_LOAD).p_memsz; },
                "^Segment 0 ist in der Datei l\xE4nger als im Speicher$"},
           Fall{"ASegmentBeyondTheAddressSpace",
                [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_vaddr = ~std::uint64_t{0xFFF}; },
                "^Segment 0 reicht \xFC"
                "ber den Adressraum hinaus$"},
           Fall{"AnAlignmentThatIsNoPowerOfTwo", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_align = 0x3000; },
                "^" + kAusrichtung},
           Fall{"AnAlignmentBelowAPage", [](ElfDatei& d) { d.segmentVom(PT_LOAD).p_align = 8; },
                "^" + kAusrichtung},
           Fall{"AnAddressThatDoesNotSuitTheOffset",
                [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_vaddr += 8; }, "^" + kAusrichtung},
           Fall{"SegmentsInDisorder",
                [](ElfDatei& d) {
                    std::swap(d.segmentVom(PT_LOAD, 0).p_vaddr, d.segmentVom(PT_LOAD, 1).p_vaddr);
                },
                "^Segment [0-9] liegt nicht hinter dem vorigen$"},
           Fall{"NothingToLoad",
                [](ElfDatei& d) {
                    for (unsigned i = 0; i < d.kopf().e_phnum; ++i)
                        if (d.segment(i).p_type == PT_LOAD)
                            d.segment(i).p_type = PT_NULL;
                },
                "^kein ladbares Segment$"},
           Fall{"NoDynamicSection", [](ElfDatei& d) { d.segmentVom(PT_DYNAMIC).p_type = PT_NULL; },
                "^kein dynamischer Abschnitt$"},
           Fall{"TwoDynamicSections", [](ElfDatei& d) { d.segmentVom(PT_NOTE) = d.segmentVom(PT_DYNAMIC); },
                "^mehrere dynamische Abschnitte$"},
           Fall{"ADynamicSectionInNoSegment", [](ElfDatei& d) { d.segmentVom(PT_DYNAMIC).p_vaddr = kWeit; },
                "^Segment [0-9]+" + kNichtGeladen + "$"},
           Fall{"ADynamicSectionElsewhereInTheFile",
                [](ElfDatei& d) { d.segmentVom(PT_DYNAMIC).p_offset -= 16; },
                "^Segment [0-9]+" + kNichtGeladen + "$"},
           Fall{"ADynamicSectionThatCannotBeWritten",
                [](ElfDatei& d) { d.segmentVom(PT_LOAD, 3).p_flags = PF_R; },
                "^Segment [0-9]+ reicht .* hinaus$|Der dynamische Abschnitt liegt in einem Segment ohne "
                "Schreibrecht"},
           Fall{"AnUnwindTableOfAnotherVersion",
                [](ElfDatei& d) { d.bei<char>(d.segmentVom(PT_GNU_EH_FRAME).p_offset) = 2; },
                "^Segment [0-9]+ hat eine unbekannte Fassung$"},
           Fall{"AnUnwindTableInNoSegment",
                [](ElfDatei& d) { d.segmentVom(PT_GNU_EH_FRAME).p_vaddr = kWeit; },
                "^Segment [0-9]+" + kNichtGeladen + "$"},
           Fall{"AThreadLocalImageInNoSegment", [](ElfDatei& d) { d.segmentVom(PT_TLS).p_memsz = kWeit; },
                "^Segment [0-9]+ reicht .*ber den Adressraum hinaus$"},
           Fall{"AnAlignmentOfThreadLocalsThatIsNoPowerOfTwo",
                [](ElfDatei& d) { d.segmentVom(PT_TLS).p_align = 3; }, "^" + kAusrichtung},
           Fall{"WriteProtectionBehindItsSegment",
                [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_memsz += 0x10000; },
                "^Segment [0-9]+ reicht \xFC"
                "ber das geladene Segment hinaus$"},
           Fall{"ANoteLongerInMemory", [](ElfDatei& d) { d.segmentVom(PT_NOTE).p_memsz = kWeit; },
                "^Segment [0-9]+ ist im Speicher l\xE4nger als in der Datei$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Abschnitte, ElfPruefungFall,
    Values(Fall{"ASectionBehindTheFile", [](ElfDatei& d) { d.abschnittVom(SHT_DYNSYM).sh_size = kWeit; },
                "^abgeschnitten: Abschnitt [0-9]+ endet hinter der Datei$"},
           Fall{"ASectionInNoSegment", [](ElfDatei& d) { d.abschnittVom(SHT_DYNSYM).sh_addr = kWeit; },
                "^Abschnitt [0-9]+ liegt in keinem passenden Segment$"},
           Fall{"CodeThatMustNotRun", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_flags = PF_R; },
                "^Abschnitt [0-9]+ liegt in keinem passenden Segment$"},
           Fall{"ASectionElsewhereThanItsSegment",
                [](ElfDatei& d) { d.abschnittVom(SHT_DYNSYM).sh_offset += 8; },
                "^Abschnitt [0-9]+ liegt anderswo als sein Segment$"},
           Fall{"CodeMappedFromElsewhere", [](ElfDatei& d) { d.segmentVom(PT_LOAD, 1).p_offset -= 0x1000; },
                "^Abschnitt [0-9]+ liegt anderswo als sein Segment$"},
           Fall{"ZerosThatTheFileFills",
                [](ElfDatei& d) { d.segmentVom(PT_LOAD, 3).p_filesz = d.segmentVom(PT_LOAD, 3).p_memsz; },
                "^Abschnitt [0-9]+ liegt anderswo als sein Segment$"},
           Fall{"ThreadLocalsWithoutTheirSegment", [](ElfDatei& d) { d.segmentVom(PT_TLS).p_type = PT_NULL; },
                "^Abschnitt [0-9]+ liegt nicht im TLS-Segment$"},
           Fall{"AnUnwindTableThatNobodyFinds",
                [](ElfDatei& d) { d.segmentVom(PT_GNU_EH_FRAME).p_type = PT_NULL; },
                "^Abschnitt [0-9]+ liegt in keinem Segment$"},
           Fall{"WriteProtectionOfTheData", [](ElfDatei& d) { d.segmentVom(PT_GNU_RELRO).p_memsz += 0x1000; },
                "^Abschnitt [0-9]+ verliert das Schreibrecht$"}),
    nameVon);

} // namespace

TEST(ElfPruefung, ALibraryInOrderPasses) { EXPECT_EQ(ElfDatei(HAS_EVERYTHING).pruefung(), ""); }

TEST(ElfPruefung, OurOwnLibraryPasses) { EXPECT_EQ(ElfDatei(LIBORVOUTIL).pruefung(), ""); }

TEST(ElfPruefung, ALibraryPassesHoweverItWasLinked) {
    for (const char* const pfad : {HAS_EVERYTHING_STRIPPED, HAS_EVERYTHING_OLD_HASH, HAS_EVERYTHING_PACKED,
                                   HAS_EVERYTHING_ONE_MAPPING, HAS_EVERYTHING_OWN_START})
        EXPECT_EQ(ElfDatei(pfad).pruefung(), "") << pfad;
}

TEST(ElfPruefung, ALibraryWithoutSectionsPasses) {
    ElfDatei datei(HAS_EVERYTHING);
    datei.ohneAbschnitte();
    EXPECT_EQ(datei.pruefung(), "");
}

TEST(ElfPruefung, ALibraryWithItsSectionTableCutOffPassesWhenItSaysSo) {
    ElfDatei datei(HAS_EVERYTHING);
    datei.bytes.resize(datei.kopf().e_shoff);
    EXPECT_THAT(datei.pruefung(), StartsWith("abgeschnitten: Abschnittstabelle"));
    datei.ohneAbschnitte();
    EXPECT_EQ(datei.pruefung(), "");
}

TEST(ElfPruefung, ALibraryWithMoreBytesBehindItsEndPasses) {
    ElfDatei datei(HAS_EVERYTHING);
    datei.bytes.append(100000, 'x');
    EXPECT_EQ(datei.pruefung(), "");
}

TEST(ElfPruefung, RefusesWhatIsNoElfFile) {
    for (const char* const inhalt : {"", "\x7f",
                                     "\x7f"
                                     "EL",
                                     "Text", "!<arch>\n", "#!/bin/sh\n", "MZ"}) {
        ElfDatei datei("/dev/null");
        datei.bytes = inhalt;
        EXPECT_EQ(datei.pruefung(), "keine ELF-Datei") << inhalt;
    }
}

TEST(ElfPruefung, ATruncatedFileIsRefusedWhereverItEnds) {
    const ElfDatei datei(HAS_EVERYTHING);
    const std::size_t laenge = datei.bytes.size();
    for (std::size_t i = 0; i < laenge; i += i < 4096 ? 1 : 64)
        EXPECT_THAT(datei.pruefung(i), StartsWith(i < SELFMAG ? "keine ELF-Datei" : "abgeschnitten: ")) << i;
    EXPECT_THAT(datei.pruefung(laenge - 1), StartsWith("abgeschnitten: "));
}
