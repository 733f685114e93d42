// Whatever is wrong with a file, either the check refuses it or the system's loader copes with it: every byte of the
// headers and of the dynamic section is changed in several ways, and what passes is loaded and used in a child
// process.

#include "ElfDatei.h"

#include "support/Verzeichnis.h"

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>
#include <vector>

namespace {

/// Loads a library, uses it, and closes it again.
void benutze(const std::string& pfad) {
    void* const griff = dlopen(pfad.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!griff)
        return;
    if (void* const symbol = dlsym(griff, "zaehle"))
        reinterpret_cast<int (*)()>(symbol)();
    dlclose(griff);
}

/// Whether a child process survives that.
bool ueberlebt(const std::string& pfad) {
    const pid_t kind = fork();
    if (kind == 0) {
        alarm(10); // a loader that never comes back is no better than one that falls
        (void)!freopen("/dev/null", "w", stderr);
        benutze(pfad);
        _exit(0);
    }
    int ausgang = 0;
    waitpid(kind, &ausgang, 0);
    return WIFEXITED(ausgang) && WEXITSTATUS(ausgang) == 0;
}

/// Values that a byte may have got by some misfortune.
std::set<unsigned char> verfaelschungen(unsigned char byte) {
    std::set<unsigned char> werte{0x00, 0xFF, static_cast<unsigned char>(byte + 1),
                                  static_cast<unsigned char>(byte - 1)};
    for (unsigned bit = 0; bit < 8; ++bit)
        werte.insert(static_cast<unsigned char>(byte ^ (1u << bit)));
    werte.erase(byte);
    return werte;
}

class ElfVerfaelschung : public testing::Test {
protected:
    /// Loads what passes of all changes to the bytes from there on.
    void verfaelsche(std::uint64_t ab, std::uint64_t anzahl) {
        for (std::uint64_t i = ab; i < ab + anzahl; ++i) {
            const char echtes = datei.bytes[i];
            for (const unsigned char wert : verfaelschungen(static_cast<unsigned char>(echtes))) {
                datei.bytes[i] = static_cast<char>(wert);
                ladeWennErlaubt("byte " + std::to_string(i) + " is " + std::to_string(wert));
            }
            datei.bytes[i] = echtes;
        }
    }

    void ladeWennErlaubt(const std::string& was) {
        ++versuche;
        if (!datei.pruefung().empty())
            return;
        ++erlaubte;
        // A new file each time: the loader takes one that it already has for the same library.
        const std::string name = std::to_string(versuche) + ".so";
        EXPECT_TRUE(ueberlebt(verzeichnis.schreibe(name, datei.bytes))) << was;
        verzeichnis.entferne(name);
    }

    Verzeichnis verzeichnis;
    ElfDatei datei{HAS_EVERYTHING};
    int versuche = 0, erlaubte = 0;
};

} // namespace

TEST_F(ElfVerfaelschung, TheLibraryWorksUnchanged) { EXPECT_TRUE(ueberlebt(HAS_EVERYTHING)); }

TEST_F(ElfVerfaelschung, NoByteOfTheFileHeaderKillsTheProcess) {
    verfaelsche(0, sizeof(ElfW(Ehdr)));
    EXPECT_GT(versuche, erlaubte);
}

TEST_F(ElfVerfaelschung, NoByteOfASegmentHeaderKillsTheProcess) {
    verfaelsche(datei.kopf().e_phoff, datei.kopf().e_phnum * sizeof(ElfW(Phdr)));
    EXPECT_GT(versuche, erlaubte);
}

// Where in the code the general start and end functions begin cannot be seen from outside, so their values are left
// out: one that leads elsewhere into the code passes, and may well end the process.
TEST_F(ElfVerfaelschung, NoByteOfTheDynamicSectionKillsTheProcess) {
    const auto& s = datei.segmentVom(PT_DYNAMIC);
    for (std::uint64_t i = 0; i < s.p_filesz; i += sizeof(ElfW(Dyn))) {
        const auto tag = datei.bei<ElfW(Dyn)>(s.p_offset + i).d_tag;
        const bool istFunktion = tag == DT_INIT || tag == DT_FINI;
        verfaelsche(s.p_offset + i, istFunktion ? sizeof(tag) : sizeof(ElfW(Dyn)));
    }
    EXPECT_GT(versuche, erlaubte);
}

TEST_F(ElfVerfaelschung, NoTruncationKillsTheProcess) {
    datei
        .ohneAbschnitte(); // whose table would stand at the end, so that the check refused every shorter file
    const std::string ganz = datei.bytes;
    for (std::size_t i = 0; i < ganz.size(); i += 64) {
        datei.bytes = ganz.substr(0, i);
        ladeWennErlaubt(std::to_string(i) + " bytes");
    }
    EXPECT_GT(versuche, erlaubte);
    EXPECT_GT(erlaubte, 0);
}
