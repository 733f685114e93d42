#include "datei/Bibliotheksbild.h"

#include <orvoutil/SharedLib.h>

#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <fstream>

using namespace werkzeug;
using orvo::orvoutil::SharedLib;
using namespace testing;

namespace werkzeug {

static void PrintTo(const Bibliothekssymbol& symbol, std::ostream* aus) {
    *aus << symbol.name << " " << static_cast<int>(symbol.bindung) << " " << static_cast<int>(symbol.art);
}

} // namespace werkzeug

namespace {

auto symbol(const char* name, Symbolbindung bindung, Symbolart art) {
    return AllOf(Field(&Bibliothekssymbol::name, name), Field(&Bibliothekssymbol::bindung, bindung),
                 Field(&Bibliothekssymbol::art, art));
}

auto symbol(const char* name) { return Field(&Bibliothekssymbol::name, name); }

class BibliotheksbildDerArten : public TestWithParam<const char*> {};

} // namespace

TEST_P(BibliotheksbildDerArten, ListsWhatTheLibraryExportsWithBindingAndKind) {
    const Bibliotheksbild bild(GetParam());
    ASSERT_TRUE(bild.istLadbar()) << bild.getGrund();
    EXPECT_EQ(bild.getPfad(), GetParam());
    EXPECT_THAT(bild.getInhalt().exportierte,
                IsSupersetOf({symbol("funktion", Symbolbindung::Global, Symbolart::Funktion),
                              symbol("schwacheFunktion", Symbolbindung::Schwach, Symbolart::Funktion),
                              symbol("daten", Symbolbindung::Global, Symbolart::Daten),
                              symbol("jeThread", Symbolbindung::Global, Symbolart::ThreadLokal),
                              symbol("einmalig", Symbolbindung::Einmalig, Symbolart::Daten)}));
    EXPECT_THAT(bild.getInhalt().exportierte, Not(Contains(symbol("versteckteFunktion"))));
    EXPECT_THAT(bild.getInhalt().exportierte, Not(Contains(symbol("gibtEsNirgends"))));
}

TEST_P(BibliotheksbildDerArten, ListsWhatTheLibraryNeedsFromOthers) {
    const Bibliotheksbild bild(GetParam());
    EXPECT_THAT(bild.getInhalt().undefinierte,
                IsSupersetOf({symbol("gibtEsNirgends", Symbolbindung::Global, Symbolart::Andere),
                              symbol("wirdVielleichtGebraucht", Symbolbindung::Schwach, Symbolart::Andere),
                              symbol("mitgebracht", Symbolbindung::Global, Symbolart::Funktion)}));
    EXPECT_THAT(bild.getInhalt().undefinierte, Not(Contains(symbol("funktion"))));
    EXPECT_THAT(bild.getInhalt().benoetigte, Contains(HasSubstr("NeededByAnother")));
}

TEST_P(BibliotheksbildDerArten, ListsTheDirectoriesToSearchAsWritten) {
    EXPECT_THAT(Bibliotheksbild(GetParam()).getInhalt().suchpfade,
                IsSupersetOf({"$ORIGIN", "/opt/bibliotheken"}));
}

TEST_P(BibliotheksbildDerArten, SeesThreadLocalVariablesAndTheirDestructors) {
    const Bibliotheksbild bild(GetParam());
    EXPECT_TRUE(bild.getInhalt().hatThreadLokale);
    EXPECT_TRUE(bild.hatThreadDestruktoren());
}

TEST_P(BibliotheksbildDerArten, CountsTheFunctionsThatRunWhenItIsOpened) {
    const std::uint32_t ohneEigene =
        Bibliotheksbild(SHOWS_EVERY_KIND_BUT_A_START).getInhalt().startfunktionen;
    EXPECT_EQ(Bibliotheksbild(GetParam()).getInhalt().startfunktionen, ohneEigene + 1);
}

INSTANTIATE_TEST_SUITE_P(Linked, BibliotheksbildDerArten,
                         Values(SHOWS_EVERY_KIND, SHOWS_EVERY_KIND_STRIPPED, SHOWS_EVERY_KIND_FOR_GOOD));

TEST(Bibliotheksbild, TellsALibraryThatBindsLateAndLeavesFromOneThatDoesNeither) {
    const Bibliotheksbild spaet(SHOWS_EVERY_KIND);
    EXPECT_FALSE(spaet.getInhalt().bindetSofort);
    EXPECT_FALSE(spaet.getInhalt().bleibtGeladen);
    const Bibliotheksbild fuerImmer(SHOWS_EVERY_KIND_FOR_GOOD);
    EXPECT_TRUE(fuerImmer.getInhalt().bindetSofort);
    EXPECT_TRUE(fuerImmer.getInhalt().bleibtGeladen);
}

TEST(Bibliotheksbild, ReadsTheNameThatOthersNeedTheLibraryBy) {
    EXPECT_EQ(Bibliotheksbild(SHOWS_EVERY_KIND_FOR_GOOD).getInhalt().soname, "libname.so.3");
    EXPECT_THAT(Bibliotheksbild(LIBORVOUTIL).getInhalt().soname, StartsWith("liborvoutil.so."));
    EXPECT_EQ(Bibliotheksbild(HAS_SYMBOLS).getInhalt().suchpfade.size(),
              Bibliotheksbild(MISSES_A_SYMBOL).getInhalt().suchpfade.size());
}

TEST(Bibliotheksbild, FindsAnExportedFunctionByItsName) {
    const Bibliotheksbild bild(SHOWS_EVERY_KIND);
    EXPECT_TRUE(bild.exportiertFunktion("funktion"));
    EXPECT_TRUE(bild.exportiertFunktion("schwacheFunktion"));
    EXPECT_FALSE(bild.exportiertFunktion("daten")) << "no function";
    EXPECT_FALSE(bild.exportiertFunktion("versteckteFunktion"));
    EXPECT_FALSE(bild.exportiertFunktion("mitgebracht")) << "needed, not exported";
    EXPECT_FALSE(bild.exportiertFunktion(""));
    ASSERT_NE(bild.findeExportiertes("daten"), nullptr);
    EXPECT_EQ(bild.findeExportiertes("daten")->art, Symbolart::Daten);
    EXPECT_EQ(bild.findeExportiertes("Daten"), nullptr);
}

TEST(Bibliotheksbild, AgreesWithTheSystemsLoaderOnWhatIsExported) {
    SharedLib bibliothek(LIBORVOUTIL, true);
    const Bibliotheksbild bild(LIBORVOUTIL);
    ASSERT_GT(bild.getInhalt().exportierte.size(), 50U);
    for (const Bibliothekssymbol& s : bild.getInhalt().exportierte)
        EXPECT_NE(bibliothek.getSymbol(s.name), nullptr) << s.name;
}

TEST(Bibliotheksbild, LookingAtALibraryDoesNotOpenIt) {
    const int deskriptoren = offeneDeskriptoren();
    const Bibliotheksbild bild(SHOWS_EVERY_KIND);
    EXPECT_TRUE(bild.istLadbar());
    EXPECT_FALSE(istEingeblendet(SHOWS_EVERY_KIND));
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
}

TEST(Bibliotheksbild, SaysWhyAFileIsNoLibraryAndReadsNothingOfIt) {
    const Verzeichnis verzeichnis;
    for (const std::string& pfad : {verzeichnis.schreibe("text.so", "text"), verzeichnis.pfad("fehlt.so"),
                                    verzeichnis.pfad(), std::string(), std::string("a\0b", 3)}) {
        const Bibliotheksbild bild(pfad);
        EXPECT_FALSE(bild.istLadbar()) << pfad;
        EXPECT_NE(bild.getGrund(), "") << pfad;
        EXPECT_THAT(bild.getInhalt().exportierte, IsEmpty());
    }
    EXPECT_EQ(Bibliotheksbild(verzeichnis.pfad("text.so")).getGrund(), "keine ELF-Datei");
}

TEST(Bibliotheksbild, GivesTheReasonThatOpeningTheLibraryWouldGive) {
    const Verzeichnis verzeichnis;
    std::ifstream quelle(SHOWS_EVERY_KIND, std::ios::binary);
    const std::string ganz((std::istreambuf_iterator<char>(quelle)), {});
    for (const std::size_t laenge : {std::size_t{10}, std::size_t{100}, ganz.size() / 2, ganz.size() - 1}) {
        const std::string pfad = verzeichnis.schreibe("kurz.so", ganz.substr(0, laenge));
        SharedLib bibliothek(pfad);
        EXPECT_FALSE(bibliothek.load());
        EXPECT_EQ(pfad + ": " + Bibliotheksbild(pfad).getGrund(), bibliothek.getLastError());
    }
}
