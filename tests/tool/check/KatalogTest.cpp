#include "check/Katalog.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

using namespace testing;
using namespace werkzeug::check;

TEST(Katalog, HasAtLeastTwentyFiveChecksWithDifferentNames) {
    std::set<std::string> namen;
    for (const Pruefung& pruefung : katalog())
        EXPECT_TRUE(namen.insert(pruefung.name).second) << pruefung.name;
    EXPECT_GE(namen.size(), 25U);
}

TEST(Katalog, EachNameIsInSmallLettersAndEachSentenceIsOne) {
    const std::regex name("[a-z]+(-[a-z0-9]+)*"), satz("[A-Za-z][^.]*(\\.dylib[^.]*)?\\.");
    for (const Pruefung& pruefung : katalog()) {
        EXPECT_TRUE(std::regex_match(pruefung.name, name)) << pruefung.name;
        EXPECT_TRUE(std::regex_match(pruefung.satz, satz)) << pruefung.satz;
        EXPECT_NE(pruefung.pruefe, nullptr);
    }
}

TEST(Katalog, AChecksForerunnersStandBeforeIt) {
    std::set<std::string_view> davor;
    for (const Pruefung& pruefung : katalog()) {
        for (const std::string_view name : pruefung.bautAuf)
            EXPECT_TRUE(davor.contains(name)) << pruefung.name << " builds on " << name;
        davor.insert(pruefung.name);
    }
}

TEST(Katalog, TheNamesThatBuildsOfPluginsUseAreThere) {
    std::set<std::string> namen;
    for (const Pruefung& pruefung : katalog())
        namen.insert(pruefung.name);
    for (const char* const name :
         {"entry-points", "describes", "factories", "unique-symbols", "undefined-symbols"})
        EXPECT_TRUE(namen.contains(name)) << name;
}

TEST(Katalog, TheGuideExplainsEachCheckAndNoOther) {
    std::ifstream datei(ORVO_CHECK_DOC);
    const std::string text((std::istreambuf_iterator<char>(datei)), {});
    std::vector<std::string> namen, erklaerte;
    for (const Pruefung& pruefung : katalog()) {
        namen.emplace_back(pruefung.name);
        EXPECT_THAT(text, HasSubstr(pruefung.satz)) << pruefung.name;
    }
    const std::regex ueberschrift("\n### ([a-z-]+)\n");
    for (std::sregex_iterator i(text.begin(), text.end(), ueberschrift), ende; i != ende; ++i)
        erklaerte.push_back((*i)[1]);
    EXPECT_EQ(erklaerte, namen);
}

TEST(Katalog, TheManualPageNamesEachCheckAndNoOther) {
    std::ifstream datei(ORVO_MAN_PAGE);
    const std::string seite((std::istreambuf_iterator<char>(datei)), {});
    const std::string text = std::regex_replace(seite, std::regex("\\\\-"), "-");
    std::vector<std::string> namen, genannte;
    for (const Pruefung& pruefung : katalog()) {
        namen.emplace_back(pruefung.name);
        EXPECT_THAT(text, HasSubstr(std::string(".IP ") + pruefung.name + "\n" + pruefung.satz + "\n"));
    }
    const std::regex eintrag("\n\\.IP ([a-z-]+)\n");
    for (std::sregex_iterator i(text.begin(), text.end(), eintrag), ende; i != ende; ++i)
        genannte.push_back((*i)[1]);
    EXPECT_EQ(genannte, namen);
}
