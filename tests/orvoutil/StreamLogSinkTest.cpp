#include <orvoutil/StreamLogSink.h>

#include <orvoutil/Logger.h>

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <iomanip>
#include <memory>
#include <sstream>
#include <thread>
#include <vector>

using namespace orvo::orvoutil;
using testing::EndsWith;
using testing::MatchesRegex;

namespace {

LogEntry eintrag(LogKind art, LogLevel stufe, const std::string& text) {
    LogEntry e;
    e.kind = art;
    e.level = stufe;
    e.category = "orvo.plugin";
    e.text = text;
    return e;
}

std::string zeile(const LogEntry& e) {
    std::ostringstream ausgabe;
    StreamLogSink(ausgabe).write(e);
    return ausgabe.str();
}

/// How a line shows a text.
std::string inhalt(const std::string& text) {
    const std::string anfang = "orvo.plugin: ";
    const std::string ganze = zeile(eintrag(LogKind::Message, LogLevel::Info, text));
    const std::size_t stelle = ganze.find(anfang);
    EXPECT_EQ(ganze.back(), '\n');
    return ganze.substr(stelle + anfang.size(), ganze.size() - stelle - anfang.size() - 1);
}

} // namespace

TEST(StreamLogSink, WritesTimeLevelCategoryAndText) {
    EXPECT_THAT(
        zeile(eintrag(LogKind::Message, LogLevel::Warn, "Achtung")),
        MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} WARN  orvo.plugin: "
                     "Achtung\n"));
}

TEST(StreamLogSink, WritesTheLocalTime) {
    setenv("TZ", "XYZ-05:30", 1);
    tzset();
    const auto ortszeit = [] {
        const std::time_t jetzt = std::time(nullptr);
        char text[32];
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&jetzt));
        return std::string(text);
    };
    const std::string vorher = ortszeit();
    const std::string geschriebene = zeile(eintrag(LogKind::Message, LogLevel::Info, "x")).substr(0, 19);
    EXPECT_LE(vorher, geschriebene);
    EXPECT_LE(geschriebene, ortszeit());
    unsetenv("TZ");
    tzset();
}

TEST(StreamLogSink, NamesEveryLevel) {
    const auto mitStufe = [](LogLevel stufe) { return zeile(eintrag(LogKind::Message, stufe, "x")); };
    EXPECT_THAT(mitStufe(LogLevel::Debug), EndsWith(" DEBUG orvo.plugin: x\n"));
    EXPECT_THAT(mitStufe(LogLevel::Info), EndsWith(" INFO  orvo.plugin: x\n"));
    EXPECT_THAT(mitStufe(LogLevel::Warn), EndsWith(" WARN  orvo.plugin: x\n"));
    EXPECT_THAT(mitStufe(LogLevel::Error), EndsWith(" ERROR orvo.plugin: x\n"));
    for (const int andere : {4, 9, -1})
        EXPECT_THAT(mitStufe(static_cast<LogLevel>(andere)), EndsWith(" ?     orvo.plugin: x\n"));
}

TEST(StreamLogSink, MarksTheDirectionOfTraces) {
    const auto mitArt = [](LogKind art) { return zeile(eintrag(art, LogLevel::Debug, "op")); };
    EXPECT_THAT(mitArt(LogKind::Enter), EndsWith(": -> op\n"));
    EXPECT_THAT(mitArt(LogKind::Leave), EndsWith(": <- op\n"));
    EXPECT_THAT(mitArt(LogKind::ConstructorEnter), EndsWith(": -> Konstruktor op\n"));
    EXPECT_THAT(mitArt(LogKind::ConstructorLeave), EndsWith(": <- Konstruktor op\n"));
    EXPECT_THAT(mitArt(LogKind::DestructorEnter), EndsWith(": -> Destruktor op\n"));
    EXPECT_THAT(mitArt(LogKind::DestructorLeave), EndsWith(": <- Destruktor op\n"));
    for (const int andere : {8, 99, -1})
        EXPECT_THAT(mitArt(static_cast<LogKind>(andere)), EndsWith(": ? op\n"));
}

TEST(StreamLogSink, ShowsTagAndTextOfEvents) {
    LogEntry ereignis = eintrag(LogKind::Tagged, LogLevel::Info, "Lade Plugin: /a/libx.dylib");
    ereignis.tag = "Plugin";
    EXPECT_THAT(zeile(ereignis), EndsWith(" INFO  orvo.plugin: [Plugin] Lade Plugin: /a/libx.dylib\n"));
}

TEST(StreamLogSink, WritesUtf8) {
    EXPECT_EQ(inhalt("F\xFCge /K\xC3\xBC"
                     "che an"),
              "Füge /Küche an");
}

TEST(StreamLogSink, LetsNoTextPassForAnotherLine) {
    EXPECT_EQ(inhalt("a\nb"), "a\\nb");
    EXPECT_EQ(inhalt("a\r\n\tb"), "a\\x0d\\n\\x09b");
    EXPECT_EQ(inhalt("\x1B[2J\x1F ~\x7F"), "\\x1b[2J\\x1f ~\\x7f");
    EXPECT_EQ(inhalt(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(inhalt("\xC2\x85\xC2\x9F\xC2\xA0"), "\\x85\\x9f\xC2\xA0");
    EXPECT_EQ(inhalt("\x9B"), "\\x9b");
    EXPECT_EQ(inhalt("a\xE2\x80\xA8"
                     "b\xE2\x80\xA9"
                     "c\xE2\x80\xA7"),
              "a\\nb\\nc\xE2\x80\xA7");
    EXPECT_EQ(inhalt(""), "");
}

TEST(StreamLogSink, LetsNoTextTurnTheDirectionOfTheLine) {
    EXPECT_EQ(inhalt("lib\xE2\x80\xAE"
                     "bew.x"),
              "lib\\u202ebew.x");
    EXPECT_EQ(inhalt("\xE2\x80\xA9\xE2\x80\xAA\xE2\x80\xAF"), "\\n\\u202a\xE2\x80\xAF");
    EXPECT_EQ(inhalt("\xE2\x81\xA5\xE2\x81\xA6\xE2\x81\xA9\xE2\x81\xAA"),
              "\xE2\x81\xA5\\u2066\\u2069\xE2\x81\xAA");
}

TEST(StreamLogSink, CleansCategoryAndTagToo) {
    LogEntry ereignis = eintrag(LogKind::Tagged, LogLevel::Info, "c\nd");
    ereignis.category = "a\n\xFC";
    ereignis.tag = "b\n";
    EXPECT_THAT(zeile(ereignis), EndsWith(" a\\nü: [b\\n] c\\nd\n"));
}

TEST(StreamLogSink, DoesNotMindTheStreamsFormat) {
    std::ostringstream ausgabe;
    ausgabe << std::setw(200) << std::setfill('*') << std::left;
    StreamLogSink(ausgabe).write(eintrag(LogKind::Message, LogLevel::Info, "x"));
    EXPECT_THAT(ausgabe.str(), EndsWith("INFO  orvo.plugin: x\n"));
    EXPECT_EQ(ausgabe.str().find('*'), std::string::npos);
}

TEST(StreamLogSink, FlushesEveryLine) {
    struct Puffer : std::stringbuf {
        int sync() override {
            ++geleert;
            return 0;
        }
        int geleert = 0;
    } puffer;
    std::ostream ausgabe(&puffer);
    StreamLogSink(ausgabe).write(LogEntry());
    EXPECT_EQ(puffer.geleert, 1);
}

TEST(StreamLogSink, LosesNoMoreThanTheLogWhenTheStreamFails) {
    struct Voll : std::streambuf { // accepts no byte
    } voll;
    std::ostream ausgabe(&voll);
    ausgabe.exceptions(std::ios::badbit);
    Logger::setSink(std::make_shared<StreamLogSink>(ausgabe));
    Logger::getInstance("a")->error("x");
    EXPECT_TRUE(ausgabe.bad());
    ausgabe.clear();
    Logger::getInstance("a")->error("x"); // waits for nothing that the first one left
    EXPECT_TRUE(ausgabe.bad());
    Logger::setSink(nullptr);
}

TEST(StreamLogSink, KeepsTheLinesOfSeveralThreadsApart) {
    constexpr int kRunden = 200;
    struct Traege : std::stringbuf { // gives other threads time to write in between
        std::streamsize xsputn(const char* text, std::streamsize laenge) override {
            drinnen = std::this_thread::get_id();
            const std::streamsize erster = std::stringbuf::xsputn(text, laenge / 2);
            std::this_thread::yield();
            ungestoert = ungestoert && drinnen == std::this_thread::get_id();
            return erster + std::stringbuf::xsputn(text + laenge / 2, laenge - laenge / 2);
        }
        int sync() override {
            ungestoert = ungestoert && drinnen == std::this_thread::get_id();
            return 0;
        }
        std::atomic<std::thread::id> drinnen; ///< the last one that wrote
        std::atomic<bool> ungestoert = true;
    } puffer;
    std::ostream ausgabe(&puffer);
    StreamLogSink senke(ausgabe);
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 3; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < kRunden; ++i)
                    senke.write(eintrag(LogKind::Message, LogLevel::Info, "ganze Zeile"));
            });
    }
    EXPECT_TRUE(puffer.ungestoert);
    std::istringstream zeilen(puffer.str());
    int anzahl = 0;
    std::string vorige;
    for (std::string eine; std::getline(zeilen, eine); ++anzahl) {
        EXPECT_THAT(eine, EndsWith(" INFO  orvo.plugin: ganze Zeile"));
        EXPECT_LE(vorige, eine); // lines are in the order of their time
        vorige = eine;
    }
    EXPECT_EQ(anzahl, 3 * kRunden);
}
