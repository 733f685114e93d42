#include <orvoplugin/service/ValidierungsService.h>

#include "orvoplugin/plugin/erweiterung/Plaetze.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using orvo::service::ValidierungsService;
using testing::ElementsAre;
using testing::IsEmpty;

class Liste : public orvo::data::SteuerfallListe {
public:
    explicit Liste(std::size_t anzahl) : saetze_(anzahl) {}
    std::size_t getAnzahl() const override { return saetze_.size(); }
    const std::string& getDatensatz(std::size_t index) const override { return saetze_.at(index); }

private:
    std::vector<std::string> saetze_;
};

/// A check with the features 7 and -3 that finds one fault per case.
class Pruefung : public ValidierungsService {
public:
    Pruefung() {
        addSupportedFeature(7);
        addSupportedFeature(-3);
    }
    int pruefe(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua, const Veranlagungszeitraum&,
               PruefErgebnis& ergebnis) override {
        for (std::size_t i = 0; i < liste.getAnzahl(); ++i)
            ergebnis.fuegeHinzu(1, ua.getName(), liste.getDatensatz(i));
        return static_cast<int>(liste.getAnzahl());
    }
};

/// A check that accepts collected data of up to three cases.
class Sammelpruefung : public Pruefung {
public:
    int checkSammeldatenKonsistenz(const orvo::data::SteuerfallListe& liste, const Unterfallart&,
                                   const Veranlagungszeitraum&, PruefErgebnis&) override {
        return liste.getAnzahl() <= 3 ? 0 : 17;
    }
};

int konsistenz(ValidierungsService& service, std::size_t anzahl) {
    PruefErgebnis ergebnis;
    const int status = service.checkSammeldatenKonsistenz(Liste(anzahl), UFA_10,
                                                          Veranlagungszeitraum(2009, "YYYY"), ergebnis);
    EXPECT_THAT(ergebnis.getMeldungen(), IsEmpty());
    return status;
}

TEST(ValidierungsService, IsAServiceThatItsPluginCompletes) {
    static_assert(std::is_base_of_v<Service, ValidierungsService>);
    static_assert(std::is_abstract_v<ValidierungsService>);
    static_assert(std::is_same_v<ValidierungsService::FeatureId, std::int32_t>);
    const std::unique_ptr<Service> service = std::make_unique<Pruefung>();
    EXPECT_NE(dynamic_cast<ValidierungsService*>(service.get()), nullptr);
}

TEST(ValidierungsService, LetsThePluginDoTheCheck) {
    const std::unique_ptr<ValidierungsService> service = std::make_unique<Pruefung>();
    PruefErgebnis ergebnis;
    EXPECT_EQ(service->pruefe(Liste(2), UFA_LSTB, Veranlagungszeitraum(), ergebnis), 2);
    ASSERT_EQ(ergebnis.getMeldungen().size(), 2u);
    EXPECT_EQ(ergebnis.getMeldungen()[0].feld, "LSTB");
}

TEST(ValidierungsService, KnowsTheFeaturesThatWereDeclared) {
    const Pruefung service;
    EXPECT_TRUE(service.isFeatureSupported(7));
    EXPECT_TRUE(service.isFeatureSupported(-3));
    EXPECT_FALSE(service.isFeatureSupported(8));
    EXPECT_FALSE(service.isFeatureSupported(0));
    EXPECT_THAT(service.getSupportedFeatures(), ElementsAre(-3, 7)) << "ordered by signed value";
}

TEST(ValidierungsService, ShowsFeaturesThatAreDeclaredLaterInTheSameSet) {
    Pruefung service;
    const auto& features = service.getSupportedFeatures();
    service.addSupportedFeature(8);
    EXPECT_THAT(features, ElementsAre(-3, 7, 8));
}

TEST(ValidierungsService, TakesAFeatureDeclaredTwiceOnce) {
    Pruefung service;
    ASSERT_TRUE(service.setFeature(7, true));
    service.addSupportedFeature(7);
    EXPECT_THAT(service.getSupportedFeatures(), ElementsAre(-3, 7));
    EXPECT_TRUE(service.isFeatureSet(7));
}

TEST(ValidierungsService, DoesNotSwitchAFeatureThatIsNotSupported) {
    Pruefung service;
    EXPECT_FALSE(service.setFeature(8, true));
    EXPECT_FALSE(service.setFeature(8, false));
    EXPECT_FALSE(service.isFeatureSet(8));
    // Nothing is kept for a later call.
    service.addSupportedFeature(8);
    EXPECT_FALSE(service.isFeatureSet(8));
}

TEST(ValidierungsService, SwitchesASupportedFeatureOnAndOff) {
    Pruefung service;
    EXPECT_FALSE(service.isFeatureSet(7)) << "never switched";
    EXPECT_TRUE(service.setFeature(7, true));
    EXPECT_TRUE(service.isFeatureSet(7));
    EXPECT_FALSE(service.isFeatureSet(-3)) << "each has a switch of its own";
    EXPECT_TRUE(service.setFeature(7, false));
    EXPECT_FALSE(service.isFeatureSet(7));
    EXPECT_TRUE(service.isFeatureSupported(7));
    EXPECT_TRUE(service.setFeature(7, true));
    EXPECT_TRUE(service.isFeatureSet(7));
}

TEST(ValidierungsService, AskedForAFeatureDoesNotEnterIt) {
    const Pruefung service;
    EXPECT_FALSE(service.isFeatureSet(9));
    EXPECT_FALSE(service.isFeatureSupported(9));
    EXPECT_THAT(service.getSupportedFeatures(), ElementsAre(-3, 7));
}

TEST(ValidierungsService, IsCopiedWithItsFeatures) {
    Pruefung service;
    service.setFeature(7, true);
    const Pruefung kopie(service);
    service.setFeature(7, false);
    EXPECT_TRUE(kopie.isFeatureSet(7));
    EXPECT_THAT(kopie.getSupportedFeatures(), ElementsAre(-3, 7));
    service.addSupportedFeature(8);
    service = kopie;
    EXPECT_TRUE(service.isFeatureSet(7));
    EXPECT_THAT(service.getSupportedFeatures(), ElementsAre(-3, 7));
}

TEST(ValidierungsService, FindsOneTaxCaseAtMostConsistent) {
    Pruefung service;
    EXPECT_EQ(konsistenz(service, 0), 0);
    EXPECT_EQ(konsistenz(service, 1), 0);
}

TEST(ValidierungsService, AnswersFourForSeveralTaxCases) {
    Pruefung service;
    EXPECT_EQ(konsistenz(service, 2), 4);
    EXPECT_EQ(konsistenz(service, 1000), 4);
}

TEST(ValidierungsService, LetsThePluginJudgeCollectedData) {
    Sammelpruefung service;
    EXPECT_EQ(konsistenz(service, 3), 0);
    EXPECT_EQ(konsistenz(service, 4), 17);
}

#if ORVO_TEST_KENNT_PLAETZE
TEST(ValidierungsService, HasTheCheckBeforeTheCheckOfCollectedData) {
    EXPECT_EQ(platz(&ValidierungsService::pruefe), 2u);
    EXPECT_EQ(platz(&ValidierungsService::checkSammeldatenKonsistenz), 3u);
}
#endif

} // namespace
