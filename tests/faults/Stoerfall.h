#pragma once

#include "support/Mitschnitt.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

class OrvoErweiterungsManager;
class OrvoPlugin;
class OrvoPluginManager;
class OrvoValidierungsServiceErweiterung;

/// A fault ("Störfall"): a plugin directory with something bad in it, between two healthy plugins in load order.
/// In every case the process survives and the healthy plugins are registered and usable; afterwards the bad library is
/// not in the memory map, and no file descriptor stays open. Each test ends by unloading everything and checking again.
class Stoerfall : public testing::Test {
protected:
    using Zeilen = std::vector<std::string>;

    /// The sub-case types that the healthy plugins and, if it is loaded, the bad one check, in the year 2009.
    static constexpr int kVorher = 11;
    static constexpr int kNachher = 99;
    static constexpr int kDazwischen = 50;
    /// The text that makes the bad plugin healthy.
    static constexpr char kEinCheck[] = "produktversion 1.0\nloeschen\ncheck 50 2009\n";
    /// Why a missing file is refused.
    static constexpr char kFehlt[] = "kann nicht ge\xF6"
                                     "ffnet werden: No such file or directory";

    Stoerfall();
    ~Stoerfall() override;
    void TearDown() override;

    /// Path of something in the plugin directory.
    std::string plugin(const std::string& name) const { return home.pfad("plugins/" + name); }
    /// Copies a test plugin there, with the text that it follows. Returns: the copy's path.
    std::string lege(const char* vorlage, const std::string& name,
                     const std::string& beschreibung = "") const;
    /// The same as the bad one.
    void legeSchlechtes(const char* vorlage, const std::string& beschreibung = "") const;

    /// Makes registry and manager, and so loads everything. Returns: what the first loading run returned.
    bool starte();
    /// Unloads everything and loads it again. Returns: what `ladePlugins` returned.
    bool ladeNeu();

    /// The three outcomes, each with all its checks; they call `starte` and run the loading a second time.
    /// Refused: the line "Plugin nicht geladen: " + `grund`, and no other line of that kind, no warning, no error.
    void erwarteAbgelehnt(const std::string& grund);
    /// The same, for a file that the library itself or the system's loader does not open.
    void erwarteNichtGeoeffnet(const std::string& grund);
    /// Loaded like any other; the log has these warnings and errors and no others.
    void erwarteGeladen(const Zeilen& warnungen = {});
    /// Not taken for a plugin file: the log never mentions it.
    void erwarteUebergangen();

    /// Their parts, for other kinds of test.
    void erwarteHeileBrauchbar();
    void erwarteBrauchbar(int unterfallart, const std::string& pfad);
    /// Nothing of the plugin directory is mapped, and no further descriptor is open.
    void erwarteSpurlos() const;

    OrvoValidierungsServiceErweiterung* finde(int unterfallart) const;
    /// The plugin loaded from that file; null when there is none.
    OrvoPlugin* geladenes(const std::string& pfad) const;
    /// Files of the plugins in the manager's list, below the plugin directory.
    Zeilen geladene() const;
    /// The log's lines "Plugin nicht geladen: ...", and its warnings and errors.
    Zeilen ablehnungen() const;
    Zeilen warnungen() const;
    static std::string ablehnung(const std::string& grund);

    /// Two loading runs, the second one without a restart, end so.
    void erwarteAusgang(bool erfolg, const Zeilen& plugins, const Zeilen& ablehnungen,
                        const Zeilen& warnungen);

    /// Runs a function in a child process, optionally as another user; its failures become this test's.
    enum class Benutzer { DERSELBE, NIEMAND };
    void imKindprozess(const std::function<void()>& was, Benutzer benutzer = Benutzer::DERSELBE);

    const Verzeichnis home;
    Mitschnitt log{orvo::orvoutil::LogLevel::Info};
    std::string schlechtes = plugin("libmmm.dylib");
    const std::string vorher;
    const std::string nachher;
    OrvoErweiterungsManager* registry = nullptr;
    OrvoPluginManager* manager = nullptr;

private:
    int deskriptoren_; // open before anything was loaded
};
