#pragma once

#include "Modell.h"
#include "Schritt.h"

#include "support/Verzeichnis.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class Mitschnitt;
class OrvoErweiterung;
class OrvoErweiterungsManager;
class OrvoPluginManager;
class OrvoPluginV1;
class Service;

namespace modell {

/// The plugin files, made once for all sequences: two home directories with plugins, one without, and some files
/// outside of them.
class Aufbau {
public:
    Aufbau();

    const std::vector<std::string>& dateien() const { return dateien_; }
    std::size_t anzahlHomes() const { return homes_.size(); }
    const std::string& home(std::size_t n) const { return homes_[n].first; }
    /// The files below that home directory, in load order.
    const std::vector<std::size_t>& dateienIn(std::size_t home) const { return homes_[home].second; }

    /// Writes the text file beside that file, and on request the same as a description into the file.
    void beschreibe(std::size_t datei, const std::string& text, bool eingebettet);

private:
    std::vector<std::size_t> lege(const std::vector<std::string>& namen);
    void bette(std::size_t datei, const std::string& text);

    Verzeichnis verzeichnis_;
    std::vector<std::string> dateien_;
    std::vector<std::string> texte_;        ///< the text files beside the plugin files; empty at first
    std::vector<std::string> eingebettete_; ///< what the descriptions in the plugin files were made from
    std::map<std::string, std::string> beschreibungen_; ///< made from texts
    std::string befragte_;                              ///< a plugin file that makes them
    std::vector<std::pair<std::string, std::vector<std::size_t>>> homes_;
};

/// One sequence, run on the libraries and on the model side by side.
class Lauf {
public:
    /// The plugins are loaded from the descriptions in their files, or asked. With a log of the libraries, its lines are
    /// compared too.
    Lauf(Aufbau& aufbau, bool eingebettet, const Mitschnitt* protokoll);
    Lauf(const Lauf&) = delete;
    Lauf& operator=(const Lauf&) = delete;
    ~Lauf();

    /// Returns: the first difference between the libraries and the model, if any.
    std::optional<std::string> fuehreAus(const Folge& folge);

private:
    struct Ausgabe {
        Erweiterung* erweiterung;
        ::Service* service;
    };

    void fuehreAus(const Schritt& schritt);
    void beginne();
    void setzeHome(std::size_t home);
    void ladeAlle();
    void entlade(std::size_t plugin);
    void entladeAlle();
    void hole(Erweiterung* erweiterung);
    void gib(Erweiterung* erweiterung, ::Service* service);
    Erweiterung* waehle(std::size_t plugin, std::size_t erweiterung) const;

    void vergleiche();
    void vergleichePlugin(const Plugin& soll, const OrvoPluginV1& ist);
    void vergleicheListen();
    void vergleicheSuche(const Frage& frage);
    void vergleicheAlleSuchen();
    void vergleicheKarte();
    void vergleicheProtokoll();
    template <class T>
    void gleich(const char* was, const T& soll, const T& ist);

    OrvoPluginV1& echtes(const Plugin& plugin) const;
    OrvoErweiterung* echte(const Erweiterung* erweiterung) const;

    Aufbau& aufbau_;
    const bool eingebettet_;
    const Mitschnitt* protokoll_;
    std::vector<Beschreibung> beschreibungen_;
    std::size_t home_ = 0;
    Modell modell_;
    OrvoErweiterungsManager* registry_ = nullptr;
    OrvoPluginManager* manager_ = nullptr;
    std::vector<Ausgabe> ausgaben_;
    std::vector<Ausgabe> zurueckgegebene_;
    std::optional<std::string> unterschied_;
};

} // namespace modell
