#include "kern/Hilfe.h"

#include "kern/Sprache.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace werkzeug {

namespace {

/// The parser's own texts.
constexpr const char* kWorte[] = {N_("Usage"),    N_("OPTIONS"),  N_("SUBCOMMAND"), N_("Positionals"),
                                  N_("REQUIRED"), N_("Excludes"), N_("Needs")};
[[maybe_unused]] constexpr const char* kTexte[] = {N_("Options"), N_("Subcommands"),
                                                   N_("Print this help message and exit"),
                                                   N_("Display program version information and exit")};
constexpr const char* kFehler[] = {N_("A subcommand is required"),
                                   N_("{1} is required"),
                                   N_("{1} excludes {2}"),
                                   N_("{1} requires {2}"),
                                   N_("The following argument was not expected: {1}"),
                                   N_("The following arguments were not expected: {1}"),
                                   N_("{1}: must not be empty"),
                                   N_("{1}: must be a number"),
                                   N_("{1}: Value {2} not in range {3} to {4}"),
                                   N_("{1}: {2} not in {3}"),
                                   N_("{1}: At Most {2} required but received {3}"),
                                   N_("{1}: At least {2} required but received {3}"),
                                   N_("{1}: {2} required {3} missing"),
                                   N_("{1}: too many inputs for a flag"),
                                   N_("{1} was given a disallowed flag override"),
                                   N_("Could not convert: {1} = {2}")};

struct Hilfeformat : CLI::Formatter {
    std::string make_option_name(const CLI::Option* option, bool istArgument) const override {
        return uebersetzt(Formatter::make_option_name(option, istArgument));
    }
};

void uebersetze(CLI::App& app, const std::shared_ptr<Hilfeformat>& format) {
    app.formatter(format);
    app.description(uebersetzt(app.get_description()));
    app.footer(uebersetzt(app.get_footer()));
    for (CLI::Option* const option : app.get_options()) {
        option->description(uebersetzt(option->get_description()));
        option->group(uebersetzt(option->get_group()));
        format->label(option->get_type_name(), uebersetzt(option->get_type_name()));
    }
    for (CLI::App* const befehl : app.get_subcommands(std::function<bool(CLI::App*)>())) {
        befehl->group(uebersetzt(befehl->get_group()));
        uebersetze(*befehl, format);
    }
}

/// The values with which the pattern gives the text; none when it cannot.
std::optional<std::vector<std::string>> werteVon(std::string_view text, std::string_view muster) {
    std::vector<std::string> werte;
    for (;;) {
        const std::size_t platz = muster.find('{');
        if (text.substr(0, platz) != muster.substr(0, platz))
            return {};
        if (platz == std::string_view::npos)
            return werte;
        text.remove_prefix(platz);
        muster.remove_prefix(platz + 3);
        const std::string_view danach = muster.substr(0, muster.find('{'));
        const std::size_t ende = danach.empty() ? text.size() : text.find(danach);
        if (ende == std::string_view::npos)
            return {};
        werte.emplace_back(text.substr(0, ende));
        text.remove_prefix(ende);
    }
}

} // namespace

void uebersetzeHilfe(CLI::App& app) {
    const auto format = std::make_shared<Hilfeformat>();
    for (const char* const wort : kWorte)
        format->label(wort, uebersetzt(wort));
    uebersetze(app, format);
}

std::string parsertext(const std::string& text) {
    for (const char* const muster : kFehler)
        if (const auto werte = werteVon(text, muster))
            return fuelleSatz(muster, *werte);
    return text;
}

} // namespace werkzeug
