#include "check/Text.h"

#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <orvoutil/Latin1.h>

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace werkzeug::check {

namespace {

/// The beginning of a text of any length, such as a plugin's text or a template's name.
std::string gekuerzt(std::string text) {
    constexpr std::size_t kLaengster = 80; // bytes
    if (text.size() > kLaengster)
        text.replace(kLaengster, std::string::npos, "...");
    return text;
}

} // namespace

std::string zitiert(std::string_view text) { return '"' + einzeilig(gekuerzt(std::string(text))) + '"'; }

std::string symbolname(const std::string& name) {
    int zustand = 0;
    const std::unique_ptr<char, void (*)(void*)> klar(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &zustand), std::free);
    return einzeilig(gekuerzt(zustand == 0 && klar ? klar.get() : name));
}

std::string ausnahmetext(std::string_view text) {
    constexpr std::size_t kLaengster = 500;                                     // bytes
    constexpr orvo::orvoutil::Latin1Text kMuster{u8"Ungültige Formatangabe: "}; // of a period
    const bool istMuster = text.find(kMuster.sicht()) != std::string_view::npos;
    return einzeilig(text.substr(0, kLaengster)) +
           (istMuster
                ? satz("; a pattern has the letters Y (year), M or Z (month or period code) and T (day), "
                       "and the separators -, / and \\, as in \"YYYY-MM\"")
                : "");
}

std::string paar(const Unterfallart& ua, const Veranlagungszeitraum& vz) {
    const std::string name = einzeilig(gekuerzt(ua.getName()));
    return vz.getText().empty() ? satz("{1} for any period", name)
                                : name + " " + einzeilig(gekuerzt(vz.getText()));
}

std::string art(const OrvoErweiterung& erweiterung) { return erweiterungTypName(erweiterung.getTyp()); }

std::string eigenesCxx(const Bibliotheksbild& bild) {
    const auto& benoetigte = bild.getInhalt().benoetigte;
    const bool gemeinsam = std::any_of(benoetigte.begin(), benoetigte.end(), [](const std::string& name) {
        return name.starts_with("libstdc++.") || name.starts_with("libc++.");
    });
    if (gemeinsam && !bild.exportiertFunktion("_Znwm"))
        return {};
    return satz(
        "the library brings a C++ library or an operator new of its own along, which shares no memory, exceptions or types with the host's: link the C++ library dynamically, without -static-libstdc++");
}

std::string alsZusatz(const std::string& text) { return text.empty() ? text : "; " + text; }

} // namespace werkzeug::check
