// orvoplugin describe FILE...: writes what plugins say of themselves into their files.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "beschreibung/Befragung.h"
#include "check/PluginDateien.h"
#include "datei/Bibliotheksbild.h"
#include "kern/Anzeige.h"
#include "kern/Berichtsteile.h"
#include "kern/Dateischreiber.h"
#include "kern/Terminal.h"

#include <orvoplugin/beschreibung/Beschreibung.h>

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace werkzeug {

namespace {

/// The room for a description in a file. Errors: `NichtBeschreibbar`.
Beschreibungsfund findePlatz(const std::string& pfad) {
    if (const std::string grund = check::warumUnlesbar(pfad); !grund.empty())
        throw NichtBeschreibbar(satz("cannot be read: {1}", grund), Ausgang::NICHT_LESBAR);
    if (const Bibliotheksbild bild(pfad); !bild.istLadbar())
        throw NichtBeschreibbar(einzeilig(bild.getGrund()));
    Beschreibungsfund fund = liesBeschreibung(pfad);
    if (fund.platz == 0)
        throw NichtBeschreibbar(
            satz("it has no room for a description: build it with DESCRIBED, or with the "
                 "source that \"pkg-config --variable=described orvoplugin-plugin\" names"));
    return fund;
}

void verlangePlatz(const Beschreibungsfund& fund, const std::string& beschreibung) {
    if (beschreibung.size() <= fund.platz)
        return;
    constexpr std::size_t kStufe = 1024; // leaves some room for the next version
    throw NichtBeschreibbar(
        satz("its description takes {1} bytes, and its file has room for {2}: build it with "
             "DESCRIPTION_SIZE {3}",
             beschreibung.size(), fund.platz, (beschreibung.size() / kStufe + 1) * kStufe));
}

/// Replaces the file by one with the description.
void trageEin(const std::string& pfad, const Beschreibungsfund& fund, std::string beschreibung) {
    std::ifstream datei(pfad, std::ios::binary);
    std::string inhalt((std::istreambuf_iterator<char>(datei)), {});
    if (!datei || inhalt.size() < fund.stelle + fund.platz)
        throw NichtBeschreibbar(satz("cannot be read"), Ausgang::NICHT_LESBAR);
    beschreibung.resize(fund.platz);
    inhalt.replace(fund.stelle, fund.platz, beschreibung);
    schreibeDatei(pfad, inhalt);
}

Json alsJson(const std::string& pfad, const char* ergebnis) {
    return {{"file", jsonText(pfad)},
            {"result", ergebnis},
            {"size", nullptr},
            {"room", nullptr},
            {"reason", nullptr}};
}

/// Returns: what became of the file, as a part of the document. Errors: `NichtBeschreibbar`; `std::runtime_error` when
/// the file cannot be written.
Json beschreibe(const std::string& pfad, const Optionen& optionen) {
    const Beschreibungsfund fund = findePlatz(pfad);
    const std::string beschreibung = befrage(check::vollerPfad(pfad), optionen);
    verlangePlatz(fund, beschreibung);
    const bool steht = fund.stand == Beschreibungsfund::GEFUNDEN && fund.bytes == beschreibung;
    if (!steht)
        trageEin(pfad, fund, beschreibung);
    Json json = alsJson(pfad, steht ? "unchanged" : "described");
    json["size"] = beschreibung.size();
    json["room"] = fund.platz;
    return json;
}

std::string alsText(const Json& dokument, const Farben&) {
    std::string text;
    for (const Json& datei : dokument["files"]) {
        if (!datei["reason"].is_null()) // it is an error message
            continue;
        const bool neu = datei["result"] == "described";
        text += satz(neu ? N_("{1}: described, {2} of {3} bytes") : N_("{1}: unchanged, {2} of {3} bytes"),
                     zeige(datei["file"]), zeige(datei["size"]), zeige(datei["room"]));
        text += '\n';
    }
    return text;
}

class Describe : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl.add_option("FILE", dateien_, "Plugin files to write to")->type_name("")->required();
        unterbefehl.add_flag("--elsewhere", anderswo_,
                             "Exit with 0 where only something of this machine is in the way");
    }

    bool nimmtVerzeichnisOptionen() const override { return false; }

    Ausgang fuehreAus(const Optionen& optionen) override {
        if (!optionen.home.empty() || !optionen.dir.empty())
            throw AufrufFehler(satz("describe takes files, and neither --home nor --dir"));
        Json dokument = jsonKopf("describe");
        dokument["files"] = Json::array();
        Ausgang ausgang = Ausgang::GUT;
        const auto scheitere = [&](const std::string& datei, const std::string& grund, Ausgang wie) {
            std::cerr << "orvoplugin: " << satz("{1}: not described: {2}", einzeilig(datei), grund) << '\n';
            dokument["files"].push_back(alsJson(datei, "failed"));
            dokument["files"].back()["reason"] = grund;
            ausgang = schwerster(ausgang, wie);
        };
        Fortschritt fortschritt(!optionen.quiet);
        for (const std::string& datei : dateien_) {
            fortschritt.zeige(satz("describing {1}", einzeilig(datei)));
            try {
                dokument["files"].push_back(werkzeug::beschreibe(datei, optionen));
            } catch (const NichtBeschreibbar& fehler) {
                scheitere(datei, fehler.what(), anderswo_ && fehler.nurHier ? Ausgang::GUT : fehler.ausgang);
            } catch (const std::runtime_error& fehler) {
                scheitere(datei, fehler.what(), Ausgang::NICHT_LESBAR);
            }
        }
        gibAus(optionen, dokument, alsText);
        return ausgang;
    }

private:
    std::vector<std::string> dateien_;
    bool anderswo_ = false;
};

} // namespace

std::unique_ptr<Befehl> macheDescribe() { return std::make_unique<Describe>(); }

} // namespace werkzeug
