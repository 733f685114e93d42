#include <orvoutil/PathUtil.h>

#include "CurrentDirectory.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace orvo::orvoutil;

TEST(ConcatPath, JoinsWithExactlyOneSlash) {
    EXPECT_EQ(concatPath("a", "b"), "a/b");
    EXPECT_EQ(concatPath("a/", "b"), "a/b");
    EXPECT_EQ(concatPath("a", "/b"), "a/b");
    EXPECT_EQ(concatPath("a//", "//b"), "a/b");
    EXPECT_EQ(concatPath("/a", "b/"), "/a/b/");
    EXPECT_EQ(concatPath("a", "/"), "a/");
}

TEST(ConcatPath, KnowsTheRoot) {
    EXPECT_EQ(concatPath("/", "b"), "/b");
    EXPECT_EQ(concatPath("//", "/b"), "/b");
    EXPECT_EQ(concatPath("/", "/"), "/");
}

TEST(ConcatPath, GivesTheOtherPartWhenOneIsEmpty) {
    EXPECT_EQ(concatPath("", "b"), "b");
    EXPECT_EQ(concatPath("", "/b"), "/b");
    EXPECT_EQ(concatPath("a/", ""), "a/");
    EXPECT_EQ(concatPath("", ""), "");
}

TEST(ConcatPath, KeepsBytes) {
    EXPECT_EQ(concatPath("K\xFC\xC3\xBC", std::string("a\0b", 3)), std::string("K\xFC\xC3\xBC/a\0b", 8));
}

TEST(GetAbsolutePath, ResolvesDotsAndSlashes) {
    EXPECT_EQ(getAbsolutePath("/"), "/");
    EXPECT_EQ(getAbsolutePath("///"), "/");
    EXPECT_EQ(getAbsolutePath("/a/b/"), "/a/b");
    EXPECT_EQ(getAbsolutePath("//a//./b/."), "/a/b");
    EXPECT_EQ(getAbsolutePath("/a/../b"), "/b");
    EXPECT_EQ(getAbsolutePath("/a/b/../.."), "/");
    EXPECT_EQ(getAbsolutePath("/../../a"), "/a");
    EXPECT_EQ(getAbsolutePath("/a/.../..b/c."), "/a/.../..b/c.");
    EXPECT_EQ(getAbsolutePath("/K\xFC\xFF"), "/K\xFC\xFF");
}

TEST(GetAbsolutePath, PutsRelativePathsBelowTheCurrentDirectory) {
    const Verzeichnis verzeichnis;
    const std::string unter = verzeichnis.legeAn("unter");
    const CurrentDirectory dort(unter);
    EXPECT_EQ(getAbsolutePath(""), unter);
    EXPECT_EQ(getAbsolutePath("."), unter);
    EXPECT_EQ(getAbsolutePath("plugins"), unter + "/plugins");
    EXPECT_EQ(getAbsolutePath("./a//b/"), unter + "/a/b");
    EXPECT_EQ(getAbsolutePath(".."), verzeichnis.pfad());
    EXPECT_EQ(getAbsolutePath("../../../../../../../../../../../../.."), "/");
}

TEST(GetAbsolutePath, DoesNotFollowLinks) {
    const Verzeichnis verzeichnis;
    ASSERT_EQ(symlink("/", verzeichnis.pfad("verweis").c_str()), 0);
    EXPECT_EQ(getAbsolutePath(verzeichnis.pfad("verweis/../x")), verzeichnis.pfad("x"));
}

TEST(GetAbsolutePath, WorksInTheRoot) {
    const CurrentDirectory dort("/");
    EXPECT_EQ(getAbsolutePath("a"), "/a");
    EXPECT_EQ(getAbsolutePath(""), "/");
}

TEST(GetAbsolutePath, StaysRelativeWhenTheCurrentDirectoryIsGone) {
    const Verzeichnis verzeichnis;
    const std::string unter = verzeichnis.legeAn("unter");
    const CurrentDirectory dort(unter);
    ASSERT_EQ(rmdir(unter.c_str()), 0);
    EXPECT_EQ(getAbsolutePath("a/./b/../c"), "a/c");
    EXPECT_EQ(getAbsolutePath("../../a/.."), "../..");
    EXPECT_EQ(getAbsolutePath(""), ".");
    EXPECT_EQ(getAbsolutePath("/a"), "/a");
}

TEST(GetFullFilename, NamesAFileInADirectory) {
    EXPECT_EQ(getFullFilename("/a/b", "c.d"), "/a/b/c.d");
    EXPECT_EQ(getFullFilename("/a/b/", "c.d"), "/a/b/c.d");
    EXPECT_EQ(getFullFilename("/", "c"), "/c");
    EXPECT_EQ(getFullFilename("", "c"), "c");
}

TEST(GetOnlyFilename, IsWhatFollowsTheLastSlash) {
    EXPECT_EQ(getOnlyFilenameOfFullFilename("/a/b.c"), "b.c");
    EXPECT_EQ(getOnlyFilenameOfFullFilename("b.c"), "b.c");
    EXPECT_EQ(getOnlyFilenameOfFullFilename("/b"), "b");
    EXPECT_EQ(getOnlyFilenameOfFullFilename("a/"), "");
    EXPECT_EQ(getOnlyFilenameOfFullFilename("/"), "");
    EXPECT_EQ(getOnlyFilenameOfFullFilename(""), "");
    EXPECT_EQ(getOnlyFilenameOfFullFilename("a\\b"), "a\\b");
}

TEST(ExtractPathFilenameExtension, SplitsSoThatThePartsGiveTheFileBack) {
    struct {
        const char* voll;
        const char* pfad;
        const char* name;
        const char* endung;
    } const faelle[] = {
        {"/a/b/libx.dylib", "/a/b", "libx", "dylib"},
        {"libx.DYLIB", "", "libx", "DYLIB"},
        {"/libx.so", "/", "libx", "so"},
        {"//libx.so", "/", "libx", "so"},
        {"a//libx.so", "a", "libx", "so"},
        {"/a.b/x.y.z", "/a.b", "x.y", "z"},
        {"a/.dylib", "a", "", "dylib"},
        {"a/x.", "a", "x", ""},
        {"./x.y", ".", "x", "y"},
        {"../x.y", "..", "x", "y"},
        {"K\xFC/\xC3\xBC.\xFF", "K\xFC", "\xC3\xBC", "\xFF"},
    };
    for (const auto& fall : faelle) {
        std::string pfad, name, endung;
        ASSERT_TRUE(extractPathFilenameExtension(fall.voll, pfad, name, endung)) << fall.voll;
        EXPECT_EQ(pfad, fall.pfad);
        EXPECT_EQ(name, fall.name);
        EXPECT_EQ(endung, fall.endung);
        EXPECT_EQ(getAbsolutePath(getFullFilename(pfad, name + "." + endung)), getAbsolutePath(fall.voll));
    }
}

TEST(ExtractPathFilenameExtension, RefusesNamesWithoutADotAndLeavesTheResultsAlone) {
    for (const char* const voll : {"", "/", "x", "/a.b/x", "a.b/", "/a.b//"}) {
        std::string pfad = "p", name = "n", endung = "e";
        EXPECT_FALSE(extractPathFilenameExtension(voll, pfad, name, endung)) << voll;
        EXPECT_EQ(pfad + name + endung, "pne");
    }
}

TEST(ExtractPathFilenameExtension, MayWriteIntoWhatItReads) {
    std::string voll = "/ein/langer/pfad/zu/einer/libbibliothek.dylib";
    std::string name, endung;
    ASSERT_TRUE(extractPathFilenameExtension(voll, voll, name, endung));
    EXPECT_EQ(voll, "/ein/langer/pfad/zu/einer");
    EXPECT_EQ(name, "libbibliothek");
    EXPECT_EQ(endung, "dylib");

    std::string pfad, auchEndung = "/pfad/lib.langeendung";
    ASSERT_TRUE(extractPathFilenameExtension(auchEndung, pfad, name, auchEndung));
    EXPECT_EQ(pfad + " " + name + " " + auchEndung, "/pfad lib langeendung");
    std::string auchName = "/pfad/lib.langeendung";
    ASSERT_TRUE(extractPathFilenameExtension(auchName, pfad, auchName, endung));
    EXPECT_EQ(pfad + " " + auchName + " " + endung, "/pfad lib langeendung");
}
