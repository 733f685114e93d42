#include <orvoutil/AenderungsBeobachter.h>

#include <gtest/gtest.h>

using namespace orvo::orvoutil;

namespace {

struct Beobachter : AenderungsBeobachter {
    void empfangeAenderungsNachricht(const AenderungsNachricht& nachricht) override {
        gehoert = nachricht.getSchluessel();
    }
    std::string gehoert;
};

} // namespace

TEST(AenderungsNachricht, CarriesKindAndKey) {
    std::string schluessel = "basis.home_dir";
    const AenderungsNachricht nachricht(3, schluessel);
    schluessel = "ein anderer";
    EXPECT_EQ(nachricht.getArt(), 3);
    EXPECT_EQ(nachricht.getSchluessel(), "basis.home_dir");
    EXPECT_EQ(AenderungsNachricht::EINSTELLUNG_GEAENDERT, 3);
}

TEST(AenderungsNachricht, CarriesAnyKindAndAnyKey) {
    const AenderungsNachricht nachricht(-7, std::string("a\0b", 3));
    EXPECT_EQ(nachricht.getArt(), -7);
    EXPECT_EQ(nachricht.getSchluessel().size(), 3u);
}

TEST(AenderungsBeobachter, HasItsNotificationInTheFirstSlot) {
    Beobachter beobachter;
    using Operation = void (*)(AenderungsBeobachter*, const AenderungsNachricht&);
    AenderungsBeobachter* const als = &beobachter;
    (*reinterpret_cast<Operation**>(als))[0](als, AenderungsNachricht(3, "schluessel"));
    EXPECT_EQ(beobachter.gehoert, "schluessel");
}
