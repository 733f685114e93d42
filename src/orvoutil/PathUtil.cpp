#include <orvoutil/PathUtil.h>

#include <filesystem>
#include <utility>

namespace orvo::orvoutil {

namespace {

constexpr auto npos = std::string_view::npos;

/// Without the slashes at its end.
std::string_view ohneEnde(std::string_view pfad) { return pfad.substr(0, pfad.find_last_not_of('/') + 1); }

/// Without the slashes at its beginning.
std::string_view ohneAnfang(std::string_view pfad) {
    const std::size_t anfang = pfad.find_first_not_of('/');
    return anfang == npos ? std::string_view() : pfad.substr(anfang);
}

/// The current directory; empty when it is gone.
std::string aktuellesVerzeichnis() {
    std::error_code fehler;
    return std::filesystem::current_path(fehler).string();
}

/// Resolves ".", "..", doubled and trailing slashes.
std::string normalisiere(const std::filesystem::path& pfad) {
    std::string ergebnis = pfad.lexically_normal().string();
    while (ergebnis.size() > 1 && ergebnis.ends_with('/'))
        ergebnis.pop_back();
    return ergebnis.empty() ? "." : ergebnis;
}

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
    return normalisiere(pfad.starts_with('/') ? std::string(pfad) : concatPath(aktuellesVerzeichnis(), pfad));
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
