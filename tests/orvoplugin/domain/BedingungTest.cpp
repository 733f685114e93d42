#include <orvoplugin/domain/Bedingung.h>

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <type_traits>

namespace {

const Unterfallart kUa("LSTB");
const Veranlagungszeitraum kVz(2009, "YYYY");

TEST(Bedingung, KnowsItsKindByItsClass) {
    EXPECT_EQ(UfaPruefungBedingung(kUa).getTyp(), 0);
    EXPECT_EQ(UfaPruefungBedingung(kUa, kVz).getTyp(), 0);
    EXPECT_EQ(FormalePruefungBedingung().getTyp(), 1);
    EXPECT_EQ(SummenBerechnungsBedingung().getTyp(), 2);
    EXPECT_EQ(VorsatzPruefungBedingung().getTyp(), 3);
}

TEST(Bedingung, NamesItsKinds) {
    EXPECT_EQ(Bedingung::UFA_PRUEFUNG, 0);
    EXPECT_EQ(Bedingung::FORMALE_PRUEFUNG, 1);
    EXPECT_EQ(Bedingung::SUMMEN_BERECHNUNG, 2);
    EXPECT_EQ(Bedingung::VORSATZ_PRUEFUNG, 3);
}

TEST(Bedingung, KeepsOnlyItsKindInAListOfTheBase) {
    std::list<Bedingung> liste;
    liste.push_back(UfaPruefungBedingung(kUa, kVz));
    liste.push_back(VorsatzPruefungBedingung());
    EXPECT_EQ(liste.front().getTyp(), 0);
    EXPECT_EQ(liste.back().getTyp(), 3);
    EXPECT_EQ(dynamic_cast<const UfaPruefungBedingung*>(&liste.front()), nullptr);
}

TEST(Bedingung, IsDeletedThroughItsBase) {
    static_assert(std::has_virtual_destructor_v<Bedingung>);
    // Nothing may leak here; the leak checkers test it.
    const std::unique_ptr<Bedingung> bedingung = std::make_unique<UfaPruefungBedingung>(kUa, kVz);
    EXPECT_EQ(bedingung->getTyp(), 0);
}

TEST(UfaPruefungBedingung, WithoutAPeriodOwnsNone) {
    const UfaPruefungBedingung bedingung(kUa);
    EXPECT_EQ(bedingung.getUnterfallart(), kUa);
    EXPECT_FALSE(bedingung.hatVeranlagungszeitraum());
    EXPECT_EQ(bedingung.getVeranlagungszeitraum(), nullptr);
}

TEST(UfaPruefungBedingung, OwnsACopyOfItsPeriod) {
    auto vz = std::make_unique<Veranlagungszeitraum>(2009, "YYYY");
    const UfaPruefungBedingung bedingung(kUa, *vz);
    EXPECT_NE(bedingung.getVeranlagungszeitraum(), vz.get());
    vz.reset();
    EXPECT_TRUE(bedingung.hatVeranlagungszeitraum());
    ASSERT_NE(bedingung.getVeranlagungszeitraum(), nullptr);
    EXPECT_EQ(bedingung.getVeranlagungszeitraum()->getJahr(), 2009);
    EXPECT_EQ(bedingung.getUnterfallart().getName(), "LSTB");
}

TEST(UfaPruefungBedingung, HasAPeriodAlsoWhenItIsThePeriodIndependentOne) {
    const UfaPruefungBedingung bedingung(kUa, Veranlagungszeitraum());
    EXPECT_TRUE(bedingung.hatVeranlagungszeitraum());
    ASSERT_NE(bedingung.getVeranlagungszeitraum(), nullptr);
    EXPECT_EQ(bedingung.getVeranlagungszeitraum()->getTyp(), Veranlagungszeitraum::UNABHAENGIG);
}

TEST(UfaPruefungBedingung, GivesACopyAPeriodOfItsOwn) {
    auto bedingung = std::make_unique<UfaPruefungBedingung>(kUa, kVz);
    const UfaPruefungBedingung kopie(*bedingung);
    EXPECT_NE(kopie.getVeranlagungszeitraum(), bedingung->getVeranlagungszeitraum());
    bedingung.reset();
    EXPECT_TRUE(kopie.hatVeranlagungszeitraum());
    ASSERT_NE(kopie.getVeranlagungszeitraum(), nullptr);
    EXPECT_EQ(*kopie.getVeranlagungszeitraum(), kVz);
    EXPECT_EQ(kopie.getUnterfallart(), kUa);
    EXPECT_EQ(kopie.getTyp(), 0);
}

TEST(UfaPruefungBedingung, CopiedWithoutAPeriodHasNone) {
    const UfaPruefungBedingung ohne(kUa);
    const UfaPruefungBedingung kopie(ohne);
    EXPECT_FALSE(kopie.hatVeranlagungszeitraum());
    EXPECT_EQ(kopie.getVeranlagungszeitraum(), nullptr);
}

TEST(UfaPruefungBedingung, TakesOverPeriodAndSubcaseTypeWhenAssigned) {
    UfaPruefungBedingung bedingung(Unterfallart(10));
    {
        const UfaPruefungBedingung andere(kUa, kVz);
        bedingung = andere;
        EXPECT_NE(bedingung.getVeranlagungszeitraum(), andere.getVeranlagungszeitraum());
    }
    EXPECT_EQ(bedingung.getUnterfallart(), kUa);
    EXPECT_TRUE(bedingung.hatVeranlagungszeitraum());
    ASSERT_NE(bedingung.getVeranlagungszeitraum(), nullptr);
    EXPECT_EQ(*bedingung.getVeranlagungszeitraum(), kVz);

    bedingung = UfaPruefungBedingung(Unterfallart(12));
    EXPECT_EQ(bedingung.getUnterfallart().getNummer(), 12);
    EXPECT_FALSE(bedingung.hatVeranlagungszeitraum());
    EXPECT_EQ(bedingung.getVeranlagungszeitraum(), nullptr);
}

TEST(UfaPruefungBedingung, StaysAsItIsWhenAssignedToItself) {
    UfaPruefungBedingung bedingung(kUa, kVz);
    const UfaPruefungBedingung& sie = bedingung;
    bedingung = sie;
    EXPECT_TRUE(bedingung.hatVeranlagungszeitraum());
    ASSERT_NE(bedingung.getVeranlagungszeitraum(), nullptr);
    EXPECT_EQ(*bedingung.getVeranlagungszeitraum(), kVz);
    EXPECT_EQ(bedingung.getUnterfallart(), kUa);
}

} // namespace
