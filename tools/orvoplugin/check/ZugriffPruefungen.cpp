// The check of who else may write a plugin's file.

#include "check/Katalog.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <sys/stat.h>
#include <unistd.h>

#include <deque>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace werkzeug::check {

namespace {

/// Everything on the way to a file: the folders, the links and what they lead to, the file itself.
std::set<fs::path> wegZu(const fs::path& pfad) {
    constexpr int kMaxVerweise = 40; // as the kernel has it
    std::set<fs::path> weg;
    std::deque<fs::path> teile(pfad.begin(), pfad.end());
    int verweise = 0;
    for (fs::path ort; !teile.empty(); teile.pop_front()) {
        const fs::path teil = teile.front(), hier = teil == ".." ? ort.parent_path() : ort / teil;
        std::error_code fehler;
        if (teil.empty() || teil == ".")
            continue;
        weg.insert(hier);
        if (!fs::is_symlink(hier, fehler) || ++verweise > kMaxVerweise) {
            ort = hier;
            continue;
        }
        const fs::path ziel = fs::read_symlink(hier, fehler);
        teile.insert(std::next(teile.begin()), ziel.begin(), ziel.end());
    }
    return weg;
}

void beurteile(const fs::path& ort, Fundliste& funde) {
    struct stat zustand {};
    if (lstat(ort.c_str(), &zustand) != 0)
        return;
    const std::string name = einzeilig(ort.string());
    const bool ordner = S_ISDIR(zustand.st_mode);
    if (zustand.st_uid != 0 && zustand.st_uid != geteuid())
        funde.warnung(satz("{1} belongs to user {2}, who may replace the plugin", name, zustand.st_uid),
                      "foreign_owner");
    // In a sticky folder each may replace only what is their own. The mode of a link means nothing.
    if (S_ISLNK(zustand.st_mode) || (ordner && (zustand.st_mode & S_ISVTX)))
        return;
    if (zustand.st_mode & S_IWOTH)
        funde.warnung(satz("{1} is writable by everybody", name), "writable_by_all");
    else if (zustand.st_mode & S_IWGRP)
        funde.warnung(satz("{1} is writable by its group ({2})", name, zustand.st_gid), "writable_by_group");
}

void pruefeSchreibrechte(const Pruefling& p, Fundliste& funde) {
    for (const fs::path& ort : wegZu(p.pfad))
        beurteile(ort, funde);
}

} // namespace

std::vector<Pruefung> zugriffPruefungen() { return {{"writable", pruefeSchreibrechte}}; }

} // namespace werkzeug::check
