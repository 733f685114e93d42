#include <steuer/SteuerId.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace steuer {

void PrintTo(SteuerIdFehler fehler, std::ostream* out) {
    static const char* const namen[] = {"KEINER",       "FORM",          "FUEHRENDE_NULL",
                                        "WIEDERHOLUNG", "DREI_IN_FOLGE", "PRUEFZIFFER"};
    *out << namen[static_cast<int>(fehler)];
}

namespace {

using enum SteuerIdFehler;

/// The result of ISO 7064 MOD 11,10 over digits with their check digit: 1 for a valid number.
int mod11_10(const std::string& ziffern) {
    int p = 10;
    for (std::size_t i = 0; i + 1 < ziffern.size(); ++i) {
        const int s = (p + (ziffern[i] - '0') - 1) % 10 + 1; // modulo 10, with 10 for 0
        p = 2 * s % 11;
    }
    return (p + (ziffern.back() - '0')) % 10;
}

std::string mitPruefziffer(const std::string& zehn) {
    std::string nummer = zehn + '0';
    while (mod11_10(nummer) != 1)
        ++nummer.back();
    return nummer;
}

/// The rules again, for eleven digits.
SteuerIdFehler erwartet(const std::string& nummer) {
    if (nummer[0] == '0')
        return FUEHRENDE_NULL;
    const std::string zehn = nummer.substr(0, 10);
    std::multiset<char> ziffern(zehn.begin(), zehn.end());
    std::map<std::size_t, int> haeufigkeiten;
    for (char z = '0'; z <= '9'; ++z)
        ++haeufigkeiten[ziffern.count(z)];
    // One digit twice leaves one out, one digit three times leaves two out.
    const bool doppelt = haeufigkeiten == std::map<std::size_t, int>{{0, 1}, {1, 8}, {2, 1}};
    const bool dreifach = haeufigkeiten == std::map<std::size_t, int>{{0, 2}, {1, 7}, {3, 1}};
    if (!doppelt && !dreifach)
        return WIEDERHOLUNG;
    for (char z = '0'; z <= '9'; ++z)
        if (zehn.find(std::string(3, z)) != std::string::npos)
            return DREI_IN_FOLGE;
    return mod11_10(nummer) == 1 ? KEINER : PRUEFZIFFER;
}

const char* const kGute[] = {"86095742719", "47036892816", "65929970489", "57549285017", "25768131411"};

TEST(SteuerId, TakesNumbersKnownToBeGood) {
    for (const std::string nummer : kGute)
        EXPECT_EQ(pruefeSteuerId(nummer), KEINER) << nummer;
}

TEST(SteuerId, TakesOneDigitTwiceOrThreeTimesWhereverItStands) {
    for (const std::string zehn : {"1123456789", "1234567891", "9876543219", "1213456781", "1123145678",
                                   "2341156178", "9098765431", "1002345678"})
        EXPECT_EQ(pruefeSteuerId(mitPruefziffer(zehn)), KEINER) << zehn;
}

TEST(SteuerId, RefusesEveryOtherCheckDigit) {
    for (const std::string gute : kGute)
        for (std::string nummer = gute.substr(0, 10) + '0'; nummer.back() <= '9'; ++nummer.back())
            EXPECT_EQ(pruefeSteuerId(nummer), nummer == gute ? KEINER : PRUEFZIFFER) << nummer;
}

TEST(SteuerId, FindsEverySingleWrongDigit) {
    for (const std::string gute : kGute)
        for (std::size_t i = 0; i < gute.size(); ++i)
            for (char ziffer = '0'; ziffer <= '9'; ++ziffer) {
                std::string nummer = gute;
                nummer[i] = ziffer;
                EXPECT_EQ(pruefeSteuerId(nummer) == KEINER, nummer == gute) << nummer;
            }
}

struct Fall {
    std::string nummer;
    SteuerIdFehler fehler;
};

TEST(SteuerId, TellsTheFirstRuleBroken) {
    const Fall faelle[] = {
        {mitPruefziffer("0123456781"), FUEHRENDE_NULL}, // no other fault
        {"00000000000", FUEHRENDE_NULL},
        {"0123456789", FORM},
        {mitPruefziffer("1234567890"), WIEDERHOLUNG}, // each digit once
        {mitPruefziffer("1122345678"), WIEDERHOLUNG}, // two digits twice
        {mitPruefziffer("1212134567"), WIEDERHOLUNG}, // one three times, another twice
        {mitPruefziffer("1213141567"), WIEDERHOLUNG}, // one four times
        {mitPruefziffer("1111234567"), WIEDERHOLUNG}, // and adjacent
        {mitPruefziffer("1112223456"), WIEDERHOLUNG},
        {"11111111111", WIEDERHOLUNG},
        {mitPruefziffer("1112345678"), DREI_IN_FOLGE},
        {mitPruefziffer("2341115678"), DREI_IN_FOLGE},
        {mitPruefziffer("2345678111"), DREI_IN_FOLGE},
        {mitPruefziffer("1000234567"), DREI_IN_FOLGE},
    };
    for (const auto& [nummer, fehler] : faelle)
        EXPECT_EQ(pruefeSteuerId(nummer), fehler) << nummer;
}

TEST(SteuerId, LeavesTheCheckDigitOutOfTheRulesForRepetition) {
    // The first ten digits end in the same digit twice: three in a row with the check digit, still valid.
    std::string zehn = "1234567899";
    int gefunden = 0;
    do {
        const std::string nummer = mitPruefziffer(zehn);
        if (zehn.front() != '0' && nummer[8] == nummer[9] && nummer[9] == nummer[10]) {
            EXPECT_EQ(pruefeSteuerId(nummer), KEINER) << nummer;
            ++gefunden;
        }
    } while (gefunden < 5 && std::next_permutation(zehn.begin(), zehn.end()));
    EXPECT_EQ(gefunden, 5);
}

TEST(SteuerId, IsElevenDigitsAndNothingElse) {
    const std::string gute = kGute[0];
    std::vector<std::string> texte = {
        "",
        "8",
        gute.substr(0, 10),
        gute + '0',
        '0' + gute,
        ' ' + gute,
        gute + ' ',
        gute + '\n',
        gute + '\0',
        "86 095 742 719",
        "8609574 719",
        "           ",
        "8609574271O",
        "ABCDEFGHIJK",
        "8609574271\xB2",
        "-8609574271",
        "+8609574271",
        "8609574271.",
        "86.09574271",
        "0x860957427",
        "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
        std::string(11, '\0'),
        std::string(100'000, '1'),
    };
    for (std::size_t i = 0; i < gute.size(); ++i)
        for (const char zeichen : {'/', ':', ' ', 'a', '\0', '\xB9'}) {
            texte.push_back(gute);
            texte.back()[i] = zeichen;
        }
    for (const std::string& text : texte)
        EXPECT_EQ(pruefeSteuerId(text), FORM) << testing::PrintToString(text);
}

TEST(SteuerId, GoesByTheRulesForNumbersAtRandom) {
    std::mt19937 zufall(20090531);
    std::map<SteuerIdFehler, int> anzahl;
    std::set<char> pruefziffern;
    for (int i = 0; i < 20'000; ++i) {
        std::string zehn = "0123456789";
        std::shuffle(zehn.begin(), zehn.end(), zufall);
        for (auto aenderungen = zufall() % 4; aenderungen > 0; --aenderungen)
            zehn[zufall() % 10] = zehn[zufall() % 10];
        std::string nummer = mitPruefziffer(zehn);
        if (zufall() % 3 == 0)
            nummer.back() = static_cast<char>('0' + zufall() % 10);

        const SteuerIdFehler fehler = pruefeSteuerId(nummer);
        ASSERT_EQ(fehler, erwartet(nummer)) << nummer;
        ++anzahl[fehler];
        if (fehler == KEINER)
            pruefziffern.insert(nummer.back());
    }
    EXPECT_EQ(anzahl.size(), 5u); // all but FORM
    EXPECT_EQ(pruefziffern.size(), 10u);
}

} // namespace
} // namespace steuer
