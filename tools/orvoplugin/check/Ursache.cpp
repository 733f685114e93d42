#include "check/Ursache.h"

#include "check/Pluginnutzung.h"
#include "kern/Kindprozess.h"
#include "kern/Sprache.h"

#include <orvoutil/SharedLib.h>

#include <algorithm>

namespace werkzeug::check {

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

std::string geaenderteGrenze(const std::map<std::string, std::string>& vorher) {
    for (const auto& [name, wert] : prozessgrenzen())
        if (const auto alt = vorher.find(name); alt != vorher.end() && alt->second != wert)
            return satz("{1} was {2} and is now {3}", name, alt->second, wert);
    return {};
}

std::string ursacheDesAbsturzes(const Pruefling& p) {
    std::string ursache;
    const auto lebe = [&](const Sender& sende) {
        schliesseProtokollDeskriptor();
        const auto grenzen = prozessgrenzen();
        const std::size_t threads = laufendeThreads();
        orvo::orvoutil::SharedLib bleibt(p.pfad); // not unmapped, so that its threads go on
        bleibt.load();
        ladeUndBenutze(p.pfad);
        if (laufendeThreads() > threads)
            sende(satz(
                "; a thread that the plugin started still runs when its code is unmapped: join it in OnUnload"));
        if (const std::string grenze = geaenderteGrenze(grenzen); !grenze.empty())
            sende("; " + grenze);
    };
    laufeImKind(
        lebe, [&](std::string_view text) { ursache += text; }, p.zeitlimit / 2);
    return ursache + eigenesCxx(p.bild);
}

} // namespace werkzeug::check
