#include "Heime.h"

#include "Nummer.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// An open file, for reading.
class Datei {
public:
    explicit Datei(const fs::path& pfad) : nummer_(open(pfad.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (nummer_ < 0)
            throw std::runtime_error("cannot open " + pfad.string());
    }
    Datei(const Datei&) = delete;
    Datei& operator=(const Datei&) = delete;
    ~Datei() { close(nummer_); }

    int nummer() const { return nummer_; }

private:
    int nummer_;
};

/// Asks without reading, since reading would bring the pages back. A system that does not answer counts as "there".
bool istImSpeicher(const Datei& datei, std::size_t bytes) {
    void* const stelle = mmap(nullptr, bytes, PROT_READ, MAP_SHARED, datei.nummer(), 0);
    if (stelle == MAP_FAILED)
        return true;
    const auto seite = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> seiten((bytes + seite - 1) / seite);
    const bool gefragt = mincore(stelle, bytes, seiten.data()) == 0;
    munmap(stelle, bytes);
    return !gefragt || std::any_of(seiten.begin(), seiten.end(), [](unsigned char s) { return s & 1; });
}

} // namespace

Heime::Heime(fs::path pfad, std::span<const Sorte> sorten, void (*beschreibe)(const std::string& home))
    : pfad_(std::move(pfad)) {
    for (const Sorte& sorte : sorten)
        lege(sorte, beschreibe);
    if (syncfs(Datei(pfad_).nummer()) != 0) // a page that is still to be written cannot be dropped
        throw std::runtime_error("cannot write " + pfad_.string() + " through");
}

void Heime::lege(const Sorte& sorte, void (*beschreibe)(const std::string& home)) const {
    std::ifstream strom(sorte.datei, std::ios::binary);
    std::string plugin{std::istreambuf_iterator<char>(strom), {}};
    const std::size_t marke = plugin.find(ORVO_BENCH_MARKE ORVO_BENCH_NUMMER);
    if (marke == std::string::npos)
        throw std::runtime_error(std::string("no number in ") + sorte.datei);
    for (const int anzahl : sorte.anzahlen) {
        const fs::path verzeichnis = fs::path(mit(sorte, anzahl)) / "plugins";
        fs::create_directories(verzeichnis);
        for (int i = 0; i < anzahl; ++i) {
            const std::string nummer = std::to_string(kErsteNummer + i);
            plugin.replace(marke + sizeof(ORVO_BENCH_MARKE) - 1, nummer.size(), nummer);
            std::ofstream kopie(verzeichnis / ("libbench" + nummer + ".dylib"), std::ios::binary);
            if (!(kopie << plugin).flush())
                throw std::runtime_error("no room for the plugins in " + pfad_.string());
        }
        beschreibe(mit(sorte, anzahl));
    }
}

bool verdraenge(const std::string& home) {
    bool alleWeg = true;
    for (const auto& eintrag : fs::directory_iterator(fs::path(home) / "plugins")) {
        const Datei datei(eintrag.path());
        posix_fadvise(datei.nummer(), 0, 0, POSIX_FADV_DONTNEED);
        alleWeg = !istImSpeicher(datei, eintrag.file_size()) && alleWeg;
    }
    return alleWeg;
}
