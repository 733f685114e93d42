#include "support/Verzeichnis.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

Verzeichnis::Verzeichnis() {
    std::string vorlage = (fs::temp_directory_path() / "orvo-test-XXXXXX").string();
    if (!mkdtemp(vorlage.data()))
        throw std::runtime_error("no temporary directory: " + vorlage);
    pfad_ = fs::canonical(vorlage).string();
}

Verzeichnis::~Verzeichnis() {
    std::error_code egal;
    fs::remove_all(pfad_, egal);
}

std::string Verzeichnis::legeAn(const std::string& verzeichnis) const {
    fs::create_directories(pfad(verzeichnis));
    return pfad(verzeichnis);
}

std::string Verzeichnis::schreibe(const std::string& datei, const std::string& inhalt) const {
    const std::string ziel = pfad(datei);
    fs::create_directories(fs::path(ziel).parent_path());
    std::ofstream strom(ziel, std::ios::binary);
    strom << inhalt;
    if (!strom.flush())
        throw std::runtime_error("cannot write " + ziel);
    return ziel;
}

std::string Verzeichnis::kopiere(const std::string& quelle, const std::string& datei) const {
    const std::string ziel = pfad(datei);
    fs::create_directories(fs::path(ziel).parent_path());
    fs::copy_file(quelle, ziel, fs::copy_options::overwrite_existing);
    return ziel;
}

void Verzeichnis::entferne(const std::string& name) const { fs::remove_all(pfad(name)); }
