// Descriptions and files that are damaged, and descriptions that lie.

#include <orvoplugin/beschreibung/Beschreibung.h>

#include "TestPlugins.h"
#include "support/Beschriftung.h"
#include "support/Mitschnitt.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

/// The checksum of the format.
std::uint64_t pruefsumme(const std::string& inhalt) {
    std::uint64_t summe = 14695981039346656037u;
    for (const char byte : inhalt)
        summe = (summe ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    return summe;
}

std::string zahl(std::uint32_t wert) {
    std::string bytes;
    for (; wert >= 0x80; wert >>= 7)
        bytes += static_cast<char>(wert | 0x80);
    return bytes + static_cast<char>(wert);
}

/// A description of that content with a correct head, but for bits of its checksum.
std::string mitKopf(const std::string& inhalt, std::uint64_t falscheBits = 0) {
    const std::uint64_t summe = pruefsumme(inhalt) ^ falscheBits;
    return zahl(1) + zahl(18) + zahl(static_cast<std::uint32_t>(inhalt.size())) +
           zahl(static_cast<std::uint32_t>(summe)) + zahl(static_cast<std::uint32_t>(summe >> 32)) + inhalt;
}

/// A plugin file with a description, which tests replace.
class SchadenTest : public testing::Test {
protected:
    Beschreibungsfund fund(const std::string& bytes) const {
        ueberschreibe(pfad_, heil_.stelle, bytes + std::string(heil_.platz - bytes.size(), '\0'));
        return liesBeschreibung(pfad_);
    }
    std::string grundFuer(const std::string& bytes) const {
        const Beschreibungsfund gefunden = fund(bytes);
        EXPECT_EQ(gefunden.stand, Beschreibungsfund::ABGELEHNT);
        EXPECT_EQ(gefunden.bytes, "");
        return gefunden.grund;
    }
    /// Any damage: a few bits, a piece that is missing, doubled or zero, a field that is very large.
    std::string beschaedigt(std::string bytes) {
        const std::size_t ab = unter(bytes.size());
        const std::size_t anzahl = 1 + unter(bytes.size() - ab);
        switch (unter(6)) {
        case 0:
            for (std::size_t i = 0; i <= unter(4); ++i)
                bytes[unter(bytes.size())] ^= static_cast<char>(1 << unter(8));
            return bytes;
        case 1:
            return bytes.substr(0, ab);
        case 2:
            return bytes.erase(ab, anzahl);
        case 3:
            return bytes.insert(ab, bytes.substr(ab, std::min<std::size_t>(anzahl, 20)));
        case 4:
            return bytes.replace(ab, anzahl, anzahl, '\0');
        default:
            return bytes.replace(ab, 1, zahl(static_cast<std::uint32_t>(zufall_())));
        }
    }
    std::size_t unter(std::size_t grenze) { return static_cast<std::size_t>(zufall_() % grenze); }

    const Verzeichnis verzeichnis_;
    const std::string pfad_ = verzeichnis_.kopiere(test_plugins::OffersEverything, "liba.dylib");
    const Beschreibungsfund heil_ = (beschrifte(pfad_), liesBeschreibung(pfad_));
    const std::string inhalt_ = [this] { // what lies behind the head
        std::size_t laenge = 0;
        while (mitKopf(heil_.bytes.substr(heil_.bytes.size() - laenge)) != heil_.bytes)
            ++laenge;
        return heil_.bytes.substr(heil_.bytes.size() - laenge);
    }();
    std::mt19937_64 zufall_{20091231};
};

constexpr int kSchaeden = 10000;

TEST_F(SchadenTest, EachDamagedDescriptionIsRefusedOrTheSame) {
    int abgelehnte = 0;
    for (int i = 0; i < kSchaeden; ++i) {
        const Beschreibungsfund gefunden = fund(beschaedigt(heil_.bytes));
        EXPECT_EQ(gefunden.stelle, heil_.stelle);
        abgelehnte += gefunden.stand == Beschreibungsfund::ABGELEHNT;
        if (gefunden.stand == Beschreibungsfund::ABGELEHNT)
            ASSERT_NE(gefunden.grund, "");
        else if (gefunden.stand == Beschreibungsfund::GEFUNDEN)
            ASSERT_EQ(gefunden.bytes, heil_.bytes);
        else
            ASSERT_EQ(gefunden.stand, Beschreibungsfund::LEER) << "all of it is cut off";
    }
    EXPECT_GT(abgelehnte, kSchaeden * 9 / 10);
}

TEST_F(SchadenTest, EachRefusedDescriptionIsLoggedAndThePluginAsked) {
    Mitschnitt mitschnitt(orvo::orvoutil::LogLevel::Info);
    for (int i = 0; i < kSchaeden / 100; ++i) {
        const bool istAbgelehnt = fund(beschaedigt(heil_.bytes)).stand == Beschreibungsfund::ABGELEHNT;
        mitschnitt.leere();
        OrvoPluginLoader loader(true);
        const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(new orvo::orvoutil::SharedLib(pfad_)));
        EXPECT_EQ(mitschnitt.anzahlMit("W Beschreibung in der Datei ignoriert: " + pfad_ + ". Grund: "),
                  istAbgelehnt);
        EXPECT_EQ(schreibeBeschreibung(*plugin), heil_.bytes);
    }
}

TEST_F(SchadenTest, ThePluginIsAskedWhenItsDescriptionLies) {
    for (const std::string& inhalt :
         {std::string("\x01\x02\0\0\0\0\0\0\x04\0", 10), std::string("\x02\x02\0\0\0\0\0\0\0\0", 10)}) {
        ASSERT_EQ(grundFuer(mitKopf(inhalt)), "widersinnig");
        OrvoPluginLoader loader(true);
        const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(new orvo::orvoutil::SharedLib(pfad_)));
        EXPECT_FALSE(plugin->istBeschrieben());
        EXPECT_EQ(schreibeBeschreibung(*plugin), heil_.bytes);
    }
}

TEST_F(SchadenTest, ADescriptionThatLiesIsRefusedOrTakenAsItStands) {
    int genommene = 0;
    for (int i = 0; i < kSchaeden; ++i) {
        const std::string bytes = mitKopf(beschaedigt(inhalt_));
        const Beschreibungsfund gefunden = fund(bytes);
        if (gefunden.stand == Beschreibungsfund::ABGELEHNT)
            continue;
        ++genommene;
        ASSERT_EQ(gefunden.bytes, bytes) << "there is one form only";
    }
    EXPECT_GT(genommene, 0) << "such as another version";
}

TEST_F(SchadenTest, TypeRecordsAreReadAndWrittenInTheirOrder) {
    std::string inhalt = "\x03";
    for (const char status : {'\x02', '\x04', '\x06'})
        inhalt += std::string("\x02\0\0\0\0\0", 6) + status + std::string(2, '\0');
    EXPECT_EQ(fund(mitKopf(inhalt)).bytes, mitKopf(inhalt));
}

TEST_F(SchadenTest, WhatNoPluginCanSayIsRefused) {
    const std::string plugin("\x02\0\0\0\0\0\0\0",
                             8); // interface 1, all texts and lists empty, status 0, not resident
    const auto mit = [&](const std::string& vorn, const std::string& erweiterungen) {
        return mitKopf(vorn + plugin + erweiterungen);
    };
    const auto leere = [](int art) { // without a factory
        return std::string(1, static_cast<char>(2 * art)) +
               std::string(5 + 1 + (art == 4 ? 0 : 1) + 1 + (art == 1 || art == 6 ? 2 : 0), '\0');
    };
    for (int art = 1; art <= 6; ++art)
        EXPECT_EQ(fund(mit("\x01", "\x01" + leere(art))).grund, "") << "kind " << art;
    const std::string widersinnig = "widersinnig";
    EXPECT_EQ(grundFuer(mitKopf("")), widersinnig) << "nothing";
    EXPECT_EQ(grundFuer(mitKopf(std::string(1, '\0'))), widersinnig) << "no type record";
    EXPECT_EQ(grundFuer(mit("\x02", std::string(1, '\0'))), widersinnig) << "one of two type records";
    EXPECT_EQ(grundFuer(mitKopf(std::string("\x01\x04\0\0\0\0\0\0\0\0", 10))), widersinnig) << "interface 2";
    EXPECT_EQ(grundFuer(mitKopf(std::string("\x01\x02\0\0\0\0\0\0\x04\0", 10))), widersinnig)
        << "resident: 2";
    EXPECT_EQ(grundFuer(mit("\x01", std::string(2, '\0'))), widersinnig) << "a byte more";
    EXPECT_EQ(grundFuer(mit("\x01", "\x01" + leere(7))), widersinnig) << "an unknown kind";
    EXPECT_EQ(grundFuer(mit("\x01", "\x01" + leere(0))), widersinnig) << "an unknown kind";
    EXPECT_EQ(grundFuer(mit("\x01", std::string("\x80\0", 2))), widersinnig) << "a number in another form";
    EXPECT_EQ(grundFuer(mit("\x01", "\xFF\xFF\xFF\xFF\x1F")), widersinnig) << "a number of 33 bits";
    EXPECT_EQ(grundFuer(mit("\x01", "\xFF\xFF\xFF\xFF\xFF\x01")), widersinnig) << "a number of six bytes";
    EXPECT_EQ(grundFuer(mit("\x01", "\xFF\xFF\xFF\xFF\x0F")), widersinnig) << "more extensions than bytes";
    const auto mitStatus = [](const std::string& status) {
        return mitKopf(std::string("\x01\x02\0\0\0\0\0", 7) + status + std::string(2, '\0'));
    };
    EXPECT_EQ(fund(mitStatus("\x80\x80\x80\x80\x0F")).grund, "");
    EXPECT_EQ(grundFuer(mitStatus("\x80\x80\x80\x80\x10")), widersinnig) << "a number of 33 bits";
    EXPECT_EQ(grundFuer(mitStatus(std::string(10, '\x80') + "\x01")), widersinnig) << "a number of 71 bits";

    const std::string zehn("\x14\x02"
                           "10\0",
                           5),
        elf("\x16\x02"
            "11\0",
            5); // two sub-case types without periods
    const auto mitArten = [&](const std::string& arten) {
        return mit("\x01", std::string("\x01\x06\0\0\0\0\0\0", 8) + arten + std::string(1, '\0'));
    };
    EXPECT_EQ(fund(mitArten("\x02" + zehn + elf)).grund, "");
    EXPECT_EQ(grundFuer(mitArten("\x02" + zehn + zehn)), "Reihenfolge der Unterfallarten");
    EXPECT_EQ(grundFuer(mitArten("\x02" + elf + zehn)), "Reihenfolge der Unterfallarten");
    EXPECT_EQ(grundFuer(mitArten(std::string("\x01\x14\x02"
                                             "11\0",
                                             6))),
              widersinnig)
        << "the name of another number";
    EXPECT_EQ(grundFuer(mitArten(std::string("\x01\xC5\x01\x03"
                                             "a\0b\0",
                                             8))),
              widersinnig)
        << "a name with a null character";
    const auto mitZeitraum = [&](const std::string& zeitraum) {
        return mitArten(std::string("\x01\x14\x02"
                                    "10\x01",
                                    6) +
                        zeitraum);
    };
    EXPECT_EQ(fund(mitZeitraum(std::string("\0\xB2\x1F\0\0\x01\0", 7))).grund, "") << "the year 2009";
    EXPECT_EQ(grundFuer(mitZeitraum(std::string("\x04\xB2\x1F\0\0\x01\0", 7))), widersinnig)
        << "a month without one";
    EXPECT_EQ(grundFuer(mitZeitraum(std::string("\0\x12\0\0\x01\0", 6))), widersinnig) << "the year 9";
    EXPECT_EQ(grundFuer(mitZeitraum(std::string("\0\xB2\x1F\0\0\x52\0", 7))), widersinnig)
        << "a year in a quarter";
    EXPECT_EQ(grundFuer(mitZeitraum(std::string("\x0E\xB2\x1F\0\0\x01\0", 7))), widersinnig)
        << "an unknown kind of period";
    const std::string groesste("\xFE\xFF\xFF\xFF\x0F", 5);
    EXPECT_EQ(grundFuer(mitZeitraum("\x04\xB2\x1F" + groesste + std::string("\0\x52\0", 3))), widersinnig)
        << "the largest code of a month";
    const std::string kleinste("\xFF\xFF\xFF\xFF\x0F", 5);
    EXPECT_EQ(grundFuer(mitZeitraum("\x04\xB2\x1F" + kleinste + std::string("\0\x52\0", 3))), widersinnig)
        << "the smallest code of a month";
    EXPECT_EQ(grundFuer(mitZeitraum("\x02\xB2\x1F" + kleinste + kleinste + std::string("\x52\0", 2))),
              widersinnig)
        << "the smallest day";

    EXPECT_EQ(grundFuer(mitZeitraum(std::string("\x04\xB2\x1F\x01\0\x52\0", 7))), widersinnig) << "month -1";
    EXPECT_EQ(grundFuer(mitZeitraum(std::string("\x02\xB2\x1F\x02\x01\x52\0", 7))), widersinnig) << "day -1";
    EXPECT_EQ(fund(mitZeitraum(std::string("\x02\xB2\x1F\x02\x02\x52\0", 7))).grund, "") << "January 1, 2009";

    const auto mitName = [&](std::size_t laenge) {
        return mitArten("\x01\xC5\x01" + zahl(static_cast<std::uint32_t>(laenge)) + std::string(laenge, 'a') +
                        std::string(1, '\0'));
    };
    EXPECT_EQ(fund(mitName(1000)).grund, "");
    EXPECT_EQ(grundFuer(mitName(1001)), "ein Text von mehr als 1.000 Bytes");
}

TEST_F(SchadenTest, TheHeadIsChecked) {
    const std::string& bytes = heil_.bytes;
    const std::string andere = "f\xFCr eine andere Ausgabe", kaputt = "besch\xE4"
                                                                      "digt";
    EXPECT_EQ(grundFuer("\x02" + bytes.substr(1)), andere) << "another format";
    EXPECT_EQ(grundFuer("\x01\x10" + bytes.substr(2)), andere) << "another release";
    EXPECT_EQ(grundFuer("\x01\x10" + zahl(32001)), andere) << "another release, which may have longer ones";
    EXPECT_EQ(grundFuer("\x02" + std::string(24, '\xFF')), andere) << "another format, with another head";
    EXPECT_EQ(grundFuer("\x01\x12" + zahl(32000)), kaputt) << "longer than the room";
    EXPECT_EQ(grundFuer("\x01\x12" + zahl(32001)), "zu lang");
    EXPECT_EQ(grundFuer("\x01\x12" + zahl(heil_.platz)), kaputt) << "longer than the room";
    EXPECT_EQ(grundFuer(std::string(1, '\0') + bytes.substr(1)), andere) << "not filled, but not empty";
    EXPECT_EQ(grundFuer(bytes.substr(0, bytes.size() - 1)), kaputt);
    for (const int bit : {0, 31, 32, 63})
        EXPECT_EQ(grundFuer(mitKopf(inhalt_, std::uint64_t{1} << bit)), kaputt) << bit;
    EXPECT_EQ(fund("").stand, Beschreibungsfund::LEER);
    EXPECT_EQ(fund(bytes).stand, Beschreibungsfund::GEFUNDEN);
}

} // namespace
