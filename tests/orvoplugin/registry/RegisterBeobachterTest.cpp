// What an observer of the registry hears of each key, and what a look-up reports of the key that answered.

#include "Registratur.h"

#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/RegisterBeobachter.h>

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using Check = OrvoValidierungsServiceErweiterung;

std::string wer(const OrvoErweiterung& erweiterung) { return erweiterung.getPlugin()->getProduktVersion(); }

/// "LSTB 2009": the content of a key.
std::string wo(const ErweiterungsSchluessel& schluessel) {
    return schluessel.getUnterfallart().getName() + " " +
           std::to_string(schluessel.getVeranlagungszeitraum().getJahr());
}

class Horcher : public RegisterBeobachter {
public:
    Horcher() : vorher_(OrvoErweiterungsManager::setRegisterBeobachter(this)) {}
    ~Horcher() override { OrvoErweiterungsManager::setRegisterBeobachter(vorher_); }

    void eingetragen(const ErweiterungsSchluessel& schluessel,
                     const OrvoErweiterung& erweiterung) noexcept override {
        gehoert.push_back(wo(schluessel) + ": " + wer(erweiterung));
    }
    void verdraengt(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& neue,
                    const OrvoErweiterung& bisherige, orvo_register_regel_t regel) noexcept override {
        gehoert.push_back(wo(schluessel) + ": " + wer(neue) + " statt " + wer(bisherige) + ", Regel " +
                          std::to_string(regel));
    }
    void abgewiesen(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& neue,
                    const OrvoErweiterung& bestehende, orvo_register_regel_t regel) noexcept override {
        gehoert.push_back(wo(schluessel) + ": " + wer(bestehende) + " bleibt vor " + wer(neue) + ", Regel " +
                          std::to_string(regel));
    }
    void uebergangen(const OrvoErweiterung& erweiterung) noexcept override {
        gehoert.push_back("uebergangen: " + wer(erweiterung));
    }
    void entfernt(const ErweiterungsSchluessel& schluessel,
                  const OrvoErweiterung& erweiterung) noexcept override {
        gehoert.push_back(wo(schluessel) + " entfernt: " + wer(erweiterung));
    }

    std::vector<std::string> gehoert;

private:
    RegisterBeobachter* vorher_;
};

/// An extension of a class that serves no sub-case types.
class Fremde : public OrvoErweiterung {
public:
    explicit Fremde(tag_erweiterung_typ typ = ORVO_CHECK_SERVICE_ERWEITERUNG) : OrvoErweiterung(typ) {}
    OrvoErweiterung* clone() const override { return new Fremde(*this); }
};

} // namespace

/// A registry without plugins; the tests announce theirs themselves.
class RegisterBeobachterTest : public Registratur {
protected:
    OrvoErweiterungsManager registry_;
    Horcher horcher_;
};

TEST_F(RegisterBeobachterTest, HearsWhoGetsAFreeKey) {
    LosesPlugin plugin("1.0");
    plugin.biete(Check("LSTB", {jahr(2009), jahr(2010)}));
    registry_.pluginErzeugt(&plugin);
    EXPECT_THAT(horcher_.gehoert, ElementsAre("LSTB 2009: 1.0", "LSTB 2010: 1.0"));
}

TEST_F(RegisterBeobachterTest, HearsWhichRuleSettlesADuplicate) {
    LosesPlugin mittlere("1.5"), hoehere("1.10"), gleiche("1,10,0"), niedrigere("1.9");
    for (LosesPlugin* const plugin : {&mittlere, &hoehere, &gleiche, &niedrigere}) {
        plugin->biete(Check(10, jahr(2009)));
        registry_.pluginErzeugt(plugin);
    }
    EXPECT_THAT(
        horcher_.gehoert,
        ElementsAre("10 2009: 1.5", "10 2009: 1.10 statt 1.5, Regel " + std::to_string(REGEL_HOEHERE_VERSION),
                    "10 2009: 1.10 bleibt vor 1,10,0, Regel " + std::to_string(REGEL_GLEICHE_VERSION),
                    "10 2009: 1.10 bleibt vor 1.9, Regel " + std::to_string(REGEL_NIEDRIGERE_VERSION)));
}

TEST_F(RegisterBeobachterTest, HearsEachKeyAsTheNewcomerWritesIt) {
    LosesPlugin bisherige("1"), hoehere("3"), niedrigere("2");
    bisherige.biete(Check("lstb", jahr(2009)));
    hoehere.biete(Check("LSTB", jahr(2009)));
    niedrigere.biete(Check("Lstb", jahr(2009)));
    for (LosesPlugin* const plugin : {&bisherige, &hoehere, &niedrigere})
        registry_.pluginErzeugt(plugin);
    EXPECT_THAT(horcher_.gehoert, ElementsAre("lstb 2009: 1", "LSTB 2009: 3 statt 1, Regel 1",
                                              "Lstb 2009: 3 bleibt vor 2, Regel 3"));
}

TEST_F(RegisterBeobachterTest, HearsThatAnExtensionIsInItsOwnWay) {
    LosesPlugin plugin("1");
    plugin.biete(Check(10, {Veranlagungszeitraum::parse("2009-05", "YYYY-MM"), jahr(2009)}));
    registry_.pluginErzeugt(&plugin);
    EXPECT_THAT(horcher_.gehoert, ElementsAre("10 2009: 1", "10 2009: 1 bleibt vor 1, Regel 2"));
}

TEST_F(RegisterBeobachterTest, HearsOfWhatHappensOnOtherThreads) {
    LosesPlugin plugin("1");
    plugin.biete(Check(10, jahr(2009)));
    std::thread([&] { registry_.pluginErzeugt(&plugin); }).join();
    EXPECT_THAT(horcher_.gehoert, ElementsAre("10 2009: 1"));
}

TEST_F(RegisterBeobachterTest, HearsThatTheFirstTaxOfficeDataStayWhateverTheVersions) {
    LosesPlugin erste("1"), zweite("2");
    for (LosesPlugin* const plugin : {&erste, &zweite}) {
        plugin->biete(OrvoFADatenServiceErweiterung());
        registry_.pluginErzeugt(plugin);
    }
    EXPECT_THAT(horcher_.gehoert, ElementsAre("0 2000: 1", "0 2000: 1 bleibt vor 2, Regel " +
                                                               std::to_string(REGEL_ERSTER_BLEIBT)));
}

TEST_F(RegisterBeobachterTest, HearsWhoStoodUnderTheKeysOfAPluginThatGoes) {
    LosesPlugin verlierer("1"), sieger("2");
    verlierer.biete(Check(10, {jahr(2009), jahr(2010)}));
    verlierer.biete(OrvoFADatenServiceErweiterung());
    sieger.biete(Check(10, jahr(2009)));
    registry_.pluginErzeugt(&verlierer);
    registry_.pluginErzeugt(&sieger);
    horcher_.gehoert.clear();
    registry_.pluginZerstoert(&verlierer);
    EXPECT_THAT(horcher_.gehoert,
                ElementsAre("10 2009 entfernt: 2", "10 2010 entfernt: 1", "0 2000 entfernt: 1"));
    horcher_.gehoert.clear();
    registry_.pluginZerstoert(&sieger);
    EXPECT_THAT(horcher_.gehoert, IsEmpty());
}

TEST_F(RegisterBeobachterTest, HearsOfAnExtensionThatGetsNoKey) {
    LosesPlugin plugin("1");
    plugin.biete(Fremde());
    registry_.pluginErzeugt(&plugin);
    EXPECT_THAT(horcher_.gehoert, ElementsAre("uebergangen: 1"));
}

TEST_F(RegisterBeobachterTest, NeedsToTakeNoteOfNothing) {
    RegisterBeobachter gleichgueltig;
    EXPECT_EQ(OrvoErweiterungsManager::setRegisterBeobachter(&gleichgueltig), &horcher_);
    LosesPlugin eins("1"), zwei("2"), nochmal("1");
    OrvoErweiterung* gewinner = nullptr;
    for (LosesPlugin* const plugin : {&eins, &zwei, &nochmal}) {
        OrvoErweiterung* const erweiterung = plugin->biete(Check(10, jahr(2009)));
        gewinner = plugin == &zwei ? erweiterung : gewinner;
        plugin->biete(Fremde());
        registry_.pluginErzeugt(plugin);
    }
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(10, jahr(2009)), gewinner);
    registry_.pluginZerstoert(&eins);
    EXPECT_EQ(OrvoErweiterungsManager::setRegisterBeobachter(nullptr), &gleichgueltig);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
}

template <class... Parameter, bool WirftNie>
constexpr bool darfWerfen(void (RegisterBeobachter::*)(Parameter...) noexcept(WirftNie)) {
    return !WirftNie;
}

TEST(RegisterBeobachter, MayNotThrow) {
    EXPECT_FALSE(darfWerfen(&RegisterBeobachter::eingetragen));
    EXPECT_FALSE(darfWerfen(&RegisterBeobachter::verdraengt));
    EXPECT_FALSE(darfWerfen(&RegisterBeobachter::abgewiesen));
    EXPECT_FALSE(darfWerfen(&RegisterBeobachter::uebergangen));
    EXPECT_FALSE(darfWerfen(&RegisterBeobachter::entfernt));
}

TEST(RegisterRegel, KeepsItsNumbers) {
    EXPECT_EQ(REGEL_HOEHERE_VERSION, 1);
    EXPECT_EQ(REGEL_GLEICHE_VERSION, 2);
    EXPECT_EQ(REGEL_NIEDRIGERE_VERSION, 3);
    EXPECT_EQ(REGEL_ERSTER_BLEIBT, 4);
}

TEST(RegisterAuskunft, KeepsItsNumbers) {
    EXPECT_EQ(RegisterAuskunft::KEINER, 0);
    EXPECT_EQ(RegisterAuskunft::GENAU, 1);
    EXPECT_EQ(RegisterAuskunft::GLEICHES_JAHR, 2);
    EXPECT_EQ(RegisterAuskunft::UNABHAENGIG, 3);
}

class RegisterAuskunftTest : public Registratur {
protected:
    RegisterAuskunft frage(const Unterfallart& ua, const char* text, const char* format) const {
        return registry_.schlageNach(ORVO_CHECK_SERVICE_ERWEITERUNG, ua,
                                     Veranlagungszeitraum::parse(text, format));
    }

    OrvoErweiterungsManager registry_;
};

TEST_F(RegisterAuskunftTest, TellsWhichKeyAnswered) {
    LosesPlugin plugin("1");
    OrvoErweiterung* const monat = plugin.biete(Check(10, Veranlagungszeitraum::parse("2009-05", "YYYY-MM")));
    OrvoErweiterung* const immer = plugin.biete(Check(10, Veranlagungszeitraum()));
    registry_.pluginErzeugt(&plugin);

    const RegisterAuskunft genau = frage(10, "2009-05", "YYYY-MM");
    EXPECT_EQ(genau.treffer, RegisterAuskunft::GENAU);
    EXPECT_EQ(genau.erweiterung, monat);
    const RegisterAuskunft jahrgang = frage("010", "2009", "YYYY");
    EXPECT_EQ(jahrgang.treffer, RegisterAuskunft::GLEICHES_JAHR);
    EXPECT_EQ(jahrgang.erweiterung, monat);
    EXPECT_EQ(jahrgang.schluessel->getVeranlagungszeitraum().getText(), "2009-05");
    EXPECT_EQ(frage(10, "2009-06", "YYYY-MM").treffer, RegisterAuskunft::GLEICHES_JAHR);
    const RegisterAuskunft anderes = frage(10, "2011", "YYYY");
    EXPECT_EQ(anderes.treffer, RegisterAuskunft::UNABHAENGIG);
    EXPECT_EQ(anderes.erweiterung, immer);
    EXPECT_EQ(anderes.schluessel->getVeranlagungszeitraum().getJahr(), 0);
    EXPECT_EQ(registry_.schlageNach(ORVO_CHECK_SERVICE_ERWEITERUNG, 10, Veranlagungszeitraum()).treffer,
              RegisterAuskunft::GENAU)
        << "the period that was asked for";
}

TEST_F(RegisterAuskunftTest, GivesTheKeyOfTheExtensionThatWon) {
    LosesPlugin eins("1"), zwei("2");
    eins.biete(Check("lstb", Veranlagungszeitraum::parse("2009-05", "YYYY-MM")));
    zwei.biete(Check("LSTB", jahr(2009)));
    registry_.pluginErzeugt(&eins);
    registry_.pluginErzeugt(&zwei);
    const RegisterAuskunft auskunft = frage("LSTB", "2009", "YYYY");
    EXPECT_EQ(auskunft.treffer, RegisterAuskunft::GENAU);
    EXPECT_EQ(auskunft.schluessel->getUnterfallart().getName(), "LSTB");
}

TEST_F(RegisterAuskunftTest, GivesExtensionsOfAnyClass) {
    LosesPlugin plugin("1");
    OrvoErweiterung* const fremde = plugin.biete(Fremde(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG));
    registry_.pluginErzeugt(&plugin);
    EXPECT_EQ(registry_.schlageNach(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, 0, jahr(2000)).erweiterung,
              fremde);
}

TEST_F(RegisterAuskunftTest, TellsThatNothingWasFound) {
    LosesPlugin plugin("1");
    plugin.biete(Check(10, jahr(2009)));
    registry_.pluginErzeugt(&plugin);
    const RegisterAuskunft keine = frage(11, "2009", "YYYY");
    EXPECT_EQ(keine.treffer, RegisterAuskunft::KEINER);
    EXPECT_EQ(keine.erweiterung, nullptr);
    EXPECT_EQ(keine.schluessel, nullptr);
}

TEST_F(RegisterAuskunftTest, GivesWhatTheLookUpsGive) {
    LosesPlugin eins("1"), zwei("2");
    eins.biete(Check(OrvoUaVzServiceErweiterung::VzMap{{10, {jahr(2009), Veranlagungszeitraum()}},
                                                       {"LSTB", {jahr(2010)}}}));
    zwei.biete(Check(10, {jahr(2009), jahr(2011)}));
    registry_.pluginErzeugt(&eins);
    registry_.pluginErzeugt(&zwei);
    for (const char* const ua : {"10", "LSTB", "lstb", "11"})
        for (int zahl = 2008; zahl <= 2012; ++zahl)
            EXPECT_EQ(registry_.schlageNach(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, jahr(zahl)).erweiterung,
                      registry_.findeValidierungsServiceErweiterung(ua, jahr(zahl)))
                << ua << " " << zahl;
}
