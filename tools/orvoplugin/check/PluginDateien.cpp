#include "check/PluginDateien.h"

#include "check/Pluginnutzung.h"
#include "kern/Anzeige.h"
#include "kern/Kindprozess.h"
#include "kern/Sammler.h"
#include "kern/Sprache.h"

#include <orvoplugin/plugin/LadeBeobachter.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoutil/Einstellungen.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>

namespace werkzeug::check {

namespace {

bool istLesbar(const std::string& verzeichnis) {
    DIR* const offen = opendir(verzeichnis.c_str());
    if (offen)
        closedir(offen);
    return offen != nullptr;
}

/// Sends the path of each plugin file and of each directory that cannot be read, and refuses to load any plugin.
class Suche : public LadeBeobachter {
public:
    explicit Suche(const Sender& sende) : sende_(sende) { OrvoPluginManager::setLadeBeobachter(this); }
    ~Suche() override { OrvoPluginManager::setLadeBeobachter(nullptr); }

    void betrittVerzeichnis(const std::string& verzeichnis) noexcept override {
        if (!istLesbar(verzeichnis))
            sende_(verzeichnis);
    }

    bool ladeDatei(const std::string& pfad) noexcept override {
        sende_(pfad);
        return false;
    }

private:
    const Sender& sende_;
};

void verlangeLesbar(const std::string& verzeichnis, const Optionen& optionen) {
    if (!istLesbar(verzeichnis))
        throw Unlesbar(satz("{1} cannot be read: {2}", einzeilig(verzeichnis), systemtext(errno)) +
                       ortshinweis(optionen));
}

} // namespace

std::vector<std::string> pluginDateien(const Optionen& optionen) {
    verlangeLesbar(optionen.dir.empty() ? optionen.home + "/plugins" : optionen.dir, optionen);
    std::vector<std::string> dateien;
    constexpr std::chrono::hours kBeliebigLange{24}; // no plugin code runs
    laufeImKind(
        [&](const Sender& sende) { // its manager and settings end with it
            beginneOhnePlugins();
            OrvoPluginManager manager(nullptr);
            const Suche suche(sende);
            if (optionen.dir.empty())
                orvo::orvoutil::Einstellungen().setze("basis.home_dir", optionen.home);
            else
                manager.ladePluginsRekursiv(optionen.dir);
        },
        [&](std::string_view pfad) { dateien.emplace_back(pfad); }, kBeliebigLange);
    return dateien;
}

std::string warumUnlesbar(const std::string& pfad) {
    struct stat zustand {};
    if (stat(pfad.c_str(), &zustand) != 0 || access(pfad.c_str(), R_OK) != 0)
        return systemtext(errno);
    if (S_ISDIR(zustand.st_mode))
        return satz("it is a directory");
    return S_ISREG(zustand.st_mode) ? std::string() : satz("it is no regular file");
}

std::string vollerPfad(const std::string& pfad) { return std::filesystem::absolute(pfad).string(); }

} // namespace werkzeug::check
