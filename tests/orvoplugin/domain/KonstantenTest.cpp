#include <orvoplugin/domain/Konstanten.h>

#include "KonstantenAnderswo.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>
#include <type_traits>
#include <vector>

namespace {

struct Zeile {
    const char* konstante;
    const Unterfallart& wert;
    int nummer;
    const char* name;
};

const std::vector<Zeile> kTabelle{
    {"UFA_10", UFA_10, 10, "10"},
    {"UFA_12", UFA_12, 12, "12"},
    {"UFA_50", UFA_50, 50, "50"},
    {"UFA_20", UFA_20, 20, "20"},
    {"UFA_21", UFA_21, 21, "21"},
    {"UFA_58", UFA_58, 58, "58"},
    {"UFA_57", UFA_57, 57, "57"},
    {"UFA_64", UFA_64, 64, "64"},
    {"UFA_LSTB", UFA_LSTB, Unterfallart::OHNE_NUMMER, "LSTB"},
    {"UFA_PROTOKOLL_ANFORDERUNG", UFA_PROTOKOLL_ANFORDERUNG, Unterfallart::OHNE_NUMMER,
     "ProtokollAnforderung"},
    {"UFA_KONTOABFRAGE", UFA_KONTOABFRAGE, Unterfallart::OHNE_NUMMER, "Kontoabfrage"},
    {"UFA_REGISTRIERUNG", UFA_REGISTRIERUNG, Unterfallart::OHNE_NUMMER, "Registrierung"},
    {"UFA_ANTRAEGE_UND_RECHTE", UFA_ANTRAEGE_UND_RECHTE, Unterfallart::OHNE_NUMMER, "AntraegeUndRechte"},
    {"UFA_ANTRAEGE_RECHTE_LOESCHEN", UFA_ANTRAEGE_RECHTE_LOESCHEN, Unterfallart::OHNE_NUMMER,
     "AntraegeRechteLoeschen"},
    {"UFA_30", UFA_30, 30, "30"},
    {"UFA_31", UFA_31, 31, "31"},
    {"UFA_32", UFA_32, 32, "32"},
    {"UFA_33", UFA_33, 33, "33"},
    {"UFA_90", UFA_90, 90, "90"},
    {"UFA_95", UFA_95, 95, "95"},
    {"UFA_77", UFA_77, 77, "77"},
    {"UFA_KAPESTA", UFA_KAPESTA, Unterfallart::OHNE_NUMMER, "KapEStA"},
    {"UFA_KAPESTINVSTG", UFA_KAPESTINVSTG, Unterfallart::OHNE_NUMMER, "KapEStInvStG"},
    {"UFA_BILANZ_5_0", UFA_BILANZ_5_0, Unterfallart::OHNE_NUMMER, "Bilanz_5_0"},
    {"UFA_BILANZ_5_1", UFA_BILANZ_5_1, Unterfallart::OHNE_NUMMER, "Bilanz_5_1"},
    {"UFA_ZMDO", UFA_ZMDO, Unterfallart::OHNE_NUMMER, "ZMDO"},
    {"UFA_13", UFA_13, 13, "13"},
    {"UFA_TALVOR_ERKLAERUNG_DATEN", UFA_TALVOR_ERKLAERUNG_DATEN, Unterfallart::OHNE_NUMMER,
     "TalvorErklaerungDaten"},
    {"UFA_TALVOR_FT_DATEN", UFA_TALVOR_FT_DATEN, Unterfallart::OHNE_NUMMER, "TalvorFTDaten"},
    {"UFA_TALVOR_LOHN2_DATEN", UFA_TALVOR_LOHN2_DATEN, Unterfallart::OHNE_NUMMER, "TalvorLohn2Daten"},
    {"UFA_DUE_ANMELDEN", UFA_DUE_ANMELDEN, Unterfallart::OHNE_NUMMER, "DUeAnmelden"},
    {"UFA_DUE_ABMELDEN", UFA_DUE_ABMELDEN, Unterfallart::OHNE_NUMMER, "DUeAbmelden"},
    {"UFA_DUE_UMMELDEN", UFA_DUE_UMMELDEN, Unterfallart::OHNE_NUMMER, "DUeUmmelden"},
    {"UFA_VV", UFA_VV, Unterfallart::OHNE_NUMMER, "VV"},
    {"UFA_ZD", UFA_ZD, Unterfallart::OHNE_NUMMER, "ZD"},
    {"UFA_LOHNERSATZLEISTUNG", UFA_LOHNERSATZLEISTUNG, Unterfallart::OHNE_NUMMER, "Lohnersatzleistung"},
    {"UFA_ZUWENDUNGSBESTAETIGUNG", UFA_ZUWENDUNGSBESTAETIGUNG, Unterfallart::OHNE_NUMMER,
     "Zuwendungsbestaetigung"},
    {"UFA_TALVOR_KMV_DATEN", UFA_TALVOR_KMV_DATEN, Unterfallart::OHNE_NUMMER, "TalvorKMVDaten"},
};

TEST(Konstanten, HaveTheNumbersAndNamesOfTheTable) {
    for (const auto& [konstante, wert, nummer, name] : kTabelle) {
        EXPECT_EQ(wert.getNummer(), nummer) << konstante;
        EXPECT_EQ(wert.getName(), name) << konstante;
    }
}

TEST(Konstanten, StandInTheOrderOfTheTableAndNoneBesides) {
    std::ifstream kopfdatei(KONSTANTEN_H);
    ASSERT_TRUE(kopfdatei.is_open()) << KONSTANTEN_H;
    const std::regex definition("const Unterfallart (\\w+) = .*");
    std::vector<std::string> definiert, erwartet;
    std::smatch treffer;
    for (std::string zeile; std::getline(kopfdatei, zeile);)
        if (std::regex_match(zeile, treffer, definition))
            definiert.push_back(treffer[1]);
    for (const Zeile& zeile : kTabelle)
        erwartet.emplace_back(zeile.konstante);
    EXPECT_EQ(definiert, erwartet);
}

TEST(Konstanten, DifferFromEachOther) {
    for (const Zeile& eine : kTabelle)
        for (const Zeile& andere : kTabelle)
            EXPECT_EQ(eine.wert == andere.wert, &eine == &andere)
                << eine.konstante << " " << andere.konstante;
}

TEST(Konstanten, AreFoundByTextsWithoutRegardToCase) {
    EXPECT_EQ(Unterfallart("Lstb").compare(UFA_LSTB), 0);
    EXPECT_EQ(Unterfallart("kapesta").compare(UFA_KAPESTA), 0);
    EXPECT_EQ(Unterfallart("010").compare(UFA_10), 0);
    EXPECT_EQ(UFA_10.compare(UFA_LSTB), -1);
}

static_assert(std::is_same_v<decltype(UFA_10), const Unterfallart>);
static_assert(std::is_same_v<decltype(UFA_LSTB), const Unterfallart>);
static_assert(std::is_same_v<decltype(VZ_UNABHAENGIG), const std::string>);

TEST(Konstanten, AreObjectsOfEachUnit) {
    EXPECT_NE(&UFA_LSTB, &lstbAnderswo());
    EXPECT_EQ(lstbAnderswo().getName(), "LSTB");
}

/// Made before `main`, perhaps before anything else of this unit.
const Unterfallart kVorMain = UFA_ZUWENDUNGSBESTAETIGUNG;

TEST(Konstanten, AreThereBeforeMain) { EXPECT_EQ(kVorMain.getName(), "Zuwendungsbestaetigung"); }

TEST(Konstanten, NameThePeriodIndependentCase) { EXPECT_EQ(VZ_UNABHAENGIG, "VZ_UNABHAENGIG"); }

} // namespace
