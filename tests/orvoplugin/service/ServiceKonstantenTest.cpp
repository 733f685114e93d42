#include <orvoplugin/service/ServiceKonstanten.h>

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <type_traits>

namespace {

static_assert(std::is_same_v<decltype(LEERER_TEXT), const std::string>);
static_assert(std::is_same_v<decltype(NEUN_NULLEN), const std::string>);
static_assert(std::is_same_v<decltype(VERFAHREN), const std::array<std::string, 13>>);

TEST(ServiceKonstanten, HaveTheirTexts) {
    EXPECT_EQ(LEERER_TEXT, "");
    EXPECT_EQ(VERSIONCLIENT_NICHT_ANGEGEBEN, "VERSIONCLIENT_NICHT_ANGEGEBEN");
    EXPECT_EQ(NEUN_NULLEN, std::string(9, '0'));
    EXPECT_EQ(NEUN_LEERZEICHEN, std::string(9, ' '));
    EXPECT_EQ(KENNUNG_00200, "00200");
}

TEST(ServiceKonstanten, NameTheThirteenProceduresInOrder) {
    EXPECT_THAT(VERFAHREN,
                testing::ElementsAre("TalvorExtern", "TalvorLohn", "TalvorAnmeldung", "TalvorErklaerung",
                                     "TalvorKapESt", "TalvorBilanz", "TalvorDatenabholung", "TalvorFT",
                                     "TalvorFTintern", "TalvorLohn2", "TalvorKontoabfrage", "TalvorKMV",
                                     "UNBEKANNT"));
}

TEST(ServiceKonstanten, BringTheDomainsConstantsAlong) {
    EXPECT_EQ(UFA_LSTB.getName(), "LSTB");
    EXPECT_EQ(VZ_UNABHAENGIG, "VZ_UNABHAENGIG");
}

} // namespace
