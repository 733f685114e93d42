#include <orvoutil/Log.h>

#include "support/Mitschnitt.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

using namespace orvo::orvoutil;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void schreibeAlles(const Log& log) {
    log.debug("debug");
    log.info("info");
    log.warn("warn");
    log.error("error");
    log.spure(&Logger::enter, "op");
    log.ereignis("tag", "text");
}

} // namespace

TEST(Log, WritesEachLevelFromItsOwnOn) {
    const Mitschnitt mitschnitt(LogLevel::Error);
    const Log log("a");
    schreibeAlles(log);
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("E error", "[tag|99|text|99]"));
    Logger::setLevel(LogLevel::Warn);
    log.warn("warn");
    EXPECT_EQ(mitschnitt.zeilen().back(), "W warn");
    Logger::setLevel(LogLevel::Info);
    log.info("info");
    EXPECT_EQ(mitschnitt.zeilen().back(), "I info");
    Logger::setLevel(LogLevel::Debug);
    log.debug("debug");
    EXPECT_EQ(mitschnitt.zeilen().back(), "D debug");
    log.spure(&Logger::enter, "op");
    EXPECT_EQ(mitschnitt.zeilen().back(), "> op");
}

TEST(Log, OfNobodyWritesNothing) {
    const Mitschnitt mitschnitt;
    schreibeAlles(Log());
    EXPECT_THAT(mitschnitt.zeilen(), IsEmpty());
}

TEST(Log, MakesNoTextThatNobodyReads) {
    int gemachte = 0;
    const auto text = [&] { return std::to_string(++gemachte); };
    Log log;
    {
        const Mitschnitt mitschnitt(LogLevel::Error);
        log = Log("a");
        log.debug(text);
        log.info(text);
        log.warn(text);
        log.spure(&Logger::enter, text);
        EXPECT_EQ(gemachte, 0);
        log.error(text);
        EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("E 1"));
    }
    log.error(text);
    log.ereignis(text, text);
    EXPECT_EQ(gemachte, 1);
}

TEST(Log, LosesATextThatThrowsWhateverItThrows) {
    const Mitschnitt mitschnitt;
    const Log log("a");
    log.info([]() -> std::string { throw std::runtime_error("so"); });
    log.info([]() -> std::string { throw 17; });
    log.ereignis("tag", []() -> std::string { throw 17; });
    log.info("danach");
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("I danach"));
}

TEST(Log, IsThereForTracesOnlyWhileTheyAreWritten) {
    const Mitschnitt mitschnitt(LogLevel::Info);
    Log::nurFuerDebug("a").info("nein");
    Logger::setLevel(LogLevel::Debug);
    Log::nurFuerDebug("a").info("ja");
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("I ja"));
}
