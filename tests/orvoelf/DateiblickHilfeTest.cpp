// The look at libraries that a library needs ("Hilfe": help) and that the loader searches relative to its directory.

#include <orvoelf/Dateiblick.h>

#include <orvoutil/SharedLib.h>

#include "ElfDatei.h"
#include "orvoutil/CurrentDirectory.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>

using namespace orvo::orvoelf;
using orvo::orvoutil::SharedLib;

namespace {

constexpr char kName[] = "libhilfe.so";
constexpr char kAbgeschnitten[] =
    "ben\xF6tigte Bibliothek libhilfe.so: abgeschnitten: Abschnittstabelle endet hinter der Datei";

class DateiblickHilfe : public testing::Test {
protected:
    /// Makes the library that needs another one, with that search path.
    std::string lege(const std::string& suchpfad, const std::string& name = "braucht.so",
                     std::int64_t tag = DT_RUNPATH) const {
        ElfDatei datei(NEEDS_HILFE);
        auto& eintrag = datei.eintrag(datei.hat(DT_RUNPATH) ? DT_RUNPATH : DT_RPATH);
        eintrag.d_tag = tag;
        char* const text = &datei.inTabelle<char>(DT_STRTAB, eintrag.d_un.d_val);
        EXPECT_LE(suchpfad.size(), std::strlen(text));
        std::strcpy(text, suchpfad.c_str());
        return verzeichnis.schreibe(name, datei.bytes);
    }
    void legeAbgeschnitten(const std::string& name = kName) const {
        const std::string pfad = verzeichnis.kopiere(HILFE, name);
        std::filesystem::resize_file(pfad, std::filesystem::file_size(pfad) - 1);
    }
    static std::string grund(const std::string& pfad) {
        const Dateibefund befund = blickeAufDatei(pfad);
        EXPECT_EQ(befund.mangel,
                  befund.grund.empty() ? Dateimangel::KEINER : Dateimangel::BENOETIGTE_BIBLIOTHEK);
        return befund.grund;
    }

    const Verzeichnis verzeichnis;
};

} // namespace

TEST_F(DateiblickHilfe, AWholeOneOrNonePasses) {
    const std::string pfad = lege("$ORIGIN");
    EXPECT_EQ(grund(pfad), "");
    EXPECT_FALSE(SharedLib(pfad, true).isLoaded()) << "the loader says what is missing";
    verzeichnis.kopiere(HILFE, kName);
    EXPECT_EQ(grund(pfad), "");
    EXPECT_TRUE(SharedLib(pfad, true).isLoaded());
}

TEST_F(DateiblickHilfe, ACutOneIsRefusedWhereTheLoaderWouldFindItFirst) {
    legeAbgeschnitten();
    legeAbgeschnitten("unten/libhilfe.so");
    for (const char* const suchpfad :
         {"$ORIGIN", "${ORIGIN}", "$ORIGIN/", "$ORIGIN/unten", "${ORIGIN}/unten/../", "$ORIGIN:/lib",
          "$ORIGIN/leer:$ORIGIN", "$ORIGIN:", "$ORIGIN/unten:$LIB"})
        EXPECT_EQ(grund(lege(suchpfad)), kAbgeschnitten) << suchpfad;
    EXPECT_EQ(grund(lege("$ORIGIN", "braucht.so", DT_RPATH)), kAbgeschnitten);
}

TEST_F(DateiblickHilfe, NothingElseIsLookedAt) {
    legeAbgeschnitten();
    const std::string hier = verzeichnis.pfad();
    for (const std::string& suchpfad :
         {std::string(), std::string("."), std::string(":$ORIGIN"), std::string("/lib:$ORIGIN"),
          std::string("$LIB:$ORIGIN"), std::string("$ORIGIN/$LIB/.."), std::string("$ORIGINAL"),
          std::string("${ORIGIN"), std::string("$ORIGIN.:$ORIGIN"), std::string("$ORIGIN/$LIB:$ORIGIN"),
          hier.substr(0, 40)})
        EXPECT_EQ(grund(lege(suchpfad)), "") << suchpfad;
}

TEST_F(DateiblickHilfe, ANameWithADirectoryOrWithoutALetterIsNotSearched) {
    legeAbgeschnitten("u/bhilfe.so");
    ElfDatei datei(lege("$ORIGIN"));
    ElfDatei ohneNamen = datei;
    for (std::size_t i = 0; (i = datei.bytes.find(kName, i)) != std::string::npos;)
        datei.bytes.replace(i, 2, "u/");
    EXPECT_EQ(grund(verzeichnis.schreibe("braucht.so", datei.bytes)), "");
    ohneNamen.eintrag(DT_NEEDED).d_un.d_val = ohneNamen.eintrag(DT_STRSZ).d_un.d_val - 1;
    EXPECT_EQ(grund(verzeichnis.schreibe("braucht.so", ohneNamen.bytes)), "");
}

TEST_F(DateiblickHilfe, TheLaterOfTwoKindsOfSearchPathCounts) {
    legeAbgeschnitten();
    ElfDatei datei(lege("$ORIGIN"));
    const auto text = datei.eintrag(DT_RUNPATH).d_un.d_val;
    datei.nebensache() = {DT_RPATH, {0}};
    EXPECT_EQ(grund(verzeichnis.schreibe("braucht.so", datei.bytes)), kAbgeschnitten);
    datei.eintrag(DT_RUNPATH).d_un.d_val = 0;
    datei.eintrag(DT_RPATH).d_un.d_val = text;
    EXPECT_EQ(grund(verzeichnis.schreibe("braucht.so", datei.bytes)), "");
}

TEST_F(DateiblickHilfe, IsSearchedBesideALibraryThatIsNamedWithoutADirectory) {
    lege("$ORIGIN");
    legeAbgeschnitten();
    const CurrentDirectory dort(verzeichnis.pfad());
    SharedLib lib("braucht.so");
    EXPECT_FALSE(lib.load());
    EXPECT_TRUE(lib.scheiterteVorDemOeffnen()) << lib.getLastError();
}

TEST_F(DateiblickHilfe, ThatOfALibraryThatIsNeededItselfIsLookedAtToo) {
    const std::string pfad = lege("$ORIGIN/unten");
    lege("$ORIGIN/..", "unten/libhilfe.so"); // needs one of the same name, which is itself: no end
    EXPECT_EQ(grund(pfad), "");
    ElfDatei datei(verzeichnis.pfad("unten/libhilfe.so"));
    std::string& bytes = datei.bytes;
    for (std::size_t i = 0; (i = bytes.find(kName, i)) != std::string::npos;)
        bytes[i] = 'L';
    verzeichnis.schreibe("unten/libhilfe.so", bytes); // needs Libhilfe.so
    EXPECT_EQ(grund(pfad), "");
    legeAbgeschnitten("Libhilfe.so");
    EXPECT_EQ(grund(pfad),
              "ben\xF6tigte Bibliothek Libhilfe.so: abgeschnitten: Abschnittstabelle endet hinter "
              "der Datei");
}

TEST_F(DateiblickHilfe, OneThatNeedsItselfIsLookedAtOnce) { EXPECT_EQ(grund(lege("$ORIGIN", kName)), ""); }

TEST_F(DateiblickHilfe, OneForAnotherProcessorIsPassedOverAsByTheLoader) {
    const std::string pfad = lege("$ORIGIN/anders:$ORIGIN");
    ElfDatei andere(HILFE);
    ++andere.kopf().e_machine;
    verzeichnis.schreibe("anders/libhilfe.so", andere.bytes);
    verzeichnis.kopiere(HILFE, kName);
    EXPECT_EQ(grund(pfad), "");
    EXPECT_TRUE(SharedLib(pfad, true).isLoaded());
    legeAbgeschnitten();
    EXPECT_EQ(grund(pfad), kAbgeschnitten);
}

TEST_F(DateiblickHilfe, OneThatTheProcessHasIsNotOpenedAgain) {
    const std::string pfad = lege("$ORIGIN");
    legeAbgeschnitten();
    {
        const SharedLib geladene(HILFE, true);
        ASSERT_TRUE(geladene.isLoaded());
        EXPECT_EQ(grund(pfad), "");
        EXPECT_TRUE(SharedLib(pfad, true).isLoaded());
    }
    EXPECT_EQ(grund(pfad), kAbgeschnitten);
}

TEST_F(DateiblickHilfe, AFifoInItsPlaceIsRefusedAndNotWaitedFor) {
    const std::string pfad = lege("$ORIGIN");
    ASSERT_EQ(mkfifo(verzeichnis.pfad(kName).c_str(), 0600), 0);
    EXPECT_EQ(grund(pfad), "ben\xF6tigte Bibliothek libhilfe.so: keine gew\xF6hnliche Datei");
}
