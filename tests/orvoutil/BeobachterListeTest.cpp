#include <orvoutil/BeobachterListe.h>

#include <gmock/gmock.h>

#include <memory>
#include <vector>

using orvo::orvoutil::BeobachterListe;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Liste = BeobachterListe<int>;

struct BeobachterListeTest : testing::Test {
    BeobachterListeTest() {
        for (int* const b : {&a, &b_, &c})
            liste->anhaengen(b);
    }

    std::vector<int*> rest(Liste::Durchlauf& durchlauf) {
        std::vector<int*> besucht;
        while (int* const b = durchlauf.naechster())
            besucht.push_back(b);
        return besucht;
    }
    std::vector<int*> alle() {
        Liste::Durchlauf durchlauf(*liste);
        return rest(durchlauf);
    }

    int a = 0, b_ = 0, c = 0, neu = 0;
    std::unique_ptr<Liste> liste = std::make_unique<Liste>();
};

} // namespace

TEST_F(BeobachterListeTest, KeepsTheOrderOfRegistration) { EXPECT_THAT(alle(), ElementsAre(&a, &b_, &c)); }

TEST_F(BeobachterListeTest, IgnoresNull) {
    liste->anhaengen(nullptr);
    liste->entfernen(nullptr);
    EXPECT_THAT(alle(), ElementsAre(&a, &b_, &c));
}

TEST_F(BeobachterListeTest, IgnoresTheRemovalOfAnUnknownOne) {
    liste->entfernen(&neu);
    EXPECT_THAT(alle(), ElementsAre(&a, &b_, &c));
}

TEST_F(BeobachterListeTest, RemovesTheFirstOfTwoEqualEntries) {
    liste->anhaengen(&a);
    liste->entfernen(&a);
    EXPECT_THAT(alle(), ElementsAre(&b_, &c, &a));
}

TEST_F(BeobachterListeTest, RemovesTheFirstOfTwoEqualEntriesAlsoDuringAWalk) {
    liste->anhaengen(&a);
    {
        Liste::Durchlauf durchlauf(*liste);
        liste->entfernen(&a);
        EXPECT_THAT(rest(durchlauf), ElementsAre(&b_, &c, &a));
    }
    EXPECT_THAT(alle(), ElementsAre(&b_, &c, &a));
}

TEST_F(BeobachterListeTest, StaysAtItsEndHoweverOftenItIsAsked) {
    Liste::Durchlauf durchlauf(*liste);
    rest(durchlauf);
    liste->anhaengen(&neu);
    EXPECT_EQ(durchlauf.naechster(), nullptr);
    EXPECT_EQ(durchlauf.naechster(), nullptr);
}

TEST_F(BeobachterListeTest, WalksAnEmptyList) {
    Liste leer;
    Liste::Durchlauf durchlauf(leer);
    leer.anhaengen(&a);
    EXPECT_EQ(durchlauf.naechster(), nullptr);
}

TEST_F(BeobachterListeTest, GoesOnWhenTheOneJustVisitedIsRemoved) {
    Liste::Durchlauf durchlauf(*liste);
    EXPECT_EQ(durchlauf.naechster(), &a);
    liste->entfernen(&a);
    EXPECT_THAT(rest(durchlauf), ElementsAre(&b_, &c));
}

TEST_F(BeobachterListeTest, SkipsTheNextOneWhenItIsRemoved) {
    Liste::Durchlauf durchlauf(*liste);
    EXPECT_EQ(durchlauf.naechster(), &a);
    liste->entfernen(&b_);
    EXPECT_THAT(rest(durchlauf), ElementsAre(&c));
}

TEST_F(BeobachterListeTest, SkipsALaterOneWhenItIsRemoved) {
    Liste::Durchlauf durchlauf(*liste);
    EXPECT_EQ(durchlauf.naechster(), &a);
    liste->entfernen(&c);
    EXPECT_THAT(rest(durchlauf), ElementsAre(&b_));
}

TEST_F(BeobachterListeTest, EndsWhenAllAreRemoved) {
    Liste::Durchlauf durchlauf(*liste);
    EXPECT_EQ(durchlauf.naechster(), &a);
    for (int* const b : {&a, &b_, &c})
        liste->entfernen(b);
    liste->anhaengen(&neu);
    EXPECT_EQ(durchlauf.naechster(), nullptr);
}

TEST_F(BeobachterListeTest, DoesNotVisitWhatIsAppendedOnTheWay) {
    Liste::Durchlauf durchlauf(*liste);
    EXPECT_EQ(durchlauf.naechster(), &a);
    liste->anhaengen(&neu);
    EXPECT_THAT(rest(durchlauf), ElementsAre(&b_, &c));
    EXPECT_THAT(alle(), ElementsAre(&a, &b_, &c, &neu));
}

TEST_F(BeobachterListeTest, DoesNotVisitWhatIsAppendedAlsoAfterRemovals) {
    Liste::Durchlauf durchlauf(*liste);
    EXPECT_EQ(durchlauf.naechster(), &a);
    liste->anhaengen(&neu);
    liste->entfernen(&a);
    EXPECT_EQ(durchlauf.naechster(), &b_);
    liste->entfernen(&c);
    EXPECT_EQ(durchlauf.naechster(), nullptr);
}

TEST_F(BeobachterListeTest, SurvivesTheRemovalOfWhatWasAppendedBehindTheEnd) {
    Liste::Durchlauf durchlauf(*liste);
    liste->anhaengen(&neu);
    EXPECT_THAT(rest(durchlauf), ElementsAre(&a, &b_, &c));
    liste->entfernen(&neu);
    liste->anhaengen(&neu);
    EXPECT_EQ(durchlauf.naechster(), nullptr);
}

TEST_F(BeobachterListeTest, VisitsBothEntriesOfOneRegisteredTwice) {
    liste->anhaengen(&a);
    EXPECT_THAT(alle(), ElementsAre(&a, &b_, &c, &a));
}

TEST_F(BeobachterListeTest, TakesEveryWalkAcrossARemoval) {
    Liste::Durchlauf aussen(*liste);
    EXPECT_EQ(aussen.naechster(), &a);
    Liste::Durchlauf innen(*liste);
    liste->entfernen(&a);
    liste->entfernen(&b_);
    EXPECT_THAT(rest(innen), ElementsAre(&c));
    EXPECT_THAT(rest(aussen), ElementsAre(&c));
}

TEST_F(BeobachterListeTest, KeepsWhereAWalkStandsWhenAnInnerOneEnds) {
    Liste::Durchlauf aussen(*liste);
    EXPECT_EQ(aussen.naechster(), &a);
    {
        Liste::Durchlauf innen(*liste);
        liste->entfernen(&b_);
    }
    liste->anhaengen(&neu); // takes the memory of an entry that was given back
    EXPECT_THAT(rest(aussen), ElementsAre(&c));
}

TEST_F(BeobachterListeTest, LetsWalksEndInAnyOrder) {
    auto erster = std::make_unique<Liste::Durchlauf>(*liste);
    auto zweiter = std::make_unique<Liste::Durchlauf>(*liste);
    auto dritter = std::make_unique<Liste::Durchlauf>(*liste);
    zweiter.reset();
    erster.reset();
    liste->entfernen(&a);
    EXPECT_THAT(rest(*dritter), ElementsAre(&b_, &c));
    dritter.reset();
    liste->entfernen(&b_);
    EXPECT_THAT(alle(), ElementsAre(&c));
}

TEST_F(BeobachterListeTest, EndsItsWalksWhenItIsDestroyed) {
    Liste::Durchlauf durchlauf(*liste);
    Liste::Durchlauf zweiter(*liste);
    EXPECT_EQ(durchlauf.naechster(), &a);
    liste.reset();
    EXPECT_THAT(rest(durchlauf), IsEmpty());
    EXPECT_THAT(rest(zweiter), IsEmpty());
}
