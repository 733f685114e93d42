#include <pruefung/Satzpruefer.h>

#include "Satz.h"

#include <gmock/gmock.h>
#include <orvoutil/Latin1.h>
#include <pruefung/Zeitraum.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pruefung {
namespace {

using orvo::orvoutil::Latin1Text;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Anteilsregel kAnteile[] = {
    {"Lohnsteuer", "Bruttoarbeitslohn", 1000},
    {"Solidaritaetszuschlag", "Lohnsteuer", 55},
};

/// Checks wage-tax certificates of the year 2009.
class SatzprueferTest : public testing::Test {
protected:
    PruefErgebnis pruefe(std::string_view text, const std::string& vorspann = "") const {
        PruefErgebnis ergebnis;
        Satzpruefer(aufbau_, zeitspanne_, vorspann, ergebnis).pruefe(text);
        return ergebnis;
    }
    std::vector<Befund> befunde(const Satz& satz) const { return ::befunde(pruefe(satz.text())); }
    /// The text of the one finding.
    std::string befundtext(std::string_view text) const {
        const PruefErgebnis ergebnis = pruefe(text);
        EXPECT_EQ(ergebnis.getMeldungen().size(), 1u);
        return ergebnis.getMeldungen().empty() ? "" : ergebnis.getMeldungen().front().text;
    }

    Satzaufbau aufbau_{"LSTB", lohnsteuerFelder(), kAnteile};
    std::optional<steuer::Zeitspanne> zeitspanne_ = zeitspanneVon(Veranlagungszeitraum(2009, "YYYY"));
};

struct Aenderung {
    const char* feld;
    const char* wert;
    int code; ///< 0 for none
    std::string_view text;
};

constexpr Latin1Text kIdNrForm{u8"Die Identifikationsnummer muss aus genau elf Ziffern bestehen."};
constexpr Latin1Text kIdNrNull{u8"Die Identifikationsnummer darf nicht mit 0 beginnen."};
constexpr Latin1Text kIdNrWiederholung{u8"Von den ersten zehn Ziffern muss genau eine zwei- oder dreimal "
                                       u8"vorkommen, die übrigen höchstens einmal."};
constexpr Latin1Text kIdNrDreiInFolge{
    u8"Eine dreifache Ziffer darf nicht dreimal unmittelbar hintereinander stehen."};
constexpr Latin1Text kIdNrPruefziffer{u8"Die Prüfziffer der Identifikationsnummer ist falsch."};
constexpr Latin1Text kBetragForm{u8"Kein gültiger Betrag; erwartet wird die Form 1234,56."};
constexpr Latin1Text kBetragNegativ{u8"Der Betrag darf nicht negativ sein."};
constexpr Latin1Text kBetragZuGross{u8"Der Betrag ist zu groß."};
constexpr Latin1Text kUeberLohn{u8"Der Betrag ist höher als Bruttoarbeitslohn."};
constexpr Latin1Text kUeberAnteil{u8"Der Betrag ist höher als 55 Promille von Lohnsteuer."};
constexpr Latin1Text kDatumForm{u8"Kein gültiges Datum; erwartet wird die Form TT.MM.JJJJ."};
constexpr Latin1Text kDatumAusserhalb{u8"Das Datum liegt außerhalb des Veranlagungszeitraums."};
constexpr Latin1Text kFinanzamtForm{u8"Die Nummer des Finanzamts muss aus genau vier Ziffern bestehen."};
constexpr Latin1Text kSatzart{u8"Die Satzart passt nicht zur Unterfallart, erwartet: LSTB"};
constexpr Latin1Text kFehlt{u8"Das Pflichtfeld fehlt oder ist leer."};
constexpr Latin1Text kUnbekannt{u8"Das Feld gehört nicht zu dieser Satzart."};

TEST_F(SatzprueferTest, FindsNothingInAGoodRecord) { EXPECT_THAT(befunde(Satz::bescheinigung()), IsEmpty()); }

TEST_F(SatzprueferTest, TellsCodeFieldAndTextOfOneFault) {
    const Aenderung faelle[] = {
        {"Satzart", "LST", 101, kSatzart},
        {"Satzart", "lstb", 101, kSatzart},
        {"Name", "", 102, kFehlt},
        {"Anmerkung", "", 103, kUnbekannt},
        {"name", "x", 103, kUnbekannt},
        {"IdNr", "8609574271", 110, kIdNrForm},
        {"IdNr", "860957427199", 110, kIdNrForm},
        {"IdNr", "86 095 742 719", 110, kIdNrForm},
        {"IdNr", "8609574271X", 110, kIdNrForm},
        {"IdNr", "06095742719", 111, kIdNrNull},
        {"IdNr", "12345678903", 112, kIdNrWiederholung},
        {"IdNr", "11223456789", 112, kIdNrWiederholung},
        {"IdNr", "11123456780", 113, kIdNrDreiInFolge},
        {"IdNr", "86095742718", 114, kIdNrPruefziffer},
        {"Kirchensteuer", "535.14", 120, kBetragForm},
        {"Kirchensteuer", "535,1", 120, kBetragForm},
        {"Kirchensteuer", "535,141", 120, kBetragForm},
        {"Kirchensteuer", "-535,14", 121, kBetragNegativ},
        {"Kirchensteuer", "1000000000000", 122, kBetragZuGross},
        {"Lohnsteuer", "38400,01", 123, kUeberLohn},
        {"Lohnsteuer", "38400,00", 0, {}},
        {"Solidaritaetszuschlag", "327,04", 123, kUeberAnteil},
        {"Solidaritaetszuschlag", "327,03", 0, {}}, // exactly 55 thousandths
        {"Beginn", "1.1.2009", 130, kDatumForm},
        {"Beginn", "31.04.2009", 130, kDatumForm},
        {"Beginn", "29.02.2009", 130, kDatumForm},
        {"Beginn", "31.12.2008", 131, kDatumAusserhalb},
        {"Ende", "01.01.2010", 131, kDatumAusserhalb},
        {"Finanzamt", "990", 140, kFinanzamtForm},
        {"Finanzamt", "99021", 140, kFinanzamtForm},
        {"Finanzamt", "99a1", 140, kFinanzamtForm},
        {"Finanzamt", "0000", 0, {}},
    };
    for (const auto& [feld, wert, code, text] : faelle) {
        const PruefErgebnis ergebnis = pruefe(Satz::bescheinigung().setze(feld, wert).text());
        const auto& meldungen = ergebnis.getMeldungen();
        ASSERT_EQ(meldungen.size(), code == 0 ? 0u : 1u) << feld << '=' << wert;
        if (code == 0)
            continue;
        EXPECT_EQ(meldungen[0].code, code) << feld << '=' << wert;
        EXPECT_EQ(meldungen[0].feld, feld) << wert;
        EXPECT_EQ(meldungen[0].text, text) << feld << '=' << wert;
    }
}

TEST_F(SatzprueferTest, TellsWhyATextIsNoRecord) {
    constexpr Latin1Text kLeer{u8"Kein Datensatz: kein einziges Feld."};
    constexpr Latin1Text kZuGross{u8"Kein Datensatz: zu groß."};
    constexpr Latin1Text kZeile{u8"Kein Datensatz: Zeile 2 hat nicht die Form Feld=Wert."};
    constexpr Latin1Text kZeichen{u8"Kein Datensatz: Zeile 3 enthält unzulässige Zeichen."};
    std::string vieleFelder;
    for (int i = 0; i < 201; ++i)
        vieleFelder += "A=1\n";
    const std::pair<std::string, std::string_view> faelle[] = {
        {"", kLeer},
        {"\n \r\n", kLeer},
        {"A=" + std::string(65'535, 'x'), kZuGross},
        {vieleFelder, kZuGross},
        {"Satzart=LSTB\nSehr geehrte Damen", kZeile},
        {"Satzart=LSTB\n\nName=\xC3\x9C"
         "bermut\n",
         kZeichen},
    };
    for (const auto& [text, erwartet] : faelle) {
        EXPECT_THAT(::befunde(pruefe(text)), ElementsAre(Befund{100, ""}));
        EXPECT_EQ(befundtext(text), erwartet);
    }
}

TEST_F(SatzprueferTest, TellsEveryFieldThatIsMissing) {
    EXPECT_THAT(::befunde(pruefe("Kirchensteuer=1,00")),
                ElementsAre(Befund{102, "Satzart"}, Befund{102, "IdNr"}, Befund{102, "Name"},
                            Befund{102, "Beginn"}, Befund{102, "Ende"}, Befund{102, "Bruttoarbeitslohn"},
                            Befund{102, "Lohnsteuer"}));
}

TEST_F(SatzprueferTest, NeedsNoFieldThatMayBeMissing) {
    Satz satz = Satz::bescheinigung();
    for (const char* feld : {"Finanzamt", "Solidaritaetszuschlag", "Kirchensteuer"}) {
        satz.setze(feld, "");
        EXPECT_THAT(befunde(satz), IsEmpty()) << feld;
        satz.ohne(feld);
        EXPECT_THAT(befunde(satz), IsEmpty()) << feld;
    }
}

TEST_F(SatzprueferTest, TakesAnEmptyFieldForAMissingOne) {
    for (const char* feld :
         {"Satzart", "IdNr", "Name", "Beginn", "Ende", "Bruttoarbeitslohn", "Lohnsteuer"}) {
        EXPECT_THAT(befunde(Satz::bescheinigung().ohne(feld)), ElementsAre(Befund{102, feld}));
        EXPECT_THAT(befunde(Satz::bescheinigung().setze(feld, "")), ElementsAre(Befund{102, feld}));
        EXPECT_THAT(befunde(Satz::bescheinigung().setze(feld, "   ")), ElementsAre(Befund{102, feld}));
    }
}

TEST_F(SatzprueferTest, TellsADoubleFieldAndChecksTheFirst) {
    constexpr Latin1Text kMehrfach{u8"Das Feld steht mehrfach im Datensatz."};
    EXPECT_EQ(befundtext(Satz::bescheinigung().dazu("Name", "x").text()), kMehrfach.sicht());
    // The second value is not checked.
    EXPECT_THAT(befunde(Satz::bescheinigung().dazu("IdNr", "x").dazu("Lohnsteuer", "-1").dazu("IdNr", "y")),
                ElementsAre(Befund{104, "IdNr"}, Befund{104, "Lohnsteuer"}, Befund{104, "IdNr"}));
    EXPECT_THAT(befunde(Satz::bescheinigung().setze("Name", "").dazu("Name", "x")),
                ElementsAre(Befund{102, "Name"}, Befund{104, "Name"}));
    EXPECT_THAT(befunde(Satz::bescheinigung().dazu("Fremd", "1").dazu("Fremd", "1")),
                ElementsAre(Befund{103, "Fremd"}, Befund{103, "Fremd"}));
}

TEST_F(SatzprueferTest, TellsFaultsInTheOrderOfItsStepsAndRules) {
    const Satz satz = Satz::bescheinigung()
                          .ohne("Name")
                          .ohne("IdNr")
                          .setze("Kirchensteuer", "x")
                          .setze("Finanzamt", "1")
                          .setze("Ende", "31.12.2008")
                          .setze("Lohnsteuer", "38500,00")
                          .setze("Bruttoarbeitslohn", "100,00")
                          .setze("Solidaritaetszuschlag", "99999,00")
                          .setze("Satzart", "KSTB")
                          .dazu("Fremd", "")
                          .dazu("Ende", "")
                          .dazu("IdNr", "123");
    EXPECT_THAT(befunde(satz),
                ElementsAre(Befund{102, "Name"}, Befund{103, "Fremd"}, Befund{104, "Ende"},
                            Befund{101, "Satzart"}, Befund{110, "IdNr"}, Befund{131, "Ende"},
                            Befund{140, "Finanzamt"}, Befund{120, "Kirchensteuer"}, Befund{123, "Lohnsteuer"},
                            Befund{123, "Solidaritaetszuschlag"}, Befund{132, "Ende"}));
}

TEST_F(SatzprueferTest, ComparesNoAmountThatIsMissingOrUnreadable) {
    EXPECT_THAT(befunde(Satz::bescheinigung().setze("Bruttoarbeitslohn", "-1")),
                ElementsAre(Befund{121, "Bruttoarbeitslohn"}));
    EXPECT_THAT(befunde(Satz::bescheinigung().setze("Lohnsteuer", "1000000000000")),
                ElementsAre(Befund{122, "Lohnsteuer"}));
    EXPECT_THAT(befunde(Satz::bescheinigung().ohne("Lohnsteuer")), ElementsAre(Befund{102, "Lohnsteuer"}));
}

TEST_F(SatzprueferTest, ComparesTheLargestAmounts) {
    const std::string groesster = "999999999999,99";
    EXPECT_THAT(befunde(Satz::bescheinigung()
                            .setze("Bruttoarbeitslohn", groesster)
                            .setze("Lohnsteuer", groesster)
                            .setze("Solidaritaetszuschlag", groesster)),
                ElementsAre(Befund{123, "Solidaritaetszuschlag"}));
}

TEST_F(SatzprueferTest, LetsNoShareOfNothingBeMoreThanNothing) {
    const Satz nichts = Satz::bescheinigung().setze("Lohnsteuer", "0");
    EXPECT_THAT(befunde(Satz(nichts).setze("Solidaritaetszuschlag", "0,00")), IsEmpty());
    EXPECT_THAT(befunde(Satz(nichts).setze("Solidaritaetszuschlag", "0,01")),
                ElementsAre(Befund{123, "Solidaritaetszuschlag"}));
}

TEST_F(SatzprueferTest, LetsTheEndBeTheDayOfTheBeginningButNotBefore) {
    const auto zeit = [&](const char* beginn, const char* ende) {
        return befunde(Satz::bescheinigung().setze("Beginn", beginn).setze("Ende", ende));
    };
    EXPECT_THAT(zeit("05.05.2009", "05.05.2009"), IsEmpty());
    EXPECT_THAT(zeit("05.05.2009", "04.05.2009"), ElementsAre(Befund{132, "Ende"}));
    EXPECT_THAT(zeit("01.01.2010", "04.05.2009"), ElementsAre(Befund{131, "Beginn"}, Befund{132, "Ende"}));
    EXPECT_THAT(zeit("05.05.2009", "31.04.2009"), ElementsAre(Befund{130, "Ende"}));
    EXPECT_EQ(
        befundtext(Satz::bescheinigung().setze("Beginn", "02.01.2009").setze("Ende", "01.01.2009").text()),
        "Das Ende liegt vor dem Beginn.");
}

TEST_F(SatzprueferTest, HoldsDatesAgainstThePeriodGiven) {
    const auto zeit = [&](const char* zeitraum, const char* muster, const char* datum) {
        zeitspanne_ = zeitspanneVon(Veranlagungszeitraum::parse(zeitraum, muster));
        return befunde(Satz::bescheinigung().setze("Beginn", datum).setze("Ende", datum));
    };
    const auto ausserhalb = ElementsAre(Befund{131, "Beginn"}, Befund{131, "Ende"});
    EXPECT_THAT(zeit("2009-42", "YYYY-ZZ", "31.03.2009"), ausserhalb);
    EXPECT_THAT(zeit("2009-42", "YYYY-ZZ", "01.04.2009"), IsEmpty());
    EXPECT_THAT(zeit("2009-52", "YYYY-ZZ", "30.06.2009"), IsEmpty());
    EXPECT_THAT(zeit("2009-52", "YYYY-ZZ", "01.07.2009"), ausserhalb);
    EXPECT_THAT(zeit("2008-02", "YYYY-MM", "29.02.2008"), IsEmpty());
    EXPECT_THAT(zeit("2008-02", "YYYY-MM", "01.03.2008"), ausserhalb);
    EXPECT_THAT(zeit("2009-05-17", "YYYY-MM-TT", "17.05.2009"), IsEmpty());
    EXPECT_THAT(zeit("2009-05-17", "YYYY-MM-TT", "18.05.2009"), ausserhalb);
    EXPECT_THAT(zeit("2009-13", "YYYY-MM", "31.12.2009"), ausserhalb);
}

TEST_F(SatzprueferTest, TakesAnyDateWithoutAPeriod) {
    zeitspanne_ = std::nullopt;
    EXPECT_THAT(befunde(Satz::bescheinigung().setze("Beginn", "01.01.0001").setze("Ende", "31.12.9999")),
                IsEmpty());
    EXPECT_THAT(befunde(Satz::bescheinigung().setze("Beginn", "30.02.2009")),
                ElementsAre(Befund{130, "Beginn"}));
}

TEST_F(SatzprueferTest, BeginsEveryTextWithWhatItWasGiven) {
    const std::string vorspann = "Datensatz 7: ";
    for (const std::string& text :
         {std::string(), std::string("?"), Satz::bescheinigung().ohne("Name").setze("IdNr", "1").text()}) {
        const PruefErgebnis ergebnis = pruefe(text, vorspann);
        const PruefErgebnis ohne = pruefe(text);
        ASSERT_FALSE(ergebnis.getMeldungen().empty());
        ASSERT_EQ(ergebnis.getMeldungen().size(), ohne.getMeldungen().size());
        for (std::size_t i = 0; i < ohne.getMeldungen().size(); ++i)
            EXPECT_EQ(ergebnis.getMeldungen()[i].text, vorspann + ohne.getMeldungen()[i].text);
    }
}

TEST_F(SatzprueferTest, AddsToWhatWasFoundBefore) {
    PruefErgebnis ergebnis;
    Satzpruefer pruefer(aufbau_, zeitspanne_, "", ergebnis);
    pruefer.pruefe("");
    pruefer.pruefe(Satz::bescheinigung().setze("Name", "").text());
    pruefer.pruefe(Satz::bescheinigung().text());
    EXPECT_THAT(::befunde(ergebnis), ElementsAre(Befund{100, ""}, Befund{102, "Name"}));
}

} // namespace
} // namespace pruefung
