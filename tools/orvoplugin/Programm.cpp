#include "Programm.h"

#include "befehle/Befehl.h"
#include "kern/Anzeige.h"
#include "kern/Herkunft.h"
#include "kern/Hilfe.h"
#include "kern/Kindprozess.h"
#include "kern/Naehe.h"
#include "kern/Optionen.h"
#include "kern/Sprache.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace werkzeug {

namespace {

constexpr const char* kBeschreibung =
    N_("Shows what is in a plugin directory, which plugin answers for which "
       "sub-case type and period, and why not.");

constexpr char kBeispiele[] = "  orvoplugin list --home /opt/client\n"
                              "  orvoplugin why libmine.dylib --home /opt/client\n"
                              "  orvoplugin help why\n";

constexpr const char* kAusgaenge =
    N_("Exit codes: 0 fine; 1 findings (something refused, failed or not found); 2 wrong usage;\n"
       "3 directory or file cannot be read; 4 a plugin crashed or timed out; 5 required coverage missing;\n"
       "6 not as the lock file has it.");

std::string fusszeile(const char* beispiele) {
    return satz("Examples:") + "\n" + beispiele + "\n" + uebersetzt(kAusgaenge);
}

/// The words in the order in which CLI11 takes them: the last first. "help find" is "find --help".
std::vector<std::string> worteVon(int argc, char** argv) {
    std::vector<std::string> worte;
    for (int i = argc - 1; i > 0; --i)
        worte.emplace_back(argv[i]);
    if (!worte.empty() && worte.back() == "help") {
        worte.pop_back();
        worte.insert(worte.begin(), "--help");
    }
    return worte;
}

/// What is wrong with a word that neither the program nor the command takes, and what may have been meant.
std::string meldungZu(const CLI::App& befehl, const std::string& wort) {
    const std::string gezeigt = einzeilig(fuerDieShell(wort));
    std::vector<std::string> worte;
    if (wort.starts_with('-')) {
        for (const CLI::Option* const option : befehl.get_options())
            for (const std::string& name : option->get_lnames())
                worte.push_back("--" + name);
        return satz("there is no option {1}", gezeigt) +
               rueckfrage(naechstes(wort.substr(0, wort.find('=')), worte));
    }
    std::error_code keiner;
    const bool istVerzeichnis = std::filesystem::is_directory(wort, keiner);
    if (befehl.get_parent()) {
        const bool nimmtOrt = !befehl.get_option("--home")->get_group().empty();
        return satz("{1}: unexpected argument {2}", befehl.get_name(), gezeigt) +
               (istVerzeichnis && nimmtOrt ? rueckfrage(ortsoption(wort) + (" " + fuerDieShell(wort))) : "");
    }
    if (istVerzeichnis)
        return satz("{1} is a directory; did you mean: orvoplugin list {2} {1}", gezeigt, ortsoption(wort));
    if (std::filesystem::exists(wort, keiner))
        return satz("{1} is a file; did you mean: orvoplugin show {1}", gezeigt);
    for (const BefehlEintrag& eintrag : alleBefehle())
        worte.emplace_back(eintrag.name);
    return satz("there is no command {1}", gezeigt) + rueckfrage(naechstes(wort, worte));
}

/// Reports a wrong command line in one line, with a hint to the help.
int meldeFalschenAufruf(const CLI::App& app, const CLI::Error& fehler) {
    const std::vector<CLI::App*> gewaehlt = app.get_subcommands();
    const CLI::App& befehl = gewaehlt.empty() ? app : *gewaehlt.front();
    const std::vector<std::string> zuviel = befehl.remaining();
    if (fehler.get_exit_code() == 0 && (zuviel.empty() || !gewaehlt.empty())) { // --help and --version
        std::ostringstream text;
        app.exit(fehler, text);
        gibAus(text.str());
        return static_cast<int>(Ausgang::GUT);
    }
    std::cerr << "orvoplugin: "
              << (zuviel.empty() ? parsertext(fehler.what()) : meldungZu(befehl, zuviel.front())) << "\n"
              << satz("Try '{1}'.",
                      "orvoplugin " + (gewaehlt.empty() ? "" : befehl.get_name() + " ") + "--help")
              << "\n";
    return static_cast<int>(Ausgang::FALSCHER_AUFRUF);
}

/// Makes every option refuse an empty value: an unset variable in a script produces it, and the command would answer
/// another question. An empty list of resident plugins is allowed.
void verlangeWerte(CLI::App& app) {
    const CLI::Validator nichtLeer(
        [](std::string& wert) { return std::string(wert.empty() ? "must not be empty" : ""); }, "");
    for (CLI::Option* const option : app.get_options())
        if (option->get_expected_max() > 0 && !option->check_lname("resident"))
            option->check(nichtLeer);
}

/// Hides them from the help. They are still read, so that the command can name the alternative.
void verschweigeVerzeichnisOptionen(CLI::App& unterbefehl) {
    for (const char* const name : {"--home", "--dir"})
        unterbefehl.get_option(name)->group("");
}

/// Warns that the last name of a list of resident plugins is ignored: the library takes only names followed by a comma.
void weiseAufFehlendesKommaHin(const Optionen& optionen) {
    const std::string& liste = optionen.resident;
    if (optionen.quiet || liste.empty() || liste.back() == ',')
        return;
    const std::string letzter = einzeilig(liste.substr(liste.rfind(',') + 1));
    std::cerr << "orvoplugin: "
              << satz("--resident: \"{1}\" names no plugin, for no comma follows it", letzter) << "\n";
}

} // namespace

int programm(int argc, char** argv) try {
    sprichDieSpracheDesBenutzers();
    CLI::App app(kBeschreibung, "orvoplugin");
    app.set_version_flag("-V,--version", versionen());
    app.require_subcommand(1);
    app.fallthrough(false);

    Optionen optionen;
    optionen.aufruf = befehlszeile(argc, argv);
    fuegeOptionenHinzu(app, optionen);
    verlangeWerte(app);
    std::vector<std::pair<CLI::App*, std::unique_ptr<Befehl>>> befehle;
    for (const BefehlEintrag& eintrag : alleBefehle()) {
        CLI::App* const unterbefehl = app.add_subcommand(eintrag.name, eintrag.kurz);
        std::unique_ptr<Befehl> befehl = eintrag.mache();
        befehl->beschreibe(*unterbefehl);
        unterbefehl->footer(unterbefehl->get_footer() + fusszeile(eintrag.beispiele));
        if (befehl->nimmtBeschreibungen())
            fuegeDescribedHinzu(*unterbefehl, optionen);
        if (befehl->probiert())
            fuegeProbeHinzu(*unterbefehl, optionen);
        fuegeOptionenHinzu(*unterbefehl, optionen);
        if (!befehl->nimmtVerzeichnisOptionen())
            verschweigeVerzeichnisOptionen(*unterbefehl);
        verlangeWerte(*unterbefehl);
        befehle.emplace_back(unterbefehl, std::move(befehl));
    }
    app.footer(fusszeile(kBeispiele)); // not earlier: the commands would inherit it
    uebersetzeHilfe(app);

    try {
        app.parse(worteVon(argc, argv));
    } catch (const CLI::Error& fehler) {
        return meldeFalschenAufruf(app, fehler);
    }
    weiseAufFehlendesKommaHin(optionen);
    const Englisch englisch(optionen.json);
    for (const auto& [unterbefehl, befehl] : befehle)
        if (unterbefehl->parsed())
            return static_cast<int>(befehl->fuehreAus(optionen));
    return static_cast<int>(Ausgang::FALSCHER_AUFRUF);
} catch (const Unterbrochen& unterbrochen) { // as if the signal had not been caught
    std::signal(unterbrochen.signal, SIG_DFL);
    std::raise(unterbrochen.signal);
    return static_cast<int>(Ausgang::NICHT_LESBAR);
} catch (const AufrufFehler& fehler) {
    std::cerr << "orvoplugin: " << fehler.what() << "\n" << satz("Try '{1}'.", "orvoplugin --help") << "\n";
    return static_cast<int>(Ausgang::FALSCHER_AUFRUF);
} catch (const std::exception& fehler) {
    std::cerr << "orvoplugin: " << fehler.what() << "\n";
    return static_cast<int>(Ausgang::NICHT_LESBAR);
}

} // namespace werkzeug
