#include <orvoutil/PathUtil.h>

#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

namespace orvo::orvoutil {

namespace {

constexpr auto npos = std::string_view::npos;

bool istAbsolut(std::string_view pfad) { return pfad.starts_with('/'); }

/// Without the slashes at its end.
std::string_view ohneEnde(std::string_view pfad) { return pfad.substr(0, pfad.find_last_not_of('/') + 1); }

/// Without the slashes at its beginning.
std::string_view ohneAnfang(std::string_view pfad) {
    const std::size_t anfang = pfad.find_first_not_of('/');
    return anfang == npos ? std::string_view() : pfad.substr(anfang);
}

struct Freigabe {
    void operator()(char* text) const { std::free(text); }
};

/// The current directory; empty when it is gone.
std::string aktuellesVerzeichnis() {
    const std::unique_ptr<char, Freigabe> pfad(getcwd(nullptr, 0));
    return pfad ? std::string(pfad.get()) : std::string();
}

/// Takes the first component off the path.
std::string_view nimmTeil(std::string_view& pfad) {
    const std::size_t ende = pfad.find('/');
    const std::string_view teil = pfad.substr(0, ende);
    pfad = ende == npos ? std::string_view() : pfad.substr(ende + 1);
    return teil;
}

/// Resolves ".", ".." and empty components.
std::string normalisiere(std::string_view pfad) {
    const bool absolut = istAbsolut(pfad);
    std::vector<std::string_view> teile;
    while (!pfad.empty()) {
        const std::string_view teil = nimmTeil(pfad);
        if (teil.empty() || teil == ".")
            continue;
        if (teil != "..")
            teile.push_back(teil);
        else if (!teile.empty() && teile.back() != "..")
            teile.pop_back();
        else if (!absolut)
            teile.push_back(teil);
    }

    std::string ergebnis;
    for (const std::string_view teil : teile) {
        if (absolut || !ergebnis.empty())
            ergebnis += '/';
        ergebnis += teil;
    }
    if (ergebnis.empty())
        ergebnis += absolut ? '/' : '.';
    return ergebnis;
}

/// What follows the last slash.
std::string_view letzterTeil(std::string_view pfad) { return pfad.substr(pfad.rfind('/') + 1); }

} // namespace

std::string concatPath(std::string_view a, std::string_view b) {
    if (a.empty() || b.empty())
        return std::string(a.empty() ? b : a);
    std::string pfad;
    pfad.reserve(a.size() + 1 + b.size());
    pfad += ohneEnde(a);
    pfad += '/';
    pfad += ohneAnfang(b);
    return pfad;
}

std::string getAbsolutePath(std::string_view pfad) {
    return normalisiere(istAbsolut(pfad) ? std::string(pfad) : concatPath(aktuellesVerzeichnis(), pfad));
}

std::string getFullFilename(std::string_view verzeichnis, std::string_view name) {
    return concatPath(verzeichnis, name);
}

bool extractPathFilenameExtension(std::string_view voll, std::string& pfad, std::string& name,
                                  std::string& endung) {
    const std::string_view datei = letzterTeil(voll);
    const std::size_t punkt = datei.rfind('.');
    if (punkt == npos)
        return false;
    const std::string_view vorDatei = voll.substr(0, voll.size() - datei.size());
    const std::string_view verzeichnis = ohneEnde(vorDatei);
    // Copies first: the results may be the text that was given.
    std::string neuerPfad(verzeichnis.empty() && !vorDatei.empty() ? "/" : verzeichnis);
    std::string neuerName(datei.substr(0, punkt));
    std::string neueEndung(datei.substr(punkt + 1));
    pfad = std::move(neuerPfad);
    name = std::move(neuerName);
    endung = std::move(neueEndung);
    return true;
}

std::string getOnlyFilenameOfFullFilename(std::string_view voll) { return std::string(letzterTeil(voll)); }

} // namespace orvo::orvoutil
