// Transfer of the facts from the child to the parent.

#include "kern/Uebertragung.h"

#include <gtest/gtest.h>

using namespace werkzeug;

namespace {

Bestand beispiel() {
    Bestand bestand;
    bestand.suchpfad = "/p";
    bestand.verzeichnisse = {{"/p", 0}};
    DateiFakt datei;
    datei.name = "libx.dylib";
    datei.zustand = Zustand::GELADEN;
    datei.plugin.emplace();
    datei.plugin->erweiterungen.resize(2);
    datei.plugin->erweiterungen[1].angebot = {{{10, "10"}, {{0, 2009, 0, 0, -1, "2009"}}}};
    bestand.dateien = {datei};
    SchluesselFakt schluessel;
    schluessel.inhaber = {0, 1};
    schluessel.ereignisse = {{SchluesselEreignis::Art::ABGEWIESEN, {0, 0}, {0, 1}, 2, {}}};
    bestand.schluessel = {schluessel};
    bestand.antwort = AntwortFakt{RegisterAuskunft::GENAU, 0, {}};
    return bestand;
}

} // namespace

TEST(Uebertragung, GivesBackWhatWasWritten) {
    const Bestand gelesen = liesBestand(schreibe(beispiel()));
    EXPECT_EQ(schreibe(gelesen), schreibe(beispiel()));
    EXPECT_EQ(gelesen.dateien.at(0).plugin->erweiterungen.at(1).angebot.at(0).second.at(0).text, "2009");
}

TEST(Uebertragung, SaysOnItsWayThroughManyFactsThatItIsStillThere) {
    Bestand bestand = beispiel();
    bestand.dateien[0].plugin->labels.resize(100000);
    int zeichen = 0;
    schreibe(bestand, [&] { ++zeichen; });
    EXPECT_GE(zeichen, 10);
}

TEST(Uebertragung, RefusesFactsThatWereCutOffAnywhere) {
    const std::string bytes = schreibe(beispiel());
    for (std::size_t laenge = 0; laenge < bytes.size(); ++laenge)
        EXPECT_THROW(liesBestand(std::string_view(bytes).substr(0, laenge)), UebertragungsFehler) << laenge;
    EXPECT_THROW(liesBestand(bytes + '\0'), UebertragungsFehler);
}

TEST(Uebertragung, TakesNoBytesForFactsThatItCouldNotShow) {
    const std::string bytes = schreibe(beispiel());
    for (std::size_t i = 0; i < bytes.size(); ++i) // any result must be safe to traverse
        for (const char byte : {'\0', '\x01', '\x7F', '\xFF'}) {
            std::string verfaelscht = bytes;
            verfaelscht[i] = byte;
            try {
                const Bestand bestand = liesBestand(verfaelscht);
                for (const SchluesselFakt& schluessel : bestand.schluessel)
                    bestand.erweiterung(schluessel.inhaber);
                for (const DateiFakt& datei : bestand.dateien)
                    bestand.fundort(datei);
            } catch (const UebertragungsFehler&) {
            }
        }
}

TEST(Uebertragung, RefusesPlacesThatDoNotExist) {
    Bestand falscherInhaber = beispiel();
    falscherInhaber.schluessel[0].inhaber = {0, 2};
    EXPECT_THROW(liesBestand(schreibe(falscherInhaber)), UebertragungsFehler);
    Bestand falschesVerzeichnis = beispiel();
    falschesVerzeichnis.dateien[0].verzeichnis = 1;
    EXPECT_THROW(liesBestand(schreibe(falschesVerzeichnis)), UebertragungsFehler);
    Bestand falscheAntwort = beispiel();
    falscheAntwort.antwort->schluessel = 1;
    EXPECT_THROW(liesBestand(schreibe(falscheAntwort)), UebertragungsFehler);
    Bestand falscherZustand = beispiel();
    falscherZustand.dateien[0].zustand = static_cast<Zustand>(99);
    EXPECT_THROW(liesBestand(schreibe(falscherZustand)), UebertragungsFehler);
}
