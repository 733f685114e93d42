#include <pruefung/Satzaufbau.h>

#include <gmock/gmock.h>
#include <orvoplugin/domain/Konstanten.h>
#include <pruefpaket/Regelwerk.h>

#include <span>
#include <string>
#include <vector>

namespace pruefung {
namespace {

using testing::ElementsAre;

/// The fields in their order, each with a letter for its content; a capital marks a required field.
std::vector<std::string> felder(std::span<const Feldregel> regeln) {
    std::vector<std::string> liste;
    for (const Feldregel& regel : regeln)
        liste.push_back(std::string(1, (regel.pflicht ? "TIBDF" : "tibdf")[static_cast<int>(regel.art)]) +
                        ' ' + regel.name);
    return liste;
}

std::vector<std::string> anteile(const Satzaufbau& aufbau) {
    std::vector<std::string> liste;
    for (const Anteilsregel& regel : aufbau.anteile)
        liste.push_back(std::string(regel.betrag) + " <= " + std::to_string(regel.promille) + " " +
                        regel.grundlage);
    return liste;
}

TEST(Satzaufbau, OfEveryRecordSaysWhoAndWhen) {
    EXPECT_THAT(felder(kopffelder()),
                ElementsAre("T Satzart", "I IdNr", "T Name", "D Beginn", "D Ende", "f Finanzamt"));
}

TEST(Satzaufbau, OfAWageTaxCertificateHasFourAmounts) {
    EXPECT_THAT(felder(lohnsteuerFelder()), ElementsAre("B Bruttoarbeitslohn", "B Lohnsteuer",
                                                        "b Solidaritaetszuschlag", "b Kirchensteuer"));
}

TEST(Regelwerk, HasTighterSharesForWageTaxCertificates) {
    const Satzaufbau* const aufbau = pruefpaket::aufbauFuer(UFA_LSTB);
    ASSERT_TRUE(aufbau);
    EXPECT_STREQ(aufbau->satzart, "LSTB");
    EXPECT_EQ(felder(aufbau->felder), felder(lohnsteuerFelder()));
    EXPECT_THAT(anteile(*aufbau),
                ElementsAre("Lohnsteuer <= 1000 Bruttoarbeitslohn", "Solidaritaetszuschlag <= 55 Lohnsteuer",
                            "Kirchensteuer <= 90 Lohnsteuer"));
}

TEST(Regelwerk, KnowsAdvanceAndAnnualReturns) {
    const Satzaufbau* const anmeldung = pruefpaket::aufbauFuer(UFA_10);
    ASSERT_TRUE(anmeldung);
    EXPECT_STREQ(anmeldung->satzart, "10");
    EXPECT_THAT(felder(anmeldung->felder), ElementsAre("B Umsatz", "B Steuer"));
    EXPECT_THAT(anteile(*anmeldung), ElementsAre("Steuer <= 190 Umsatz"));

    const Satzaufbau* const erklaerung = pruefpaket::aufbauFuer(UFA_50);
    ASSERT_TRUE(erklaerung);
    EXPECT_STREQ(erklaerung->satzart, "50");
    EXPECT_THAT(felder(erklaerung->felder), ElementsAre("B Umsatz", "B Steuer", "b Vorauszahlungen"));
    EXPECT_THAT(anteile(*erklaerung), ElementsAre("Steuer <= 190 Umsatz"));
}

TEST(Regelwerk, GoesByTheSubCaseTypeHoweverItIsWritten) {
    EXPECT_EQ(pruefpaket::aufbauFuer("lstb"), pruefpaket::aufbauFuer(UFA_LSTB));
    EXPECT_EQ(pruefpaket::aufbauFuer("010"), pruefpaket::aufbauFuer(UFA_10));
}

TEST(Regelwerk, KnowsNoOtherSubCaseType) {
    for (const Unterfallart& ua : {UFA_13, UFA_95, UFA_KAPESTA, Unterfallart(""), Unterfallart("LST")})
        EXPECT_EQ(pruefpaket::aufbauFuer(ua), nullptr) << ua.getName();
}

} // namespace
} // namespace pruefung
