// User input.

#include "kern/Eingabe.h"

#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <gtest/gtest.h>

using namespace werkzeug;

namespace {

Veranlagungszeitraum gelesen(const std::string& text) {
    const Zeitraumtext zeitraum = liesZeitraum(text);
    return zeitraum.format.empty() ? Veranlagungszeitraum()
                                   : Veranlagungszeitraum::parse(zeitraum.text, zeitraum.format.c_str());
}

} // namespace

TEST(Eingabe, ReadsPeriodsAsPeopleTypeThem) {
    EXPECT_EQ(gelesen("2009").getTyp(), Veranlagungszeitraum::JAHR);
    EXPECT_EQ(gelesen("2009-05").getTyp(), Veranlagungszeitraum::MONAT);
    EXPECT_EQ(gelesen("2009Q2").getTyp(), Veranlagungszeitraum::QUARTAL);
    EXPECT_EQ(gelesen("2009q2").getQuartal(), 42);
    EXPECT_EQ(gelesen("2009-05-31").getTag(), 31);
    EXPECT_EQ(gelesen("vz_unabhaengig").getTyp(), Veranlagungszeitraum::UNABHAENGIG);
}

TEST(Eingabe, RefusesWhatIsNoPeriod) {
    for (const char* const text : {"", "200", "20091", "2009-5", "2009Q5", "2009Q0", "2009Q", "2009/05",
                                   "2009-05-3", "zweitausend", "-009", "2009-xx", "\x1b[31"})
        EXPECT_THROW(liesZeitraum(text), AufrufFehler) << text;
}

TEST(Eingabe, RefusesMonthsAndDaysThatDoNotExist) {
    for (const char* const text :
         {"2009-13", "2009-18", "2009-20", "2009-40", "2009-45", "2009-50", "2009-55", "2009-99",
          "2009-13-01", "2009-00-05", "2009-19-05", "2009-05-00", "2009-05-32", "2009-02-29", "2009-99-99"})
        EXPECT_THROW(liesZeitraum(text), AufrufFehler) << text;
    EXPECT_EQ(gelesen("2008-02-29").getTag(), 29);
    EXPECT_EQ(gelesen("2009-01").getZeitraum(), 1);
    EXPECT_EQ(gelesen("2009-12").getZeitraum(), 12);
}

TEST(Eingabe, ReadsTheLibrarysCodesOfQuartersAndOfTheWholeYear) {
    for (const char* const text : {"2009-41", "2009-44", "2009-51", "2009-54"})
        EXPECT_NE(gelesen(text).getTyp(), Veranlagungszeitraum::MONAT) << text;
    EXPECT_EQ(gelesen("2009-19").getTyp(), Veranlagungszeitraum::JAHR);
    EXPECT_EQ(gelesen("2009-00").getTyp(), Veranlagungszeitraum::JAHR);
}

TEST(Eingabe, ReadsKindsByNumberByNameAndByTheBeginningOfTheName) {
    EXPECT_EQ(liesTyp("1"), 1);
    EXPECT_EQ(liesTyp("77"), 77);
    EXPECT_EQ(liesTyp("ORVO_CHECK_SERVICE_ERWEITERUNG"), 1);
    EXPECT_EQ(liesTyp("orvo_check_service_erweiterung"), 1);
    EXPECT_EQ(liesTyp("check"), 1);
    EXPECT_EQ(liesTyp("Feld"), 2);
    EXPECT_EQ(liesTyp("FEHLER_TEXT"), 3);
    EXPECT_EQ(liesTyp("fin"), 4);
    EXPECT_EQ(liesTyp("xpath_mapping"), 5);
    EXPECT_EQ(liesTyp("DATENSATZ_READER"), 6);
}

TEST(Eingabe, RefusesWhatIsNoKindOrSeveral) {
    for (const char* const text : {"", "f", "fe", "orvo_", "ORVO", "checker", "-1", "1x", "daten"})
        EXPECT_THROW(liesTyp(text), AufrufFehler) << text;
}

TEST(Eingabe, TakesNamesInUtf8ForThoseInLatin1) {
    EXPECT_EQ(liesUnterfallart("Pr\xC3\xBC"
                               "fung"),
              "Pr\xFC"
              "fung");
    EXPECT_EQ(liesUnterfallart("LSTB"), "LSTB");
    EXPECT_EQ(liesUnterfallart("\xE2\x82\xAC"), "\xE2\x82\xAC"); // not in Latin-1
    EXPECT_EQ(liesUnterfallart("Pr\xFC"), "Pr\xFC");
}
