#include "check/Befund.h"
#include "check/Text.h"

#include <gmock/gmock.h>

using namespace testing;
using namespace werkzeug::check;

TEST(Fundliste, WithoutAFindTheCheckHasPassed) {
    const Fundliste funde;
    EXPECT_TRUE(funde.istLeer());
    EXPECT_EQ(funde.befund().urteil, Urteil::BESTANDEN);
    EXPECT_EQ(funde.befund().text, "");
}

TEST(Fundliste, AnErrorOutweighsWarnings) {
    Fundliste funde;
    funde.warnung("eins", "one");
    EXPECT_EQ(funde.befund().urteil, Urteil::WARNUNG);
    EXPECT_EQ(funde.befund().text, "eins");
    EXPECT_EQ(funde.befund().code, "one");
    funde.fehler("zwei", "two");
    funde.fehler("drei", "three");
    EXPECT_EQ(funde.befund().urteil, Urteil::DURCHGEFALLEN);
    EXPECT_EQ(funde.befund().text, "zwei; drei");
    EXPECT_EQ(funde.befund().code, "two") << "that of the first error";
    EXPECT_FALSE(funde.istLeer());
}

TEST(Fundliste, ManyFindsAreCounted) {
    Fundliste funde;
    for (int i = 1; i <= 100; ++i)
        funde.fehler(std::to_string(i));
    EXPECT_EQ(funde.befund().text, "1; 2; 3; 4; 5; and 95 more");
}

TEST(Fundliste, ACheckThatCannotBeMadeIsSkippedAndOneThatPassesMayReport) {
    Fundliste funde;
    funde.zahlen = {{"calls", 1}};
    funde.bericht("eins");
    EXPECT_EQ(funde.befund().urteil, Urteil::BESTANDEN);
    EXPECT_EQ(funde.befund().text, "eins");
    EXPECT_EQ(funde.befund().zahlen.at("calls"), 1);
    funde.uebersprungen("zwei", "none");
    EXPECT_EQ(funde.befund().urteil, Urteil::UEBERSPRUNGEN);
    EXPECT_EQ(funde.befund().text, "zwei");
    funde.fehler("drei", "three");
    EXPECT_EQ(funde.befund().text, "drei") << "an error says it all";
}

TEST(Urteil, EachHasANameForPeopleAndOneForPrograms) {
    EXPECT_STREQ(urteilName(Urteil::ZU_LANGSAM), "timed out");
    EXPECT_STREQ(artVon(Urteil::ZU_LANGSAM).kennung, "timed_out");
    for (const Urteil urteil : {Urteil::BESTANDEN, Urteil::DURCHGEFALLEN, Urteil::WARNUNG,
                                Urteil::UEBERSPRUNGEN, Urteil::ABGESTUERZT})
        EXPECT_STREQ(urteilName(urteil), artVon(urteil).kennung);
}

TEST(Urteil, OnlyWhatPassedOrWarnsLetsOthersBuildOnIt) {
    EXPECT_FALSE(istHindernis(Urteil::BESTANDEN));
    EXPECT_FALSE(istHindernis(Urteil::WARNUNG));
    for (const Urteil urteil :
         {Urteil::DURCHGEFALLEN, Urteil::UEBERSPRUNGEN, Urteil::ABGESTUERZT, Urteil::ZU_LANGSAM})
        EXPECT_TRUE(istHindernis(urteil));
}

TEST(Text, SymbolsAreShownAsInTheSource) {
    EXPECT_EQ(symbolname("_ZN4orvo8orvoutil9SharedLib4loadEv"), "orvo::orvoutil::SharedLib::load()");
    EXPECT_EQ(symbolname("orvo_plugin_get_types"), "orvo_plugin_get_types");
    EXPECT_EQ(symbolname("_Zkaputt"), "_Zkaputt");
    EXPECT_EQ(symbolname(std::string(1000, 'x')), std::string(80, 'x') + "...");
}
