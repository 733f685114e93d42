#include <orvoplugin/plugin/OrvoPlugin.h>

#include "orvoplugin/plugin/Attrappe.h"
#include "support/DeutscheZahlen.h"
#include "support/Mitschnitt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <string>

namespace {

/// The record alone, without behaviour.
class NurDatensatz : public OrvoPlugin {
public:
    explicit NurDatensatz(orvo::orvoutil::SharedLib* bibliothek, std::int32_t typ = 1)
        : OrvoPlugin(orvo_plugin_version_t{typ}, bibliothek) {}

    void notifyUse() override {}
    void release() override {}
    void initialize() override {}

    using OrvoPlugin::setzeStatus;
};

struct OrvoPluginTest : testing::Test {
    Attrappe::Notizen notizen;
    Attrappe* const bibliothek = new Attrappe(notizen, "/irgendwo/libx.dylib");
    NurDatensatz plugin{bibliothek};
};

OrvoPlugin::LabelEintrag label() {
    OrvoPlugin::LabelEintrag eintrag;
    eintrag.zahl1 = 7;
    eintrag.text1 = "eins";
    eintrag.zeitraum = Veranlagungszeitraum(2009, "YYYY");
    eintrag.text2 = "zwei";
    eintrag.zahl2 = -8;
    eintrag.text3 = "drei";
    eintrag.text4 = "vier";
    return eintrag;
}

} // namespace

TEST_F(OrvoPluginTest, StartsMadeUnusedAndWithoutADescription) {
    EXPECT_EQ(plugin.getTyp(), 1);
    EXPECT_EQ(plugin.getSharedLib(), bibliothek);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ERZEUGT);
    EXPECT_EQ(plugin.getProduktVersion(), "");
    EXPECT_EQ(plugin.getFileVersion(), "");
    EXPECT_TRUE(plugin.getLabels().empty());
    EXPECT_FALSE(plugin.isResident());
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(plugin.getOnLoadFuncName(), "");
    EXPECT_EQ(plugin.getOnUnloadFuncName(), "");
    EXPECT_TRUE(notizen.aufrufe.empty()) << "the library is not touched";
}

TEST_F(OrvoPluginTest, TakesItsTypeFromTheVersionRecord) {
    for (const std::int32_t typ : {0, 2, -1, 2147483647})
        EXPECT_EQ(NurDatensatz(nullptr, typ).getTyp(), typ);
}

TEST_F(OrvoPluginTest, KeepsWhatItIsTold) {
    plugin.setProduktVersion("1.2");
    plugin.setFileVersion("3, 4");
    plugin.setOnLoadFuncName("auf");
    plugin.setOnUnloadFuncName("zu");
    plugin.setResident(true);
    EXPECT_EQ(plugin.getProduktVersion(), "1.2");
    EXPECT_EQ(plugin.getFileVersion(), "3, 4");
    EXPECT_EQ(plugin.getOnLoadFuncName(), "auf");
    EXPECT_EQ(plugin.getOnUnloadFuncName(), "zu");
    EXPECT_TRUE(plugin.isResident());

    plugin.setProduktVersion("");
    plugin.setResident(false);
    EXPECT_EQ(plugin.getProduktVersion(), "");
    EXPECT_FALSE(plugin.isResident());
}

TEST_F(OrvoPluginTest, CarriesAnyStatusAlsoOneWithoutAName) {
    for (const std::int32_t wert : {0, 1, 2, 3, 4, -1}) {
        plugin.setStatus(static_cast<orvo_plugin_status_t>(wert));
        EXPECT_EQ(plugin.getStatus(), wert);
    }
    EXPECT_EQ(ORVO_PLUGIN_ERZEUGT, 0);
    EXPECT_EQ(ORVO_PLUGIN_GELADEN, 2);
    EXPECT_EQ(ORVO_PLUGIN_ENTLADEN, 3);
    EXPECT_EQ(sizeof(orvo_plugin_status_t), 4U);
}

TEST_F(OrvoPluginTest, KeepsEqualLabelsBesideEachOtherInCallOrder) {
    plugin.addLabelInformation(label());
    OrvoPlugin::LabelEintrag anderes = label();
    anderes.text1 = "anders";
    plugin.addLabelInformation(anderes);
    plugin.addLabelInformation(label());

    ASSERT_EQ(plugin.getLabels().size(), 3U);
    EXPECT_EQ(plugin.getLabels().front().text1, "eins");
    EXPECT_EQ(std::next(plugin.getLabels().begin())->text1, "anders");
    EXPECT_EQ(plugin.getLabels().back().text1, "eins");
}

TEST_F(OrvoPluginTest, CopiesEveryFieldOfALabel) {
    auto original = std::make_unique<OrvoPlugin::LabelEintrag>(label());
    plugin.addLabelInformation(*original);
    original.reset();

    const OrvoPlugin::LabelEintrag& kopie = plugin.getLabels().front();
    EXPECT_EQ(kopie.zahl1, 7);
    EXPECT_EQ(kopie.text1, "eins");
    EXPECT_EQ(kopie.zeitraum, Veranlagungszeitraum(2009, "YYYY"));
    EXPECT_EQ(kopie.text2, "zwei");
    EXPECT_EQ(kopie.zahl2, -8);
    EXPECT_EQ(kopie.text3, "drei");
    EXPECT_EQ(kopie.text4, "vier");
}

TEST_F(OrvoPluginTest, HasLabelsWhoseFieldsStartEmptyAndLieInOrder) {
    const OrvoPlugin::LabelEintrag eintrag;
    EXPECT_EQ(eintrag.zahl1, 0);
    EXPECT_EQ(eintrag.text1 + eintrag.text2 + eintrag.text3 + eintrag.text4, "");
    EXPECT_EQ(eintrag.zahl2, 0);

    const void* const felder[] = {&eintrag.zahl1, &eintrag.text1, &eintrag.zeitraum, &eintrag.text2,
                                  &eintrag.zahl2, &eintrag.text3, &eintrag.text4};
    EXPECT_TRUE(std::is_sorted(std::begin(felder), std::end(felder), std::less<>()));
}

TEST_F(OrvoPluginTest, PrintsOnlyTheLastLabelWithABlankBehindItsColon) {
    EXPECT_EQ(plugin.toString(), "Typ:1\nProduktVersion:\nFileVersion:\nBibliothek: /irgendwo/libx.dylib\n");
}

TEST_F(OrvoPluginTest, PrintsVersionsButNeitherLabelsNorStatusNorResidency) {
    plugin.setProduktVersion("1.2");
    plugin.setFileVersion("f\xFCnf");
    plugin.addLabelInformation(label());
    plugin.setResident(true);
    plugin.setStatus(ORVO_PLUGIN_GELADEN);
    EXPECT_EQ(plugin.toString(),
              "Typ:1\nProduktVersion:1.2\nFileVersion:f\xFCnf\nBibliothek: /irgendwo/libx.dylib\n");
}

TEST_F(OrvoPluginTest, PrintsANegativeTypeInDecimal) {
    EXPECT_EQ(NurDatensatz(nullptr, -12).toString(),
              "Typ:-12\nProduktVersion:\nFileVersion:\nBibliothek: \n");
}

TEST_F(OrvoPluginTest, PrintsItsTypeTheSameUnderEveryLocale) {
    const DeutscheZahlen zahlen;
    EXPECT_EQ(NurDatensatz(nullptr, 1234).toString(),
              "Typ:1234\nProduktVersion:\nFileVersion:\nBibliothek: \n");
}

TEST(OrvoPlugin, DeletesItsLibraryExactlyOnce) {
    Attrappe::Notizen notizen;
    std::unique_ptr<OrvoPlugin> plugin = std::make_unique<NurDatensatz>(new Attrappe(notizen));
    EXPECT_EQ(notizen.zerstoert, 0);
    plugin.reset();
    EXPECT_EQ(notizen.zerstoert, 1);
    EXPECT_TRUE(notizen.aufrufe.empty());
}

TEST(OrvoPlugin, ToleratesHavingNoLibrary) {
    const Mitschnitt log;
    {
        const NurDatensatz plugin(nullptr);
        EXPECT_EQ(plugin.getSharedLib(), nullptr);
        EXPECT_EQ(plugin.toString(), "Typ:1\nProduktVersion:\nFileVersion:\nBibliothek: \n");
    }
    EXPECT_EQ(log.zeilen("orvo.plugin.OrvoPlugin()").size(), 4U);
}

TEST(OrvoPlugin, LogsUnderTheFileNameOfItsLibrary) {
    const Mitschnitt log;
    Attrappe::Notizen notizen;
    {
        const NurDatensatz mitPfad(new Attrappe(notizen, "/a/b.c/libx.dylib"));
        const NurDatensatz ohnePfad(new Attrappe(notizen, "liby.dylib"));
    }
    EXPECT_EQ(log.zeilen("orvo.plugin.OrvoPlugin(libx.dylib)").size(), 4U);
    EXPECT_EQ(log.zeilen("orvo.plugin.OrvoPlugin(liby.dylib)").size(), 4U);
    EXPECT_EQ(log.zeilen().size(), 8U);
}

TEST(OrvoPlugin, ClosesItsLibraryBetweenTheTwoTracesOfItsDestructor) {
    struct Zeigt : orvo::orvoutil::SharedLib {
        explicit Zeigt(const Mitschnitt& m) : SharedLib("/libx.dylib"), log(m) {}
        ~Zeigt() override { EXPECT_EQ(log.zeilen().back(), "~> OrvoPlugin()"); }
        const Mitschnitt& log;
    };
    const Mitschnitt log;
    { const NurDatensatz plugin(new Zeigt(log)); }
    EXPECT_EQ(log.zeilen().back(), "~< OrvoPlugin()");
}
