#include <orvoplugin/beschreibung/Beschreibung.h>

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include "TestPlugins.h"
#include "orvoplugin/plugin/erweiterung/Zeitraumart.h"
#include "support/Beschriftung.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <type_traits>
#include <typeinfo>
#include <vector>

using orvo::orvoutil::SharedLib;
using testing::HasSubstr;
using testing::ThrowsMessage;

namespace {

using VzMap = OrvoUaVzServiceErweiterung::VzMap;
using Zeitraeume = std::list<Veranlagungszeitraum>;

Veranlagungszeitraum jahr(int wert) { return {wert, "YYYY"}; }

// Every getter of every class, as text: what a client can see of a plugin.

void zeige(std::ostream& out, const std::string& text) { out << '"' << text << "\" "; }
void zeige(std::ostream& out, const Unterfallart& ua) { out << ua.getNummer() << '/' << ua.getName() << ' '; }
void zeige(std::ostream& out, const Veranlagungszeitraum& vz) {
    out << vz.getTyp() << ' ' << vz.getJahr() << ' ' << vz.getZeitraum() << ' ' << vz.getTag() << ' '
        << vz.getQuartal() << ' ' << vz.getText() << "; ";
}
void zeige(std::ostream& out, const OrvoPlugin::LabelEintrag& label) {
    out << label.zahl1 << ' ' << label.text1 << ' ' << label.text2 << ' ' << label.zahl2 << ' ' << label.text3
        << ' ' << label.text4 << ' ';
    zeige(out, label.zeitraum);
}
template <class Liste>
void zeigeTypen(std::ostream& out, const Liste& liste) {
    out << '[';
    for (const auto& element : liste)
        out << element.getTyp() << ' ';
    out << "] ";
}

template <class Erweiterung>
void zeigeBedingungen(std::ostream& out, const OrvoErweiterung& erweiterung) {
    const auto* const eine = dynamic_cast<const Erweiterung*>(&erweiterung);
    if (!eine)
        return;
    zeigeTypen(out, eine->getVorbedingungen());
    zeigeTypen(out, eine->getNachbedingungen());
}

void zeige(std::ostream& out, const OrvoErweiterung& erweiterung) {
    out << '\n'
        << typeid(erweiterung).name() << ' ' << erweiterung.getTyp() << ' ' << erweiterung.getAusgegeben()
        << ' ';
    for (int flag = 0; flag < 5; ++flag)
        out << erweiterung.istFlagGesetzt(static_cast<orvo_erweiterung_flag_t>(flag));
    zeigeTypen(out, erweiterung.getAbhaengigkeiten());
    zeige(out, dynamic_cast<const OrvoServiceErweiterung&>(erweiterung).getServiceFactoryName());
    zeigeBedingungen<OrvoValidierungsServiceErweiterung>(out, erweiterung);
    zeigeBedingungen<OrvoDatensatzReaderErweiterung>(out, erweiterung);
    const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(&erweiterung);
    if (!uaVz)
        return;
    for (const Unterfallart& ua : uaVz->getUnterfallArten())
        zeige(out, ua);
    for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap()) {
        out << "\n    ";
        zeige(out, ua);
        for (const Veranlagungszeitraum& vz : vzs)
            zeige(out, vz);
    }
}

std::string ansicht(const OrvoPlugin& plugin) {
    std::ostringstream out;
    out << plugin.toString() << plugin.getTyp() << ' ' << plugin.getStatus() << ' ' << plugin.isResident()
        << ' ' << plugin.getUseCount() << ' ';
    for (const std::string& text : {plugin.getProduktVersion(), plugin.getFileVersion(),
                                    plugin.getOnLoadFuncName(), plugin.getOnUnloadFuncName()})
        zeige(out, text);
    for (const OrvoPlugin::LabelEintrag& label : plugin.getLabels())
        zeige(out, label);
    for (OrvoErweiterung* const erweiterung :
         dynamic_cast<const OrvoPluginV1&>(plugin).listeErweiterungen()) {
        EXPECT_EQ(erweiterung->getPlugin(), &plugin);
        zeige(out, *erweiterung);
    }
    return out.str();
}

// A field that is added to a class makes its size differ from the fields known here: describe it, then add it here.

struct FelderDerErweiterung {
    virtual ~FelderDerErweiterung() = default;
    tag_erweiterung_typ typ;
    OrvoPlugin* plugin;
    std::bitset<5> flags;
    std::list<Abhaengigkeit> abhaengigkeiten;
    std::int32_t ausgegeben;
};
static_assert(sizeof(OrvoErweiterung) == sizeof(FelderDerErweiterung));

struct FelderDerServiceErweiterung : OrvoErweiterung {
    std::map<Service*, int> instanzen; // not described, as are all but the factory's name
    std::string serviceFactoryName;
    orvo::orvoutil::Log log;
    std::vector<Service*> geloeschte;
    ServiceGriffBasis* griffe;
    std::map<Service*, int>::node_type freierPlatz;
    Service* (*factory)();
    std::uintptr_t oeffnung;
};
static_assert(sizeof(OrvoServiceErweiterung) == sizeof(FelderDerServiceErweiterung));

struct FelderDerUaVzErweiterung : OrvoServiceErweiterung {
    std::set<Unterfallart> unterfallArten;
    VzMap vzMap;
    std::int32_t reserviert; // not described
};
static_assert(sizeof(OrvoUaVzServiceErweiterung) == sizeof(FelderDerUaVzErweiterung));

struct FelderMitBedingungen : OrvoUaVzServiceErweiterung {
    std::list<Bedingung> vorbedingungen, nachbedingungen;
};
static_assert(sizeof(OrvoValidierungsServiceErweiterung) == sizeof(FelderMitBedingungen));
static_assert(sizeof(OrvoDatensatzReaderErweiterung) == sizeof(FelderMitBedingungen));
static_assert(sizeof(OrvoFeldInfoDatenServiceErweiterung) == sizeof(OrvoUaVzServiceErweiterung));
static_assert(sizeof(OrvoFTDatenServiceErweiterung) == sizeof(OrvoUaVzServiceErweiterung));
static_assert(sizeof(OrvoXPathMappingServiceErweiterung) == sizeof(OrvoUaVzServiceErweiterung));
static_assert(sizeof(OrvoFADatenServiceErweiterung) == sizeof(OrvoServiceErweiterung));

struct FelderDesPlugins {
    virtual ~FelderDesPlugins() = default;
    std::int32_t typ;
    SharedLib* sharedLib;
    orvo_plugin_status_t status;
    std::string produktVersion, fileVersion;
    std::list<OrvoPlugin::LabelEintrag> labels;
    bool resident;
    std::int32_t useCount;
    std::string onUnloadFuncName, onLoadFuncName,
        reserviert; // the last one and those below are not described
    orvo::orvoutil::Log log;
    void* bibliothek;
    bool beschrieben;
    ServiceGriffBasis* griffe;
};
static_assert(sizeof(OrvoPlugin) == sizeof(FelderDesPlugins));

struct FelderDesPluginsV1 : OrvoPlugin {
    std::map<tag_erweiterung_typ, std::int32_t> erweiterungsZaehler;
    std::vector<OrvoErweiterung*> erweiterungen;
    orvo::orvoutil::Log log; // not described
    std::vector<std::unique_ptr<OrvoPluginV1>> fruehere;
};
static_assert(sizeof(OrvoPluginV1) == sizeof(FelderDesPluginsV1));

template <std::int32_t Nummer>
struct EigeneBedingung : Bedingung {
    EigeneBedingung() : Bedingung(Nummer) {}
};
struct EigeneAbhaengigkeit : Abhaengigkeit {
    EigeneAbhaengigkeit() : Abhaengigkeit(-78) {}
};

/// Plugins described in this process, and their descriptions in a file with room.
class BeschreibungTest : public testing::Test {
protected:
    /// The plugin that a loader makes from the description of that plugin.
    std::unique_ptr<OrvoPlugin> gelesenes(const OrvoPlugin& plugin) {
        trageEin(pfad_, schreibeBeschreibung(plugin));
        OrvoPluginLoader loader(true);
        std::unique_ptr<OrvoPlugin> gelesen(loader.loadPlugin(new SharedLib(pfad_)));
        EXPECT_TRUE(gelesen->istBeschrieben());
        EXPECT_EQ(liesBeschreibung(pfad_).bytes, schreibeBeschreibung(plugin));
        return gelesen;
    }
    /// Whether the plugin comes back as it is.
    void erwarteGleiches() { EXPECT_EQ(ansicht(*gelesenes(plugin_)), ansicht(plugin_)); }

    template <class Erweiterung>
    void fuelle(Erweiterung& erweiterung) {
        erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, erweiterung.getTyp() % 2 == 0);
        erweiterung.setzeFlag(FLAG_RESERVIERT_1, true);
        erweiterung.setzeFlag(FLAG_RESERVIERT_4, true);
        erweiterung.setServiceFactoryName("factory von " + std::to_string(erweiterung.getTyp()));
        erweiterung.addAbhaengigkeit(UfaVzAbhaengigkeit("LSTB", jahr(2007)));
        erweiterung.addAbhaengigkeit(EigeneAbhaengigkeit());
        if constexpr (requires { erweiterung.getVorbedingungen(); }) {
            erweiterung.addVorbedingung(EigeneBedingung<77>());
            erweiterung.addNachbedingung(EigeneBedingung<-1>());
            erweiterung.setNachbedingungen({EigeneBedingung<INT32_MAX>(), EigeneBedingung<INT32_MIN>()});
        }
        plugin_.addErweiterung(erweiterung);
    }
    template <class... Erweiterungen>
    void fuelleAlle(const VzMap& map) {
        (fuelle(*std::make_unique<Erweiterungen>(map)), ...);
    }

    const Verzeichnis verzeichnis_;
    const std::string pfad_ = verzeichnis_.kopiere(test_plugins::OffersEverything, "liba.dylib");
    OrvoPluginV1 plugin_{new SharedLib(pfad_)};
};

TEST_F(BeschreibungTest, APluginThatSaysNothingComesBack) { erwarteGleiches(); }

TEST_F(BeschreibungTest, EveryFieldOfAPluginComesBack) {
    plugin_.setProduktVersion("1.2.3");
    plugin_.setFileVersion(std::string("4\0.5\xFC", 5));
    plugin_.setOnLoadFuncName("beimOeffnen");
    plugin_.setOnUnloadFuncName("beim Schliessen mit einem langen Namen");
    plugin_.setStatus(static_cast<orvo_plugin_status_t>(-7));
    plugin_.setResident(true);
    for (int i = 0; i < 3; ++i) {
        OrvoPlugin::LabelEintrag label;
        label.zahl1 = 10 + i;
        label.text1 = "eins";
        label.zeitraum = Veranlagungszeitraum::parse("2010-05-31", "YYYY-MM-TT");
        label.text2 = "zwei";
        label.zahl2 = -i;
        label.text3 = "drei";
        label.text4 = std::string(300, 'x');
        plugin_.addLabelInformation(label);
    }
    fuelleAlle<OrvoXPathMappingServiceErweiterung, OrvoDatensatzReaderErweiterung,
               OrvoFTDatenServiceErweiterung, OrvoFeldInfoDatenServiceErweiterung,
               OrvoValidierungsServiceErweiterung>(
        VzMap{{10, {jahr(2008), jahr(2009)}},
              {"LSTB", {}},
              {"Ein Name, der l\xE4nger ist als das Objekt", {Veranlagungszeitraum()}}});
    OrvoFADatenServiceErweiterung amt;
    fuelle(amt);
    erwarteGleiches();
}

TEST_F(BeschreibungTest, TextsOfAnyLengthComeBack) {
    for (const std::size_t laenge : {1u, 126u, 127u, 128u, 129u, 255u, 256u, 1000u}) {
        plugin_.setFileVersion(std::string(laenge, 'x'));
        erwarteGleiches();
    }
}

TEST_F(BeschreibungTest, EveryFormOfASubCaseTypeComesBack) {
    VzMap map;
    for (const int nummer : {0, 7, -5, -99, INT32_MAX, INT32_MIN})
        map[nummer];
    for (const char* const name : {"", "LSTB", "010", "-5x", "2147483648", "notset", "\xC4 \xFF"})
        map[name];
    fuelleAlle<OrvoFTDatenServiceErweiterung>(map);
    erwarteGleiches();
}

TEST_F(BeschreibungTest, EveryFormOfAPeriodComesBack) {
    Zeitraeume vzs{Veranlagungszeitraum(), Veranlagungszeitraum(0, "Y"), Veranlagungszeitraum(99, "YY"),
                   Veranlagungszeitraum(201913, "YYYYMM"), Veranlagungszeitraum(123456789, "YYYYYYYYY")};
    for (const char* const text : {"2009-05", "2009-19", "2009-42", "2009-54", "2009-00"})
        vzs.push_back(Veranlagungszeitraum::parse(text, "YYYY-MM"));
    vzs.push_back(Veranlagungszeitraum::parse("31/12/1998", "TT/MM/YYYY"));
    for (const auto art :
         {Veranlagungszeitraum::UNGELESEN, Veranlagungszeitraum::IMMER, Veranlagungszeitraum::UNABHAENGIG})
        vzs.push_back(mitArt(jahr(2009), art));
    fuelleAlle<OrvoFTDatenServiceErweiterung>({{10, vzs}});
    erwarteGleiches();
}

TEST_F(BeschreibungTest, EachTypeRecordOfALibraryComesBack) {
    const std::string pfad = verzeichnis_.kopiere(test_plugins::DeclaresTypeOneTwice, "zwei.dylib");
    beschrifte(pfad);
    OrvoPluginLoader fragend, lesend(true);
    const std::unique_ptr<OrvoPlugin> gefragt(fragend.loadPlugin(new SharedLib(pfad)));
    const std::unique_ptr<OrvoPlugin> gelesen(lesend.loadPlugin(new SharedLib(pfad)));
    EXPECT_TRUE(gelesen->istBeschrieben());
    EXPECT_EQ(ansicht(*gelesen), ansicht(*gefragt));
    EXPECT_EQ(schreibeBeschreibung(*gelesen), schreibeBeschreibung(*gefragt)) << "which tells of both";
}

/// The bytes of the example on the page of the format.
std::string beispiel() {
    std::ifstream seite(FORMATSEITE);
    std::string zeile, bytes;
    while (std::getline(seite, zeile) && zeile != "## An example")
        ;
    const std::regex ziffern("[0-9a-f]{2}");
    while (std::getline(seite, zeile))
        if (zeile.starts_with("| `")) {
            const std::string zelle = zeile.substr(0, zeile.find('|', 1));
            for (std::sregex_iterator byte(zelle.begin(), zelle.end(), ziffern);
                 byte != std::sregex_iterator(); ++byte)
                bytes += static_cast<char>(std::stoi(byte->str(), nullptr, 16));
        }
    return bytes;
}

TEST_F(BeschreibungTest, TheBytesAreThoseOfTheExampleInTheDocuments) {
    plugin_.setProduktVersion("1.0");
    OrvoFTDatenServiceErweiterung erweiterung(Unterfallart(10), jahr(2009));
    erweiterung.setServiceFactoryName("f");
    plugin_.addErweiterung(erweiterung);
    const std::string bytes = schreibeBeschreibung(plugin_), inhalt = beispiel();
    EXPECT_EQ(inhalt.size(), 39u);
    EXPECT_THAT(bytes, testing::EndsWith(inhalt));
    EXPECT_EQ(bytes.substr(0, 3), std::string("\x01\x12", 2) + static_cast<char>(inhalt.size()))
        << "format, release, length";
}

/// A host's own class, known to no other process.
class ErweiterungDesHosts : public OrvoFADatenServiceErweiterung {
public:
    OrvoErweiterung* clone() const override { return new ErweiterungDesHosts(*this); }
};

auto scheitertMit(const std::string& grund) {
    return ThrowsMessage<std::runtime_error>("Das Plugin l\xE4sst sich nicht beschreiben: " + grund);
}

TEST_F(BeschreibungTest, AClassThatIsNotTheLibrarysIsNamed) {
    plugin_.addErweiterung(ErweiterungDesHosts());
    EXPECT_THAT([&] { schreibeBeschreibung(plugin_); },
                scheitertMit(std::string("Klasse der Erweiterung: ") + typeid(ErweiterungDesHosts).name()));
}

TEST_F(BeschreibungTest, APluginInUseCannotBeDescribed) {
    OrvoPluginLoader loader;
    const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(new SharedLib(pfad_)));
    plugin->notifyUse();
    EXPECT_THAT([&] { schreibeBeschreibung(*plugin); }, scheitertMit("Es ist in Gebrauch."));
    plugin->release();
    EXPECT_NO_THROW(schreibeBeschreibung(*plugin));
    plugin->release(); // one too many
    EXPECT_THAT([&] { schreibeBeschreibung(*plugin); }, scheitertMit("Es ist in Gebrauch."));
    plugin->notifyUse();
    const auto& erweiterungen = dynamic_cast<const OrvoPluginV1&>(*plugin).listeErweiterungen();
    auto& amt = dynamic_cast<OrvoServiceErweiterung&>(*erweiterungen.at(3));
    amt.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    Service* const service = amt.holeService();
    ASSERT_NE(service, nullptr);
    plugin_.addErweiterung(amt); // a copy takes over the number of services
    EXPECT_THAT([&] { schreibeBeschreibung(plugin_); }, scheitertMit("Ein Service ist ausgegeben."));
    amt.release(service);
}

TEST_F(BeschreibungTest, WhatNoReaderTakesCannotBeDescribed) {
    fuelleAlle<OrvoFTDatenServiceErweiterung>({{10, {mitArt(jahr(2009), Veranlagungszeitraum::MONAT)}}});
    EXPECT_THAT([&] { schreibeBeschreibung(plugin_); }, scheitertMit("widersinnig"));
    OrvoPluginV1 langes(nullptr);
    OrvoPlugin::LabelEintrag label;
    label.text1 = label.text2 = label.text3 = label.text4 = std::string(1000, 'x');
    for (int i = 0; i < 8; ++i)
        langes.addLabelInformation(label);
    EXPECT_THAT([&] { schreibeBeschreibung(langes); }, scheitertMit("zu lang"));
    const auto inhaltslaenge = [](const std::string& bytes) { // behind format and release, in three bytes
        return (bytes[2] & 0x7F) | (bytes[3] & 0x7F) << 7 | bytes[4] << 14;
    };
    OrvoPluginV1 laengstes(nullptr);
    for (int i = 0; i < 7; ++i)
        laengstes.addLabelInformation(label);
    for (auto* const text : {&label.text1, &label.text4})
        text->resize(700);
    laengstes.addLabelInformation(label);
    laengstes.setFileVersion(std::string(200, 'x'));
    const int fehlende = 32000 - inhaltslaenge(schreibeBeschreibung(laengstes));
    laengstes.setFileVersion(std::string(static_cast<std::size_t>(200 + fehlende), 'x'));
    EXPECT_EQ(inhaltslaenge(schreibeBeschreibung(laengstes)), 32000);
    laengstes.setFileVersion(std::string(static_cast<std::size_t>(201 + fehlende), 'x'));
    EXPECT_THAT([&] { schreibeBeschreibung(laengstes); }, scheitertMit("zu lang"));
    OrvoPluginV1 wortreiches(nullptr);
    wortreiches.setFileVersion(std::string(1001, 'x'));
    EXPECT_THAT([&] { schreibeBeschreibung(wortreiches); },
                scheitertMit("ein Text von mehr als 1.000 Bytes"));
    OrvoPluginV1 kreisendes(nullptr); // 9 < 10 < "1a" < 9
    OrvoFTDatenServiceErweiterung erweiterung{VzMap()};
    for (const Unterfallart& ua : {Unterfallart(9), Unterfallart("1a"), Unterfallart(10)})
        erweiterung.addUnterstuetzteUnterfallArt(ua, {});
    kreisendes.addErweiterung(erweiterung);
    EXPECT_THAT([&] { schreibeBeschreibung(kreisendes); }, scheitertMit("Reihenfolge der Unterfallarten"));
}

/// A plugin of another interface.
class AnderesPlugin : public OrvoPlugin {
public:
    AnderesPlugin() : OrvoPlugin(orvo_plugin_version_t{2}, nullptr) {}
    void notifyUse() override {}
    void release() override {}
    void initialize() override {}
};

TEST_F(BeschreibungTest, APluginOfAnotherInterfaceCannotBeDescribed) {
    EXPECT_THAT([] { schreibeBeschreibung(AnderesPlugin()); },
                scheitertMit("Es hat nicht die Schnittstelle 1."));
}

} // namespace
