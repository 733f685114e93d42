#include "check/Vorgaben.h"

#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Optionen.h"
#include "kern/Sammler.h"
#include "kern/Sprache.h"

#include <orvoutil/OrvoVersion.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace werkzeug::check {

namespace {

/// One library and its version: "glibc=2.31".
void nimmBaseline(const std::string& text, Vorgaben& vorgaben) {
    const std::size_t gleich = text.find('=');
    const std::string name = text.substr(0, gleich),
                      version = gleich < text.size() ? text.substr(gleich + 1) : "";
    const bool bekannt = name == "glibc" || name == "libstdc++" || name == "cxxabi";
    if (!bekannt || version.empty() || !orvo::orvoutil::OrvoVersion(version).hatNurZahlen())
        throw AufrufFehler(satz(
            "--baseline: {1} is not of the form glibc=2.31,libstdc++=3.4.28,cxxabi=1.3.12", zitiert(text)));
    vorgaben.baseline[name] = version;
}

std::string inhalt(const fs::path& pfad) {
    std::ifstream datei(pfad, std::ios::binary);
    if (!datei)
        throw Unlesbar(satz("{1} cannot be read: {2}", einzeilig(pfad.string()), systemtext(errno)));
    return std::string(std::istreambuf_iterator<char>(datei), {});
}

/// A directory holds one record in each of its files, any other file one in each of its lines.
void nimmDaten(const std::string& pfad, Vorgaben& vorgaben) {
    std::set<fs::path> dateien;
    std::error_code fehler;
    for (const auto& eintrag : fs::directory_iterator(pfad, fehler))
        if (eintrag.is_regular_file(fehler))
            dateien.insert(eintrag.path());
    for (const fs::path& datei : dateien)
        vorgaben.daten.push_back(inhalt(datei));
    if (!fs::is_directory(pfad, fehler)) {
        std::istringstream zeilen(inhalt(pfad));
        for (std::string zeile; std::getline(zeilen, zeile);)
            vorgaben.daten.push_back(zeile);
    }
    if (vorgaben.daten.empty())
        throw Unlesbar(satz("{1} holds no record", einzeilig(pfad)));
}

} // namespace

void fuegeVorgabenHinzu(CLI::App& befehl, Vorgaben& vorgaben) {
    using Texte = std::vector<std::string>;
    const auto fuegeHinzu = [&](const char* name, const char* art,
                                void (*nimm)(const std::string&, Vorgaben&), const char* text) {
        const auto nimmAlle = [nimm, &vorgaben](const Texte& texte) {
            for (const std::string& einer : texte)
                nimm(einer, vorgaben);
        };
        return befehl.add_option_function<Texte>(name, nimmAlle, text)
            ->type_name(art)
            ->allow_extra_args(false);
    };
    fuegeHinzu("--baseline", N_("NAME=VERSION,..."), nimmBaseline,
               N_("The newest glibc, libstdc++ and cxxabi to need"))
        ->delimiter(',');
    fuegeHinzu("--data", N_("FILE"), nimmDaten,
               N_("Records for the check services: a file's lines, a directory's files"));
    befehl.add_option("--max-log", vorgaben.maxLog, "Bytes that a plugin may write to the log")
        ->type_name("BYTES")
        ->capture_default_str();
    for (auto& [schritt, ms] : vorgaben.maxMs)
        befehl.add_option("--max-" + schritt + "-ms", ms, "Milliseconds that this step may take")
            ->type_name("MS")
            ->check(CLI::PositiveNumber);
}

} // namespace werkzeug::check
