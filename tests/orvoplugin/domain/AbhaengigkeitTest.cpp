#include <orvoplugin/domain/Abhaengigkeit.h>

#include <orvoplugin/domain/InvalidFormatException.h>

#include <gmock/gmock.h>

#include <list>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Vz = Veranlagungszeitraum;

const Unterfallart kUa(10);

std::vector<int> jahre(const UfaVzAbhaengigkeit& abhaengigkeit) {
    std::vector<int> alle;
    for (const Vz& vz : abhaengigkeit.getVeranlagungszeitraeume())
        alle.push_back(vz.getJahr());
    return alle;
}

TEST(Abhaengigkeit, KnowsItsKind) {
    EXPECT_EQ(UfaVzAbhaengigkeit(kUa).getTyp(), 0);
    EXPECT_EQ(UfaVzAbhaengigkeit(kUa, Vz()).getTyp(), 0);
    EXPECT_EQ(UfaVzAbhaengigkeit(kUa, Vz(), Vz()).getTyp(), 0);
    EXPECT_EQ(UfaVzAbhaengigkeit(kUa, std::list<Vz>()).getTyp(), 0);
    EXPECT_EQ(Abhaengigkeit::UFA_VZ, 0);
}

TEST(Abhaengigkeit, KeepsOnlyItsKindInAListOfTheBase) {
    std::list<Abhaengigkeit> liste;
    liste.push_back(UfaVzAbhaengigkeit(kUa, Vz(2009, "YYYY")));
    EXPECT_EQ(liste.front().getTyp(), 0);
    EXPECT_EQ(dynamic_cast<const UfaVzAbhaengigkeit*>(&liste.front()), nullptr);
}

TEST(Abhaengigkeit, IsDeletedThroughItsBase) {
    static_assert(std::has_virtual_destructor_v<Abhaengigkeit>);
    // Nothing may leak here; the leak checkers test it.
    const std::unique_ptr<Abhaengigkeit> abhaengigkeit =
        std::make_unique<UfaVzAbhaengigkeit>(kUa, Vz(2007, "YYYY"), Vz(2009, "YYYY"));
    EXPECT_EQ(abhaengigkeit->getTyp(), 0);
}

TEST(UfaVzAbhaengigkeit, OfASubcaseTypeAloneNamesNoPeriod) {
    const UfaVzAbhaengigkeit abhaengigkeit(Unterfallart("LSTB"));
    EXPECT_EQ(abhaengigkeit.getUnterfallart().getName(), "LSTB");
    EXPECT_THAT(abhaengigkeit.getVeranlagungszeitraeume(), IsEmpty());
}

TEST(UfaVzAbhaengigkeit, OfOnePeriodNamesThatOneAsItIs) {
    const Vz tag = Vz::parse("2009-05-31", "YYYY-MM-TT");
    const UfaVzAbhaengigkeit abhaengigkeit(kUa, tag);
    ASSERT_EQ(abhaengigkeit.getVeranlagungszeitraeume().size(), 1u);
    EXPECT_EQ(abhaengigkeit.getVeranlagungszeitraeume()[0], tag);
    EXPECT_EQ(abhaengigkeit.getVeranlagungszeitraeume()[0].getTyp(), Vz::TAG);
    EXPECT_EQ(abhaengigkeit.getUnterfallart(), kUa);
}

TEST(UfaVzAbhaengigkeit, OfTwoBoundsNamesEveryYearFromOneToTheOther) {
    const UfaVzAbhaengigkeit abhaengigkeit(kUa, Vz(2007, "YYYY"), Vz(2009, "YYYY"));
    EXPECT_THAT(jahre(abhaengigkeit), ElementsAre(2007, 2008, 2009));
    EXPECT_EQ(abhaengigkeit.getVeranlagungszeitraeume()[1].getTyp(), Vz::JAHR);
    EXPECT_EQ(abhaengigkeit.getVeranlagungszeitraeume()[1].getText(), "2008");
    EXPECT_EQ(abhaengigkeit.getUnterfallart(), kUa);
}

TEST(UfaVzAbhaengigkeit, OfEqualBoundsNamesThatYear) {
    EXPECT_THAT(jahre(UfaVzAbhaengigkeit(kUa, Vz(2009, "YYYY"), Vz(2009, "YYYY"))), ElementsAre(2009));
}

TEST(UfaVzAbhaengigkeit, OfSwappedBoundsNamesNoPeriod) {
    const UfaVzAbhaengigkeit abhaengigkeit(kUa, Vz(2009, "YYYY"), Vz(2007, "YYYY"));
    EXPECT_THAT(abhaengigkeit.getVeranlagungszeitraeume(), IsEmpty());
    EXPECT_EQ(abhaengigkeit.getUnterfallart(), kUa);
}

TEST(UfaVzAbhaengigkeit, LooksOnlyAtTheYearsOfItsBounds) {
    const UfaVzAbhaengigkeit abhaengigkeit(kUa, Vz::parse("2008-12-31", "YYYY-MM-TT"),
                                           Vz::parse("200941", "YYYYZZ"));
    ASSERT_THAT(jahre(abhaengigkeit), ElementsAre(2008, 2009));
    for (const Vz& vz : abhaengigkeit.getVeranlagungszeitraeume()) {
        EXPECT_EQ(vz.getTyp(), Vz::JAHR);
        EXPECT_EQ(vz.getZeitraum(), 0);
        EXPECT_EQ(vz.getTag(), 0);
    }
}

TEST(UfaVzAbhaengigkeit, FromThePeriodIndependentPeriodCompletesTheYearItFinds) {
    // Its year is 0, and the year written 0 is 2000.
    EXPECT_THAT(jahre(UfaVzAbhaengigkeit(kUa, Vz(), Vz())), ElementsAre(2000));
}

TEST(UfaVzAbhaengigkeit, RefusesYearsOfMoreThanFourDigits) {
    using orvo::exception::InvalidFormatException;
    const Vz letztes = Vz::parse("2147483647", "YYYYYYYYYY");
    EXPECT_THROW(UfaVzAbhaengigkeit(kUa, Vz(9998, "YYYY"), Vz(10000, "YYYYY")), InvalidFormatException);
    EXPECT_THROW(UfaVzAbhaengigkeit(kUa, letztes, letztes), InvalidFormatException);
    EXPECT_THAT(jahre(UfaVzAbhaengigkeit(kUa, Vz(9998, "YYYY"), Vz(9999, "YYYY"))), ElementsAre(9998, 9999));
}

TEST(UfaVzAbhaengigkeit, OfAListNamesItsPeriodsInOrder) {
    const std::list<Vz> vzs{Vz(2010, "YYYY"), Vz(2008, "YYYY"), Vz(2010, "YYYY"), Vz(2010, "YYYY"), Vz()};
    const UfaVzAbhaengigkeit abhaengigkeit(kUa, vzs);
    EXPECT_THAT(jahre(abhaengigkeit), ElementsAre(2010, 2008, 2010, 2010, 0));
    EXPECT_EQ(abhaengigkeit.getVeranlagungszeitraeume()[4].getTyp(), Vz::UNABHAENGIG);
}

TEST(UfaVzAbhaengigkeit, IsCopiedWithItsPeriods) {
    UfaVzAbhaengigkeit zugewiesen(Unterfallart(12));
    auto eine = std::make_unique<UfaVzAbhaengigkeit>(kUa, Vz(2007, "YYYY"), Vz(2008, "YYYY"));
    const UfaVzAbhaengigkeit kopie(*eine);
    zugewiesen = *eine;
    eine.reset();
    for (const UfaVzAbhaengigkeit& andere : {kopie, zugewiesen}) {
        EXPECT_THAT(jahre(andere), ElementsAre(2007, 2008));
        EXPECT_EQ(andere.getUnterfallart(), kUa);
    }
}

} // namespace
