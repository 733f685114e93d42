#pragma once

#include <orvoplugin/plugin/LadeBeobachter.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoutil/Log.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <string>
#include <utility>

/// What code of plugins or observers is on the stack, so that unsafe calls can be refused.
enum class Lauf {
    Lader, ///< a library is opened or closed: its start-up or last code runs, under the system's loader
    Beschreibung, ///< a plugin describes itself
    Aufruf,       ///< a hook, a factory, or the end of a service
    Beobachter,   ///< observers are told of a plugin
};

/// Counts a run for as long as it lives.
class Laufend {
public:
    explicit Laufend(Lauf lauf) noexcept : anzahl_(anzahlen_[static_cast<int>(lauf)]) { ++anzahl_; }
    Laufend(const Laufend&) = delete;
    ~Laufend() { --anzahl_; }

    static bool gibtEs(Lauf lauf) noexcept { return anzahlen_[static_cast<int>(lauf)] != 0; }
    static bool gibtEsIrgendeinen() noexcept {
        return std::any_of(std::begin(anzahlen_), std::end(anzahlen_),
                           [](int anzahl) { return anzahl != 0; });
    }

private:
    static inline int anzahlen_[4] = {};

    int& anzahl_;
};

/// The one door to a plugin's code: owns the library, and alone opens, closes, searches and deletes it. Foreign code
/// runs only through `rufe` or under a `Laufend`.
///
/// A library stays open while an exception is under way or being handled: its class may lie there. The close is deferred
/// to the next use, release, load or unload without an exception. (A kept `std::exception_ptr` cannot be seen.)
///
/// Ownership: owns the library. Delete the object through its `Zeiger`, which defers the close as well.
class Pluginbibliothek {
public:
    using Zeiger = std::unique_ptr<Pluginbibliothek, BibliotheksSchliesser>;

    /// Takes the library over, also on failure; null stands for a library that cannot be opened.
    static Zeiger fuer(orvo::orvoutil::SharedLib* bibliothek);

    Pluginbibliothek(const Pluginbibliothek&) = delete;
    Pluginbibliothek& operator=(const Pluginbibliothek&) = delete;

    orvo::orvoutil::SharedLib* get() const noexcept { return bibliothek_.get(); }
    /// The current step of loading, which is the one that failed when loading ends now.
    orvo_plugin_ablehnung_t getSchritt() const noexcept { return schritt_; }
    void setzeSchritt(orvo_plugin_ablehnung_t schritt) noexcept { schritt_ = schritt; }

    bool istOffen() const;
    /// Returns: whether the library is open now; if not, `getGrund` says why. Throws what its start-up code throws.
    bool oeffne();
    std::string getGrund() const;
    /// Closes the library, now or deferred. A failure is logged.
    void schliesse(orvo::orvoutil::Log log = {}) noexcept;
    /// Returns: the exported function of that name; null when there is none.
    template <class Funktion>
    Funktion* funktion(const std::string& name) noexcept {
        return reinterpret_cast<Funktion*>(symbol(name));
    }
    /// Calls an entry point that describes the plugin. Throws what that throws.
    template <class Ergebnis, class Argument>
    static Ergebnis beschreibt(Ergebnis (*einsprung)(Argument*), Argument* argument) {
        const Laufend laufend(Lauf::Beschreibung);
        return einsprung(argument);
    }
    /// Whether the code or data at that address leaves the process with this library.
    bool enthaelt(const void* adresse) const;

    /// Does the deferred closes, unless there still is an exception.
    static void schliesseAufgeschobene() noexcept {
        if (aufgeschobene_)
            schliesseFaellige();
    }

    /// The text of an exception, as it is logged.
    static const char* grundVon(const std::exception& ausnahme) noexcept {
        const char* const text = ausnahme.what();
        return text ? text : "";
    }

    /// Calls `ruf`, and hands the text of what it throws to `melde`. Returns: whether it threw nothing.
    static bool rufe(auto&& ruf, auto&& melde) {
        try {
            ruf();
            return true;
        } catch (const std::exception& ausnahme) {
            melde(grundVon(ausnahme));
        } catch (...) {
            melde("unbekannte Ausnahme");
        }
        return false;
    }

private:
    friend struct BibliotheksSchliesser;

    explicit Pluginbibliothek(std::unique_ptr<orvo::orvoutil::SharedLib> bibliothek) noexcept;
    ~Pluginbibliothek();

    static void schliesseFaellige() noexcept;

    void* symbol(const std::string& name) noexcept;
    void schiebeAuf(orvo::orvoutil::Log log) noexcept;
    void nimmZurueck() noexcept;
    void schliesseJetzt(orvo::orvoutil::Log log) noexcept;

    static inline Pluginbibliothek* aufgeschobene_ = nullptr;

    std::unique_ptr<orvo::orvoutil::SharedLib> bibliothek_;
    orvo_plugin_ablehnung_t schritt_ = ABLEHNUNG_OEFFNEN;
    bool aufgeschoben_ = false; ///< in the list of deferred closes
    bool herrenlos_ = false;    ///< owned by that list
    orvo::orvoutil::Log log_;   ///< for the deferred close
    Pluginbibliothek* naechste_ = nullptr;
};
