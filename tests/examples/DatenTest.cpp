// The records in examples/data, read as the example plugins' clients read them: each has the fault that its name and
// its comment state, under the rules of the newer plugin; two also under those of the older one.

#include <client/TextListe.h>
#include <gmock/gmock.h>
#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoutil/Latin1.h>
#include <pruefpaket/Regelwerk.h>
#include <pruefung/PruefService.h>
#include <pruefung/Satz.h>
#include <stammdaten/DateiLeser.h>
#include <steuer/Datensatz.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace {

using orvo::orvoutil::Latin1Text;
using orvo::service::ValidierungsService;
using testing::ElementsAre;

class NeueRegeln : public pruefung::PruefService {
    const pruefung::Satzaufbau* aufbauFuer(const Unterfallart& ua) const override {
        return pruefpaket::aufbauFuer(ua);
    }
};

std::string pfadVon(const std::string& datei) { return DATENVERZEICHNIS "/" + datei; }

std::vector<std::string> lies(const std::string& datei) {
    std::vector<std::string> texte;
    std::string grund;
    EXPECT_TRUE(stammdaten::DateiLeser().lies(pfadVon(datei), texte, grund)) << grund;
    return texte;
}

/// Checks the records as a client does; several are also checked as one submission.
PruefErgebnis pruefe(ValidierungsService& service, const std::string& datei, const Unterfallart& ua,
                     const Veranlagungszeitraum& vz) {
    const TextListe liste(lies(datei));
    PruefErgebnis ergebnis;
    service.pruefe(liste, ua, vz, ergebnis);
    if (liste.getAnzahl() > 1)
        service.checkSammeldatenKonsistenz(liste, ua, vz, ergebnis);
    return ergebnis;
}

struct Datei {
    std::string name;
    const char* unterfallart;
    int zeitraum;
    const char* muster;
    std::vector<Befund> befunde;
};

const std::vector<Datei>& dateien() {
    static const std::vector<Datei> liste = {
        {"anmeldung-quartal.txt", "10", 200942, "YYYYZZ", {}},
        {"anmeldung-quartal.txt", "10", 200952, "YYYYZZ", {}},
        {"anmeldung-quartal.txt", "10", 200905, "YYYYMM", {{131, "Beginn"}, {131, "Ende"}}},
        {"erklaerung-2015.txt", "50", 2015, "YYYY", {}},
        {"falsche-kodierung.txt", "LSTB", 2009, "YYYY", {{100, ""}}},
        {"kein-datensatz.txt", "LSTB", 2009, "YYYY", {{100, ""}}},
        {"lstb-2008-fehlend.txt",
         "LSTB",
         2008,
         "YYYY",
         {{102, "Name"}, {102, "Bruttoarbeitslohn"}, {103, "Bruttolohn"}}},
        {"lstb-2009-betrag.txt", "LSTB", 2009, "YYYY", {{121, "Lohnsteuer"}, {120, "Kirchensteuer"}}},
        {"lstb-2009-datum.txt", "LSTB", 2009, "YYYY", {{131, "Beginn"}, {130, "Ende"}}},
        {"lstb-2009-drei-in-folge.txt", "LSTB", 2009, "YYYY", {{113, "IdNr"}}},
        {"lstb-2009-gut.txt", "LSTB", 2009, "YYYY", {}},
        {"lstb-2009-pruefziffer.txt", "LSTB", 2009, "YYYY", {{114, "IdNr"}}},
        {"lstb-2009-zuschlag.txt", "LSTB", 2009, "YYYY", {{123, "Solidaritaetszuschlag"}}},
        {"lstb-2010-sammlung.txt", "LSTB", 2010, "YYYY", {{123, "Lohnsteuer"}, {151, "IdNr"}}},
    };
    return liste;
}

TEST(Beispieldaten, AreAtFaultWhereTheirNamesSay) {
    NeueRegeln service;
    for (const Datei& datei : dateien())
        EXPECT_EQ(befunde(pruefe(service, datei.name, datei.unterfallart, {datei.zeitraum, datei.muster})),
                  datei.befunde)
            << datei.name << ' ' << datei.zeitraum;
}

TEST(Beispieldaten, AreAllKnownHere) {
    std::set<std::string> bekannte;
    for (const Datei& datei : dateien())
        bekannte.insert(datei.name);
    std::set<std::string> vorhandene;
    for (const auto& eintrag : std::filesystem::directory_iterator(DATENVERZEICHNIS))
        vorhandene.insert(eintrag.path().filename().string());
    EXPECT_EQ(vorhandene, bekannte);
}

TEST(Beispieldaten, PassTheOlderPluginWhereItsRulesAreLooser) {
    const std::unique_ptr<Service> gemacht(orvo_plugin_get_check_service()); // that plugin is compiled in
    auto* const service = dynamic_cast<ValidierungsService*>(gemacht.get());
    ASSERT_TRUE(service);
    const Veranlagungszeitraum vz(2009, "YYYY");
    EXPECT_THAT(befunde(pruefe(*service, "lstb-2009-zuschlag.txt", UFA_LSTB, vz)), testing::IsEmpty());
    EXPECT_THAT(befunde(pruefe(*service, "lstb-2009-gut.txt", UFA_LSTB, vz)), testing::IsEmpty());
    EXPECT_THAT(befunde(pruefe(*service, "lstb-2010-sammlung.txt", UFA_LSTB, {2010, "YYYY"})),
                ElementsAre(Befund{123, "Lohnsteuer"}, Befund{151, "IdNr"}));
    EXPECT_THAT(befunde(pruefe(*service, "erklaerung-2015.txt", "50", {2015, "YYYY"})),
                ElementsAre(Befund{150, ""}));
}

TEST(Beispieldaten, AreTakenFromTheirCollectionOneByOne) {
    NeueRegeln service;
    const PruefErgebnis ergebnis = pruefe(service, "lstb-2010-sammlung.txt", UFA_LSTB, {2010, "YYYY"});
    ASSERT_EQ(ergebnis.getMeldungen().size(), 2u);
    constexpr Latin1Text kHoeher{u8"Datensatz 2: Der Betrag ist höher als Bruttoarbeitslohn."};
    constexpr Latin1Text kDoppelt{
        u8"Datensatz 3: Für diese Identifikationsnummer gibt es schon einen Datensatz mit demselben Beginn."};
    EXPECT_EQ(ergebnis.getMeldungen()[0].text, kHoeher.sicht());
    EXPECT_EQ(ergebnis.getMeldungen()[1].text, kDoppelt.sicht());
}

TEST(Beispieldaten, AreLatin1) {
    const auto gelesen = steuer::liesDatensatz(lies("lstb-2009-gut.txt").at(0));
    ASSERT_TRUE(std::holds_alternative<steuer::Datensatz>(gelesen));
    EXPECT_EQ(std::get<steuer::Datensatz>(gelesen).wert("Name"), "J\xF6rg M\xFC\xDFiggang");
}

TEST(Beispieldaten, WouldBeGoodButForTheFaultTheyShow) {
    NeueRegeln service;
    const auto nachbesserung = [&](const std::string& datei, const std::string& falsch,
                                   const std::string& richtig) {
        std::string text = lies(datei).at(0);
        const std::size_t stelle = text.find(falsch);
        EXPECT_NE(stelle, std::string::npos) << datei;
        text.replace(stelle, falsch.size(), richtig);
        PruefErgebnis ergebnis;
        return service.pruefe(TextListe({text}), UFA_LSTB, {2009, "YYYY"}, ergebnis);
    };
    EXPECT_EQ(nachbesserung("lstb-2009-pruefziffer.txt", "47036892815", "47036892816"),
              0); // as the comment says
    EXPECT_EQ(nachbesserung("lstb-2009-drei-in-folge.txt", "11123456780", "86095742719"), 0);
    EXPECT_EQ(nachbesserung("lstb-2009-zuschlag.txt", "356,76", "327,03"), 0);
    EXPECT_EQ(nachbesserung("falsche-kodierung.txt",
                            "\xC3\x84rger \xC3\x9C"
                            "berma\xC3\x9F",
                            "\xC4rger \xDC"
                            "berma\xDF"),
              0);
}

} // namespace
