// The six classes that plugins create. They differ by one row of a table, so each test runs for all rows to which it
// applies.

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include "orvoplugin/plugin/erweiterung/Plugindatei.h"

#include <gmock/gmock.h>

#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace {

using testing::IsEmpty;
using testing::SizeIs;
using Vz = Veranlagungszeitraum;

/// A row of the table: the class, its kind, its factory, and what it hands out.
template <class E, tag_erweiterung_typ T, const char* F, class S>
struct Zeile {
    using Erweiterung = E;
    using Ergebnis = S;
    static constexpr tag_erweiterung_typ typ = T;
    static constexpr const char* factory = F;
};

constexpr char kCheck[] = "orvo_plugin_get_check_service";
constexpr char kFeldinfo[] = "orvo_plugin_get_feldinfo_daten_service";
constexpr char kFehlertext[] = "orvo_plugin_get_fehlertext_daten_service";
constexpr char kFinanzamt[] = "orvo_plugin_get_finanzamt_daten_service";
constexpr char kXPath[] = "orvo_plugin_get_xpath_mapping_service";
constexpr char kReader[] = "orvo_plugin_get_datensatz_reader_service";

using Check = Zeile<OrvoValidierungsServiceErweiterung, ORVO_CHECK_SERVICE_ERWEITERUNG, kCheck,
                    orvo::service::ValidierungsService>;
using Feldinfo =
    Zeile<OrvoFeldInfoDatenServiceErweiterung, ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG, kFeldinfo, Service>;
using Fehlertext =
    Zeile<OrvoFTDatenServiceErweiterung, ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG, kFehlertext, Service>;
using Finanzamt =
    Zeile<OrvoFADatenServiceErweiterung, ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, kFinanzamt, Service>;
using XPath = Zeile<OrvoXPathMappingServiceErweiterung, ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG, kXPath,
                    orvo::service::IXPathMappingService>;
using Reader = Zeile<OrvoDatensatzReaderErweiterung, ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG, kReader,
                     orvo::service::DatensatzReaderService>;

/// Names the tests by the kind.
struct Namen {
    template <class Z>
    static std::string GetName(int) {
        return erweiterungTypName(Z::typ);
    }
};

/// An object of the class, for tests that do not depend on its pairs.
template <class Erweiterung>
Erweiterung eine() {
    if constexpr (std::is_default_constructible_v<Erweiterung>)
        return Erweiterung();
    else
        return Erweiterung(Unterfallart(10), Vz(2009, "YYYY"));
}

template <class Z>
class KonkreteErweiterung : public testing::Test {};
using Alle = testing::Types<Check, Feldinfo, Fehlertext, Finanzamt, XPath, Reader>;
TYPED_TEST_SUITE(KonkreteErweiterung, Alle, Namen);

TYPED_TEST(KonkreteErweiterung, HasTheKindAndTheFactoryOfTheTable) {
    const auto erweiterung = eine<typename TypeParam::Erweiterung>();
    EXPECT_EQ(erweiterung.getTyp(), TypeParam::typ);
    EXPECT_EQ(erweiterung.getServiceFactoryName(), TypeParam::factory);
    EXPECT_EQ(erweiterung.getPlugin(), nullptr);
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TYPED_TEST(KonkreteErweiterung, HandsOutItsOwnInterface) {
    using Erweiterung = typename TypeParam::Erweiterung;
    static_assert(
        std::is_same_v<decltype(std::declval<Erweiterung>().holeService()), typename TypeParam::Ergebnis*>);
    const Plugindatei datei;
    auto& erweiterung = datei.template erweiterung<Erweiterung>();
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    typename TypeParam::Ergebnis* const service = erweiterung.holeService();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(erweiterung.getInstanzen().count(service), 1u);
    EXPECT_TRUE(datei.istOffen());
    erweiterung.release(service);
    EXPECT_FALSE(datei.istOffen());
}

TYPED_TEST(KonkreteErweiterung, AnswersNullWhenTheFactoryMakesNothing) {
    const Plugindatei datei;
    auto& erweiterung = datei.template erweiterung<typename TypeParam::Erweiterung>();
    erweiterung.setServiceFactoryName("gibtKeinenService");
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_EQ(datei.plugin->getUseCount(), 0);
}

TYPED_TEST(KonkreteErweiterung, TakesAnObjectOfAnotherClassOnlyWhereAnyServiceWillDo) {
    const Plugindatei datei;
    auto& erweiterung = datei.template erweiterung<typename TypeParam::Erweiterung>();
    erweiterung.setServiceFactoryName("gibtDatenService");
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    const bool beliebig = std::is_same_v<typename TypeParam::Ergebnis, Service>;
    EXPECT_EQ(erweiterung.holeService() != nullptr, beliebig);
    // In both cases the object is entered and holds the plugin.
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(datei.plugin->getUseCount(), 1);
    ASSERT_THAT(erweiterung.getInstanzen(), SizeIs(1));
    erweiterung.release(erweiterung.getInstanzen().begin()->first);
    EXPECT_FALSE(datei.istOffen());
}

TYPED_TEST(KonkreteErweiterung, IsClonedAsItsOwnClass) {
    using Erweiterung = typename TypeParam::Erweiterung;
    auto erweiterung = eine<Erweiterung>();
    erweiterung.setServiceFactoryName("andere");
    erweiterung.setzeFlag(FLAG_RESERVIERT_2, true);
    const std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
    const OrvoErweiterung& kopie = *klon;
    EXPECT_EQ(typeid(kopie), typeid(Erweiterung));
    EXPECT_EQ(klon->getTyp(), TypeParam::typ);
    EXPECT_TRUE(klon->istFlagGesetzt(FLAG_RESERVIERT_2));
    EXPECT_EQ(dynamic_cast<OrvoServiceErweiterung&>(*klon).getServiceFactoryName(), "andere");
}

TYPED_TEST(KonkreteErweiterung, ClonedWithServicesOutKeepsTheirCountOnly) {
    using Erweiterung = typename TypeParam::Erweiterung;
    const Plugindatei datei;
    auto& erweiterung = datei.template erweiterung<Erweiterung>();
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    auto* const service = erweiterung.holeService();
    {
        const std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
        EXPECT_EQ(klon->getAusgegeben(), 1);
        EXPECT_THAT(dynamic_cast<Erweiterung&>(*klon).getInstanzen(), IsEmpty());
    }
    EXPECT_EQ(datei.plugin->getUseCount(), 1) << "the clone's end gives nothing back";
    erweiterung.release(service);
}

template <class Z>
class ErweiterungFuerPaare : public testing::Test {};
using FuerPaare = testing::Types<Check, Feldinfo, Fehlertext, XPath, Reader>;
TYPED_TEST_SUITE(ErweiterungFuerPaare, FuerPaare, Namen);

TYPED_TEST(ErweiterungFuerPaare, IsMadeInFourShapes) {
    using Erweiterung = typename TypeParam::Erweiterung;
    const Vz vz2009(2009, "YYYY"), vz2010(2010, "YYYY");
    const Unterfallart zehn(10), zwoelf(12);
    using Map = OrvoUaVzServiceErweiterung::VzMap;

    const Erweiterung einzeln(zehn, vz2009);
    EXPECT_EQ(einzeln.getVeranlagungszeitraumUnterfallartMap(), (Map{{zehn, {vz2009}}}));
    const Erweiterung mehrereArten(std::list<Unterfallart>{zwoelf, zehn}, vz2009);
    EXPECT_EQ(mehrereArten.getVeranlagungszeitraumUnterfallartMap(),
              (Map{{zehn, {vz2009}}, {zwoelf, {vz2009}}}));
    const Erweiterung mehrereZeiten(zehn, std::list<Vz>{vz2010, vz2009});
    EXPECT_EQ(mehrereZeiten.getVeranlagungszeitraumUnterfallartMap(), (Map{{zehn, {vz2010, vz2009}}}));
    const Map map{{zehn, {vz2010}}, {zwoelf, {}}};
    const Erweiterung ausMap(map);
    EXPECT_EQ(ausMap.getVeranlagungszeitraumUnterfallartMap(), map);

    for (const Erweiterung* const jede : {&einzeln, &mehrereArten, &mehrereZeiten, &ausMap}) {
        EXPECT_EQ(jede->getTyp(), TypeParam::typ);
        EXPECT_EQ(jede->getServiceFactoryName(), TypeParam::factory);
    }
}

TYPED_TEST(ErweiterungFuerPaare, ServesThePairsItWasMadeForOnly) {
    typename TypeParam::Erweiterung erweiterung(Unterfallart(10), Vz(2009, "YYYY"));
    OrvoUaVzServiceErweiterung& basis = erweiterung;
    EXPECT_TRUE(basis.istUnterfallartUndVeranlagungszeitraumUnterstuetzt(Unterfallart(10), Vz(2009, "YYYY")));
    EXPECT_FALSE(
        basis.istUnterfallartUndVeranlagungszeitraumUnterstuetzt(Unterfallart(10), Vz(2010, "YYYY")));
    EXPECT_FALSE(
        basis.istUnterfallartUndVeranlagungszeitraumUnterstuetzt(Unterfallart(12), Vz(2009, "YYYY")));
}

TYPED_TEST(ErweiterungFuerPaare, IsClonedWithItsPairs) {
    typename TypeParam::Erweiterung erweiterung(Unterfallart(10), Vz(2009, "YYYY"));
    const std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
    const auto& kopie = dynamic_cast<OrvoUaVzServiceErweiterung&>(*klon);
    EXPECT_EQ(kopie.getVeranlagungszeitraumUnterfallartMap(),
              erweiterung.getVeranlagungszeitraumUnterfallartMap());
    EXPECT_EQ(kopie.getUnterfallArten(), erweiterung.getUnterfallArten());
}

TEST(OrvoFADatenServiceErweiterung, ServesNoSubcaseTypesAndPeriods) {
    static_assert(!std::is_base_of_v<OrvoUaVzServiceErweiterung, OrvoFADatenServiceErweiterung>);
    static_assert(std::is_base_of_v<OrvoServiceErweiterung, OrvoFADatenServiceErweiterung>);
}

} // namespace
