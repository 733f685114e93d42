#include <orvoutil/DirReader.h>

#include "CurrentDirectory.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

using namespace testing;
using orvo::orvoutil::DirReader;

namespace {

void verweise(const std::string& ziel, const std::string& name) {
    ASSERT_EQ(symlink(ziel.c_str(), name.c_str()), 0);
}

/// The error that readdir reports once, after this many entries.
struct Lesefehler {
    int nummer = 0;
    int nachEintraegen = 0;
};
Lesefehler lesefehler;

/// Changes each entry that readdir hands out, when it is set.
std::function<void(dirent&)> aendereEintrag;

/// Whether a listing with this pattern shows the name.
bool passt(const std::string& name, const std::string& muster) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe(name, "");
    return !DirReader(verzeichnis.pfad(), muster).getFiles().empty();
}

} // namespace

/// Replaces the system's, which has another name where large files are not all files.
extern "C" dirent* readdir(DIR* verzeichnis) {
    static const auto lies =
        reinterpret_cast<dirent* (*)(DIR*)>(dlsym(RTLD_NEXT, sizeof(long) == 8 ? "readdir" : "readdir64"));
    if (lesefehler.nummer != 0 && lesefehler.nachEintraegen-- == 0) {
        errno = std::exchange(lesefehler.nummer, 0);
        return nullptr;
    }
    dirent* const eintrag = lies(verzeichnis);
    if (eintrag && aendereEintrag)
        aendereEintrag(*eintrag);
    return eintrag;
}

TEST(DirReader, ListsFilesAndDirectoriesApart) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("datei.txt", "x");
    verzeichnis.legeAn("unter");
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_THAT(leser.getFiles(), ElementsAre("datei.txt"));
    EXPECT_THAT(leser.getDirectories(), ElementsAre("unter"));
}

TEST(DirReader, SortsNamesBytewise) {
    const Verzeichnis verzeichnis;
    for (const char* const name : {"b", "a", "B", "a.b", "ab", "\xFC", "\xC3\xBC", "10", "9"}) {
        verzeichnis.schreibe(name, "");
        verzeichnis.legeAn(std::string("d") + name);
    }
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_THAT(leser.getFiles(), ElementsAre("10", "9", "B", "a", "a.b", "ab", "b", "\xC3\xBC", "\xFC"));
    EXPECT_THAT(leser.getDirectories(),
                ElementsAre("d10", "d9", "dB", "da", "da.b", "dab", "db", "d\xC3\xBC", "d\xFC"));
}

TEST(DirReader, AppliesThePatternToFilesOnly) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("ohne", "");
    verzeichnis.schreibe("mit.dylib", "");
    verzeichnis.legeAn("unter");
    const DirReader leser(verzeichnis.pfad(), "*.*");
    EXPECT_THAT(leser.getFiles(), ElementsAre("mit.dylib"));
    EXPECT_THAT(leser.getDirectories(), ElementsAre("unter"));
}

TEST(DirReader, LeavesHiddenEntriesOut) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe(".versteckt.dylib", "");
    verzeichnis.schreibe("..x", "");
    verzeichnis.legeAn(".git");
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_THAT(leser.getFiles(), IsEmpty());
    EXPECT_THAT(leser.getDirectories(), IsEmpty());
}

TEST(DirReader, TakesLinksToFilesAndNoLinksToDirectories) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("datei.x", "");
    verzeichnis.legeAn("unter");
    verweise("datei.x", verzeichnis.pfad("verweis.x"));
    verweise("verweis.x", verzeichnis.pfad("verweis_auf_verweis.x"));
    verweise("unter", verzeichnis.pfad("verweis_auf_unter.x"));
    verweise(".", verzeichnis.pfad("kreis.x"));
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_THAT(leser.getFiles(), ElementsAre("datei.x", "verweis.x", "verweis_auf_verweis.x"));
    EXPECT_THAT(leser.getDirectories(), ElementsAre("unter"));
}

TEST(DirReader, LeavesDanglingAndCircularLinksOut) {
    const Verzeichnis verzeichnis;
    verweise("gibt es nicht", verzeichnis.pfad("lose"));
    verweise("eins", verzeichnis.pfad("zwei"));
    verweise("zwei", verzeichnis.pfad("eins"));
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_THAT(leser.getFiles(), IsEmpty());
    EXPECT_THAT(leser.getDirectories(), IsEmpty());
    EXPECT_EQ(leser.getFehler(), "");
}

TEST(DirReader, NamesALinkOfWhichTheSystemDoesNotTellWhereItLeads) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("datei.x", "");
    verweise(std::string(300, 'n'), verzeichnis.pfad("verweis.x"));
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_THAT(leser.getFiles(), ElementsAre("datei.x"));
    EXPECT_EQ(leser.getFehler(),
              "Verzeichnis nicht lesbar: " + verzeichnis.pfad("verweis.x") + ": File name too long");
}

TEST(DirReader, LooksForItselfWhereTheFileSystemDoesNotTellTheKind) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("datei", "");
    verzeichnis.schreibe("vergangene", "");
    verzeichnis.legeAn("unter");
    verweise("datei", verzeichnis.pfad("verweis"));
    verweise("unter", verzeichnis.pfad("verweis_auf_unter"));
    verweise("gibt es nicht", verzeichnis.pfad("lose"));
    ASSERT_EQ(mkfifo(verzeichnis.pfad("rohr").c_str(), 0600), 0);
    aendereEintrag = [&](dirent& eintrag) {
        eintrag.d_type = DT_UNKNOWN;
        if (std::string(eintrag.d_name) == "vergangene")
            verzeichnis.entferne("vergangene");
    };
    const DirReader leser(verzeichnis.pfad(), "*");
    aendereEintrag = nullptr;
    EXPECT_THAT(leser.getFiles(), ElementsAre("datei", "verweis"));
    EXPECT_THAT(leser.getDirectories(), ElementsAre("unter"));
    EXPECT_EQ(leser.getFehler(), "");
}

TEST(DirReader, LeavesPipesOut) {
    const Verzeichnis verzeichnis;
    ASSERT_EQ(mkfifo(verzeichnis.pfad("rohr.dylib").c_str(), 0600), 0);
    EXPECT_THAT(DirReader(verzeichnis.pfad(), "*").getFiles(), IsEmpty());
}

TEST(DirReader, FollowsALinkThatIsTheDirectoryItself) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("unter/datei", "");
    verweise("unter", verzeichnis.pfad("verweis"));
    EXPECT_THAT(DirReader(verzeichnis.pfad("verweis"), "*").getFiles(), ElementsAre("datei"));
}

TEST(DirReader, KeepsNamesByteForByte) {
    const Verzeichnis verzeichnis;
    const std::string name = "K\xFC\xFF\n \\*.x";
    verzeichnis.schreibe(name, "");
    EXPECT_THAT(DirReader(verzeichnis.pfad(), "*.*").getFiles(), ElementsAre(name));
}

TEST(DirReader, YieldsNothingForWhatIsNoReadableDirectory) {
    const Verzeichnis verzeichnis;
    const std::string datei = verzeichnis.schreibe("datei", "");
    for (const std::string& pfad :
         {std::string(), datei, verzeichnis.pfad("fehlt"), verzeichnis.pfad() + std::string("\0x", 2)}) {
        const DirReader leser(pfad, "*");
        EXPECT_THAT(leser.getFiles(), IsEmpty()) << pfad;
        EXPECT_THAT(leser.getDirectories(), IsEmpty()) << pfad;
    }
}

TEST(DirReader, KeepsWhatItReadBeforeAnErrorAndTellsTheReason) {
    const Verzeichnis verzeichnis;
    for (const char* const name : {"a.x", "b.x", "c.x"})
        verzeichnis.schreibe(name, "");
    for (const auto& [nummer, grund] : {std::pair(EIO, "Input/output error"),
                                        std::pair(EOVERFLOW, "Value too large for defined data type")}) {
        lesefehler = {nummer, 4}; // "." and ".." may be among the first four entries
        const DirReader leser(verzeichnis.pfad(), "*.x");
        EXPECT_THAT(leser.getFiles().size(), AllOf(Ge(2u), Le(3u))) << grund;
        EXPECT_TRUE(std::is_sorted(leser.getFiles().begin(), leser.getFiles().end()));
        EXPECT_EQ(leser.getFehler(), "Verzeichnis nicht lesbar: " + verzeichnis.pfad() + ": " + grund);
    }
    EXPECT_EQ(DirReader(verzeichnis.pfad(), "*.x").getFiles().size(), 3u);
    EXPECT_EQ(DirReader(verzeichnis.pfad(), "*.x").getFehler(), "");
}

TEST(DirReader, SortsWhatItReadBeforeAnError) {
    const Verzeichnis verzeichnis;
    for (int i = 0; i < 40; ++i) {
        verzeichnis.legeAn("verzeichnis" + std::to_string(i));
        verzeichnis.schreibe("datei" + std::to_string(i), "");
    }
    lesefehler = {EIO, 80};
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_GE(leser.getFiles().size() + leser.getDirectories().size(), 78u);
    EXPECT_TRUE(std::is_sorted(leser.getFiles().begin(), leser.getFiles().end()));
    EXPECT_TRUE(std::is_sorted(leser.getDirectories().begin(), leser.getDirectories().end()));
}

TEST(DirReader, GivesNoReasonForADirectoryThatDoesNotExist) {
    const Verzeichnis verzeichnis;
    EXPECT_EQ(DirReader(verzeichnis.pfad("fehlt"), "*").getFehler(), "");
}

TEST(DirReader, GivesTheReasonForWhatIsNoDirectory) {
    const Verzeichnis verzeichnis;
    const std::string datei = verzeichnis.schreibe("datei", "");
    EXPECT_EQ(DirReader(datei, "*").getFehler(), "Verzeichnis nicht lesbar: " + datei + ": Not a directory");
}

TEST(DirReader, YieldsNothingForADirectoryThatMustNotBeRead) {
    const Verzeichnis verzeichnis;
    const std::string zu = verzeichnis.legeAn("zu");
    verzeichnis.schreibe("zu/datei", "");
    ASSERT_EQ(chmod(verzeichnis.pfad().c_str(), 0755), 0);
    ASSERT_EQ(chmod(zu.c_str(), 0), 0);
    const auto liestAlsNiemand = [&] {
        constexpr uid_t kNiemand = 65534;
        if (geteuid() == 0 && seteuid(kNiemand) != 0)
            std::_Exit(2);
        const DirReader leser(zu, "*");
        std::_Exit(leser.getFiles().empty() && leser.getDirectories().empty() ? 0 : 1);
    };
    EXPECT_EXIT(liestAlsNiemand(), ExitedWithCode(0), "");
    chmod(zu.c_str(), 0755);
    EXPECT_THAT(DirReader(zu, "*").getFiles(), ElementsAre("datei"));
}

TEST(DirReader, ReadsTheCurrentDirectoryWhenAsked) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("datei", "");
    const CurrentDirectory dort(verzeichnis.pfad());
    EXPECT_THAT(DirReader(".", "*").getFiles(), ElementsAre("datei"));
}

TEST(DirReader, ListsManyEntries) {
    const Verzeichnis verzeichnis;
    for (int i = 0; i < 2000; ++i)
        verzeichnis.schreibe("datei" + std::to_string(i), "");
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_EQ(leser.getFiles().size(), 2000u);
    EXPECT_TRUE(std::is_sorted(leser.getFiles().begin(), leser.getFiles().end()));
}

TEST(DirReader, LeavesNoDescriptorOpen) {
    const Verzeichnis verzeichnis;
    const int vorher = offeneDeskriptoren();
    const DirReader leser(verzeichnis.pfad(), "*");
    EXPECT_EQ(offeneDeskriptoren(), vorher);
}

TEST(DirReader, StaysAsItWasRead) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("a", "");
    const DirReader leser(verzeichnis.pfad(), "*");
    verzeichnis.entferne("a");
    EXPECT_THAT(leser.getFiles(), ElementsAre("a"));
}

TEST(DirReader, ChoosesFilesByAsterisksAndQuestionMarks) {
    struct {
        const char* name;
        const char* muster;
        bool erwartet;
    } const faelle[] = {
        {"a", "", false},
        {"a", "a", true},
        {"a", "A", false},
        {"ab", "a", false},
        {"a", "ab", false},
        {"a", "?", true},
        {"a", "??", false},
        {"\xC3\xBC", "?", false},
        {"\xC3\xBC", "??", true},
        {"a", "*", true},
        {"a", "**", true},
        {"a", "a*", true},
        {"a", "*a*", true},
        {"a.", "*.*", true},
        {"a.b", "*.*", true},
        {"ab", "*.*", false},
        {"abab", "*ab", true},
        {"ababc", "*ab", false},
        {"aXbXc", "a*b*c", true},
        {"aXbX", "a*b*c", false},
        {"abc", "ab*bc", false},
        {"abcbc", "ab*bc", true},
        {"mississippi", "m*iss*ip?i", true},
        {"a*b", "a*b", true},
        {"[ab]", "[ab]", true},
        {"a", "[ab]", false},
        {"a\\b", "a\\b", true},
        {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", "*a*a*a*a*a*a*a*a*a*a*a*a*c", false},
    };
    for (const auto& [name, muster, erwartet] : faelle)
        EXPECT_EQ(passt(name, muster), erwartet) << name << " / " << muster;
}
