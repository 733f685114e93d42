// Random texts from a fixed seed: for every record the check ends, and its report is well formed.

#include <pruefung/Satzpruefer.h>

#include "Satz.h"

#include <gmock/gmock.h>
#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <pruefpaket/Regelwerk.h>
#include <pruefung/Befundcode.h>
#include <pruefung/Zeitraum.h>
#include <steuer/Betrag.h>
#include <steuer/Datensatz.h>
#include <steuer/Datum.h>
#include <steuer/SteuerId.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace pruefung {
namespace {

/// The numbers are the same with every standard library: its distributions are not used.
class Zufall {
public:
    explicit Zufall(unsigned saat) : quelle_(saat) {}

    std::size_t unter(std::size_t grenze) { return quelle_() % grenze; }
    char zeichen() { return static_cast<char>(unter(256)); }
    const std::string& eines(const std::vector<std::string>& liste) { return liste[unter(liste.size())]; }

private:
    std::mt19937 quelle_;
};

const std::vector<std::string>& stuecke() {
    static const std::vector<std::string> liste = {"=",
                                                   "\n",
                                                   "\r\n",
                                                   " ",
                                                   "\t",
                                                   std::string(1, '\0'),
                                                   "-",
                                                   ",",
                                                   ".",
                                                   "0",
                                                   "9",
                                                   "IdNr=",
                                                   "Name=\xC4rger\n",
                                                   "Name=\xC3\x84rger\n",
                                                   "Fremd=1\n",
                                                   "Lohnsteuer=-1,00\n",
                                                   "Lohnsteuer=99999999999999999999\n",
                                                   "Beginn=29.02.2009\n",
                                                   "Ende=31.12.0000\n",
                                                   "Finanzamt=12345\n",
                                                   "Satzart=50\n",
                                                   "47036892816",
                                                   "11111111111",
                                                   "01.01.2009",
                                                   "1000000000000,00",
                                                   std::string(300, 'A'),
                                                   std::string(300, '9')};
    return liste;
}

/// Changes one thing: a byte, a piece, or a line.
void veraendere(std::string& text, Zufall& zufall) {
    constexpr std::size_t kTeil = 60;
    const std::size_t stelle = zufall.unter(text.size() + 1);
    switch (zufall.unter(7)) {
    case 0: // one bit or more of a byte
        if (stelle < text.size())
            text[stelle] = static_cast<char>(text[stelle] ^ zufall.zeichen());
        break;
    case 1: // a digit
        if (stelle < text.size())
            text[stelle] = static_cast<char>('0' + zufall.unter(10));
        break;
    case 2:
        text.insert(stelle, 1, zufall.zeichen());
        break;
    case 3:
        text.erase(stelle, zufall.unter(20));
        break;
    case 4:
        text.insert(stelle, zufall.eines(stuecke()));
        break;
    case 5: // a part copied to another place
        text.insert(zufall.unter(text.size() + 1), text, stelle, kTeil);
        break;
    default: // a field without its value
        if (const std::size_t gleich = text.find('=', stelle); gleich != std::string::npos)
            text.erase(gleich + 1, text.find('\n', gleich) - gleich - 1);
    }
}

std::string anmeldung() {
    return "Satzart=10\nIdNr=23107900853\nName=G\xFCnther S\xFC\xDF\nFinanzamt=9904\nBeginn=01.04.2009\n"
           "Ende=30.06.2009\nUmsatz=125000,00\nSteuer=23750,00\n";
}

bool istDruckbar(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](unsigned char c) { return c >= 0x20 && (c < 0x7F || c >= 0xA0); });
}

/// The kinds of content that can be faulty in a field: at most one fault of it is reported.
bool istInhaltsfehler(int code) {
    return code >= IDNR_FORM && code <= FINANZAMT_FORM && code != BETRAG_UEBER_GRENZE &&
           code != ENDE_VOR_BEGINN;
}

/// Whether the message names the record as a whole, one of its own fields, or one that its kind knows.
bool istFeldRichtig(const PruefErgebnis::Meldung& meldung, const steuer::Datensatz* satz,
                    const std::set<std::string>& felder) {
    if (meldung.code == KEIN_DATENSATZ)
        return !satz && meldung.feld.empty();
    if (meldung.code == FELD_UNBEKANNT)
        return satz && satz->finde(meldung.feld) && !felder.contains(meldung.feld);
    return satz && felder.contains(meldung.feld);
}

class ZufallTest : public testing::Test {
protected:
    /// Without a terminating zero, so that a read past the end is detected.
    PruefErgebnis pruefe(const Satzaufbau& aufbau, const std::string& text) const {
        const std::vector<char> zeichen(text.begin(), text.end());
        PruefErgebnis ergebnis;
        Satzpruefer(aufbau, jahr_, "", ergebnis).pruefe({zeichen.data(), zeichen.size()});
        return ergebnis;
    }

    void erwarteWohlgeformt(const Satzaufbau& aufbau, const std::string& text,
                            const PruefErgebnis& ergebnis) {
        std::set<std::string> felder;
        for (const auto regeln : {kopffelder(), aufbau.felder})
            for (const Feldregel& regel : regeln)
                felder.insert(regel.name);
        const auto gelesen = steuer::liesDatensatz(text);
        const auto* const satz = std::get_if<steuer::Datensatz>(&gelesen);

        std::map<std::string, int> inhaltsfehler;
        for (const PruefErgebnis::Meldung& meldung : ergebnis.getMeldungen()) {
            ++anzahl_[meldung.code];
            EXPECT_FALSE(meldung.text.empty());
            EXPECT_TRUE(istDruckbar(meldung.text + meldung.feld));
            EXPECT_TRUE(bekannteCodes_.contains(meldung.code)) << meldung.code;
            EXPECT_TRUE(istFeldRichtig(meldung, satz, felder)) << meldung.code << ' ' << meldung.feld;
            if (istInhaltsfehler(meldung.code)) {
                EXPECT_EQ(++inhaltsfehler[meldung.feld], 1) << meldung.feld;
            }
        }
        EXPECT_EQ(satz == nullptr,
                  !ergebnis.getMeldungen().empty() && ergebnis.getMeldungen().front().code == KEIN_DATENSATZ);
    }

    const std::optional<steuer::Zeitspanne> jahr_ = zeitspanneVon(Veranlagungszeitraum(2009, "YYYY"));
    const std::set<int> bekannteCodes_{100, 101, 102, 103, 104, 110, 111, 112, 113,
                                       114, 120, 121, 122, 123, 130, 131, 132, 140};
    std::map<int, int> anzahl_;
};

TEST_F(ZufallTest, EveryTextIsCheckedToTheEnd) {
    Zufall zufall(17);
    int gute = 0;
    const std::vector<std::string> vorlagen = {Satz::bescheinigung().text(), anmeldung()};
    for (int i = 0; i < 8000; ++i) {
        std::string text = zufall.eines(vorlagen);
        for (std::size_t n = zufall.unter(8); n > 0; --n)
            veraendere(text, zufall);
        const Satzaufbau& aufbau = *pruefpaket::aufbauFuer(i % 4 == 0 ? UFA_10 : UFA_LSTB);
        const PruefErgebnis ergebnis = pruefe(aufbau, text);
        erwarteWohlgeformt(aufbau, text, ergebnis);
        EXPECT_EQ(befunde(pruefe(aufbau, text)), befunde(ergebnis)); // the same each time
        gute += ergebnis.getMeldungen().empty();
        ASSERT_FALSE(HasFailure()) << "text " << i << ": " << testing::PrintToString(text);
    }
    // The texts cover enough: valid ones, and nearly every kind of fault.
    EXPECT_GE(gute, 100);
    EXPECT_GE(anzahl_.size(), 15u) << testing::PrintToString(anzahl_);
}

TEST_F(ZufallTest, AnyBytesAtAllAreCheckedToTheEnd) {
    Zufall zufall(41);
    const Satzaufbau& aufbau = *pruefpaket::aufbauFuer(UFA_LSTB);
    for (int i = 0; i < 2000; ++i) {
        std::string text(zufall.unter(200), ' ');
        std::generate(text.begin(), text.end(), [&] { return zufall.zeichen(); });
        erwarteWohlgeformt(aufbau, text, pruefe(aufbau, text));
        ASSERT_FALSE(HasFailure()) << "text " << i << ": " << testing::PrintToString(text);
    }
}

TEST_F(ZufallTest, TheOrderOfTheFieldsChangesNothingThatIsFound) {
    Zufall zufall(99);
    const Satzaufbau& aufbau = *pruefpaket::aufbauFuer(UFA_LSTB);
    const std::vector<std::string> werte = {
        "",           "0",          "-1",         "1000000000000", "LSTB",        "9902",       "x",
        "01.01.2009", "31.12.2009", "01.01.2008", "30.02.2009",    "86095742719", "86095742718"};
    for (int i = 0; i < 1000; ++i) {
        std::vector<std::string> zeilen;
        for (const auto regeln : {kopffelder(), aufbau.felder})
            for (const Feldregel& regel : regeln)
                zeilen.push_back(regel.name + ('=' + zufall.eines(werte)) + '\n');
        const auto gefunden = [&] {
            std::string text;
            for (const std::string& zeile : zeilen)
                text += zeile;
            return befunde(pruefe(aufbau, text));
        };
        const std::vector<Befund> vorher = gefunden();
        for (std::size_t n = zeilen.size(); n > 1; --n)
            std::swap(zeilen[n - 1], zeilen[zufall.unter(n)]);
        ASSERT_EQ(gefunden(), vorher);
    }
}

TEST_F(ZufallTest, ReadersOfValuesTakeAnyBytes) {
    Zufall zufall(7);
    const std::string alphabet = "0123456789.,- \xB2";
    for (int i = 0; i < 20'000; ++i) {
        std::vector<char> wert(zufall.unter(14));
        for (char& zeichen : wert)
            zeichen = zufall.unter(8) == 0 ? zufall.zeichen() : alphabet[zufall.unter(alphabet.size())];
        const std::string_view text(wert.data(), wert.size());
        const bool nurZiffern = text.find_first_not_of("0123456789") == std::string_view::npos;
        const bool nurBetragszeichen = text.find_first_not_of("0123456789,") == std::string_view::npos;

        const steuer::GelesenerBetrag betrag = steuer::liesBetrag(text);
        ASSERT_TRUE(betrag.cent >= 0 && betrag.cent <= steuer::kHoechsterBetrag);
        ASSERT_TRUE(nurBetragszeichen || betrag.fehler != steuer::BetragFehler::KEINER);
        ASSERT_TRUE(betrag.fehler == steuer::BetragFehler::KEINER || betrag.cent == 0);
        ASSERT_EQ(steuer::pruefeSteuerId(text) == steuer::SteuerIdFehler::FORM,
                  wert.size() != 11 || !nurZiffern);
        ASSERT_TRUE(wert.size() == 10 || !steuer::liesDatum(text));
    }
}

} // namespace
} // namespace pruefung
