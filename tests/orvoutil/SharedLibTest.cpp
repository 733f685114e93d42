#include <orvoutil/SharedLib.h>

#include "CurrentDirectory.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <thread>

using orvo::orvoutil::SharedLib;
using namespace testing;

namespace {

MATCHER_P(NamesOnce, text, "") {
    const std::string gesucht = text;
    const std::size_t stelle = arg.find(gesucht);
    return stelle != std::string::npos && arg.find(gesucht, stelle + 1) == std::string::npos &&
           arg.size() > gesucht.size() + 10; // and a reason
}

template <class Funktion>
Funktion als(void* adresse) {
    return reinterpret_cast<Funktion>(adresse);
}

/// The library that contains a function of this process.
std::string dateiMit(const void* funktion) {
    Dl_info bibliothek{};
    dladdr(funktion, &bibliothek);
    return bibliothek.dli_fname;
}

} // namespace

TEST(SharedLib, DoesNotTouchTheFileUntilAsked) {
    const SharedLib lib("/gibt/es/nicht.so");
    EXPECT_EQ(lib.getName(), "/gibt/es/nicht.so");
    EXPECT_FALSE(lib.isLoaded());
    EXPECT_EQ(lib.getLastError(), "");
}

TEST(SharedLib, OpensCallsAndCloses) {
    SharedLib lib(HAS_SYMBOLS);
    EXPECT_FALSE(istEingeblendet(HAS_SYMBOLS));
    ASSERT_TRUE(lib.load()) << lib.getLastError();
    EXPECT_TRUE(lib.isLoaded());
    EXPECT_TRUE(istEingeblendet(HAS_SYMBOLS));
    void* const symbol = lib.getSymbol("zweiundvierzig");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(als<int (*)()>(symbol)(), 42);
    EXPECT_TRUE(lib.unload());
    EXPECT_FALSE(lib.isLoaded());
    EXPECT_FALSE(istEingeblendet(HAS_SYMBOLS));
    EXPECT_EQ(lib.getLastError(), "");
}

TEST(SharedLib, OpensAtOnceWhenToldSo) {
    const SharedLib lib(HAS_SYMBOLS, true);
    EXPECT_TRUE(lib.isLoaded());
    const SharedLib fehlt("/gibt/es/nicht.so", true);
    EXPECT_FALSE(fehlt.isLoaded());
    EXPECT_THAT(fehlt.getLastError(), NamesOnce("/gibt/es/nicht.so"));
}

TEST(SharedLib, OpensOnceHoweverOftenItIsAsked) {
    SharedLib lib(HAS_SYMBOLS);
    EXPECT_TRUE(lib.load());
    EXPECT_TRUE(lib.load());
    EXPECT_TRUE(lib.unload());
    EXPECT_FALSE(istEingeblendet(HAS_SYMBOLS));
    EXPECT_FALSE(lib.unload());
    EXPECT_TRUE(lib.load());
    EXPECT_NE(lib.getSymbol("zweiundvierzig"), nullptr);
}

TEST(SharedLib, StaysOpenWhenItsFileIsGone) {
    const Verzeichnis verzeichnis;
    SharedLib lib(verzeichnis.kopiere(HAS_SYMBOLS, "lib.so"));
    ASSERT_TRUE(lib.load());
    verzeichnis.entferne("lib.so");
    EXPECT_TRUE(lib.load());
    EXPECT_TRUE(lib.unload());
    EXPECT_FALSE(lib.load());
    EXPECT_TRUE(lib.scheiterteVorDemOeffnen());
    verzeichnis.kopiere(HAS_SYMBOLS, "lib.so");
    EXPECT_TRUE(lib.load());
    EXPECT_FALSE(lib.scheiterteVorDemOeffnen());
}

TEST(SharedLib, SaysWhyTheSystemDidNotCloseIt) {
    const SharedLib braucht(NEEDS_ANOTHER, true); // keeps the other one mapped
    SharedLib lib(NEEDED_BY_ANOTHER, true);
    void* const griff = dlopen(NEEDED_BY_ANOTHER, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(griff, nullptr) << dlerror();
    dlclose(griff);
    dlclose(griff); // the use that the object holds
    EXPECT_FALSE(lib.unload());
    EXPECT_THAT(lib.getLastError(), NamesOnce(lib.getName()));
    EXPECT_FALSE(lib.isLoaded());
    EXPECT_EQ(lib.getOeffnung(), 0u);
}

TEST(SharedLib, ClosesWhenItGoes) {
    { const SharedLib lib(HAS_SYMBOLS, true); }
    EXPECT_FALSE(istEingeblendet(HAS_SYMBOLS));
    std::unique_ptr<SharedLib> lib = std::make_unique<SharedLib>(HAS_SYMBOLS, true);
    const SharedLib zweites(HAS_SYMBOLS, true);
    lib.reset();
    EXPECT_TRUE(istEingeblendet(HAS_SYMBOLS));
}

TEST(SharedLib, KeepsItsSymbolsToItself) {
    const SharedLib lib(HAS_SYMBOLS, true);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "zweiundvierzig"), nullptr);
}

TEST(SharedLib, RefusesALibraryWithAMissingSymbol) {
    SharedLib lib(MISSES_A_SYMBOL);
    EXPECT_FALSE(lib.load());
    EXPECT_THAT(lib.getLastError(), NamesOnce(MISSES_A_SYMBOL));
    EXPECT_THAT(lib.getLastError(), HasSubstr("gibt_es_nirgends"));
    EXPECT_FALSE(istEingeblendet(MISSES_A_SYMBOL));
}

TEST(SharedLib, RefusesWhatIsNoLibrary) {
    const Verzeichnis verzeichnis;
    verzeichnis.legeAn("verzeichnis");
    verzeichnis.schreibe("leer", "");
    verzeichnis.schreibe("text", "kein ELF, aber lang genug, um wie etwas auszusehen");
    for (const char* const name : {"verzeichnis", "leer", "text", "fehlt", "text/darunter"}) {
        SharedLib lib(verzeichnis.pfad(name));
        EXPECT_FALSE(lib.load());
        EXPECT_FALSE(lib.isLoaded());
        EXPECT_THAT(lib.getLastError(), NamesOnce(verzeichnis.pfad(name)));
    }
}

TEST(SharedLib, RefusesAFileThatMustNotBeRead) {
    const Verzeichnis verzeichnis;
    const std::string zu = verzeichnis.kopiere(HAS_SYMBOLS, "zu.so");
    ASSERT_EQ(chmod(verzeichnis.pfad().c_str(), 0755), 0);
    ASSERT_EQ(chmod(zu.c_str(), 0), 0);
    const auto oeffneAlsNiemand = [&] {
        constexpr uid_t kNiemand = 65534;
        if (geteuid() == 0 && seteuid(kNiemand) != 0)
            std::_Exit(2);
        SharedLib lib(zu);
        std::_Exit(!lib.load() && !lib.getLastError().empty() ? 0 : 1);
    };
    EXPECT_EXIT(oeffneAlsNiemand(), ExitedWithCode(0), "");
}

TEST(SharedLib, RefusesNamesThatNameNoFile) {
    for (const std::string& name : {std::string(), HAS_SYMBOLS + std::string("\0", 1)}) {
        SharedLib lib(name, true);
        EXPECT_FALSE(lib.isLoaded());
        EXPECT_EQ(lib.getName(), name);
        EXPECT_THAT(lib.getLastError(), HasSubstr("Name ist ung\xFCltig"));
    }
}

TEST(SharedLib, TakesANameWithoutASlashForAFile) {
    const Verzeichnis verzeichnis;
    verzeichnis.kopiere(HAS_SYMBOLS, "eigene.so");
    const CurrentDirectory dort(verzeichnis.pfad());
    SharedLib eigene("eigene.so");
    EXPECT_TRUE(eigene.load()) << eigene.getLastError();
    EXPECT_EQ(eigene.getName(), "eigene.so");

    verzeichnis.kopiere(MISSES_A_SYMBOL, "unvollstaendige.so");
    SharedLib unvollstaendige("unvollstaendige.so");
    EXPECT_FALSE(unvollstaendige.load());
    EXPECT_THAT(unvollstaendige.getLastError(), NamesOnce("unvollstaendige.so"));

    SharedLib desSystems("libc.so.6"); // exists, but not in this directory
    EXPECT_FALSE(desSystems.load());
    EXPECT_THAT(desSystems.getLastError(), NamesOnce("libc.so.6"));
}

TEST(SharedLib, SaysWhySymbolsAreNotFound) {
    SharedLib lib(HAS_SYMBOLS, true);
    for (const std::string name : {"", "fehlt", "zweiundvierzi", "zweiundvierzig2"}) {
        EXPECT_EQ(lib.getSymbol(name), nullptr);
        EXPECT_THAT(lib.getLastError(), StartsWith(HAS_SYMBOLS ": Symbol \"" + name + "\" nicht gefunden. "));
    }
    EXPECT_EQ(lib.getSymbol(std::string("zweiundvierzig\0x", 16)), nullptr);
    EXPECT_THAT(lib.getLastError(), StartsWith(HAS_SYMBOLS));
}

TEST(SharedLib, TakesASymbolWithoutAnAddressAsNotFound) {
    SharedLib lib(HAS_SYMBOLS, true);
    dlsym(RTLD_DEFAULT, "hinterlaesst_einen_Fehlertext");
    EXPECT_EQ(lib.getSymbol("ohne_adresse"), nullptr);
    EXPECT_THAT(lib.getLastError(), HasSubstr("\"ohne_adresse\" nicht gefunden"));
    EXPECT_THAT(lib.getLastError(), Not(HasSubstr("hinterlaesst")));
}

TEST(SharedLib, SaysThatItIsNotOpen) {
    SharedLib lib(HAS_SYMBOLS);
    EXPECT_FALSE(lib.unload());
    EXPECT_THAT(lib.getLastError(), NamesOnce(HAS_SYMBOLS));
    EXPECT_THAT(lib.getLastError(), HasSubstr("nicht ge\xF6"
                                              "ffnet"));
    EXPECT_EQ(lib.getSymbol("zweiundvierzig"), nullptr);
    EXPECT_THAT(lib.getLastError(), HasSubstr("nicht ge\xF6"
                                              "ffnet"));
}

TEST(SharedLib, ForgetsSymbolsWhenItIsClosed) {
    SharedLib lib(HAS_SYMBOLS, true);
    EXPECT_NE(lib.getSymbol("zweiundvierzig"), nullptr);
    EXPECT_TRUE(lib.unload());
    EXPECT_EQ(lib.getSymbol("zweiundvierzig"), nullptr);
    EXPECT_TRUE(lib.load());
    void* const symbol = lib.getSymbol("zweiundvierzig");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(als<int (*)()>(symbol)(), 42);
}

TEST(SharedLib, FindsManySymbolsAgainAndAgain) {
    SharedLib lib(dateiMit(dlsym(RTLD_DEFAULT, "sysconf")), true); // the system's own, which has many
    ASSERT_TRUE(lib.isLoaded()) << lib.getLastError();
    const char* const namen[] = {"confstr", "sysconf", "nice", "getpid", "getuid",  "labs",
                                 "ldiv",    "a64l",    "l64a", "ffs",    "hcreate", "hdestroy"};
    std::map<std::string, void*> gefundene;
    for (const char* name : namen)
        EXPECT_NE(gefundene[name] = lib.getSymbol(name), nullptr) << name;
    EXPECT_EQ(lib.getSymbol("fehlt"), nullptr);
    for (const char* name : namen) {
        EXPECT_EQ(lib.getSymbol(name), gefundene[name]) << name;
        EXPECT_EQ(lib.getLastError(), "") << name;
    }
}

TEST(SharedLib, ForgetsTheErrorWithTheNextSuccess) {
    SharedLib lib(HAS_SYMBOLS);
    const auto fehler = [&] {
        lib.getSymbol("fehlt");
        return !lib.getLastError().empty();
    };
    EXPECT_TRUE(fehler());
    EXPECT_TRUE(lib.load());
    EXPECT_EQ(lib.getLastError(), "");
    EXPECT_TRUE(fehler());
    EXPECT_TRUE(lib.load());
    EXPECT_EQ(lib.getLastError(), "");
    EXPECT_TRUE(fehler());
    EXPECT_NE(lib.getSymbol("zweiundvierzig"), nullptr);
    EXPECT_EQ(lib.getLastError(), "");
    EXPECT_TRUE(fehler());
    EXPECT_TRUE(lib.unload());
    EXPECT_EQ(lib.getLastError(), "");
}

TEST(SharedLib, NumbersItsOpenings) {
    SharedLib lib(HAS_SYMBOLS);
    SharedLib andere(HAS_SYMBOLS);
    EXPECT_EQ(lib.getOeffnung(), 0u);
    ASSERT_TRUE(lib.load());
    ASSERT_TRUE(andere.load());
    const auto erste = lib.getOeffnung();
    EXPECT_NE(erste, 0u);
    EXPECT_NE(erste, andere.getOeffnung());
    ASSERT_TRUE(lib.load()); // it is open already
    EXPECT_EQ(lib.getOeffnung(), erste);
    ASSERT_TRUE(lib.unload());
    EXPECT_EQ(lib.getOeffnung(), 0u);
    ASSERT_TRUE(lib.load());
    EXPECT_GT(lib.getOeffnung(), erste);
    std::uintptr_t andererFaden = 0;
    std::thread([&] { andererFaden = (lib.unload(), lib.load(), lib.getOeffnung()); }).join();
    EXPECT_GT(andererFaden, andere.getOeffnung());
}

TEST(SharedLib, KnowsWhatLiesInItAndInWhatItBrought) {
    SharedLib frueheres(HAS_SYMBOLS, true);
    SharedLib lib(NEEDS_ANOTHER, true);
    ASSERT_TRUE(lib.isLoaded()) << lib.getLastError();
    void* const eigenes = lib.getSymbol("ort_des_mitgebrachten");
    ASSERT_NE(eigenes, nullptr);
    const void* const mitgebrachtes = als<const void* (*)()>(eigenes)();
    ASSERT_TRUE(istEingeblendet(NEEDED_BY_ANOTHER));
    static int eigeneVariable;
    const auto aufHalde = std::make_unique<int>();

    EXPECT_TRUE(lib.enthaelt(eigenes));
    EXPECT_TRUE(lib.enthaelt(mitgebrachtes));
    EXPECT_FALSE(lib.enthaelt(frueheres.getSymbol("zweiundvierzig")));
    EXPECT_FALSE(lib.enthaelt(nullptr));
    EXPECT_FALSE(lib.enthaelt(&eigeneVariable));
    EXPECT_FALSE(lib.enthaelt(&lib));
    EXPECT_FALSE(lib.enthaelt(aufHalde.get()));
    EXPECT_FALSE(lib.enthaelt(reinterpret_cast<const void*>(&std::strlen)));

    ASSERT_TRUE(lib.unload());
    EXPECT_FALSE(lib.enthaelt(eigenes));
}

TEST(SharedLib, KnowsItsBoundsToTheByte) {
    SharedLib lib(HAS_SYMBOLS, true);
    struct Segmente {
        const char* anfang = nullptr;
        const char* endeDesErsten = nullptr;
        const char* endeDesLetzten = nullptr; ///< in memory, which the file may fill only in part
    } segmente;
    const auto suche = [](dl_phdr_info* bibliothek, std::size_t, void* daten) {
        if (std::string(bibliothek->dlpi_name) != HAS_SYMBOLS)
            return 0;
        const auto* segment = bibliothek->dlpi_phdr;
        while (segment->p_type != PT_LOAD)
            ++segment;
        const auto anfang = reinterpret_cast<const char*>(bibliothek->dlpi_addr + segment->p_vaddr);
        auto& gefundene = *static_cast<Segmente*>(daten);
        gefundene = {anfang, anfang + segment->p_memsz};
        for (; segment != bibliothek->dlpi_phdr + bibliothek->dlpi_phnum; ++segment)
            if (segment->p_type == PT_LOAD)
                gefundene.endeDesLetzten = reinterpret_cast<const char*>(bibliothek->dlpi_addr +
                                                                         segment->p_vaddr + segment->p_memsz);
        return 1;
    };
    ASSERT_EQ(dl_iterate_phdr(suche, &segmente), 1);
    EXPECT_TRUE(lib.enthaelt(segmente.anfang));
    EXPECT_FALSE(lib.enthaelt(segmente.anfang - 1));
    EXPECT_TRUE(lib.enthaelt(segmente.endeDesErsten - 1));
    EXPECT_FALSE(lib.enthaelt(segmente.endeDesErsten));
    EXPECT_TRUE(lib.enthaelt(segmente.endeDesLetzten - 1));
}

TEST(SharedLib, DoesNotCountWhatWasThereBeforeItAsBroughtAlong) {
    const SharedLib gebraucht(NEEDED_BY_ANOTHER, true);
    SharedLib lib(NEEDS_ANOTHER, true);
    void* const eigenes = lib.getSymbol("ort_des_mitgebrachten");
    ASSERT_NE(eigenes, nullptr);
    const void* const schonDagewesenes = als<const void* (*)()>(eigenes)();
    EXPECT_FALSE(lib.enthaelt(schonDagewesenes));
    EXPECT_TRUE(gebraucht.enthaelt(schonDagewesenes));
}

TEST(SharedLib, NeverTakesWhatHoldsItsOwnCodeForAPartOfAnother) {
    SharedLib lib(LIBORVOUTIL, true); // no library loaded after it holds this class
    ASSERT_TRUE(lib.isLoaded()) << lib.getLastError();
    void* const eigenes = lib.getSymbol("_ZN4orvo8orvoutil9SharedLibD1Ev");
    ASSERT_NE(eigenes, nullptr);
    EXPECT_FALSE(lib.enthaelt(eigenes));
}

TEST(SharedLib, RefusesNamesThatTheLoaderWouldChange) {
    const Verzeichnis verzeichnis;
    for (const char* const name : {"$ORIGIN", "$LIB", "$PLATFORM", "${ORIGIN}", "${LIB}", "${PLATFORM}"}) {
        SharedLib lib(verzeichnis.kopiere(HAS_SYMBOLS, std::string("x") + name), true);
        EXPECT_TRUE(lib.scheiterteVorDemOeffnen());
        EXPECT_THAT(lib.getLastError(), EndsWith(std::string("Platzhalter im Namen: ") + name));
    }
    struct {
        const char* name;
        const char* wort;
    } const mitten[] = {{"${LIB}x.so", "${LIB}"}, {"$LIB.so", "$LIB"},    {"$$LIB", "$LIB"},
                        {"$a$LIB", "$LIB"},       {"$LIB@", "$LIB"},      {"$LIB[", "$LIB"},
                        {"$LIB`", "$LIB"},        {"$LIB{", "$LIB"},      {"$LIB/x", "$LIB"},
                        {"$LIB:", "$LIB"},        {"$LIB$ORIGIN", "$LIB"}};
    for (const auto& [name, wort] : mitten) {
        SharedLib lib(verzeichnis.kopiere(HAS_SYMBOLS, name), true);
        EXPECT_THAT(lib.getLastError(), EndsWith(std::string("Platzhalter im Namen: ") + wort));
    }
    for (const char* const name :
         {"$", "a$", "$ORIGINAL", "${ORIGIN", "$origin", "$LIB_", "${}", "$PLATFORM2", "${LIB", "$LIBA",
          "$LIBZ", "$LIBa", "$LIBz", "$LIB0", "$LIB9"}) {
        SharedLib lib(verzeichnis.kopiere(HAS_SYMBOLS, name), true);
        EXPECT_TRUE(lib.isLoaded()) << lib.getLastError();
    }
}

TEST(SharedLib, LooksAtTheFileBeforeTheLoaderDoes) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.kopiere(HAS_SYMBOLS, "kurz.so");
    ASSERT_EQ(truncate(pfad.c_str(), 4096), 0); // the loader would crash on it
    SharedLib lib(pfad);
    EXPECT_FALSE(lib.load());
    EXPECT_TRUE(lib.scheiterteVorDemOeffnen());
    EXPECT_THAT(lib.getLastError(), StartsWith(pfad + ": abgeschnitten: "));
}

TEST(SharedLib, HasItsOperationsInAFixedOrder) {
    SharedLib lib(HAS_SYMBOLS);
    void** const tabelle = *reinterpret_cast<void***>(&lib); // the destructor has two slots
    EXPECT_EQ(als<const std::string& (*)(const SharedLib*)>(tabelle[2])(&lib), HAS_SYMBOLS);
    EXPECT_FALSE(als<bool (*)(const SharedLib*)>(tabelle[3])(&lib));
    EXPECT_TRUE(als<bool (*)(SharedLib*)>(tabelle[4])(&lib));
    EXPECT_TRUE(lib.isLoaded());
    void* const symbol =
        als<void* (*)(SharedLib*, const std::string&)>(tabelle[6])(&lib, std::string("zweiundvierzig"));
    EXPECT_NE(symbol, nullptr);
    EXPECT_EQ(als<std::string (*)(const SharedLib*)>(tabelle[7])(&lib), "");
    EXPECT_TRUE(als<bool (*)(const SharedLib*, const void*)>(tabelle[8])(&lib, symbol));
    EXPECT_TRUE(als<bool (*)(SharedLib*)>(tabelle[5])(&lib));
    EXPECT_FALSE(lib.isLoaded());
}

TEST(SharedLib, TellsAFaultOfTheFileFromARefusalByTheSystem) {
    SharedLib fehlend("/gibt/es/nicht.dylib");
    EXPECT_FALSE(fehlend.load());
    EXPECT_TRUE(fehlend.scheiterteVorDemOeffnen());
    SharedLib ohneSymbol(MISSES_A_SYMBOL);
    EXPECT_FALSE(ohneSymbol.load());
    EXPECT_FALSE(ohneSymbol.scheiterteVorDemOeffnen());
}
