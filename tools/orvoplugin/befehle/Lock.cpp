// orvoplugin lock DIR: an inventory of a plugin directory, to compare the directory with later.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "bestandsliste/Bestandsliste.h"
#include "kern/Sammler.h"

#include <CLI/CLI.hpp>

namespace werkzeug {

namespace {

class Lock : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl.add_option("DIR", verzeichnis_, "Plugin directory, in place of --home or --dir")
            ->type_name("");
    }

    bool nimmtBeschreibungen() const override { return true; }

    Ausgang fuehreAus(const Optionen& gegeben) override {
        Optionen optionen = mitVerzeichnis(gegeben, verzeichnis_);
        optionen.json = true;
        Auftrag auftrag;
        auftrag.exporteVon = "*";
        const Bestand bestand = sammle(optionen, auftrag);
        gibAus(optionen,
               bestandsliste(bestand, optionen.beschreibungen == Beschreibungen::NUR, "/dev/stdout"),
               nullptr);
        return ausgangVon(bestand);
    }

private:
    std::string verzeichnis_;
};

} // namespace

std::unique_ptr<Befehl> macheLock() { return std::make_unique<Lock>(); }

} // namespace werkzeug
