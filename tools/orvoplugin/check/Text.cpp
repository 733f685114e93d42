#include "check/Text.h"

#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

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
    constexpr std::size_t kLaengster = 500; // bytes
    return einzeilig(text.substr(0, kLaengster));
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
        "; the library brings a C++ library or an operator new of its own along: link the C++ library "
        "dynamically");
}

} // namespace werkzeug::check
