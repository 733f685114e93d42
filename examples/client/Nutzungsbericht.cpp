#include "Nutzungsbericht.h"

#include "Adressraum.h"
#include "Auskunft.h"
#include "Erwartungen.h"
#include "LadeProtokoll.h"
#include "Stammdaten.h"
#include "Tabelle.h"
#include "TextListe.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>

#include <ostream>
#include <stdexcept>

using namespace orvo::orvoutil;

namespace {

/// The state at one step.
struct Soll {
    std::int32_t nutzungen;
    std::int32_t ausgegeben;
    bool imSpeicher;
};

/// A table of steps in the life of an extension's plugin.
class Nutzungstabelle {
public:
    Nutzungstabelle(const OrvoErweiterung& erweiterung, Erwartungen& erwartungen)
        : erweiterung_(erweiterung),
          erwartungen_(erwartungen),
          tabelle_(
              {dateiVon(*erweiterung.getPlugin()), "Nutzungen", "Dienste ausgegeben", "im Speicher", ""}) {}

    void schritt(const std::string& name, const Soll& soll) {
        const OrvoPlugin& plugin = *erweiterung_.getPlugin();
        const Adressraum ist = Adressraum::von(plugin.getSharedLib()->getName());
        const bool erwartet = plugin.getUseCount() == soll.nutzungen &&
                              erweiterung_.getAusgegeben() == soll.ausgegeben && ist.istEinig() &&
                              ist.enthaelt() == soll.imSpeicher;
        tabelle_.fuegeHinzu({name, std::to_string(plugin.getUseCount()),
                             std::to_string(erweiterung_.getAusgegeben()), jaNein(ist.enthaelt()),
                             erwartungen_.pruefe(erwartet, "Nutzung: " + dateiVon(plugin) + ", " + name)});
    }

    const Tabelle& getTabelle() const { return tabelle_; }

private:
    const OrvoErweiterung& erweiterung_;
    Erwartungen& erwartungen_;
    Tabelle tabelle_;
};

template <class Erweiterung>
Erweiterung& vorhandene(Erweiterung* erweiterung) {
    if (!erweiterung)
        throw std::runtime_error("Die Erweiterung für die Nutzungszählung fehlt.");
    return *erweiterung;
}

} // namespace

void berichteNutzung(std::ostream& aus, const OrvoErweiterungsManager& registratur, LadeProtokoll& protokoll,
                     const std::string& datenverzeichnis, Erwartungen& erwartungen) {
    const Unterfallart ua("LSTB");
    const Veranlagungszeitraum vz(2009, "YYYY");
    const TextListe liste(
        liesDatensaetze(registratur, ua, vz, concatPath(datenverzeichnis, "lstb-2009-pruefziffer.txt")));
    protokoll.leere();

    auto& pruefung = vorhandene(registratur.findeValidierungsServiceErweiterung(ua, vz));
    Nutzungstabelle ablauf(pruefung, erwartungen);
    ablauf.schritt("vor der ersten Ausleihe", {0, 0, false});
    {
        ServiceGriff erste(&pruefung);
        ablauf.schritt("ein Dienst geholt", {1, 1, true});
        const ServiceGriff zweite(&pruefung);
        ablauf.schritt("noch einer geholt", {2, 2, true});
        PruefErgebnis ergebnis;
        if (erste && zweite) {
            erste->pruefe(liste, ua, vz, ergebnis);
            zweite->pruefe(liste, ua, vz, ergebnis);
        }
        ablauf.schritt("beide haben geprüft", {2, 2, true});
        erste.gibZurueck();
        ablauf.schritt("einer zurückgegeben", {1, 1, true});
    }
    ablauf.schritt("beide zurückgegeben", {0, 0, false});
    aus << ablauf.getTabelle();

    auto& finanzaemter = vorhandene(registratur.findeFADatenServiceErweiterung());
    Nutzungstabelle resident(finanzaemter, erwartungen);
    {
        const ServiceGriff dienst(&finanzaemter);
        resident.schritt("residentes Plugin, ein Dienst geholt", {1, 1, true});
    }
    resident.schritt("residentes Plugin, zurückgegeben", {0, 0, true});
    aus << '\n' << resident.getTabelle();

    aus << "\n  Das Plugin hat beim Laden und Entladen selbst gemeldet:\n";
    for (const std::string& meldung : protokoll.getPluginmeldungen())
        aus << "  " << meldung << '\n';
    erwartungen.pruefe(protokoll.getPluginmeldungen().size() == 2,
                       "Meldungen des Plugins beim Laden und Entladen");
}

void berichteAbgang(std::ostream& aus, const std::vector<std::string>& bibliotheken,
                    Erwartungen& erwartungen) {
    Tabelle tabelle({"Aus dem bisherigen Home", "im Speicher", ""});
    for (const std::string& bibliothek : bibliotheken) {
        const std::string datei = toUtf8(getOnlyFilenameOfFullFilename(bibliothek));
        const Adressraum ist = Adressraum::von(bibliothek);
        tabelle.fuegeHinzu(
            {datei, jaNein(ist.enthaelt()), erwartungen.pruefe(!ist.enthaelt(), "Abgang: " + datei)});
    }
    aus << tabelle;
}
