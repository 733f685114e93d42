#include <orvoutil/ladepruefung/ElfTabellen.h>

#include "ElfFall.h"

using namespace testing;

namespace {

constexpr std::uint64_t kWeit = std::uint64_t{1} << 40;
const std::string kNichtGeladen = " liegt nicht im geladenen Teil der Datei$";

// Most changes are in files without a section table, so that only what the loader itself looks at speaks against them.

class ElfTabellenFall : public ElfFall {};
TEST_P(ElfTabellenFall, IsRefusedWithItsReason) { pruefe(HAS_EVERYTHING); }

class ElfHashFall : public ElfFall {};
TEST_P(ElfHashFall, IsRefusedWithItsReason) { pruefe(HAS_EVERYTHING_OLD_HASH); }

class ElfGepacktFall : public ElfFall {};
TEST_P(ElfGepacktFall, IsRefusedWithItsReason) { pruefe(HAS_EVERYTHING_PACKED); }

/// Sets the value of an entry.
auto setze(std::int64_t tag, std::uint64_t wert) {
    return [=](ElfDatei& d) {
        d.ohneAbschnitte();
        d.eintrag(tag).d_un.d_val = wert;
    };
}

/// Changes an entry's value by that much.
auto verschiebe(std::int64_t tag, std::int64_t um) {
    return [=](ElfDatei& d) {
        d.ohneAbschnitte();
        d.eintrag(tag).d_un.d_val += static_cast<std::uint64_t>(um);
    };
}

/// Makes an entry one that nobody knows.
auto verliere(std::int64_t tag) {
    return [=](ElfDatei& d) {
        d.ohneAbschnitte();
        d.eintrag(tag).d_tag = 0x60000001;
    };
}

template <class T>
auto inTabelle(std::int64_t tag, std::uint64_t nummer, T wert) {
    return [=](ElfDatei& d) {
        d.ohneAbschnitte();
        d.inTabelle<T>(tag, nummer) = wert;
    };
}

INSTANTIATE_TEST_SUITE_P(
    Dynamik, ElfTabellenFall,
    Values(Fall{"NoEndOfTheDynamicSection",
                [](ElfDatei& d) {
                    const auto& s = d.segmentVom(PT_DYNAMIC);
                    for (std::uint64_t i = 0; i < s.p_filesz / sizeof(ElfW(Dyn)); ++i) {
                        auto& e = d.bei<ElfW(Dyn)>(s.p_offset + i * sizeof(ElfW(Dyn)));
                        if (e.d_tag == DT_NULL)
                            e.d_tag = 0x60000001;
                    }
                },
                "^Der dynamische Abschnitt hat kein Ende$"},
           Fall{"TheSameEntryTwice", [](ElfDatei& d) { d.eintrag(DT_STRSZ) = d.eintrag(DT_STRTAB); },
                "^Der dynamische Abschnitt widerspricht sich$"},
           Fall{"NoTexts", verliere(DT_STRTAB), "^DT_STRTAB fehlt"},
           Fall{"TextsWithoutALength", verliere(DT_STRSZ), "^DT_STRSZ fehlt"},
           Fall{"TextsOfNoLength", setze(DT_STRSZ, 0), "^Die Texttabelle ist leer$"},
           Fall{"TextsInNoSegment", setze(DT_STRTAB, kWeit), "^DT_STRTAB" + kNichtGeladen},
           Fall{"TextsLongerThanTheirSegment", setze(DT_STRSZ, kWeit), "^DT_STRTAB" + kNichtGeladen},
           Fall{"TextsWithoutAnEnd", verschiebe(DT_STRSZ, -1),
                "^Die Texttabelle beginnt oder endet mitten im Text$"},
           Fall{"TextsThatBeginInAText", verschiebe(DT_STRTAB, 1),
                "^Die Texttabelle beginnt oder endet mitten im Text$"},
           Fall{"ANeededLibraryWithoutAName", setze(DT_NEEDED, 0x100000),
                "^Ein Name liegt hinter der Texttabelle$"},
           Fall{"AStartFunctionOutsideTheCode", setze(DT_INIT, 8), "^DT_INIT liegt nicht im Code$"},
           Fall{"AnEndFunctionOutsideTheFile", setze(DT_FINI, kWeit), "^DT_FINI liegt nicht im Code$"},
           Fall{"AMarkOfAProgram",
                [](ElfDatei& d) {
                    auto& e = d.hat(DT_FLAGS_1) ? d.eintrag(DT_FLAGS_1) : d.eintrag(DT_SYMENT);
                    e.d_tag = DT_FLAGS_1;
                    e.d_un.d_val = DF_1_PIE;
                },
                "^ausf\xFChrbares Programm, keine Bibliothek$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Funktionen, ElfTabellenFall,
    Values(Fall{"StartFunctionsWithoutALength", verliere(DT_INIT_ARRAYSZ), "^DT_INIT_ARRAYSZ fehlt"},
           Fall{"ALengthOfNoStartFunctions", verliere(DT_INIT_ARRAY), "^DT_INIT_ARRAY fehlt"},
           Fall{"EndFunctionsWithoutALength", verliere(DT_FINI_ARRAYSZ), "^DT_FINI_ARRAYSZ fehlt"},
           Fall{"StartFunctionsInNoSegment", setze(DT_INIT_ARRAY, kWeit), "^DT_INIT_ARRAY" + kNichtGeladen},
           Fall{"StartFunctionsAtAnOddPlace", verschiebe(DT_INIT_ARRAY, 1),
                "^DT_INIT_ARRAY ist nicht ausgerichtet$"},
           Fall{"HalfAStartFunction", verschiebe(DT_INIT_ARRAYSZ, 4),
                "^Start- oder Endefunktionen mit halben Adressen$"},
           Fall{"MoreEndFunctionsThanThereAre", verschiebe(DT_FINI_ARRAYSZ, 32),
                "^Eine Start- oder Endefunktion hat keine Adresse$"},
           Fall{"StartFunctionsOfPrograms", [](ElfDatei& d) { d.eintrag(DT_INIT).d_tag = DT_PREINIT_ARRAY; },
                "^DT_PREINIT_ARRAY steht nur Programmen zu$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Relokationen, ElfTabellenFall,
    Values(Fall{"RelocationsWithoutALength", verliere(DT_RELASZ),
                "^Relokationen ohne Tabelle oder ohne Anzahl$"},
           Fall{"ALengthOfNoRelocations", verliere(DT_RELA), "^Relokationen ohne Tabelle oder ohne Anzahl$"},
           Fall{"RelocationsOfUnknownSize", setze(DT_RELAENT, 16), "^DT_RELAENT ist unbekannt$"},
           Fall{"RelocationsWithoutASize", verliere(DT_RELAENT), "^DT_RELAENT fehlt"},
           Fall{"RelocationsInNoSegment", setze(DT_RELA, kWeit), "^DT_RELA" + kNichtGeladen},
           Fall{"RelocationsLongerThanTheirSegment", setze(DT_RELASZ, kWeit - kWeit % sizeof(ElfW(Rela))),
                "^DT_RELA" + kNichtGeladen},
           Fall{"HalfARelocation", verschiebe(DT_RELASZ, 1), "^Relokationen von falscher Anzahl$"},
           Fall{"MoreRelativeRelocationsThanAll", setze(DT_RELACOUNT, kWeit),
                "^Relokationen von falscher Anzahl$"},
           Fall{"RelativeRelocationsThatAreNot", verschiebe(DT_RELACOUNT, 1),
                "^Relokationen in falscher Reihenfolge$"},
           Fall{"ARelocationIntoTheCode", inTabelle<ElfW(Addr)>(DT_RELA, 0, 0x10),
                "^Eine Relokation zielt aus den beschreibbaren Segmenten hinaus$"},
           Fall{"ARelocationToNoSymbol", inTabelle<std::uint64_t>(DT_JMPREL, 1, 0xFFFFFFULL << 32 | 7),
                "^DT_SYMTAB" + kNichtGeladen},
           Fall{"AStartFunctionInTheData",
                [](ElfDatei& d) {
                    const std::uint64_t start = d.eintrag(DT_INIT_ARRAY).d_un.d_ptr;
                    for (auto* r = &d.inTabelle<ElfW(Rela)>(DT_RELA);; ++r)
                        if (r->r_offset == start) {
                            r->r_addend = static_cast<ElfW(Sxword)>(start);
                            break;
                        }
                },
                "^Eine Start- oder Endefunktion liegt nicht im Code$"},
           Fall{"JumpsWithoutALength", verliere(DT_PLTRELSZ), "^Relokationen ohne Tabelle oder ohne Anzahl$"},
           Fall{"JumpsOfUnknownKind", setze(DT_PLTREL, 3), "^DT_PLTREL ist unbekannt$"},
           Fall{"JumpsWithoutAKind", verliere(DT_PLTREL), "^DT_PLTREL fehlt"},
           Fall{"JumpsInNoSegment", setze(DT_JMPREL, kWeit), "^DT_JMPREL" + kNichtGeladen},
           Fall{"JumpsInTheMiddleOfOtherRelocations",
                [](ElfDatei& d) {
                    d.ohneAbschnitte();
                    d.eintrag(DT_JMPREL).d_un.d_ptr = d.eintrag(DT_RELA).d_un.d_ptr + 8;
                },
                "^Relokationen in zwei Tabellen, die sich widersprechen$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Symbole, ElfTabellenFall,
    Values(Fall{"NoSymbols", verliere(DT_SYMTAB), "^DT_SYMTAB fehlt"},
           Fall{"SymbolsOfUnknownSize", setze(DT_SYMENT, 16), "^DT_SYMENT ist unbekannt$"},
           Fall{"SymbolsInNoSegment", setze(DT_SYMTAB, kWeit), "^DT_SYMTAB" + kNichtGeladen},
           Fall{"SymbolsAtAnOddPlace", verschiebe(DT_SYMTAB, 4), "^DT_SYMTAB ist nicht ausgerichtet$"},
           Fall{"SymbolsThatBeginWithOne", verschiebe(DT_SYMTAB, sizeof(ElfW(Sym))),
                "^Die Symboltabelle beginnt mit einem Symbol$"},
           Fall{"ASymbolWithoutAName",
                [](ElfDatei& d) { d.inTabelle<ElfW(Sym)>(DT_SYMTAB, 2).st_name = 1u << 30; },
                "^Ein Name liegt hinter der Texttabelle$"},
           Fall{"AThreadLocalSymbolWithoutSuchASegment",
                [](ElfDatei& d) {
                    auto& symbol = d.inTabelle<ElfW(Sym)>(DT_SYMTAB, 2);
                    symbol.st_shndx = 1;
                    symbol.st_info = STT_TLS;
                    symbol.st_value = kWeit;
                },
                "^Ein TLS-Symbol ohne TLS-Segment$"},
           Fall{"ASymbolToBeCalledOutsideTheCode",
                [](ElfDatei& d) {
                    auto& symbol = d.inTabelle<ElfW(Sym)>(DT_SYMTAB, 2);
                    symbol.st_shndx = 1;
                    symbol.st_info = STT_GNU_IFUNC;
                    symbol.st_value = 8;
                },
                "^Ein aufzurufendes Symbol liegt nicht im Code$"},
           Fall{"NoHashTable", verliere(DT_GNU_HASH), "^keine Hashtabelle$"},
           Fall{"AHashTableInNoSegment", setze(DT_GNU_HASH, kWeit), "^DT_GNU_HASH" + kNichtGeladen},
           Fall{"AHashTableWithoutSlots", inTabelle<std::uint32_t>(DT_GNU_HASH, 0, 0), "unsinnigem Kopf$"},
           Fall{"AHashTableWithAnOddFilter", inTabelle<std::uint32_t>(DT_GNU_HASH, 2, 3), "unsinnigem Kopf$"},
           Fall{"AHashTableWithoutAFilter", inTabelle<std::uint32_t>(DT_GNU_HASH, 2, 0), "unsinnigem Kopf$"},
           Fall{"AHashTableWithTooManySlots", inTabelle<std::uint32_t>(DT_GNU_HASH, 0, 0xFFFFFFFF),
                "^DT_GNU_HASH" + kNichtGeladen},
           Fall{"AHashTableThatBeginsBehindItsSymbols", inTabelle<std::uint32_t>(DT_GNU_HASH, 1, 0xFFFFFF),
                "unsinnigem Fach$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Versionen, ElfTabellenFall,
    Values(Fall{"SymbolVersionsInNoSegment", setze(DT_VERSYM, kWeit), "^DT_VERSYM" + kNichtGeladen},
           Fall{"VersionsThatSymbolsDoNotHave", verliere(DT_VERSYM),
                "^Symbole ohne die Versionen, die es gibt"},
           Fall{"SymbolVersionsThatDoNotExist", verliere(DT_VERNEED),
                "^Symbole ohne die Versionen, die es gibt"},
           Fall{"NeededVersionsInNoSegment", setze(DT_VERNEED, kWeit),
                "^Verweis hinter den geladenen Teil der Datei$"},
           Fall{"ASymbolVersionBeyondAll", inTabelle<std::uint16_t>(DT_VERSYM, 2, 0x7000),
                "^Ein Symbol mit einer Version, die es nicht gibt$"},
           Fall{"AVersionFromALibraryNobodyNeeds",
                [](ElfDatei& d) { d.inTabelle<ElfW(Verneed)>(DT_VERNEED).vn_file += 1; },
                "^Versionen aus einer Bibliothek, die nicht angefordert wird$"},
           Fall{"AVersionWithoutAName",
                [](ElfDatei& d) {
                    const auto& datei = d.inTabelle<ElfW(Verneed)>(DT_VERNEED);
                    const auto ab = d.stelle(d.eintrag(DT_VERNEED).d_un.d_ptr) + datei.vn_aux;
                    d.bei<ElfW(Vernaux)>(ab).vna_name = 1u << 30;
                },
                "^Ein Name liegt hinter der Texttabelle$"},
           Fall{"VersionsThatLeadAstray",
                [](ElfDatei& d) { d.inTabelle<ElfW(Verneed)>(DT_VERNEED).vn_next = 1u << 30; },
                "^Verweis hinter den geladenen Teil der Datei$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Hash, ElfHashFall,
    Values(Fall{"InNoSegment", setze(DT_HASH, kWeit), "^DT_HASH" + kNichtGeladen},
           Fall{"WithoutSlots", inTabelle<std::uint32_t>(DT_HASH, 0, 0), "^DT_HASH mit unsinnigem Kopf$"},
           Fall{"WithTooManySymbols", inTabelle<std::uint32_t>(DT_HASH, 1, 0xFFFFFFFF),
                "^DT_HASH" + kNichtGeladen},
           Fall{"WithACircle",
                [](ElfDatei& d) {
                    const auto faecher = d.inTabelle<std::uint32_t>(DT_HASH, 0);
                    d.inTabelle<std::uint32_t>(DT_HASH, 2) = 1;
                    d.inTabelle<std::uint32_t>(DT_HASH, 2 + faecher + 1) = 1;
                },
                "^DT_HASH mit unsinniger Kette$"},
           Fall{"WithAChainBeyondItsSymbols", inTabelle<std::uint32_t>(DT_HASH, 2, 0xFFFF),
                "^DT_HASH mit unsinniger Kette$"}),
    nameVon);

INSTANTIATE_TEST_SUITE_P(
    Gepackt, ElfGepacktFall,
    Values(Fall{"InNoSegment", setze(36, kWeit), "^DT_RELR" + kNichtGeladen},
           Fall{"WithoutALength", verliere(35), "^DT_RELRSZ fehlt"},
           Fall{"OfUnknownSize", setze(37, 4), "^DT_RELRENT ist unbekannt$"},
           Fall{"ThatBeginWithAMask", inTabelle<ElfW(Addr)>(36, 0, 3), "^Gepackte Relokationen ohne Anfang$"},
           Fall{"IntoTheCode", inTabelle<ElfW(Addr)>(36, 0, 16),
                "^Eine Relokation zielt aus den beschreibbaren Segmenten hinaus$"},
           Fall{"ThatTheSectionsDoNotKnow", [](ElfDatei& d) { d.eintrag(DT_INIT_ARRAY).d_un.d_ptr += 8; },
                "^Abschnitt [0-9]+ fehlt im dynamischen Abschnitt$"}),
    nameVon);

} // namespace

TEST(ElfTabellen, TablesThatTheSectionsContradictAreRefused) {
    for (const std::int64_t tag :
         {std::int64_t{DT_INIT_ARRAYSZ}, std::int64_t{DT_RELASZ}, std::int64_t{DT_PLTRELSZ}}) {
        ElfDatei datei(HAS_EVERYTHING);
        datei.eintrag(tag).d_un.d_val = 0;
        EXPECT_THAT(datei.pruefung(), EndsWith(" fehlt im dynamischen Abschnitt")) << tag;
    }
}
