#include <orvoutil/DirReader.h>

#include <orvoutil/PathUtil.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <system_error>

namespace orvo::orvoutil {

namespace {

static_assert(sizeof(dirent::d_ino) == 8,
              "needs large files: readdir fails at an inode number that does not fit");

/// Parameters: `name` holds no zero byte, so it does not match the one that ends the pattern.
bool passt(std::string_view name, const std::string& muster) {
    constexpr std::size_t kKeiner = std::string::npos;
    std::size_t n = 0;
    std::size_t m = 0;
    std::size_t stern = kKeiner; // the last '*' so far, and the byte of the name at which it ends
    std::size_t sternEnde = 0;
    while (n < name.size()) {
        if (muster[m] == '*') {
            stern = m++;
            sternEnde = n;
        } else if (muster[m] == '?' || muster[m] == name[n]) {
            ++m;
            ++n;
        } else if (stern != kKeiner) {
            m = stern; // once more, for one byte more
            n = sternEnde + 1;
        } else {
            return false;
        }
    }
    return muster.find_first_not_of('*', m) == kKeiner;
}

enum class Art { DATEI, VERZEICHNIS, ANDERES, UNGEWISS };

/// For entries that do not say it themselves. UNGEWISS leaves the system's error number.
Art nachgesehen(int verzeichnis, const char* name) {
    struct stat angaben;
    if (fstatat(verzeichnis, name, &angaben, AT_SYMLINK_NOFOLLOW) != 0)
        return Art::UNGEWISS;
    if (S_ISDIR(angaben.st_mode))
        return Art::VERZEICHNIS;
    if (S_ISLNK(angaben.st_mode) && fstatat(verzeichnis, name, &angaben, 0) != 0)
        return Art::UNGEWISS;
    return S_ISREG(angaben.st_mode) ? Art::DATEI : Art::ANDERES;
}

Art artVon(int verzeichnis, const dirent& eintrag) {
    switch (eintrag.d_type) {
    case DT_REG:
        return Art::DATEI;
    case DT_DIR:
        return Art::VERZEICHNIS;
    case DT_LNK:
    case DT_UNKNOWN:
        return nachgesehen(verzeichnis, eintrag.d_name);
    default:
        return Art::ANDERES;
    }
}

struct Schliesser {
    void operator()(DIR* verzeichnis) const { closedir(verzeichnis); }
};

std::string nichtLesbar(const std::string& ort, int fehler) {
    return "Verzeichnis nicht lesbar: " + ort + ": " + std::generic_category().message(fehler);
}

} // namespace

DirReader::DirReader(const std::string& verzeichnis, const std::string& muster) {
    if (verzeichnis.find('\0') != std::string::npos)
        return;
    if (const int fehler = lies(verzeichnis, muster); fehler != 0 && fehler != ENOENT)
        fehler_ = nichtLesbar(verzeichnis, fehler);
    dateien_.sort();
    verzeichnisse_.sort();
}

int DirReader::lies(const std::string& verzeichnis, const std::string& muster) {
    const std::unique_ptr<DIR, Schliesser> offen(opendir(verzeichnis.c_str()));
    if (!offen)
        return errno;
    for (;;) {
        errno = 0; // readdir leaves it at the end of the directory
        const dirent* const eintrag = readdir(offen.get());
        if (!eintrag)
            return errno;
        const char* const name = eintrag->d_name;
        if (name[0] == '.')
            continue;
        const Art art = artVon(dirfd(offen.get()), *eintrag);
        if (art == Art::VERZEICHNIS)
            verzeichnisse_.emplace_back(name);
        else if (art == Art::DATEI && passt(name, muster))
            dateien_.emplace_back(name);
        else if (const int fehler = errno; art == Art::UNGEWISS && fehler != ENOENT && fehler != ELOOP)
            fehler_ = nichtLesbar(getFullFilename(verzeichnis, name), fehler);
    }
}

} // namespace orvo::orvoutil
