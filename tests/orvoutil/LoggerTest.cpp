#include <orvoutil/Logger.h>

#include "support/Mitschnitt.h"

#include <gmock/gmock.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

using namespace orvo::orvoutil;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A sink that calls a function of the test.
struct Senke : LogSink {
    explicit Senke(std::function<void(const LogEntry&)> t) : tue(std::move(t)) {}
    void write(const LogEntry& eintrag) override { tue(eintrag); }
    std::function<void(const LogEntry&)> tue;
};

struct LoggerTest : testing::Test {
    ~LoggerTest() override {
        Logger::setSink(nullptr);
        Logger::setLevel(LogLevel::Info);
    }

    static void schreibeAlles(Logger& logger) {
        logger.debug("debug");
        logger.info("info");
        logger.warn("warn");
        logger.error("error");
        logger.enter("op");
        logger.leave("op");
        logger.enterConstructor("K()");
        logger.leaveConstructor("K()");
        logger.enterDestructor("~K()");
        logger.leaveDestructor("~K()");
        logger.tagged("tag", 1, "text", 2);
        logger.tagged(std::string("tag"), 3, std::string("text"), 4);
    }
};

} // namespace

TEST_F(LoggerTest, IsNullWhileThereIsNoSink) {
    EXPECT_FALSE(Logger::hatSenke());
    EXPECT_EQ(Logger::getInstance("a"), nullptr);
    {
        const Mitschnitt mitschnitt;
        EXPECT_TRUE(Logger::hatSenke());
        EXPECT_NE(Logger::getInstance("a"), nullptr);
    }
    EXPECT_FALSE(Logger::hatSenke());
    EXPECT_EQ(Logger::getInstance("a"), nullptr);
}

TEST_F(LoggerTest, IsOneForEachCategory) {
    Logger* erster;
    {
        const Mitschnitt mitschnitt;
        erster = Logger::getInstance("eins");
        EXPECT_EQ(Logger::getInstance("eins"), erster);
        EXPECT_NE(Logger::getInstance("Eins"), erster);
        EXPECT_NE(Logger::getInstance(""), nullptr);
    }
    const Mitschnitt mitschnitt;
    EXPECT_EQ(Logger::getInstance("eins"), erster);
    erster->info("x");
    EXPECT_EQ(mitschnitt.eintraege().at(0).category, "eins");
}

TEST_F(LoggerTest, OutlivesItsSinkAndIsSilentThen) {
    Logger* logger;
    {
        const Mitschnitt mitschnitt;
        logger = Logger::getInstance("a");
    }
    EXPECT_FALSE(logger->isErrorEnabled());
    schreibeAlles(*logger);
}

TEST_F(LoggerTest, StartsAtInfo) {
    Logger::setSink(std::make_shared<Senke>([](const LogEntry&) {}));
    const Logger* const logger = Logger::getInstance("a");
    EXPECT_FALSE(logger->isDebugEnabled());
    EXPECT_TRUE(logger->isInfoEnabled());
}

TEST_F(LoggerTest, KeepsTheLevelThatWasSetWithoutASink) {
    Logger::setLevel(LogLevel::Warn);
    Logger::setSink(std::make_shared<Senke>([](const LogEntry&) {}));
    const Logger* const logger = Logger::getInstance("a");
    EXPECT_FALSE(logger->isInfoEnabled());
    EXPECT_TRUE(logger->isWarnEnabled());
}

TEST_F(LoggerTest, KeepsTheLevelWhenItsSinkGoes) {
    const auto senke = std::make_shared<Senke>([](const LogEntry&) {});
    Logger::setSink(senke);
    Logger::setLevel(LogLevel::Debug);
    Logger::setSink(nullptr);
    Logger::setSink(senke);
    EXPECT_TRUE(Logger::getInstance("a")->isDebugEnabled());
}

TEST_F(LoggerTest, NamesItsCategoryWhateverTheThreadWroteBefore) {
    const Mitschnitt mitschnitt;
    for (const char* const kategorie : {"eins", "zwei", "drei", "elf"})
        Logger::getInstance(kategorie)->info("x");
    const std::string lang = "orvo.plugin";
    Logger::getInstance(std::string_view(lang).substr(0, 7))->info("x"); // not ended by a zero byte
    std::vector<std::string> kategorien;
    for (const LogEntry& e : mitschnitt.eintraege())
        kategorien.push_back(e.category);
    EXPECT_THAT(kategorien, ElementsAre("eins", "zwei", "drei", "elf", "orvo.pl"));
}

TEST_F(LoggerTest, WritesEverythingAtDebug) {
    const Mitschnitt mitschnitt(LogLevel::Debug);
    schreibeAlles(*Logger::getInstance("a"));
    EXPECT_THAT(mitschnitt.zeilen(),
                ElementsAre("D debug", "I info", "W warn", "E error", "> op", "< op", "+> K()", "+< K()",
                            "~> ~K()", "~< ~K()", "[tag|1|text|2]", "[tag|3|text|4]"));
}

TEST_F(LoggerTest, WritesNoTracesAboveDebug) {
    const Mitschnitt mitschnitt(LogLevel::Info);
    schreibeAlles(*Logger::getInstance("a"));
    EXPECT_THAT(mitschnitt.zeilen(),
                ElementsAre("I info", "W warn", "E error", "[tag|1|text|2]", "[tag|3|text|4]"));
}

TEST_F(LoggerTest, WritesEventsWhateverTheLevel) {
    for (const auto stufe : {LogLevel::Error, static_cast<LogLevel>(99)}) {
        const Mitschnitt mitschnitt(stufe);
        schreibeAlles(*Logger::getInstance("a"));
        EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("E error", "[tag|1|text|2]", "[tag|3|text|4]"));
    }
}

TEST_F(LoggerTest, AnswersWhichLevelsAreEnabled) {
    const Mitschnitt mitschnitt;
    const Logger* const logger = Logger::getInstance("a");
    int an = 4;
    for (const auto stufe : {LogLevel::Debug, LogLevel::Info, LogLevel::Warn, LogLevel::Error}) {
        Logger::setLevel(stufe);
        EXPECT_EQ(logger->isDebugEnabled() + logger->isInfoEnabled() + logger->isWarnEnabled() +
                      logger->isErrorEnabled(),
                  an--);
        EXPECT_TRUE(logger->isErrorEnabled());
    }
}

TEST_F(LoggerTest, FillsEntriesWhole) {
    const Mitschnitt mitschnitt;
    Logger* const logger = Logger::getInstance("kategorie");
    logger->enter("op");
    logger->tagged("tag", 99, "text", 98);
    logger->warn(std::string_view("a\0\xFC", 3));

    const auto& eintraege = mitschnitt.eintraege();
    ASSERT_EQ(eintraege.size(), 3u);
    EXPECT_EQ(eintraege[0].level, LogLevel::Debug);
    EXPECT_EQ(eintraege[0].tag, "");
    EXPECT_EQ(eintraege[1].level, LogLevel::Info);
    EXPECT_EQ(eintraege[1].tag, "tag");
    EXPECT_EQ(eintraege[1].code2, 98);
    EXPECT_EQ(eintraege[2].text, std::string("a\0\xFC", 3));
    EXPECT_EQ(eintraege[2].code1, 0);
    for (const LogEntry& eintrag : eintraege)
        EXPECT_EQ(eintrag.category, "kategorie");
}

TEST_F(LoggerTest, TakesNullTextsOfEventsAsEmpty) {
    const Mitschnitt mitschnitt;
    Logger::getInstance("a")->tagged(nullptr, 99, nullptr, 99);
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre("[|99||99]"));
}

TEST_F(LoggerTest, SwallowsWhateverTheSinkThrows) {
    for (const std::function<void()>& wirf :
         {std::function<void()>([] { throw std::runtime_error("x"); }),
          std::function<void()>([] { throw std::bad_alloc(); }), std::function<void()>([] { throw 17; })}) {
        Logger::setSink(std::make_shared<Senke>([&](const LogEntry&) { wirf(); }));
        Logger::setLevel(LogLevel::Debug);
        schreibeAlles(*Logger::getInstance("a"));
    }
}

TEST_F(LoggerTest, LetsTheSinkLog) {
    std::vector<std::string> texte;
    Logger::setSink(std::make_shared<Senke>([&](const LogEntry& eintrag) {
        texte.push_back(eintrag.text);
        if (eintrag.text == "aussen")
            Logger::getInstance("neu")->info("innen");
    }));
    Logger::getInstance("a")->info("aussen");
    EXPECT_THAT(texte, ElementsAre("aussen", "innen"));
}

TEST_F(LoggerTest, LetsTheSinkTakeItselfOut) {
    int geschrieben = 0;
    Logger::setSink(std::make_shared<Senke>([&](const LogEntry&) {
        Logger::setSink(nullptr);
        ++geschrieben;
    }));
    Logger* const logger = Logger::getInstance("a");
    logger->info("eins");
    logger->info("zwei");
    EXPECT_EQ(geschrieben, 1);
}

TEST_F(LoggerTest, LetsTheSinkLogWhileItGoes) {
    struct Abschied : LogSink {
        ~Abschied() override {
            if (Logger* const logger = Logger::getInstance("abschied"))
                logger->info("bin fort");
        }
        void write(const LogEntry&) override {}
    };
    Logger::setSink(std::make_shared<Abschied>());
    const Mitschnitt danach;
    EXPECT_THAT(danach.zeilen(), ElementsAre("I bin fort"));
}

TEST_F(LoggerTest, GivesTheSinkBack) {
    auto senke = std::make_shared<Senke>([](const LogEntry&) {});
    Logger::setSink(senke);
    Logger::getInstance("a")->info("x");
    EXPECT_EQ(senke.use_count(), 2);
    Logger::setSink(nullptr);
    EXPECT_EQ(senke.use_count(), 1);
}

TEST_F(LoggerTest, ServesSeveralThreadsAtOnce) {
    constexpr int kRunden = 500;
    std::atomic<int> geschrieben = 0;
    const auto neueSenke = [&] { return std::make_shared<Senke>([&](const LogEntry&) { ++geschrieben; }); };
    Logger::setSink(neueSenke());
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 3; ++t)
            threads.emplace_back([t] {
                for (int i = 0; i < kRunden; ++i)
                    Logger::getInstance("kategorie" + std::to_string((t + i) % 7))->error("x");
            });
        threads.emplace_back([&] {
            for (int i = 0; i < kRunden; ++i) {
                Logger::setLevel(i % 2 ? LogLevel::Debug : LogLevel::Error);
                Logger::setSink(neueSenke());
            }
        });
    }
    EXPECT_EQ(geschrieben, 3 * kRunden);
}

TEST_F(LoggerTest, ASinkMayKeepACopyOfWhatItGot) {
    std::vector<LogEntry> behaltene;
    Logger::setSink(std::make_shared<Senke>([&](const LogEntry& e) { behaltene.push_back(e); }));
    Logger& logger = *Logger::getInstance("kategorie");
    logger.tagged("eine Marke", 1, "der erste Text, der nicht in das Objekt passt", 2);
    logger.warn("kurz");
    ASSERT_EQ(behaltene.size(), 2u);
    EXPECT_EQ(behaltene[0].text, "der erste Text, der nicht in das Objekt passt");
    EXPECT_EQ(behaltene[0].tag, "eine Marke");
    EXPECT_EQ(behaltene[1].text, "kurz");
    EXPECT_EQ(behaltene[1].tag, "");
    EXPECT_EQ(behaltene[1].code1, 0);
    EXPECT_EQ(behaltene[1].code2, 0);
    EXPECT_EQ(behaltene[1].kind, LogKind::Message);
    EXPECT_EQ(behaltene[1].level, LogLevel::Warn);
}

TEST_F(LoggerTest, AnEntryStaysAsItIsWhileItsSinkLogs) {
    std::vector<std::string> texte;
    Logger* innerer = nullptr;
    Logger::setSink(std::make_shared<Senke>([&](const LogEntry& e) {
        if (e.category == "innen") {
            texte.push_back("innen: " + e.text);
            return;
        }
        innerer->info(e.text + ", weitergegeben");
        innerer->warn("noch einer");
        texte.push_back(e.category + ": " + e.text);
    }));
    innerer = Logger::getInstance("innen");
    Logger::getInstance("aussen")->info("erster");
    Logger::getInstance("aussen")->info("zweiter");
    EXPECT_THAT(texte, ElementsAre("innen: erster, weitergegeben", "innen: noch einer", "aussen: erster",
                                   "innen: zweiter, weitergegeben", "innen: noch einer", "aussen: zweiter"));
}

#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 33)
TEST_F(LoggerTest, KeepsNothingOfThreadsThatHaveEnded) {
    Logger::setSink(std::make_shared<Senke>([](const LogEntry&) {}));
    Logger* const logger = Logger::getInstance("a");
    const std::string text(2000, 'x');
    const auto logge = [&] {
        for (int i = 0; i < 50; ++i)
            std::thread([&] { logger->info(text); }).join();
        return mallinfo2().uordblks;
    };
    const auto vorher = logge();
    EXPECT_LT(logge(), vorher + 10 * text.size());
}
#endif

TEST_F(LoggerTest, WritesWhileAThreadsObjectsAreDestroyed) {
    const Mitschnitt mitschnitt;
    Logger* const logger = Logger::getInstance("a");
    struct SchreibtAmEnde {
        ~SchreibtAmEnde() { logger->info("am Ende des Fadens, nach allen anderen"); }
        Logger* logger;
    };
    std::thread([&] {
        static thread_local SchreibtAmEnde zuletzt{logger}; // made first, so destroyed last
        zuletzt.logger->info("im Faden");
    }).join();
    EXPECT_THAT(mitschnitt.meldungen(),
                ElementsAre("I im Faden", "I am Ende des Fadens, nach allen anderen"));
}
