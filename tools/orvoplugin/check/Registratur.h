#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <functional>
#include <string>

class OrvoErweiterungsManager;
class OrvoPluginManager;
class OrvoPluginV1;

namespace werkzeug::check {

/// A pair that an extension serves, and the extension that answers for it.
struct Zuordnung {
    const OrvoErweiterung* erweiterung = nullptr;
    const OrvoErweiterung* antwort = nullptr; ///< null when none does
    std::string text;                         ///< the pair, for people
};

/// The process's plugin manager and registry, started without plugins. For a child process, because each exists only
/// once.
class Registratur {
public:
    Registratur();

    /// Returns: the plugin, owned by the manager; null when the manager refuses it.
    const OrvoPluginV1* lade(const std::string& pfad);

    /// Looks up every pair that the plugin's extensions serve.
    void besuche(const OrvoPluginV1& plugin, const std::function<void(const Zuordnung&)>& besucher) const;

private:
    OrvoErweiterungsManager* registry_;
    OrvoPluginManager* manager_;
};

} // namespace werkzeug::check
