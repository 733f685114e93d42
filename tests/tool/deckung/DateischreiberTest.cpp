#include "kern/Dateischreiber.h"

#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace testing;
using werkzeug::schreibeDatei;

namespace {

std::string inhalt(const std::string& datei) {
    std::ifstream strom(datei, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(strom)), {});
}

std::size_t eintraege(const std::string& verzeichnis) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(verzeichnis),
                                                  std::filesystem::directory_iterator()));
}

} // namespace

TEST(Dateischreiber, WritesANewFileWithTheUsersRights) {
    const Verzeichnis verzeichnis;
    const mode_t vorher = umask(027);
    schreibeDatei(verzeichnis.pfad("neu.html"), "text");
    umask(vorher);
    EXPECT_EQ(inhalt(verzeichnis.pfad("neu.html")), "text");
    struct stat s {};
    ASSERT_EQ(stat(verzeichnis.pfad("neu.html").c_str(), &s), 0);
    EXPECT_EQ(s.st_mode & 0777, 0640u);
    EXPECT_EQ(eintraege(verzeichnis.pfad()), 1u) << "nothing is left beside it";
}

TEST(Dateischreiber, ReplacesAFileAtOnceAndKeepsItsRights) {
    const Verzeichnis verzeichnis;
    const std::string datei = verzeichnis.schreibe("alt.html", "old");
    chmod(datei.c_str(), 0604);
    std::ifstream leser(datei); // open readers keep reading the old file
    schreibeDatei(datei, "new");
    EXPECT_EQ(std::string((std::istreambuf_iterator<char>(leser)), {}), "old");
    EXPECT_EQ(inhalt(datei), "new");
    struct stat s {};
    stat(datei.c_str(), &s);
    EXPECT_EQ(s.st_mode & 0777, 0604u);
    EXPECT_EQ(eintraege(verzeichnis.pfad()), 1u);
}

TEST(Dateischreiber, ALinkStaysALink) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("ziel.html", "old");
    ASSERT_EQ(symlink("ziel.html", verzeichnis.pfad("link.html").c_str()), 0);
    schreibeDatei(verzeichnis.pfad("link.html"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(verzeichnis.pfad("link.html")));
    EXPECT_EQ(inhalt(verzeichnis.pfad("ziel.html")), "new");
}

TEST(Dateischreiber, WhatIsNoRegularFileIsWrittenToAndStays) {
    schreibeDatei("/dev/null", "text");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(Dateischreiber, NamesFileAndReasonWhenItCannotWrite) {
    const Verzeichnis verzeichnis;
    EXPECT_THAT([&] { schreibeDatei(verzeichnis.pfad("fehlt/a.html"), "text"); },
                ThrowsMessage<std::runtime_error>("cannot write " + verzeichnis.pfad("fehlt/a.html") +
                                                  ": No such file or directory"));
    EXPECT_THAT([&] { schreibeDatei(verzeichnis.pfad(), "text"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("Is a directory")));
    EXPECT_THAT([] { schreibeDatei("/dev/full", "text"); },
                ThrowsMessage<std::runtime_error>("cannot write /dev/full: No space left on device"));
}
