#include "kern/Optionen.h"

#include "kern/Anzeige.h"
#include "kern/Herkunft.h"
#include "kern/Sprache.h"

#include <orvoutil/PathUtil.h>

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace werkzeug {

void fuegeOptionenHinzu(CLI::App& app, Optionen& optionen) {
    constexpr const char* kGruppe = N_("Options of all commands");
    CLI::Option* const home = app.add_option("--home", optionen.home,
                                             "Home directory; plugins lie below its subdirectory \"plugins\"")
                                  ->type_name("DIR");
    app.add_option("--dir", optionen.dir, "Plugin directory itself")
        ->type_name("DIR")
        ->excludes(home)
        ->group(kGruppe);
    home->group(kGruppe);
    app.add_option(
           "--resident", optionen.resident,
           "Resident plugins: names in lower case without \"lib\" and \".dylib\", each followed by a comma")
        ->type_name("LIST")
        ->group(kGruppe);
    app.add_flag("--json", optionen.json, "Results as JSON")->group(kGruppe);
    app.add_flag("--quiet", optionen.quiet, "No results, only the exit code and errors")->group(kGruppe);
    app.add_option("--log", optionen.log,
                   "The library's own log on standard error: debug, info, warn or error")
        ->type_name("LEVEL")
        ->check(CLI::IsMember({"debug", "info", "warn", "error"}).description(""))
        ->group(kGruppe);
    app.add_option("--timeout", optionen.zeitlimit, "Seconds that one plugin may take before it is killed")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.01, 86400.0).description(""))
        ->check(CLI::Validator(
            [](std::string& wert) {
                return std::isnan(std::strtod(wert.c_str(), nullptr)) ? std::string("must be a number")
                                                                      : std::string();
            },
            ""))
        ->capture_default_str()
        ->group(kGruppe);
}

void fuegeDescribedHinzu(CLI::App& app, Optionen& optionen) {
    app.add_flag_callback(
        "--described", [&] { optionen.beschreibungen = Beschreibungen::NUR; },
        "Run no plugin code: go by the descriptions in the files, and load no file without one");
}

void fuegeProbeHinzu(CLI::App& app, Optionen& optionen) {
    CLI::Option* const probe = app.add_flag(
        "--probe", optionen.probe,
        satz("Make each service once, too, in a process of its own: what cannot be had is not served"));
    if (CLI::Option* const described = app.get_option_no_throw("--described"))
        probe->excludes(described); // which runs no plugin code
}

const char* ortsoption(const std::string& verzeichnis) {
    std::error_code keiner;
    return std::filesystem::is_directory(verzeichnis + "/plugins", keiner) ? "--home" : "--dir";
}

std::string ortshinweis(const Optionen& optionen) {
    std::error_code keiner;
    if (!optionen.dir.empty())
        return satz("; --dir names the plugin directory itself");
    if (optionen.home.empty())
        return satz("; name the plugin directory with --dir, or the one above \"plugins\" with --home");
    if (std::filesystem::is_directory(optionen.home, keiner) &&
        std::string_view(ortsoption(optionen.home)) == "--dir")
        return satz("; --home names the directory above \"plugins\": did you mean --dir {1}?",
                    einzeilig(fuerDieShell(optionen.home)));
    return satz("; --home names the directory above \"plugins\"");
}

Optionen mitVerzeichnis(Optionen optionen, const std::string& verzeichnis) {
    if (verzeichnis.empty())
        return optionen;
    if (!optionen.home.empty() || !optionen.dir.empty())
        throw AufrufFehler(satz("give one of DIR, --home and --dir"));
    optionen.dir = orvo::orvoutil::getAbsolutePath(verzeichnis);
    return optionen;
}

} // namespace werkzeug
