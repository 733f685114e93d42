// How a process ends that uses the library: in every state it ends cleanly, frees everything, and makes nothing anew at
// its end.

#include "TestPlugins.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Szenario {
    const char* name;
    const char* plugins;             ///< letters, one each: see `lege`
    std::vector<std::string> ablauf; ///< lines that the process writes in this order, with others in between
    int gestartet;                   ///< how many registries and plugin managers it makes
};

std::string nameVon(const testing::TestParamInfo<Szenario>& info) {
    std::string name;
    bool gross = true;
    for (const char c : std::string(info.param.name)) {
        if (c != ' ')
            name += gross ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        gross = c == ' ';
    }
    return *info.param.plugins ? name + "_" + info.param.plugins : name;
}

void PrintTo(const Szenario& szenario, std::ostream* out) {
    *out << szenario.name << " " << szenario.plugins;
}

struct Ergebnis {
    int status;
    std::string ausgabe;
};

Ergebnis fuehreAus(const std::string& befehl) {
    FILE* const rohr = popen((befehl + " 2>&1").c_str(), "r");
    if (!rohr)
        throw std::runtime_error("cannot run " + befehl);
    Ergebnis ergebnis{};
    char puffer[4096];
    for (std::size_t n; (n = fread(puffer, 1, sizeof puffer, rohr)) > 0;)
        ergebnis.ausgabe.append(puffer, n);
    ergebnis.status = pclose(rohr);
    return ergebnis;
}

std::size_t anzahl(const std::string& text, const std::string& teil) {
    std::size_t n = 0;
    for (std::size_t stelle = 0; (stelle = text.find(teil, stelle)) != std::string::npos;
         stelle += teil.size())
        ++n;
    return n;
}

} // namespace

class ProzessendeTest : public testing::TestWithParam<Szenario> {
protected:
    ProzessendeTest() {
        home_.legeAn("plugins");
        for (const char* p = GetParam().plugins; *p; ++p)
            lege(*p);
    }

    void lege(char art) {
        const std::string pruefung = "produktversion 1.0\nloeschen\ncheck 10 2009\n";
        switch (art) {
        case 'p': // a used one
            return beschreibe("liba", pruefung);
        case 'r': // one that stays open after its first use
            return beschreibe("libb", "resident\n" + pruefung);
        case 'g': // one whose service is a static object
            return beschreibe("libc", "factory gleicherService\n" + pruefung);
        case 'h': // one with hooks
            return beschreibe("libd", "onload zaehleOnLoad\nonunload zaehleOnUnload\n" + pruefung);
        case 'x': // refused ones
            beschreibe("libx", pruefung + "abgelehnt\n");
            home_.schreibe("plugins/liby.dylib", "no library");
            return;
        case 'e':
            home_.kopiere(test_plugins::EndsTheProcess, "plugins/libe.dylib");
            return;
        default:
            throw std::invalid_argument("no such plugin");
        }
    }

    void beschreibe(const std::string& name, const std::string& auftraege) {
        home_.kopiere(test_plugins::DescribedByFile, "plugins/" + name + ".dylib");
        home_.schreibe("plugins/" + name + ".dylib.txt", auftraege);
    }

    Ergebnis lass(const std::string& vorspann = "") const {
        return fuehreAus("ORVO_HOME='" + home_.pfad() + "' ORVO_SZENARIO='" + GetParam().name + "' " +
                         vorspann + " '" PROGRAMM "'");
    }

    const Verzeichnis home_;
};

TEST_P(ProzessendeTest, IsClean) {
    const Ergebnis ergebnis = lass();
    SCOPED_TRACE(ergebnis.ausgabe);
    ASSERT_TRUE(WIFEXITED(ergebnis.status));
    EXPECT_EQ(WEXITSTATUS(ergebnis.status), 0);

    std::size_t stelle = 0;
    for (const std::string& zeile : GetParam().ablauf) {
        stelle = ergebnis.ausgabe.find(zeile + "\n", stelle);
        ASSERT_NE(stelle, std::string::npos) << zeile;
    }
    EXPECT_EQ(anzahl(ergebnis.ausgabe, "nicht gefunden. Starte Manager"),
              static_cast<std::size_t>(GetParam().gestartet));
    // What is loaded after the registry's end is loaded by a new one.
    const std::size_t abbau = ergebnis.ausgabe.rfind("~OrvoErweiterungsManager");
    if (abbau != std::string::npos) {
        EXPECT_EQ(ergebnis.ausgabe.find("Lese Bibliothek", abbau), std::string::npos);
    }
}

TEST_P(ProzessendeTest, LosesNoMemoryAndTouchesNoneThatIsGone) {
    if (std::string(VALGRIND).empty())
        GTEST_SKIP() << "no valgrind here";
    const Ergebnis ergebnis =
        lass(VALGRIND " --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite");
    EXPECT_TRUE(WIFEXITED(ergebnis.status) && WEXITSTATUS(ergebnis.status) == 0) << ergebnis.ausgabe;
}

namespace {

const std::vector<std::string> kAbbau = {"> OrvoErweiterungsManager::~OrvoErweiterungsManager",
                                         "< OrvoErweiterungsManager::~OrvoErweiterungsManager",
                                         "~> OrvoPluginManager()", "~< OrvoPluginManager()"};

/// The lines of the objects' end alone, with the state of the plugins' libraries afterwards.
std::vector<std::string> abbau(const std::string& bibliotheken) {
    std::vector<std::string> zeilen = kAbbau;
    zeilen.insert(zeilen.end(),
                  {"-- zuletzt", "Registry: keine", "Manager: keiner", "Bibliotheken: " + bibliotheken});
    return zeilen;
}

/// The same lines, with a plugin's line between those of the manager.
std::vector<std::string> mitPlugin(std::vector<std::string> zeilen) {
    zeilen.insert(std::find(zeilen.begin(), zeilen.end(), "~< OrvoPluginManager()"), "~< OrvoPluginV1");
    return zeilen;
}

/// The lines before the objects are destroyed, those of their end, and what remains at the end of the process.
std::vector<std::string> ablauf(std::vector<std::string> zeilen) {
    const std::vector<std::string> ende = abbau("zu");
    zeilen.insert(zeilen.end(), ende.begin(), ende.end());
    return zeilen;
}

const std::vector<std::string> kDa = {"Registry: da", "Manager: da", "Bibliotheken: offen"};

std::vector<std::string> da(const std::string& ort) { return {"-- " + ort, kDa[0], kDa[1], kDa[2]}; }

const Szenario kSzenarien[] = {
    {"nichts angefordert", "p", {"-- Ende"}, 0},
    {"leer", "", ablauf({"-- Ende"}), 2},
    {"geladen", "prgh", ablauf({"-- Ende"}), 2},
    {"geladen", "px", ablauf({"-- Ende"}), 2},
    {"nur der Manager", "p", {"-- Ende", "~> OrvoPluginManager()", "-- zuletzt", "Registry: keine"}, 1},
    {"benutzt", "p", ablauf({"Service: geholt", "-- Ende"}), 2},
    {"benutzt", "r", ablauf({"Service: geholt", "-- Ende"}), 2},
    {"Services ausgegeben", "p", ablauf({"Service: geholt", "Service: geholt", "-- Ende"}), 2},
    {"Services ausgegeben", "r", ablauf({"Service: geholt", "Service: geholt", "-- Ende"}), 2},
    {"Services ausgegeben", "g", ablauf({"Service: geholt", "Service: geholt", "-- Ende"}), 2},
    {"Services ausgegeben", "h", ablauf({"Service: geholt", "Service: geholt", "-- Ende"}), 2},
    {"einmal zu oft zurueckgegeben", "p", ablauf({"Service: geholt", "-- Ende"}), 2},
    {"im statischen Initialisierer", "p", ablauf({"Service: geholt", "-- Ende"}), 2},
    {"im statischen Destruktor davor", "p", ablauf(da("vorher")), 2},
    {"im letzten statischen Destruktor", "p", {"-- Ende", "-- zuletzt", kDa[0], kDa[1]}, 2},
    {"im Destruktor der Programmdatei", "p", {"-- Ende", "-- ganz zuletzt", "Registry: keine"}, 0},
    {"atexit davor", "p", ablauf({"Service: geholt", "-- Ende"}), 2},
    {"atexit danach", "p", ablauf(da("atexit")), 2},
    {"erst im atexit", "p", ablauf({"-- Ende", "-- atexit", kDa[0], kDa[1]}), 2},
    {"Einstellung danach", "p", ablauf({"Service: geholt", "-- Ende"}), 2},
    {"eigener Manager danach",
     "pg",
     {"Service: geholt", "-- Ende", "~< OrvoPluginManager()", "Selbst geladen: resident",
      "Selbst geladen: nicht resident", "-- zuletzt", "Registry: keine", "Manager: keiner",
      "Bibliotheken: zu"},
     2},
    {"selbst abgebaut", "p", ablauf({"Service: geholt", "-- neu", "Service: geholt", "-- Ende"}), 4},
    {"quick_exit", "p", {"Service: geholt"}, 2},
    // What the plugin gets when it is closed: the registry is gone, the manager is being destroyed.
    {"Services ausgegeben",
     "e",
     {"Service: geholt", "-- Ende", "< OrvoErweiterungsManager::~OrvoErweiterungsManager",
      "~> OrvoPluginManager()", "Plugin fragt nach Registry: keiner", "Plugin fragt nach Manager: da",
      "~< OrvoPluginManager()", "-- zuletzt", "Registry: keine", "Manager: keiner", "Bibliotheken: zu"},
     2},
    // A plugin that ends the process from its entry point is never closed: its code is still running.
    {"exit beim Start", "e", {"-- zuletzt", "Registry: keine", "Manager: keiner", "Bibliotheken: offen"}, 2},
    {"exit beim Nachladen aus types", "pe", mitPlugin(abbau("offen")), 2},
    {"exit beim Nachladen aus initialize", "pe", mitPlugin(abbau("offen")), 2},
    {"exit aus onload", "e", abbau("zu"), 2},
    {"exit aus factory", "e", abbau("zu"), 2},
};

} // namespace

INSTANTIATE_TEST_SUITE_P(InState, ProzessendeTest, testing::ValuesIn(kSzenarien), nameVon);
