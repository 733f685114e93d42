// The cost of an entry of the log.

#include "Zaehler.h"

#include <orvoutil/Log.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

namespace {

using namespace orvo::orvoutil;

struct StummeSenke : LogSink {
    void write(const LogEntry&) override { ++geschriebene; }
    static inline int geschriebene = 0;
};

class LogAufwand : public testing::Test {
protected:
    LogAufwand() {
        Logger::setSink(std::make_shared<StummeSenke>());
        Logger::setLevel(LogLevel::Debug);
    }
    ~LogAufwand() override {
        Logger::setSink(nullptr);
        Logger::setLevel(LogLevel::Info);
    }
};

TEST_F(LogAufwand, AnEntryTakesNoMemoryOnceItsTextsHaveTheirRoom) {
    const Log log("orvo.plugin.erweiterung.OrvoServiceErweiterung");
    const auto schreibe = [&] {
        log.spure(&Logger::enter, "OrvoServiceErweiterung::holeService");
        log.ereignis("OrvoPluginManager, lang genug", "Ein Text, der nicht in das Objekt passt.");
        log.debug("Hole OrvoErweiterungsManager");
    };
    schreibe();
    EXPECT_EQ(Zaehler::waehrend(schreibe).zuteilungen, 0);
}

TEST_F(LogAufwand, AnEntryIsWrittenWhereItsThreadHasNoMemoryForOne) {
    const Log log("a");
    StummeSenke::geschriebene = 0;
    std::thread([&] { Zaehler::mitSpeicherFuer(0, [&] { log.info("kurz"); }); }).join();
    EXPECT_TRUE(Zaehler::fehlteSpeicher());
    EXPECT_EQ(StummeSenke::geschriebene, 1);
}

TEST_F(LogAufwand, ALoggerIsMadeByTheNextCallWhereThereWasNoMemory) {
    bool hatSpeicher = false;
    for (int speicher = 0; !hatSpeicher; ++speicher) {
        const std::string kategorie = "orvo.probe.kategorie_" + std::to_string(speicher);
        hatSpeicher =
            Zaehler::mitSpeicherFuer(speicher, [&] { EXPECT_NE(Logger::getInstance(kategorie), nullptr); });
        EXPECT_NE(Logger::getInstance(kategorie), nullptr) << speicher;
    }
}

TEST_F(LogAufwand, AnEntryThatIsNotWrittenTakesNothing) {
    Logger::setLevel(LogLevel::Warn);
    const Log log("a");
    const Zaehler zaehler = Zaehler::waehrend([&] {
        log.info([]() -> std::string { throw "built all the same"; });
        log.spure(&Logger::enter, "Ein Text, der nicht in das Objekt passt.");
    });
    EXPECT_EQ(zaehler.zuteilungen, 0);
}

} // namespace
