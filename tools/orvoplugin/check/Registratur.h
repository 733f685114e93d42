#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <functional>
#include <string>

class OrvoErweiterungsManager;
class OrvoPluginManager;
class OrvoPluginV1;

namespace werkzeug::check {

/// One pair that an extension serves, and who answers for it.
struct Zuordnung {
    const OrvoErweiterung* erweiterung = nullptr;
    const OrvoErweiterung* antwort = nullptr; ///< null when nobody does
    std::string text;                         ///< the pair, for people
};

/// The process's plugin manager and registry, without the plugins of any directory. For a child process: they are there
/// but once.
class Registratur {
public:
    Registratur();

    /// Returns: the plugin, owned by the manager; null when the manager refuses it.
    const OrvoPluginV1* lade(const std::string& pfad);

    /// Asks the registry for every pair that the plugin's extensions serve.
    void besuche(const OrvoPluginV1& plugin, const std::function<void(const Zuordnung&)>& besucher) const;

private:
    OrvoErweiterungsManager* registry_;
    OrvoPluginManager* manager_;
};

} // namespace werkzeug::check
