#include <orvoutil/Spur.h>

#include "support/Mitschnitt.h"

#include <gmock/gmock.h>

#include <type_traits>

using namespace orvo::orvoutil;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Spur, WritesEntryAndExit) {
    const Mitschnitt mitschnitt;
    const Spur spur(Logger::getInstance("a"), "Klasse::op");
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("> Klasse::op"));
    spur.ende();
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("> Klasse::op", "< Klasse::op"));
}

TEST(Spur, WritesNoExitOfItsOwn) {
    static_assert(std::is_trivially_destructible_v<Spur>);
    const Mitschnitt mitschnitt;
    { const Spur spur(Logger::getInstance("a"), "op"); }
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("> op"));
}

TEST(Spur, HasVariantsForConstructorsAndDestructors) {
    const Mitschnitt mitschnitt;
    const KonstruktorSpur konstruktor(Logger::getInstance("a"), "K()");
    konstruktor.ende();
    const DestruktorSpur destruktor(Logger::getInstance("a"), "K()");
    destruktor.ende();
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("+> K()", "+< K()", "~> K()", "~< K()"));
}

TEST(Spur, IsSilentWithoutALogger) {
    const Mitschnitt mitschnitt;
    const Spur spur(nullptr, "op");
    spur.ende();
    EXPECT_THAT(mitschnitt.zeilen(), IsEmpty());
}

TEST(Spur, IsSilentAboveDebug) {
    const Mitschnitt mitschnitt(LogLevel::Info);
    const Spur spur(Logger::getInstance("a"), "op");
    spur.ende();
    EXPECT_THAT(mitschnitt.zeilen(), IsEmpty());
}

TEST(Spur, TestsTheLevelAnewAtTheExit) {
    const Mitschnitt mitschnitt(LogLevel::Info);
    const Spur erste(Logger::getInstance("a"), "erste");
    Logger::setLevel(LogLevel::Debug);
    erste.ende();
    const Spur zweite(Logger::getInstance("a"), "zweite");
    Logger::setLevel(LogLevel::Warn);
    zweite.ende();
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("< erste", "> zweite"));
}

TEST(Spur, TakesANullNameAsEmpty) {
    const Mitschnitt mitschnitt;
    const Spur spur(Logger::getInstance("a"), nullptr);
    spur.ende();
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("> ", "< "));
}

TEST(Spur, SurvivesTheSink) {
    Logger* logger;
    {
        const Mitschnitt mitschnitt;
        logger = Logger::getInstance("a");
    }
    const Spur spur(logger, "op");
    spur.ende();
}
