// The two classes whose services have conditions.

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include <gmock/gmock.h>

#include <list>
#include <memory>
#include <typeinfo>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Vz = Veranlagungszeitraum;

template <class Erweiterung>
class ErweiterungMitBedingungen : public testing::Test {
protected:
    static std::vector<int> arten(const std::list<Bedingung>& bedingungen) {
        std::vector<int> alle;
        for (const Bedingung& bedingung : bedingungen)
            alle.push_back(bedingung.getTyp());
        return alle;
    }

    std::vector<int> vor() const { return arten(erweiterung.getVorbedingungen()); }
    std::vector<int> nach() const { return arten(erweiterung.getNachbedingungen()); }

    Erweiterung erweiterung{Unterfallart(10), Vz(2009, "YYYY")};
};
using MitBedingungen = testing::Types<OrvoValidierungsServiceErweiterung, OrvoDatensatzReaderErweiterung>;
TYPED_TEST_SUITE(ErweiterungMitBedingungen, MitBedingungen);

TYPED_TEST(ErweiterungMitBedingungen, StartsWithoutConditions) {
    EXPECT_THAT(this->vor(), IsEmpty());
    EXPECT_THAT(this->nach(), IsEmpty());
}

TYPED_TEST(ErweiterungMitBedingungen, KeepsOnlyTheKindOfAConditionAdded) {
    this->erweiterung.addVorbedingung(VorsatzPruefungBedingung());
    this->erweiterung.addVorbedingung(UfaPruefungBedingung(Unterfallart(10), Vz(2009, "YYYY")));
    EXPECT_THAT(this->vor(), ElementsAre(3, 0));
    for (const Bedingung& bedingung : this->erweiterung.getVorbedingungen())
        EXPECT_EQ(typeid(bedingung), typeid(Bedingung));
}

TYPED_TEST(ErweiterungMitBedingungen, FilesAPostConditionAddedByItselfAmongThePreConditions) {
    this->erweiterung.addVorbedingung(VorsatzPruefungBedingung());
    this->erweiterung.setNachbedingungen({SummenBerechnungsBedingung()});
    this->erweiterung.addNachbedingung(FormalePruefungBedingung());
    EXPECT_THAT(this->vor(), ElementsAre(3, 1));
    EXPECT_THAT(this->nach(), ElementsAre(2));
}

TYPED_TEST(ErweiterungMitBedingungen, ReplacesEachListByItself) {
    this->erweiterung.addVorbedingung(VorsatzPruefungBedingung());
    this->erweiterung.setNachbedingungen({FormalePruefungBedingung(), SummenBerechnungsBedingung()});
    EXPECT_THAT(this->vor(), ElementsAre(3));
    EXPECT_THAT(this->nach(), ElementsAre(1, 2));
    this->erweiterung.setVorbedingungen({SummenBerechnungsBedingung()});
    EXPECT_THAT(this->vor(), ElementsAre(2));
    EXPECT_THAT(this->nach(), ElementsAre(1, 2));
    this->erweiterung.setNachbedingungen({});
    this->erweiterung.setVorbedingungen({});
    EXPECT_THAT(this->vor(), IsEmpty());
    EXPECT_THAT(this->nach(), IsEmpty());
}

TYPED_TEST(ErweiterungMitBedingungen, TakesACopyOfTheListGiven) {
    std::list<Bedingung> liste{FormalePruefungBedingung()};
    this->erweiterung.setVorbedingungen(liste);
    this->erweiterung.setNachbedingungen(liste);
    liste.clear();
    EXPECT_THAT(this->vor(), ElementsAre(1));
    EXPECT_THAT(this->nach(), ElementsAre(1));
}

TYPED_TEST(ErweiterungMitBedingungen, MayBeGivenItsOwnLists) {
    this->erweiterung.setVorbedingungen({VorsatzPruefungBedingung()});
    this->erweiterung.setNachbedingungen({FormalePruefungBedingung(), SummenBerechnungsBedingung()});
    this->erweiterung.setVorbedingungen(this->erweiterung.getVorbedingungen());
    this->erweiterung.setNachbedingungen(this->erweiterung.getNachbedingungen());
    EXPECT_THAT(this->vor(), ElementsAre(3));
    EXPECT_THAT(this->nach(), ElementsAre(1, 2));
}

TYPED_TEST(ErweiterungMitBedingungen, IsClonedWithBothLists) {
    this->erweiterung.setVorbedingungen({VorsatzPruefungBedingung()});
    this->erweiterung.setNachbedingungen({FormalePruefungBedingung(), SummenBerechnungsBedingung()});
    const std::unique_ptr<OrvoErweiterung> klon(this->erweiterung.clone());
    this->erweiterung.setVorbedingungen({});
    const auto& kopie = dynamic_cast<TypeParam&>(*klon);
    EXPECT_THAT(this->arten(kopie.getVorbedingungen()), ElementsAre(3));
    EXPECT_THAT(this->arten(kopie.getNachbedingungen()), ElementsAre(1, 2));
}

} // namespace
