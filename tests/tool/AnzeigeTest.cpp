// Plugins' texts for a terminal and for JSON.

#include "kern/Anzeige.h"

#include <orvoutil/Latin1.h>

#include <gtest/gtest.h>

using namespace werkzeug;

TEST(Anzeige, ShowsUmlautsWhicheverWayTheyCame) {
    EXPECT_EQ(einzeilig("Pr\xFC"
                        "fung"),
              "Prüfung");
    EXPECT_EQ(einzeilig("Prüfung"), "Prüfung");
}

TEST(Anzeige, WritesOutWhatATerminalWouldObey) {
    EXPECT_EQ(einzeilig("\x1b[31mrot"), "\\x1b[31mrot");
    EXPECT_EQ(einzeilig("a\nb\tc\r"), "a\\nb\\tc\\x0d");
    EXPECT_EQ(einzeilig("\xC2\x9B"
                        "31m"),
              "\\x9b31m");
    EXPECT_EQ(einzeilig("\x9B"
                        "31m"),
              "\\x9b31m");
    EXPECT_EQ(einzeilig(std::string("\0\x7F", 2)), "\\x00\\x7f");
    EXPECT_EQ(einzeilig("\xE2\x80\xAEx"), "\\u202ex"); // the direction of writing
    EXPECT_EQ(einzeilig("\xD8\x9Cx"), "\\u061cx");     // likewise
}

TEST(Anzeige, ShowsEveryByteSomehow) {
    for (int a = 0; a < 256; ++a)
        for (const int b : {0, 0x41, 0x80, 0xBF, 0xC3, 0xFF}) {
            const std::string roh{static_cast<char>(a), static_cast<char>(b)};
            const std::string gezeigt = einzeilig(roh);
            EXPECT_EQ(orvo::orvoutil::toUtf8(gezeigt), gezeigt) << a << " " << b; // is UTF-8
            for (const char c : gezeigt)
                EXPECT_GE(static_cast<unsigned char>(c), 0x20);
        }
}

TEST(Anzeige, EscapesTheSameInJsonAndLosesNothing) {
    const std::string roh = "\x1b[31m\x9B\xFC \xE2\x80\xAE \"\\\n\x7F";
    const std::string text = alsText(Json{{"text", jsonText(roh)}});
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(text.find("\xC2\x9B"), std::string::npos);
    EXPECT_EQ(text.find('\x7F'), std::string::npos);
    EXPECT_NE(text.find("ü"), std::string::npos);
    EXPECT_EQ(Json::parse(text)["text"].get<std::string>(), orvo::orvoutil::toUtf8(roh));
}

TEST(Anzeige, ShrinksTheWidestColumnsOfATableToFit) {
    Tabelle tabelle({"A", "B", "C"});
    tabelle.zeile({"kurz", "0123456789012345678", "0123456789"});
    EXPECT_EQ(tabelle.alsText(Farben(false), 26), "A     B          C\nkurz  0123…5678  0123…6789\n");
}

TEST(Anzeige, AlignsColumnsByCharactersNotBytes) {
    Tabelle tabelle({"A", "B"});
    tabelle.zeile({"ü", "x"});
    tabelle.zeile({"lang", "y"});
    tabelle.bemerkung("z");
    EXPECT_EQ(tabelle.alsText(Farben(false)), "A     B\nü     x\nlang  y\n      z\n");
    EXPECT_EQ(tabelle.alsText(Farben(true)).substr(0, 10), "\x1b[1mA\x1b[0m ");
}
