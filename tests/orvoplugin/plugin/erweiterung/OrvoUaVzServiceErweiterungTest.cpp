#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>

#include "orvoplugin/plugin/erweiterung/UaVzProbe.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Vz = Veranlagungszeitraum;

Vz jahr(int wert) { return Vz(wert, "YYYY"); }

/// The extension's pairs in its order: "10: 2009 2010", one entry per sub-case type.
std::vector<std::string> paare(const OrvoUaVzServiceErweiterung& erweiterung) {
    std::vector<std::string> zeilen;
    for (const auto& [ua, vzs] : erweiterung.getVeranlagungszeitraumUnterfallartMap()) {
        zeilen.push_back(ua.getName() + ":");
        for (const Vz& vz : vzs)
            zeilen.back() += " " + std::to_string(vz.getJahr());
    }
    return zeilen;
}

std::vector<std::string> arten(const OrvoUaVzServiceErweiterung& erweiterung) {
    std::vector<std::string> namen;
    for (const Unterfallart& ua : erweiterung.getUnterfallArten())
        namen.push_back(ua.getName());
    return namen;
}

TEST(OrvoUaVzServiceErweiterung, IsMadeOfOneSubcaseTypeAndOnePeriod) {
    const UaVzProbe probe(Unterfallart(10), jahr(2009));
    EXPECT_THAT(paare(probe), ElementsAre("10: 2009"));
    EXPECT_THAT(arten(probe), ElementsAre("10"));
    EXPECT_EQ(probe.getTyp(), NONE);
    EXPECT_EQ(probe.getServiceFactoryName(), "fabrik");
}

TEST(OrvoUaVzServiceErweiterung, IsMadeOfSeveralSubcaseTypesWithOnePeriodEach) {
    const UaVzProbe probe(std::list<Unterfallart>{"LSTB", 64, 10}, jahr(2009));
    EXPECT_THAT(paare(probe), ElementsAre("10: 2009", "64: 2009", "LSTB: 2009"));
    EXPECT_THAT(arten(probe), ElementsAre("10", "64", "LSTB"));
}

TEST(OrvoUaVzServiceErweiterung, TakesASubcaseTypeThatStandsInTheListTwiceOnce) {
    const UaVzProbe probe(std::list<Unterfallart>{"010", 10, "lstb", "LSTB"}, jahr(2009));
    EXPECT_THAT(paare(probe), ElementsAre("010: 2009", "lstb: 2009")) << "in the writing that came first";
    EXPECT_THAT(arten(probe), ElementsAre("010", "lstb"));
}

TEST(OrvoUaVzServiceErweiterung, IsMadeOfOneSubcaseTypeAndItsPeriodsInTheirOrder) {
    const UaVzProbe probe(Unterfallart(10), std::list<Vz>{jahr(2010), jahr(2008), jahr(2010), Vz()});
    EXPECT_THAT(paare(probe), ElementsAre("10: 2010 2008 2010 0"));
}

TEST(OrvoUaVzServiceErweiterung, IsMadeOfAMap) {
    const UaVzProbe probe(UaVzProbe::VzMap{{12, {jahr(2010)}}, {10, {jahr(2009), jahr(2008)}}, {"VV", {}}});
    EXPECT_THAT(paare(probe), ElementsAre("10: 2009 2008", "12: 2010", "VV:"));
    EXPECT_THAT(arten(probe), ElementsAre("10", "12", "VV"));
}

TEST(OrvoUaVzServiceErweiterung, MadeOfNothingServesNothing) {
    EXPECT_THAT(paare(UaVzProbe(UaVzProbe::VzMap{})), IsEmpty());
    EXPECT_THAT(arten(UaVzProbe(std::list<Unterfallart>(), jahr(2009))), IsEmpty());
}

TEST(OrvoUaVzServiceErweiterung, GivesTheMapAndTheSetByReference) {
    const UaVzProbe probe(Unterfallart(10), jahr(2009));
    EXPECT_EQ(&probe.getUnterfallArten(), &probe.getUnterfallArten());
    EXPECT_EQ(&probe.getVeranlagungszeitraumUnterfallartMap(),
              &probe.getVeranlagungszeitraumUnterfallartMap());
}

TEST(OrvoUaVzServiceErweiterung, FindsThePeriodsOfASubcaseTypeHoweverItIsWritten) {
    const UaVzProbe probe(UaVzProbe::VzMap{{10, {jahr(2009), jahr(2010)}}, {"LSTB", {}}});
    const auto& map = probe.getVeranlagungszeitraumUnterfallartMap();
    EXPECT_EQ(probe.getVeranlagungszeitraeumeFuerUnterfallArt(Unterfallart("10")), &map.at(10));
    EXPECT_EQ(probe.getVeranlagungszeitraeumeFuerUnterfallArt(Unterfallart("010")), &map.at(10));
    EXPECT_EQ(probe.getVeranlagungszeitraeumeFuerUnterfallArt(Unterfallart("lstb")), &map.at("LSTB"));
    EXPECT_EQ(probe.getVeranlagungszeitraeumeFuerUnterfallArt(Unterfallart(12)), nullptr);
    EXPECT_EQ(probe.getVeranlagungszeitraeumeFuerUnterfallArt(Unterfallart("notset")), nullptr);
}

TEST(OrvoUaVzServiceErweiterung, AddsASubcaseType) {
    UaVzProbe probe(Unterfallart(10), jahr(2009));
    probe.addUnterstuetzteUnterfallArt(Unterfallart("LSTB"), {jahr(2011), jahr(2010)});
    EXPECT_THAT(paare(probe), ElementsAre("10: 2009", "LSTB: 2011 2010"));
    EXPECT_THAT(arten(probe), ElementsAre("10", "LSTB"));
}

TEST(OrvoUaVzServiceErweiterung, DropsThePeriodsAddedToASubcaseTypeThatIsThereAlready) {
    UaVzProbe probe(Unterfallart(10), jahr(2009));
    probe.addUnterstuetzteUnterfallArt(Unterfallart("010"), {jahr(2010)});
    EXPECT_THAT(paare(probe), ElementsAre("10: 2009"));
    EXPECT_THAT(arten(probe), ElementsAre("10"));
    EXPECT_FALSE(probe.unterstuetzt(Unterfallart(10), jahr(2010)));
    EXPECT_TRUE(probe.unterstuetzt(Unterfallart(10), jahr(2009)));
}

TEST(OrvoUaVzServiceErweiterung, DropsThePeriodsAddedAlsoWhereThereWereNone) {
    UaVzProbe probe(Unterfallart(10), std::list<Vz>());
    probe.addUnterstuetzteUnterfallArt(Unterfallart(10), {jahr(2010)});
    EXPECT_THAT(paare(probe), ElementsAre("10:"));
}

TEST(OrvoUaVzServiceErweiterung, TakesFromAMapWhatIsNotThereYet) {
    UaVzProbe probe(Unterfallart(12), jahr(2009));
    probe.init({{12, {jahr(2010)}}, {10, {jahr(2008)}}});
    EXPECT_THAT(paare(probe), ElementsAre("10: 2008", "12: 2009"));
    EXPECT_THAT(arten(probe), ElementsAre("10", "12"));
}

TEST(OrvoUaVzServiceErweiterung, IsCopiedWithPairsOfItsOwn) {
    UaVzProbe probe(Unterfallart(10), jahr(2009));
    probe.setzeFlag(FLAG_RESERVIERT_1, true);
    const std::unique_ptr<OrvoErweiterung> klon(probe.clone());
    probe.addUnterstuetzteUnterfallArt(Unterfallart(12), {jahr(2010)});
    const auto* const kopie = dynamic_cast<UaVzProbe*>(klon.get());
    ASSERT_NE(kopie, nullptr);
    EXPECT_THAT(paare(*kopie), ElementsAre("10: 2009"));
    EXPECT_THAT(arten(*kopie), ElementsAre("10"));
    EXPECT_TRUE(kopie->istFlagGesetzt(FLAG_RESERVIERT_1));
    EXPECT_EQ(kopie->getServiceFactoryName(), "fabrik");
}

/// The functions that a host may override.
class Ueberschrieben : public UaVzProbe {
public:
    using UaVzProbe::UaVzProbe;
    const std::set<Unterfallart>& getUnterfallArten() const override { return eigene_; }
    const std::list<Vz>* getVeranlagungszeitraeumeFuerUnterfallArt(const Unterfallart&) const override {
        return nullptr;
    }
    bool istUnterfallartUndVeranlagungszeitraumUnterstuetzt(const Unterfallart&, const Vz&) override {
        return true;
    }
    void addUnterstuetzteUnterfallArt(const Unterfallart&, const std::list<Vz>&) override {}

private:
    std::set<Unterfallart> eigene_;
};

TEST(OrvoUaVzServiceErweiterung, AnswersVirtually) {
    Ueberschrieben eigene(Unterfallart(10), jahr(2009));
    OrvoUaVzServiceErweiterung& basis = eigene;
    EXPECT_THAT(basis.getUnterfallArten(), IsEmpty());
    EXPECT_EQ(basis.getVeranlagungszeitraeumeFuerUnterfallArt(Unterfallart(10)), nullptr);
    EXPECT_TRUE(basis.istUnterfallartUndVeranlagungszeitraumUnterstuetzt(Unterfallart(99), jahr(1)));
}

TEST(OrvoUaVzServiceErweiterung, TakesAllOfAMapWhateverAHostMakesOfTheAdding) {
    Ueberschrieben eigene(Unterfallart(10), jahr(2009));
    eigene.init({{12, {jahr(2010)}}});
    EXPECT_THAT(paare(eigene), ElementsAre("10: 2009", "12: 2010"));
}

} // namespace
