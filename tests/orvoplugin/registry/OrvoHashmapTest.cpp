#include <orvoplugin/registry/OrvoHashmap.h>

#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <type_traits>
#include <unordered_map>

namespace {

// The instance that the registry uses.
using Register =
    orvo::common::OrvoHashmap<ErweiterungsSchluessel, OrvoErweiterung*, ErweiterungsSchluessel,
                              std::equal_to<ErweiterungsSchluessel>,
                              std::allocator<std::pair<ErweiterungsSchluessel const, OrvoErweiterung*>>>;

using Zahlen = orvo::common::OrvoHashmap<ErweiterungsSchluessel, int, ErweiterungsSchluessel>;

ErweiterungsSchluessel schluessel(const Unterfallart& ua, int jahr = 2009) {
    return {ORVO_CHECK_SERVICE_ERWEITERUNG, ua, Veranlagungszeitraum(jahr, "YYYY")};
}

} // namespace

TEST(OrvoHashmap, HasAVirtualDestructorAndStartsEmpty) {
    EXPECT_TRUE(std::has_virtual_destructor_v<Register>);
    const Register leer;
    EXPECT_TRUE(leer.empty());
    EXPECT_EQ(leer.size(), 0u);
    EXPECT_TRUE(leer.begin() == leer.end());
    EXPECT_TRUE(leer.find(ErweiterungsSchluessel()) == leer.end());
}

TEST(OrvoHashmap, InsertsOnlyWhatIsAbsent) {
    Zahlen zahlen;
    const auto [erster, neu] = zahlen.insert({schluessel(10), 1});
    EXPECT_TRUE(neu);
    EXPECT_EQ(erster->second, 1);
    const auto [bestehender, nochmals] = zahlen.insert({schluessel("010"), 2});
    EXPECT_FALSE(nochmals);
    EXPECT_TRUE(bestehender == erster);
    EXPECT_FALSE(zahlen.emplace(schluessel("010"), 3).second);
    EXPECT_EQ(zahlen.find(schluessel("0010"))->second, 1);
    EXPECT_EQ(zahlen.find(schluessel(10))->first.getUnterfallart().getName(),
              "10"); // the key of the first one
    EXPECT_EQ(zahlen.size(), 1u);
}

TEST(OrvoHashmap, FindsByEqualKeyAndChangesTheValueInPlace) {
    Zahlen zahlen;
    zahlen.insert({schluessel("LSTB"), 1});
    zahlen.find(schluessel("lstb"))->second = 7;
    const Zahlen& unveraenderlich = zahlen;
    EXPECT_EQ(unveraenderlich.find(schluessel("Lstb"))->second, 7);
    EXPECT_TRUE(unveraenderlich.find(schluessel("LSTB", 2010)) == unveraenderlich.end());
}

TEST(OrvoHashmap, ErasesByKeyAndSaysHowMany) {
    Zahlen zahlen;
    zahlen.insert({schluessel(10), 1});
    zahlen.insert({schluessel(11), 2});
    EXPECT_EQ(zahlen.erase(schluessel("10")), 1u);
    EXPECT_EQ(zahlen.erase(schluessel(10)), 0u);
    EXPECT_EQ(zahlen.size(), 1u);
    EXPECT_EQ(zahlen.begin()->second, 2);
}

TEST(OrvoHashmap, ErasesOneEntryAndGivesTheNext) {
    Zahlen zahlen;
    zahlen.insert({schluessel(10), 1});
    EXPECT_TRUE(zahlen.erase(zahlen.find(schluessel(10))) == zahlen.end());
    zahlen.insert({schluessel(11), 2});
    const Zahlen& unveraenderlich = zahlen;
    EXPECT_TRUE(zahlen.erase(unveraenderlich.find(schluessel(11))) == zahlen.end());
    EXPECT_TRUE(zahlen.empty());

    for (int i = 0; i < 4; ++i)
        zahlen.insert({schluessel(i), i});
    auto eintrag = zahlen.begin();
    for (const auto erwarteter : {std::next(eintrag), std::next(eintrag, 2)})
        ASSERT_TRUE((eintrag = zahlen.erase(eintrag)) == erwarteter);
    const auto letzter = std::next(eintrag);
    EXPECT_TRUE(zahlen.erase(Zahlen::const_iterator(eintrag)) == letzter);
}

TEST(OrvoHashmap, WalksOverEveryEntryOnceAlsoAfterItHasGrown) {
    constexpr int kAnzahl = 1000;
    Zahlen zahlen;
    for (int i = 0; i < kAnzahl; ++i)
        ASSERT_TRUE(zahlen.insert({schluessel(i), i}).second);
    std::set<int> gesehen;
    for (const auto& [unbenutzt, zahl] : zahlen)
        EXPECT_TRUE(gesehen.insert(zahl).second) << zahl;
    EXPECT_EQ(gesehen.size(), static_cast<std::size_t>(kAnzahl));
    for (int i = 0; i < kAnzahl; ++i)
        ASSERT_EQ(zahlen.find(schluessel(i))->second, i);
}

TEST(OrvoHashmap, HasTheOrderOfAStandardContainerWithRoomForTen) {
    Zahlen zahlen;
    std::unordered_map<ErweiterungsSchluessel, int, ErweiterungsSchluessel> behaelter(10);
    for (int i = 0; i < 100; ++i) {
        zahlen.insert({schluessel(i), i});
        behaelter.insert({schluessel(i), i});
        ASSERT_TRUE(std::equal(zahlen.begin(), zahlen.end(), behaelter.begin(), behaelter.end())) << i;
    }
}

TEST(OrvoHashmap, KeepsKeysOfOneHashApart) {
    Zahlen zahlen; // all names of a year have one hash
    zahlen.insert({schluessel("LSTB"), 1});
    zahlen.insert({schluessel("ZMDO"), 2});
    EXPECT_EQ(zahlen.find(schluessel("lstb"))->second, 1);
    EXPECT_EQ(zahlen.find(schluessel("zmdo"))->second, 2);
    EXPECT_EQ(zahlen.erase(schluessel("LSTB")), 1u);
    EXPECT_EQ(zahlen.find(schluessel("zmdo"))->second, 2);
}

TEST(OrvoHashmap, IsEmptyAfterClearAndServesOn) {
    Zahlen zahlen;
    zahlen.insert({schluessel(10), 1});
    zahlen.clear();
    EXPECT_TRUE(zahlen.empty());
    EXPECT_TRUE(zahlen.find(schluessel(10)) == zahlen.end());
    EXPECT_TRUE(zahlen.insert({schluessel(10), 2}).second);
}

TEST(OrvoHashmap, CopiesItsEntries) {
    Zahlen zahlen;
    zahlen.insert({schluessel(10), 1});
    Zahlen kopie(zahlen);
    zahlen.clear();
    EXPECT_EQ(kopie.find(schluessel(10))->second, 1);
    zahlen = kopie;
    EXPECT_EQ(zahlen.size(), 1u);
}
