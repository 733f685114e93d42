// The cost of a look-up: no memory, for any request and result.

#include "Zaehler.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using orvo::orvoutil::Logger;
using orvo::orvoutil::LogLevel;

Veranlagungszeitraum jahr(int zahl) { return {zahl, "YYYY"}; }

class ZaehlendeSenke : public orvo::orvoutil::LogSink {
public:
    void write(const orvo::orvoutil::LogEntry&) override { ++eintraege; }
    int eintraege = 0;
};

class LookupAufwand : public testing::Test {
protected:
    LookupAufwand() {
        orvo::orvoutil::Einstellungen().setze("basis.home_dir", home_.pfad());
        registry_ = std::make_unique<OrvoErweiterungsManager>();
        OrvoUaVzServiceErweiterung::VzMap paare;
        for (int i = 0; i < 1000; ++i)
            paare[1000 + i] = {jahr(2008), jahr(2009)};
        for (int i = 0; i < 50; ++i)
            paare[("AntraegeRechteLoeschen Nummer " + std::to_string(i)).c_str()] = {jahr(2009)};
        paare["-17780975"] = {jahr(2009)};
        paare["immer und ueberall, was auch kommen mag"] = {Veranlagungszeitraum()};
        plugin_.addErweiterung(OrvoValidierungsServiceErweiterung(paare));
        plugin_.addErweiterung(OrvoFeldInfoDatenServiceErweiterung(paare));
        plugin_.addErweiterung(OrvoFTDatenServiceErweiterung(paare));
        plugin_.addErweiterung(OrvoXPathMappingServiceErweiterung(paare));
        plugin_.addErweiterung(OrvoDatensatzReaderErweiterung(paare));
        plugin_.addErweiterung(OrvoFADatenServiceErweiterung());
        registry_->pluginErzeugt(&plugin_);
    }
    ~LookupAufwand() override {
        Logger::setSink(nullptr);
        registry_->pluginZerstoert(&plugin_);
        registry_.reset();
        orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
    }

    /// Looks everything up. Returns: how much was found.
    int frageAlles() const {
        int gefundene = 0;
        for (const Unterfallart& ua : uas_)
            for (const Veranlagungszeitraum& vz : vzs_) {
                gefundene += registry_->findeValidierungsServiceErweiterung(ua, vz) != nullptr;
                gefundene += registry_->findeFeldInfoDatenServiceErweiterung(ua, vz) != nullptr;
                gefundene += registry_->findeFehlertextDatenServiceErweiterung(ua, vz) != nullptr;
                gefundene += registry_->findeXPathMappingServiceErweiterung(ua, vz) != nullptr;
                gefundene += registry_->findeDatensatzReaderServiceErweiterung(ua, vz) != nullptr;
                gefundene +=
                    registry_->istUnterfallartUndJahrUnterstuetzt(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, vz);
            }
        return gefundene + (registry_->findeFADatenServiceErweiterung() != nullptr);
    }

    // five kinds and the support test: 2 numbers in 3 of the periods, 2 names in 2, a name in all, one with a minus in
    // 2
    static constexpr int kGefundene = 6 * (2 * 3 + 2 * 2 + 4 + 2) + 1;

    const Verzeichnis home_;
    std::unique_ptr<OrvoErweiterungsManager> registry_;
    OrvoPluginV1 plugin_{nullptr};
    const std::vector<Unterfallart> uas_{1000,
                                         "01999",
                                         7,
                                         "AntraegeRechteLoeschen Nummer 0",
                                         "ANTRAEGERECHTELOESCHEN NUMMER 49",
                                         "AntraegeRechteLoeschen Nummer 50",
                                         "",
                                         "immer und ueberall, WAS AUCH kommen mag",
                                         "-17780975"};
    const std::vector<Veranlagungszeitraum> vzs_{jahr(2008), jahr(2009), jahr(2010),
                                                 Veranlagungszeitraum::parse("2009-05-31", "YYYY-MM-TT")};
};

TEST_F(LookupAufwand, NoLookUpTakesMemory) {
    int gefundene = 0;
    const Zaehler zaehler = Zaehler::waehrend([&] { gefundene = frageAlles(); });
    EXPECT_EQ(gefundene, kGefundene);
    EXPECT_EQ(zaehler.zuteilungen, 0);
}

TEST_F(LookupAufwand, TheRegistryIsFoundWithoutALock) {
    if (!Zaehler::zaehltLader())
        GTEST_SKIP() << "locks are not counted here";
    const auto suche = [] {
        OrvoErweiterungsManager::getInstanz();
        OrvoPluginManager::getInstanz(nullptr);
    };
    EXPECT_GT(Zaehler::waehrend(suche).sperren, 0) << "when they are made";
    EXPECT_EQ(Zaehler::waehrend(suche).sperren, 0);
}

TEST_F(LookupAufwand, NoLookUpTakesMemoryWithASinkThatWantsNothingOfIt) {
    const auto senke = std::make_shared<ZaehlendeSenke>();
    Logger::setSink(senke);
    for (const LogLevel stufe : {LogLevel::Error, LogLevel::Info}) {
        Logger::setLevel(stufe);
        const Zaehler zaehler = Zaehler::waehrend([&] { frageAlles(); });
        EXPECT_EQ(zaehler.zuteilungen, 0);
    }
    EXPECT_EQ(senke->eintraege, 0);
}

} // namespace
