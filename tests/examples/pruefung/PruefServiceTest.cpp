#include <pruefung/PruefService.h>

#include "Satz.h"

#include <client/TextListe.h>
#include <gmock/gmock.h>
#include <orvoplugin/domain/Konstanten.h>
#include <orvoutil/Latin1.h>

#include <string>
#include <vector>

namespace pruefung {
namespace {

using orvo::orvoutil::Latin1Text;
using testing::ElementsAre;
using testing::IsEmpty;

/// Knows wage-tax certificates, without rules for shares.
class Bescheinigungen : public PruefService {
    const Satzaufbau* aufbauFuer(const Unterfallart& ua) const override {
        return ua == UFA_LSTB ? &aufbau_ : nullptr;
    }

    Satzaufbau aufbau_{"LSTB", lohnsteuerFelder(), {}};
};

class PruefServiceTest : public testing::Test {
protected:
    int pruefe(const std::vector<std::string>& texte, const Unterfallart& ua = UFA_LSTB,
               const Veranlagungszeitraum& vz = {2009, "YYYY"}) {
        return service_.pruefe(TextListe(texte), ua, vz, ergebnis_);
    }
    int sammle(const std::vector<std::string>& texte) {
        return service_.checkSammeldatenKonsistenz(TextListe(texte), UFA_LSTB, {2009, "YYYY"}, ergebnis_);
    }
    std::vector<std::string> texte() const {
        std::vector<std::string> liste;
        for (const PruefErgebnis::Meldung& meldung : ergebnis_.getMeldungen())
            liste.push_back(meldung.text);
        return liste;
    }

    const std::string gut_ = Satz::bescheinigung().text();
    const std::string ohneNamen_ = Satz::bescheinigung().ohne("Name").text();
    Bescheinigungen service_;
    PruefErgebnis ergebnis_;
};

TEST_F(PruefServiceTest, FindsNothingInGoodRecordsNorInNone) {
    EXPECT_EQ(pruefe({gut_, gut_}), 0);
    EXPECT_EQ(pruefe({}), 0);
    EXPECT_THAT(befunde(ergebnis_), IsEmpty());
}

TEST_F(PruefServiceTest, ReportsWhatItFinds) {
    EXPECT_EQ(pruefe({ohneNamen_}), 1);
    EXPECT_THAT(befunde(ergebnis_), ElementsAre(Befund{102, "Name"}));
    EXPECT_THAT(texte(), ElementsAre("Das Pflichtfeld fehlt oder ist leer."));
}

TEST_F(PruefServiceTest, SaysWhichRecordWhenThereAreSeveral) {
    EXPECT_EQ(pruefe({gut_, ohneNamen_, "", ohneNamen_}), 1);
    EXPECT_THAT(befunde(ergebnis_), ElementsAre(Befund{102, "Name"}, Befund{100, ""}, Befund{102, "Name"}));
    EXPECT_THAT(texte(), ElementsAre("Datensatz 2: Das Pflichtfeld fehlt oder ist leer.",
                                     "Datensatz 3: Kein Datensatz: kein einziges Feld.",
                                     "Datensatz 4: Das Pflichtfeld fehlt oder ist leer."));
}

TEST_F(PruefServiceTest, GoesByItsOwnFindingsAlone) {
    ergebnis_.fuegeHinzu(999, "Fremd", "schon da");
    EXPECT_EQ(pruefe({gut_}), 0);
    EXPECT_EQ(pruefe({ohneNamen_}), 1);
    EXPECT_THAT(befunde(ergebnis_), ElementsAre(Befund{999, "Fremd"}, Befund{102, "Name"}));
}

TEST_F(PruefServiceTest, ChecksNothingForASubCaseTypeThatItDoesNotKnow) {
    constexpr Latin1Text kText{u8"Diese Unterfallart wird hier nicht geprüft: "};
    EXPECT_EQ(pruefe({ohneNamen_, ""}, Unterfallart("\xDC"
                                                    "bersicht")),
              2);
    EXPECT_THAT(befunde(ergebnis_), ElementsAre(Befund{150, ""}));
    EXPECT_THAT(texte(), ElementsAre(std::string(kText) + "\xDC"
                                                          "bersicht"));
}

TEST_F(PruefServiceTest, ChecksDatesAgainstThePeriod) {
    EXPECT_EQ(pruefe({gut_}, UFA_LSTB, {2010, "YYYY"}), 1);
    EXPECT_THAT(befunde(ergebnis_), ElementsAre(Befund{131, "Beginn"}, Befund{131, "Ende"}));
    EXPECT_EQ(pruefe({gut_}, UFA_LSTB, Veranlagungszeitraum()), 0); // independent: any dates
}

TEST_F(PruefServiceTest, LetsNobodyStandTwiceInCollectedDataWithTheSameBeginning) {
    constexpr Latin1Text kText{
        u8"Für diese Identifikationsnummer gibt es schon einen Datensatz mit demselben Beginn."};
    const std::string andere = Satz::bescheinigung().setze("IdNr", "47036892816").text();
    EXPECT_EQ(sammle({gut_, andere, gut_, gut_}), 4);
    EXPECT_THAT(befunde(ergebnis_), ElementsAre(Befund{151, "IdNr"}, Befund{151, "IdNr"}));
    EXPECT_THAT(texte(),
                ElementsAre("Datensatz 3: " + std::string(kText), "Datensatz 4: " + std::string(kText)));
}

TEST_F(PruefServiceTest, LetsAPersonStandInCollectedDataOncePerBeginning) {
    const std::string spaeter = Satz::bescheinigung().setze("Beginn", "01.07.2009").text();
    const std::string andere = Satz::bescheinigung().setze("IdNr", "47036892816").text();
    EXPECT_EQ(sammle({gut_, spaeter, andere}), 0);
    EXPECT_EQ(sammle({gut_}), 0);
    EXPECT_EQ(sammle({}), 0);
    EXPECT_THAT(befunde(ergebnis_), IsEmpty());
}

TEST_F(PruefServiceTest, LeavesRecordsThatLackPersonOrBeginningOutOfTheComparison) {
    const std::string ohneNummer = Satz::bescheinigung().setze("IdNr", "").text();
    const std::string ohneBeginn = Satz::bescheinigung().ohne("Beginn").text();
    EXPECT_EQ(sammle({"", "", "kein Datensatz", "kein Datensatz"}), 0);
    EXPECT_EQ(sammle({ohneNummer, ohneNummer}), 0);
    EXPECT_EQ(sammle({ohneBeginn, ohneBeginn}), 0);
    EXPECT_THAT(befunde(ergebnis_), IsEmpty());
}

} // namespace
} // namespace pruefung
