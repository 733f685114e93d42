// The index gives the same answers as the plain rules: a map with the keys' own hash and equality, filled and emptied
// by the rules of registration.

#include "Registratur.h"

#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <limits>
#include <list>
#include <map>
#include <random>
#include <unordered_map>
#include <vector>

namespace {

using Check = OrvoValidierungsServiceErweiterung;
using Fehlertext = OrvoFTDatenServiceErweiterung;

/// A kind with any number, also those with their own class.
class BeliebigeArt : public OrvoUaVzServiceErweiterung {
public:
    BeliebigeArt(tag_erweiterung_typ typ, const VzMap& map)
        : OrvoUaVzServiceErweiterung(typ, map, "factory") {}
    OrvoErweiterung* clone() const override { return new BeliebigeArt(*this); }
};

constexpr tag_erweiterung_typ kArten[] = {
    NONE, ORVO_CHECK_SERVICE_ERWEITERUNG, ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG,
    static_cast<tag_erweiterung_typ>(7), static_cast<tag_erweiterung_typ>(-1)};

/// Sub-case types that are easily confused, or easily taken for different.
std::vector<Unterfallart> schwierige() {
    std::vector<Unterfallart> uas;
    constexpr int hashDesNamensMinusEins = 1'120'168'770;
    for (const int nummer : {0, 1, 10, 11, 99, 100, hashDesNamensMinusEins, -1, -5, -98, -99, -100,
                             std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        uas.emplace_back(nummer);
    for (const char* text : {"",
                             "-",
                             "--",
                             "-5",
                             "-05",
                             "-99",
                             "-100",
                             "-2147483648",
                             "+5",
                             "0",
                             "00",
                             "10",
                             "010",
                             "0000000010",
                             "2147483647",
                             "2147483648",
                             "99999999999",
                             "99999999998",
                             " 10",
                             "10 ",
                             "notset",
                             "NOTSET",
                             "LSTB",
                             "lstb",
                             "Lstb",
                             "LSTA",
                             "LST",
                             "LSTBB",
                             "@",
                             "`",
                             "[",
                             "{",
                             "A",
                             "a",
                             "aaaaaaa",
                             "AAAAAAA",
                             "aaaaaaaa",
                             "aaaaaaaA",
                             "aaaaaaaab",
                             "aaaaaaaaB",
                             "a@aaaaaaa",
                             "a`aaaaaaa",
                             "\xC4rger",
                             "\xE4rger",
                             "\xE4RGER",
                             "Zuwendungsbestaetigung",
                             "ZUWENDUNGSBESTAETIGUNG",
                             "Zuwendungsbestaetigunh",
                             "Zuwendungsbistaetigung",
                             "Yuwendungsbestaetigung",
                             "-LSTB",
                             "-lstb"})
        uas.emplace_back(text);
    return uas;
}

std::vector<Veranlagungszeitraum> jahre() {
    return {Veranlagungszeitraum(), jahr(2008), Veranlagungszeitraum::parse("2009-05", "YYYY-MM"), jahr(2009),
            jahr(2010)};
}

/// The registry's rules, written plainly over a map that hashes the keys' texts.
class Woertlich {
public:
    void melde(const LosesPlugin& plugin) {
        jedesPaar(plugin, [&](const ErweiterungsSchluessel& schluessel, OrvoErweiterung* erweiterung) {
            const auto [bestehender, neu] = eintraege_.emplace(schluessel, erweiterung);
            if (!neu && version(erweiterung) > version(bestehender->second)) {
                eintraege_.erase(bestehender);
                eintraege_.emplace(schluessel, erweiterung);
            }
        });
    }
    void vergiss(const LosesPlugin& plugin) {
        jedesPaar(plugin, [&](const ErweiterungsSchluessel& schluessel, OrvoErweiterung*) {
            eintraege_.erase(schluessel);
        });
    }
    OrvoErweiterung* finde(tag_erweiterung_typ typ, const Unterfallart& ua,
                           const Veranlagungszeitraum& vz) const {
        auto gefunden = eintraege_.find({typ, ua, vz});
        if (gefunden == eintraege_.end())
            gefunden = eintraege_.find({typ, ua, Veranlagungszeitraum()});
        return gefunden == eintraege_.end() ? nullptr : gefunden->second;
    }
    std::size_t anzahl() const { return eintraege_.size(); }

private:
    static std::string version(const OrvoErweiterung* erweiterung) {
        return erweiterung->getPlugin()->getProduktVersion(); // one digit here, so compared as text
    }
    template <class Tu>
    static void jedesPaar(const LosesPlugin& plugin, Tu&& tu) {
        for (OrvoErweiterung* const e : plugin.listeErweiterungen())
            for (const auto& [ua, vzs] :
                 static_cast<const OrvoUaVzServiceErweiterung*>(e)->getVeranlagungszeitraumUnterfallartMap())
                for (const Veranlagungszeitraum& vz : vzs)
                    tu(ErweiterungsSchluessel(e->getTyp(), ua, vz), e);
    }

    std::unordered_map<ErweiterungsSchluessel, OrvoErweiterung*, ErweiterungsSchluessel> eintraege_;
};

class SuchindexTest : public Registratur {
protected:
    LosesPlugin& neues(int version) { return plugins_.emplace_back(std::to_string(version)); }
    void melde(LosesPlugin& plugin) {
        registry_.pluginErzeugt(&plugin);
        woertlich_.melde(plugin);
    }
    void vergiss(LosesPlugin& plugin) {
        registry_.pluginZerstoert(&plugin);
        woertlich_.vergiss(plugin);
    }

    void vergleiche(const Unterfallart& ua, const Veranlagungszeitraum& vz) const {
        const auto wo = [&] {
            return ua.getName() + "/" + std::to_string(ua.getNummer()) + "/" + vz.getText();
        };
        for (const tag_erweiterung_typ typ : kArten)
            ASSERT_EQ(registry_.istUnterfallartUndJahrUnterstuetzt(typ, ua, vz),
                      woertlich_.finde(typ, ua, vz) != nullptr)
                << typ << " " << wo();
        ASSERT_EQ(registry_.findeValidierungsServiceErweiterung(ua, vz),
                  dynamic_cast<Check*>(woertlich_.finde(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, vz)))
            << wo();
        ASSERT_EQ(
            registry_.findeFehlertextDatenServiceErweiterung(ua, vz),
            dynamic_cast<Fehlertext*>(woertlich_.finde(ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG, ua, vz)))
            << wo();
    }
    void vergleicheAlle(const std::vector<Unterfallart>& uas) const {
        for (const Unterfallart& ua : uas)
            for (const Veranlagungszeitraum& vz : jahre())
                ASSERT_NO_FATAL_FAILURE(vergleiche(ua, vz));
        ASSERT_EQ(registry_.getRegistrierteErweiterungen().size(), woertlich_.anzahl());
    }

    OrvoErweiterungsManager registry_;
    Woertlich woertlich_;
    std::deque<LosesPlugin> plugins_;
};

/// Draws plugins at random.
class Los {
public:
    explicit Los(unsigned keim) : zufall_(keim) {}

    std::size_t bis(std::size_t grenze) { return zufall_() % grenze; }
    template <class Werte>
    auto& eines(Werte& werte) {
        return werte[bis(std::size(werte))];
    }
    OrvoUaVzServiceErweiterung::VzMap paare(const std::vector<Unterfallart>& uas) {
        const std::vector<Veranlagungszeitraum> vzs = jahre();
        OrvoUaVzServiceErweiterung::VzMap paare;
        for (std::size_t i = 1 + bis(4); i > 0; --i)
            paare[eines(uas)].push_back(eines(vzs));
        return paare;
    }
    void biete(LosesPlugin& plugin, const std::vector<Unterfallart>& uas) {
        switch (bis(3)) {
        case 0:
            plugin.biete(Check(paare(uas)));
            break;
        case 1:
            plugin.biete(Fehlertext(paare(uas)));
            break;
        default:
            plugin.biete(BeliebigeArt(eines(kArten), paare(uas)));
        }
    }

private:
    std::mt19937 zufall_;
};

} // namespace

TEST_F(SuchindexTest, AnswersWhatTheLiteralKeyAnswersWhateverComesAndGoes) {
    const std::vector<Unterfallart> uas = schwierige();
    Los los(20091231);
    std::vector<LosesPlugin*> gemeldete;
    for (int schritt = 0; schritt < 60; ++schritt) {
        if (gemeldete.size() < 6 || los.bis(2) == 0) {
            LosesPlugin& plugin = neues(static_cast<int>(los.bis(10)));
            for (std::size_t i = los.bis(6); i > 0; --i)
                los.biete(plugin, uas);
            melde(plugin);
            gemeldete.push_back(&plugin);
        } else {
            std::swap(los.eines(gemeldete), gemeldete.back());
            vergiss(*gemeldete.back());
            gemeldete.pop_back();
        }
        ASSERT_NO_FATAL_FAILURE(vergleicheAlle(uas)) << "step " << schritt;
    }
    for (LosesPlugin* const plugin : gemeldete)
        vergiss(*plugin);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
    vergleicheAlle(uas);
}

// One of a pair is registered, the other is looked up.
TEST_F(SuchindexTest, TellsEveryPairOfSubCaseTypesApartAsTheLiteralKeyDoes) {
    const std::vector<Unterfallart> uas = schwierige();
    for (const Unterfallart& angeboten : uas) {
        LosesPlugin& plugin = neues(1);
        plugin.biete(Check(angeboten, jahr(2009)));
        melde(plugin);
        for (const Unterfallart& gefragt : uas)
            ASSERT_NO_FATAL_FAILURE(vergleiche(gefragt, jahr(2009))) << "offered " << angeboten.getName();
        vergiss(plugin);
    }
}

TEST_F(SuchindexTest, KeepsANegativeNumberAndTheNameOfTheSameTextApart) {
    LosesPlugin& plugin = neues(1);
    OrvoErweiterung* const nummer = plugin.biete(Check(-5, jahr(2009)));
    melde(plugin);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(-5, jahr(2009)), nummer);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung("-5", jahr(2009)), nullptr);
    LosesPlugin& anderes = neues(1);
    OrvoErweiterung* const name = anderes.biete(Check("-5", jahr(2009)));
    melde(anderes);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(-5, jahr(2009)), nummer);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung("-5", jahr(2009)), name);
}

// The hashes of "...FEHLER_TEXT...#-17780975#2009" and "...FEHLER_TEXT...#-99#2009" collide.
TEST_F(SuchindexTest, TakesANegativeNumberForTheNameWhereTheirHashesMeet) {
    LosesPlugin& plugin = neues(1);
    OrvoErweiterung* const nummer = plugin.biete(Fehlertext(-17780975, jahr(2009)));
    melde(plugin);
    EXPECT_EQ(registry_.findeFehlertextDatenServiceErweiterung("-17780975", jahr(2009)), nummer);
    LosesPlugin& anderes = neues(2);
    OrvoErweiterung* const name = anderes.biete(Fehlertext("-17780975", jahr(2009)));
    melde(anderes);
    EXPECT_EQ(registry_.findeFehlertextDatenServiceErweiterung(-17780975, jahr(2009)), name);
    vergleicheAlle({-17780975, "-17780975"});
    vergiss(plugin);
    EXPECT_EQ(registry_.findeFehlertextDatenServiceErweiterung("-17780975", jahr(2009)), nullptr);
}

TEST_F(SuchindexTest, FindsAllOfThousandsAsPluginsComeAndGo) {
    constexpr int kPlugins = 500;
    const auto name = [](int i) { return "Anmeldung der Art " + std::to_string(i); };
    for (int i = 0; i < kPlugins; ++i) {
        LosesPlugin& plugin = neues(1);
        plugin.biete(Check(OrvoUaVzServiceErweiterung::VzMap{{1000 + i, {jahr(2008), jahr(2009), jahr(2010)}},
                                                             {name(i).c_str(), {jahr(2009), {}}}}));
        melde(plugin);
    }
    const auto vergleicheJedes = [&] {
        for (int i = 0; i < kPlugins; ++i)
            for (const int zahl : {2007, 2008, 2009}) {
                ASSERT_NO_FATAL_FAILURE(vergleiche(1000 + i, jahr(zahl)));
                ASSERT_NO_FATAL_FAILURE(vergleiche(name(i).c_str(), jahr(zahl)));
            }
    };
    vergleicheJedes();
    for (std::size_t i = 0; i < plugins_.size(); i += 2)
        vergiss(plugins_[i]);
    vergleicheJedes();
    for (std::size_t i = 0; i < plugins_.size(); i += 4)
        melde(plugins_[i]);
    vergleicheJedes();
    for (LosesPlugin& plugin : plugins_)
        vergiss(plugin);
    vergleicheJedes();
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
}

TEST_F(SuchindexTest, KeepsNeighbouringNumbersApartInEveryYear) {
    const Veranlagungszeitraum ferner(300'000'000, "YYYYYYYYY");
    LosesPlugin& plugin = neues(1);
    plugin.biete(Check(10, ferner));
    melde(plugin);
    for (const int nummer : {9, 10, 11})
        vergleiche(nummer, ferner);
}

TEST_F(SuchindexTest, KeepsAThousandKindsOfOneSubCaseTypeAndYearApart) {
    LosesPlugin& plugin = neues(1);
    for (int art = -500; art < 500; art += 2)
        plugin.biete(BeliebigeArt(static_cast<tag_erweiterung_typ>(art), {{10, {jahr(2009)}}}));
    melde(plugin);
    for (int art = -500; art < 500; ++art)
        EXPECT_EQ(registry_.istUnterfallartUndJahrUnterstuetzt(static_cast<tag_erweiterung_typ>(art), 10,
                                                               jahr(2009)),
                  art % 2 == 0 && art != ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG)
            << art;
}

// The index refers to names in the map's entries, which another plugin's entries replace.
TEST_F(SuchindexTest, FindsTheWinnerUnderEitherWritingAndNobodyWhenItIsGone) {
    LosesPlugin& altes = neues(1);
    LosesPlugin& neueres = neues(2);
    altes.biete(Check("zuwendungsbestaetigung", jahr(2009)));
    OrvoErweiterung* const sieger = neueres.biete(Check("Zuwendungsbestaetigung", jahr(2009)));
    melde(altes);
    melde(neueres);
    for (const char* text : {"zuwendungsbestaetigung", "ZUWENDUNGSBESTAETIGUNG"})
        EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(text, jahr(2009)), sieger) << text;
    vergiss(altes);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung("Zuwendungsbestaetigung", jahr(2009)), nullptr);
    melde(neueres);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung("Zuwendungsbestaetigung", jahr(2009)), sieger);
}

/// Two extensions in one object: the plugin offers the first, of any kind; the second is a check.
class ZweiInEinem : public BeliebigeArt, public Check {
public:
    explicit ZweiInEinem(tag_erweiterung_typ typ)
        : BeliebigeArt(typ, {{10, {jahr(2009)}}}), Check(10, jahr(2009)) {}
    OrvoErweiterung* clone() const override { return static_cast<BeliebigeArt*>(new ZweiInEinem(*this)); }
};

// The look-up's checked cast goes across from the first to the second.
TEST_F(SuchindexTest, FindsTheExtensionOfTheKindsClassWhereverItStandsInTheObject) {
    LosesPlugin& plugin = neues(1);
    const ZweiInEinem zwei(ORVO_CHECK_SERVICE_ERWEITERUNG);
    OrvoErweiterung* const angeboten = plugin.biete(static_cast<const BeliebigeArt&>(zwei));
    melde(plugin);
    Check* const gefunden = registry_.findeValidierungsServiceErweiterung(10, jahr(2009));
    EXPECT_EQ(gefunden, dynamic_cast<Check*>(angeboten));
    EXPECT_NE(static_cast<OrvoErweiterung*>(gefunden), angeboten);
    EXPECT_EQ(registry_.getRegistrierteValidierungsServiceErweiterungen(), std::list<Check*>{gefunden});
}

TEST_F(SuchindexTest, ListsAnExtensionUnderTheKindThatItWasOfferedAs) {
    LosesPlugin& plugin = neues(1);
    const ZweiInEinem zwei(ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG);
    OrvoErweiterung* const angeboten = plugin.biete(static_cast<const BeliebigeArt&>(zwei));
    melde(plugin);
    EXPECT_TRUE(registry_.getRegistrierteValidierungsServiceErweiterungen().empty());
    EXPECT_EQ(registry_.getRegistrierteErweiterungen(), std::list<OrvoErweiterung*>{angeboten});
}
