#include "datei/ElfInhalt.h"

#include "ElfDatei.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <initializer_list>
#include <utility>

using namespace werkzeug;
using namespace testing;

namespace {

auto heisst(const std::string& name) { return Field(&Bibliothekssymbol::name, name); }

/// A valid library, which a test changes while it stays valid.
class ElfInhalt : public Test {
protected:
    /// The contents of the file as it is now.
    Bibliotheksinhalt gelesen() {
        Bibliotheksinhalt inhalt;
        EXPECT_EQ(lies(inhalt), "");
        return inhalt;
    }

    /// An entry of the dynamic section that no loader needs, with other contents.
    void setze(std::int64_t tag, std::uint64_t wert) {
        auto& e = datei_.eintrag(entbehrlicher_);
        e.d_tag = entbehrlicher_ = tag;
        e.d_un.d_val = wert;
    }

    ElfW(Sym) & symbol(const std::string& name) {
        const std::uint64_t namen = datei_.stelle(datei_.eintrag(DT_STRTAB).d_un.d_ptr);
        const ElfW(Shdr)& tabelle = datei_.abschnittVom(SHT_DYNSYM);
        for (std::uint64_t i = 1; i < tabelle.sh_size / sizeof(ElfW(Sym)); ++i) {
            auto& s = datei_.bei<ElfW(Sym)>(tabelle.sh_offset + i * sizeof(ElfW(Sym)));
            if (datei_.bytes.compare(namen + s.st_name, name.size() + 1, name.c_str(), name.size() + 1) == 0)
                return s;
        }
        throw std::out_of_range("no such symbol");
    }

    std::string lies(Bibliotheksinhalt& inhalt) const {
        return liesElf(verzeichnis_.schreibe("bibliothek.so", datei_.bytes), inhalt);
    }

    const Verzeichnis verzeichnis_;
    ElfDatei datei_{SHOWS_EVERY_KIND};

private:
    std::int64_t entbehrlicher_ = DT_RELACOUNT;
};

unsigned char art(unsigned bindung, unsigned typ) { return static_cast<unsigned char>(bindung << 4 | typ); }

} // namespace

TEST_F(ElfInhalt, ASymbolThatOthersDoNotSeeIsNotExported) {
    ASSERT_THAT(gelesen().exportierte, Contains(heisst("funktion")));
    for (const unsigned char sichtbarkeit : {STV_HIDDEN, STV_INTERNAL}) {
        symbol("funktion").st_other = sichtbarkeit;
        EXPECT_THAT(gelesen().exportierte, Not(Contains(heisst("funktion")))) << int{sichtbarkeit};
    }
    symbol("funktion").st_other = STV_PROTECTED;
    EXPECT_THAT(gelesen().exportierte, Contains(heisst("funktion")));
    symbol("funktion").st_info = art(STB_LOCAL, STT_FUNC);
    EXPECT_THAT(gelesen().exportierte, Not(Contains(heisst("funktion"))));
}

TEST_F(ElfInhalt, KindsAndBindingsThatNobodyUsesAreTakenDownAsWhatTheyAre) {
    const std::initializer_list<std::pair<unsigned char, std::pair<Symbolbindung, Symbolart>>> faelle{
        {art(STB_LOOS, STT_FUNC), {Symbolbindung::Einmalig, Symbolart::Funktion}}, // GNU's "unique"
        {art(STB_LOPROC, STT_FUNC), {Symbolbindung::Andere, Symbolart::Funktion}},
        {art(STB_WEAK, STT_GNU_IFUNC), {Symbolbindung::Schwach, Symbolart::Funktion}},
        {art(STB_GLOBAL, STT_COMMON), {Symbolbindung::Global, Symbolart::Daten}},
        {art(STB_GLOBAL, STT_HIPROC), {Symbolbindung::Global, Symbolart::Andere}}};
    for (const auto& [info, erwartet] : faelle) {
        symbol("funktion").st_info = info;
        EXPECT_THAT(gelesen().exportierte,
                    Contains(AllOf(heisst("funktion"), Field(&Bibliothekssymbol::bindung, erwartet.first),
                                   Field(&Bibliothekssymbol::art, erwartet.second))))
            << int{info};
    }
}

TEST_F(ElfInhalt, ASymbolWithoutANameIsLeftOut) {
    const std::size_t vorher = gelesen().exportierte.size();
    symbol("funktion").st_name = 0;
    EXPECT_EQ(gelesen().exportierte.size(), vorher - 1);
    EXPECT_THAT(gelesen().exportierte, Not(Contains(heisst(""))));
}

TEST_F(ElfInhalt, WhatLetsItBindAtOnceOrWriteToItsCodeStandsInAnyOfSeveralPlaces) {
    const Bibliotheksinhalt vorher = gelesen();
    ASSERT_FALSE(vorher.bindetSofort);
    ASSERT_FALSE(vorher.aendertCode);
    setze(DT_BIND_NOW, 0);
    EXPECT_TRUE(gelesen().bindetSofort);
    setze(DT_FLAGS, DF_BIND_NOW);
    EXPECT_TRUE(gelesen().bindetSofort);
    EXPECT_FALSE(gelesen().aendertCode);
    setze(DT_FLAGS_1, DF_1_NOW);
    EXPECT_TRUE(gelesen().bindetSofort);
    EXPECT_FALSE(gelesen().bleibtGeladen);
    setze(DT_FLAGS, DF_TEXTREL);
    EXPECT_TRUE(gelesen().aendertCode);
    EXPECT_FALSE(gelesen().bindetSofort);
    setze(DT_TEXTREL, 0);
    EXPECT_TRUE(gelesen().aendertCode);
}

TEST_F(ElfInhalt, TheOlderFormOfSearchPathsCountsWhereTheNewerIsNot) {
    ASSERT_THAT(gelesen().suchpfade, Contains("/opt/bibliotheken"));
    auto& neue = datei_.eintrag(DT_RUNPATH);
    setze(DT_RPATH, symbol("funktion").st_name);
    EXPECT_THAT(gelesen().suchpfade, Contains("/opt/bibliotheken"));
    neue.d_tag = DT_RELACOUNT; // without effect
    neue.d_un.d_val = 0;
    EXPECT_THAT(gelesen().suchpfade, ElementsAre("funktion"));
}

TEST_F(ElfInhalt, AnEmptySearchPathIsNone) {
    datei_.eintrag(DT_RUNPATH).d_un.d_val = 0; // where each table of names begins with an empty one
    EXPECT_THAT(gelesen().suchpfade, IsEmpty());
}

TEST_F(ElfInhalt, NothingIsTakenDownOfAFileThatIsCutOff) {
    const std::string ganz = datei_.bytes;
    for (std::size_t laenge = 0; laenge < datei_.stelle(datei_.eintrag(DT_STRTAB).d_un.d_ptr); laenge += 64) {
        datei_.bytes = ganz.substr(0, laenge);
        Bibliotheksinhalt inhalt;
        inhalt.soname = "von vorher";
        EXPECT_NE(lies(inhalt), "") << laenge;
        EXPECT_TRUE(inhalt.soname.empty() && inhalt.exportierte.empty() && inhalt.benoetigte.empty());
        datei_.bytes = ganz;
    }
}

TEST_F(ElfInhalt, ATableThatLeadsOutOfTheFileIsNotRead) {
    const std::string ganz = datei_.bytes;
    for (const std::int64_t tag : {DT_STRTAB, DT_STRSZ, DT_SYMTAB}) {
        for (const std::uint64_t wert : {std::uint64_t{1} << 40, ~std::uint64_t{0}}) {
            datei_.eintrag(tag).d_un.d_val = wert;
            Bibliotheksinhalt inhalt;
            EXPECT_NE(lies(inhalt), "") << tag;
            EXPECT_THAT(inhalt.exportierte, IsEmpty());
            datei_.bytes = ganz;
        }
    }
}

TEST_F(ElfInhalt, TheVersionsOfOtherLibrariesAreListedWithTheirLibraries) {
    EXPECT_THAT(gelesen().versionen, Contains(AllOf(Field(&Versionsbedarf::bibliothek, "libc.so.6"),
                                                    Field(&Versionsbedarf::version, StartsWith("GLIBC_")))));
    datei_.eintrag(DT_VERNEEDNUM).d_un.d_val = 0;
    EXPECT_THAT(gelesen().versionen, IsEmpty());
}

TEST_F(ElfInhalt, ATableOfVersionsThatIsDamagedIsNotRead) {
    const std::string ganz = datei_.bytes;
    Bibliotheksinhalt inhalt;
    for (const std::uint64_t wert : {std::uint64_t{1} << 40, ~std::uint64_t{0}}) {
        datei_.eintrag(DT_VERNEED).d_un.d_val = wert;
        EXPECT_NE(lies(inhalt), "") << wert;
        datei_.bytes = ganz;
    }
    for (const auto feld : {&ElfW(Verneed)::vn_aux, &ElfW(Verneed)::vn_file}) {
        datei_.inTabelle<ElfW(Verneed)>(DT_VERNEED).*feld = 0x7FFFFFFF;
        EXPECT_NE(lies(inhalt), "");
        datei_.bytes = ganz;
    }
    // Entries that overlap, each the next byte: as many as the field of their number holds.
    auto& bedarf = datei_.inTabelle<ElfW(Verneed)>(DT_VERNEED);
    bedarf.vn_cnt = 0xFFFF;
    const std::uint64_t erster = datei_.stelle(datei_.eintrag(DT_VERNEED).d_un.d_ptr) + bedarf.vn_aux;
    datei_.bei<ElfW(Vernaux)>(erster).vna_next = 1;
    EXPECT_NE(lies(inhalt), "");
    EXPECT_THAT(inhalt.versionen, IsEmpty());
}

TEST_F(ElfInhalt, WhetherCodeRunsOnTheStackIsSaidOrNot) {
    EXPECT_TRUE(gelesen().nenntStapel);
    EXPECT_FALSE(gelesen().stapelMitCode);
    datei_.segmentVom(PT_GNU_STACK).p_flags |= PF_X;
    EXPECT_TRUE(gelesen().stapelMitCode);
    datei_.segmentVom(PT_GNU_STACK).p_type = PT_NULL;
    EXPECT_FALSE(gelesen().nenntStapel);
    EXPECT_FALSE(gelesen().stapelMitCode);
}

// Names may overlap in the file, so that a small file fills the memory of its reader.
TEST(ElfInhaltNamen, ThatAreTooLongTogetherAreRefused) {
    const Verzeichnis verzeichnis;
    ElfDatei datei(HAS_A_LONG_NAME);
    Bibliotheksinhalt inhalt;
    const auto lies = [&] { return liesElf(verzeichnis.schreibe("bibliothek.so", datei.bytes), inhalt); };
    ASSERT_EQ(lies(), "");
    ASSERT_THAT(inhalt.exportierte, Contains(Field(&Bibliothekssymbol::name, SizeIs(60'000u))));
    const ElfW(Shdr) namen = datei.abschnitt(datei.abschnittVom(SHT_DYNSYM).sh_link);
    const std::uint64_t lang = datei.bytes.find("langer", namen.sh_offset) - namen.sh_offset;
    ASSERT_LT(lang, namen.sh_size);

    // One name for all functions.
    const ElfW(Shdr) symbole = datei.abschnittVom(SHT_DYNSYM);
    for (std::uint64_t i = 1; i < symbole.sh_size / sizeof(ElfW(Sym)); ++i)
        datei.bei<ElfW(Sym)>(symbole.sh_offset + i * sizeof(ElfW(Sym))).st_name =
            static_cast<ElfW(Word)>(lang);
    EXPECT_EQ(lies(), "Die Namen sind zusammen zu lang");
    EXPECT_THAT(inhalt.exportierte, IsEmpty());
}
