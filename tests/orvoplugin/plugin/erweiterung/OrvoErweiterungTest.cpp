#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <gmock/gmock.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace {

using testing::IsEmpty;

constexpr auto flag(int nummer) { return static_cast<orvo_erweiterung_flag_t>(nummer); }
constexpr auto typ(int nummer) { return static_cast<tag_erweiterung_typ>(nummer); }

/// A minimal extension. It counts its deletions.
class Erweiterung : public OrvoErweiterung {
public:
    explicit Erweiterung(tag_erweiterung_typ typ = NONE) : OrvoErweiterung(typ) {}
    Erweiterung(const Erweiterung&) = default;
    ~Erweiterung() override { ++geloescht; }
    OrvoErweiterung* clone() const override { return new Erweiterung(*this); }

    using OrvoErweiterung::zaehleAusgabe;

    static inline int geloescht = 0;
};

std::string meldung(void (*tat)(Erweiterung&)) {
    Erweiterung erweiterung;
    try {
        tat(erweiterung);
    } catch (const std::out_of_range& e) {
        return e.what();
    }
    return "nichts";
}

TEST(ErweiterungTyp, IsPrintedByName) {
    const char* const namen[] = {"NONE",
                                 "ORVO_CHECK_SERVICE_ERWEITERUNG",
                                 "ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG",
                                 "ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG",
                                 "ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG",
                                 "ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG",
                                 "ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG"};
    for (int nummer = 0; nummer <= 6; ++nummer) {
        std::ostringstream text;
        text << typ(nummer);
        EXPECT_EQ(text.str(), namen[nummer]);
        EXPECT_STREQ(erweiterungTypName(typ(nummer)), namen[nummer]);
    }
}

TEST(ErweiterungTyp, OutsideTheTableIsPrintedAsUnknown) {
    for (const int nummer : {7, -1, 99, 2147483647, -2147483647 - 1}) {
        std::ostringstream text;
        text << "<" << typ(nummer) << ">";
        EXPECT_EQ(text.str(), "<UNBEKANNT>");
    }
}

TEST(ErweiterungTyp, HasTheValuesOfTheTable) {
    EXPECT_EQ(NONE, 0);
    EXPECT_EQ(ORVO_CHECK_SERVICE_ERWEITERUNG, 1);
    EXPECT_EQ(ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG, 2);
    EXPECT_EQ(ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG, 3);
    EXPECT_EQ(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, 4);
    EXPECT_EQ(ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG, 5);
    EXPECT_EQ(ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG, 6);
    static_assert(std::is_same_v<std::underlying_type_t<tag_erweiterung_typ>, std::int32_t>);
    static_assert(std::is_same_v<std::underlying_type_t<orvo_erweiterung_flag_t>, std::int32_t>);
}

TEST(OrvoErweiterung, StartsWithItsKindAndNothingElse) {
    const Erweiterung erweiterung(typ(77));
    EXPECT_EQ(erweiterung.getTyp(), typ(77));
    EXPECT_EQ(erweiterung.getPlugin(), nullptr);
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
    EXPECT_THAT(erweiterung.getAbhaengigkeiten(), IsEmpty());
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(erweiterung.istFlagGesetzt(flag(i))) << i;
}

TEST(OrvoErweiterung, HasFiveFlagsEachByItself) {
    Erweiterung erweiterung;
    for (int gesetzt = 0; gesetzt < 5; ++gesetzt) {
        erweiterung.setzeFlag(flag(gesetzt), true);
        erweiterung.setzeFlag(flag(gesetzt), true); // a second time changes nothing
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(erweiterung.istFlagGesetzt(flag(i)), i == gesetzt) << i;
        erweiterung.setzeFlag(flag(gesetzt), false);
        EXPECT_FALSE(erweiterung.istFlagGesetzt(flag(gesetzt)));
    }
    EXPECT_EQ(FLAG_SERVICE_LOESCHEN, 0);
}

TEST(OrvoErweiterung, RefusesAFlagBeyondTheFifthAndChangesNothing) {
    Erweiterung erweiterung;
    erweiterung.setzeFlag(flag(2), true);
    for (const int nummer : {5, 6, 64, 2147483647, -1}) {
        EXPECT_THROW(erweiterung.setzeFlag(flag(nummer), true), std::out_of_range) << nummer;
        EXPECT_THROW(erweiterung.setzeFlag(flag(nummer), false), std::out_of_range) << nummer;
        EXPECT_THROW(erweiterung.istFlagGesetzt(flag(nummer)), std::out_of_range) << nummer;
    }
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(erweiterung.istFlagGesetzt(flag(i)), i == 2);
}

TEST(OrvoErweiterung, SaysWhatItRefusesInTheBitSetsWords) {
    EXPECT_EQ(meldung([](Erweiterung& e) { e.setzeFlag(flag(5), true); }), "bitset::set");
    EXPECT_EQ(meldung([](Erweiterung& e) { e.setzeFlag(flag(5), false); }), "bitset::set");
    EXPECT_EQ(meldung([](Erweiterung& e) { e.istFlagGesetzt(flag(-1)); }), "bitset::set");
    EXPECT_EQ(meldung([](Erweiterung& e) { e.setzeFlag(flag(4), true); }), "nichts");
}

TEST(OrvoErweiterung, PointsToThePluginGivenWithoutAskingItAnything) {
    Erweiterung erweiterung;
    auto* const plugin = reinterpret_cast<OrvoPlugin*>(&erweiterung); // any address
    erweiterung.setPlugin(plugin);
    EXPECT_EQ(erweiterung.getPlugin(), plugin);
    erweiterung.setPlugin(nullptr);
    EXPECT_EQ(erweiterung.getPlugin(), nullptr);
}

TEST(OrvoErweiterung, KeepsOnlyTheBasePartOfItsDependencies) {
    Erweiterung erweiterung;
    {
        const UfaVzAbhaengigkeit abhaengigkeit(Unterfallart(10), Veranlagungszeitraum(2009, "YYYY"));
        erweiterung.addAbhaengigkeit(abhaengigkeit);
        erweiterung.addAbhaengigkeit(abhaengigkeit);
    }
    ASSERT_EQ(erweiterung.getAbhaengigkeiten().size(), 2u) << "equal ones stand beside each other";
    for (const Abhaengigkeit& abhaengigkeit : erweiterung.getAbhaengigkeiten()) {
        EXPECT_EQ(abhaengigkeit.getTyp(), Abhaengigkeit::UFA_VZ);
        EXPECT_EQ(dynamic_cast<const UfaVzAbhaengigkeit*>(&abhaengigkeit), nullptr);
    }
}

/// Dependencies of different kinds, to distinguish them.
class EigeneAbhaengigkeit : public Abhaengigkeit {
public:
    explicit EigeneAbhaengigkeit(int typ) : Abhaengigkeit(typ) {}
};

TEST(OrvoErweiterung, KeepsItsDependenciesInTheOrderAdded) {
    Erweiterung erweiterung;
    for (const int art : {3, 1, 2})
        erweiterung.addAbhaengigkeit(EigeneAbhaengigkeit(art));
    std::string arten;
    for (const Abhaengigkeit& abhaengigkeit : erweiterung.getAbhaengigkeiten())
        arten += std::to_string(abhaengigkeit.getTyp());
    EXPECT_EQ(arten, "312");
}

TEST(OrvoErweiterung, IsClonedWithPluginFlagsDependenciesAndCount) {
    Erweiterung erweiterung(ORVO_CHECK_SERVICE_ERWEITERUNG);
    erweiterung.setPlugin(reinterpret_cast<OrvoPlugin*>(&erweiterung));
    erweiterung.setzeFlag(flag(4), true);
    erweiterung.addAbhaengigkeit(UfaVzAbhaengigkeit(Unterfallart(10)));
    erweiterung.zaehleAusgabe();

    const std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
    EXPECT_EQ(klon->getTyp(), ORVO_CHECK_SERVICE_ERWEITERUNG);
    EXPECT_EQ(klon->getPlugin(), erweiterung.getPlugin());
    EXPECT_TRUE(klon->istFlagGesetzt(flag(4)));
    EXPECT_FALSE(klon->istFlagGesetzt(flag(0)));
    EXPECT_EQ(klon->getAbhaengigkeiten().size(), 1u);
    EXPECT_EQ(klon->getAusgegeben(), 1);

    // From here on they are independent.
    erweiterung.setzeFlag(flag(4), false);
    erweiterung.addAbhaengigkeit(UfaVzAbhaengigkeit(Unterfallart(12)));
    EXPECT_TRUE(klon->istFlagGesetzt(flag(4)));
    EXPECT_EQ(klon->getAbhaengigkeiten().size(), 1u);
}

TEST(OrvoErweiterung, IsDeletedThroughItsBase) {
    Erweiterung::geloescht = 0;
    const Erweiterung erweiterung;
    delete erweiterung.clone();
    EXPECT_EQ(Erweiterung::geloescht, 1);
}

} // namespace
