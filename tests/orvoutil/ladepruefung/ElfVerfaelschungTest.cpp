// Whatever is wrong with a file, either the check refuses it or the system's loader copes with it: every byte of the
// headers and of the dynamic section is changed in several ways, and what passes is loaded and used in a child
// process.

#include "ElfDatei.h"
#include "Valgrind.h"

#include "support/Verzeichnis.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <set>
#include <string>
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

/// A number that a child process shares with its parent.
class GemeinsameZahl {
public:
    GemeinsameZahl()
        : zahl_(static_cast<std::size_t*>(mmap(nullptr, sizeof(std::size_t), PROT_READ | PROT_WRITE,
                                               MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    GemeinsameZahl(const GemeinsameZahl&) = delete;
    GemeinsameZahl& operator=(const GemeinsameZahl&) = delete;
    ~GemeinsameZahl() { munmap(zahl_, sizeof(std::size_t)); }
    std::size_t& operator*() const { return *zahl_; }

private:
    std::size_t* zahl_;
};

/// Lets a child process use libraries one after the other. Returns: the number of the one that killed it; the number
/// of all when it survived.
std::size_t benutzeImKind(const std::vector<std::string>& pfade) {
    const GemeinsameZahl erledigte;
    const pid_t kind = fork();
    if (kind == 0) {
        (void)!freopen("/dev/null", "w", stderr);
        for (; *erledigte < pfade.size(); ++*erledigte) {
            alarm(20); // a loader that never comes back is no better than one that falls
            benutze(pfade[*erledigte]);
        }
        _exit(0);
    }
    waitpid(kind, nullptr, 0);
    return *erledigte;
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
        pfade.push_back(verzeichnis.schreibe(std::to_string(versuche) + ".so", datei.bytes));
        beschreibungen.push_back(was);
        if (pfade.size() == 64)
            ladeAlle();
    }

    void ladeAlle() {
        while (!pfade.empty()) {
            const std::size_t erledigte = benutzeImKind(pfade);
            const bool ueberlebt = erledigte == pfade.size();
            EXPECT_TRUE(ueberlebt) << beschreibungen[erledigte];
            const auto anzahl = static_cast<std::ptrdiff_t>(ueberlebt ? erledigte : erledigte + 1);
            for (auto pfad = pfade.begin(); pfad != pfade.begin() + anzahl; ++pfad)
                unlink(pfad->c_str());
            pfade.erase(pfade.begin(), pfade.begin() + anzahl);
            beschreibungen.erase(beschreibungen.begin(), beschreibungen.begin() + anzahl);
        }
    }

    void SetUp() override {
        if (laeuftUnterValgrind())
            GTEST_SKIP() << "valgrind itself falls over such files";
    }

    void TearDown() override {
        if (IsSkipped())
            return;
        ladeAlle();
        EXPECT_GT(versuche, erlaubte);
        EXPECT_GT(erlaubte, 0);
    }

    Verzeichnis verzeichnis;
    ElfDatei datei{HAS_EVERYTHING};
    int versuche = 0, erlaubte = 0;
    std::vector<std::string> pfade, beschreibungen; // of what is still to be loaded
};

} // namespace

TEST(ElfVerfaelschungOhneFehler, TheLibraryWorksUnchanged) { EXPECT_EQ(benutzeImKind({HAS_EVERYTHING}), 1u); }

TEST_F(ElfVerfaelschung, NoByteOfTheFileHeaderKillsTheProcess) { verfaelsche(0, sizeof(ElfW(Ehdr))); }

TEST_F(ElfVerfaelschung, NoByteOfASegmentHeaderKillsTheProcess) {
    verfaelsche(datei.kopf().e_phoff, datei.kopf().e_phnum * sizeof(ElfW(Phdr)));
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
}

TEST_F(ElfVerfaelschung, NoTruncationKillsTheProcess) {
    // Whose table would stand at the end, so that the check refused every shorter file.
    datei.ohneAbschnitte();
    const std::string ganz = datei.bytes;
    for (std::size_t i = 0; i < ganz.size(); i += 64) {
        datei.bytes = ganz.substr(0, i);
        ladeWennErlaubt(std::to_string(i) + " bytes");
    }
}
