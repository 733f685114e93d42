// Extensions that a plugin declared live on after its library was closed.

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include "orvoplugin/plugin/erweiterung/Plugindatei.h"

#include <gmock/gmock.h>

#include <sstream>

namespace {

using testing::ElementsAre;
using Vz = Veranlagungszeitraum;

class Klon : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(datei.istOffen()) << "the library must be gone, or nothing is shown here";
    }

    const Plugindatei datei;
};

template <class Liste>
std::vector<int> arten(const Liste& liste) {
    std::vector<int> alle;
    for (const auto& eintrag : liste)
        alle.push_back(eintrag.getTyp());
    return alle;
}

template <class Erweiterung>
class KlonMitBedingungen : public Klon {};

using MitBedingungen = testing::Types<OrvoValidierungsServiceErweiterung, OrvoDatensatzReaderErweiterung>;
TYPED_TEST_SUITE(KlonMitBedingungen, MitBedingungen);

TYPED_TEST(KlonMitBedingungen, KeepsTheKindsOfItsConditionsAndDependencies) {
    const auto& erweiterung = this->datei.template erweiterung<TypeParam>();
    EXPECT_THAT(arten(erweiterung.getVorbedingungen()), ElementsAre(0, 77, 1));
    EXPECT_THAT(arten(erweiterung.getNachbedingungen()), ElementsAre(77, 2));
    EXPECT_THAT(arten(erweiterung.getAbhaengigkeiten()), ElementsAre(0, 78));
    EXPECT_TRUE(erweiterung.istFlagGesetzt(FLAG_RESERVIERT_4));
}

TYPED_TEST(KlonMitBedingungen, AnswersForItsPairs) {
    auto& erweiterung = this->datei.template erweiterung<TypeParam>();
    const Unterfallart zehn(10);
    EXPECT_TRUE(erweiterung.istUnterfallartUndVeranlagungszeitraumUnterstuetzt(zehn, Vz(2009, "YYYY")));
    EXPECT_TRUE(erweiterung.istUnterfallartUndVeranlagungszeitraumUnterstuetzt(zehn, Vz(201005, "YYYYMM")));
    EXPECT_FALSE(erweiterung.istUnterfallartUndVeranlagungszeitraumUnterstuetzt(zehn, Vz(2010, "YYYY")));
    EXPECT_EQ(erweiterung.getUnterfallArten().size(), 2u);
    const auto* const vzs = erweiterung.getVeranlagungszeitraeumeFuerUnterfallArt(zehn);
    ASSERT_NE(vzs, nullptr);
    EXPECT_EQ(vzs->back().getText(), "2010-05");
    EXPECT_NE(erweiterung.getVeranlagungszeitraeumeFuerUnterfallArt("lstb"), nullptr);
}

TYPED_TEST(KlonMitBedingungen, CanBeClonedAndChangedAndDeleted) {
    auto& erweiterung = this->datei.template erweiterung<TypeParam>();
    const std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
    auto& kopie = dynamic_cast<TypeParam&>(*klon);
    kopie.setVorbedingungen({});
    kopie.addUnterstuetzteUnterfallArt(12, {Vz()});
    kopie.addAbhaengigkeit(UfaVzAbhaengigkeit(10));
    kopie.setServiceFactoryName("another name, long enough to need room of its own");
    EXPECT_EQ(erweiterung.getVorbedingungen().size(), 3u);
    EXPECT_EQ(erweiterung.getUnterfallArten().size(), 2u);
    EXPECT_EQ(kopie.getPlugin(), this->datei.plugin.get());
}

TEST_F(Klon, OfEachKindIsThere) {
    std::ostringstream arten;
    for (const OrvoErweiterung* const erweiterung : datei.plugin->listeErweiterungen()) {
        EXPECT_EQ(erweiterung->getPlugin(), datei.plugin.get());
        arten << erweiterung->getTyp() << '\n';
    }
    EXPECT_EQ(arten.str(), "ORVO_CHECK_SERVICE_ERWEITERUNG\n"
                           "ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG\n"
                           "ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG\n"
                           "ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG\n"
                           "ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG\n"
                           "ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG\n");
}

template <class Erweiterung>
class KlonVonDaten : public Klon {};

using Datenerweiterungen = testing::Types<OrvoFeldInfoDatenServiceErweiterung, OrvoFTDatenServiceErweiterung,
                                          OrvoXPathMappingServiceErweiterung>;
TYPED_TEST_SUITE(KlonVonDaten, Datenerweiterungen);

TYPED_TEST(KlonVonDaten, OwnsItsNames) {
    const auto& erweiterung = this->datei.template erweiterung<TypeParam>();
    ASSERT_EQ(erweiterung.getUnterfallArten().size(), 1u);
    EXPECT_EQ(erweiterung.getUnterfallArten().begin()->getName(),
              "Ein Name, der zu lang f\xFCr das Objekt selbst ist");
    EXPECT_EQ(erweiterung.getServiceFactoryName().rfind("orvo_plugin_get_", 0), 0u);
}

TEST_F(Klon, OutlivesEvenTheFileOfItsPlugin) {
    datei.verzeichnis.entferne("libangebot.dylib");
    auto& erweiterung = datei.erweiterung<OrvoValidierungsServiceErweiterung>();
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_TRUE(erweiterung.getInstanzen().empty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

} // namespace
