// The report of the registry, which is only a heading.

#include "Registratur.h"

#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoutil/Logger.h>

#include "support/Mitschnitt.h"

#include <sstream>

using orvo::orvoutil::Logger;
using orvo::orvoutil::LogLevel;

namespace {

constexpr char kBericht[] = "Aktuell Registrierte Erweiterungen: \n";

/// Counts how often the stream is flushed.
class Puffer : public std::stringbuf {
public:
    int geleert = 0;

protected:
    int sync() override { return ++geleert, std::stringbuf::sync(); }
};

} // namespace

class DumpTest : public Registratur {
protected:
    /// Runs the test on an empty and on a filled registry.
    template <class Pruefung>
    void aufLeererUndVoller(Pruefung pruefung) {
        pruefung();
        LosesPlugin plugin("1.0");
        plugin.biete(OrvoValidierungsServiceErweiterung(10, jahr(2009)));
        registry_.pluginErzeugt(&plugin);
        pruefung();
        registry_.pluginZerstoert(&plugin);
    }

    OrvoErweiterungsManager registry_;
};

TEST_F(DumpTest, WritesTheHeadingAndALineEndAndReturnsTheStream) {
    aufLeererUndVoller([&] {
        std::ostringstream out;
        EXPECT_EQ(&registry_.dump(out), &out);
        EXPECT_EQ(out.str(), kBericht);
        EXPECT_EQ(out.str().size(), 36u + 1u);
    });
}

TEST_F(DumpTest, FlushesTheStream) {
    Puffer puffer;
    std::ostream out(&puffer);
    registry_.dump(out);
    EXPECT_EQ(puffer.geleert, 1);
    EXPECT_EQ(puffer.str(), kBericht);
}

TEST_F(DumpTest, GoesOnBehindWhatTheStreamHolds) {
    std::ostringstream out;
    out << "vorher ";
    registry_.dump(out) << "nachher";
    EXPECT_EQ(out.str(), std::string("vorher ") + kBericht + "nachher");
}

TEST_F(DumpTest, WritesOneInfoMessageWithItsLineEndToTheLoggerGiven) {
    aufLeererUndVoller([&] {
        const Mitschnitt mitschnitt(LogLevel::Info);
        registry_.dump(Logger::getInstance("meine.kategorie"));
        ASSERT_EQ(mitschnitt.eintraege().size(), 1u);
        EXPECT_EQ(mitschnitt.eintraege()[0].category, "meine.kategorie");
        EXPECT_EQ(mitschnitt.zeilen(), std::vector<std::string>{std::string("I ") + kBericht});
    });
}

TEST_F(DumpTest, WritesNothingToALoggerAboveInfo) {
    const Mitschnitt mitschnitt(LogLevel::Warn);
    registry_.dump(Logger::getInstance("meine.kategorie"));
    EXPECT_TRUE(mitschnitt.zeilen().empty());
}

TEST_F(DumpTest, WritesNothingWithoutALogger) {
    const Mitschnitt mitschnitt;
    registry_.dump(nullptr);
    EXPECT_TRUE(mitschnitt.zeilen().empty());
}

TEST_F(DumpTest, LeavesNoTraceOfItsOwn) {
    const Mitschnitt mitschnitt;
    OrvoErweiterungsManager registry;
    const std::size_t vorher = mitschnitt.eintraege().size();
    std::ostringstream out;
    registry.dump(out);
    EXPECT_EQ(mitschnitt.eintraege().size(), vorher);
}
