#include "bestandsliste/Bestandsliste.h"

#include "bestandsliste/Inhalt.h"
#include "kern/Berichtsteile.h"
#include "kern/Eingabe.h"
#include "kern/Gruende.h"
#include "kern/Herkunft.h"
#include "kern/Ordnung.h"
#include "kern/Sammler.h"

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoutil/PathUtil.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

namespace fs = std::filesystem;

namespace werkzeug {

namespace {

constexpr char kFormat[] = "orvoplugin-lock";
constexpr int kFormatVersion = 1;
constexpr std::size_t kMeistens = std::size_t(64) << 20; ///< bytes of a lock file, which is read as a whole
constexpr int kTiefe = 5;                                ///< of a key within a file within the list

/// Whether it is the shortest way to a file below a directory, without a step to the directory above.
bool istUnterpfad(const std::string& pfad) {
    const fs::path p(pfad);
    return p.is_relative() && p.has_filename() && p.lexically_normal().string() == pfad && p != "." &&
           *p.begin() != ".." && pfad.find('\0') == std::string::npos;
}

Json dateiAlsJson(const Bestand& bestand, const DateiFakt& datei, Json schluessel) {
    const std::string pfad = kurzerPfad(bestand, datei);
    if (jsonText(pfad) != pfad) // two such names may come out the same
        throw Unlesbar(satz("{1}: its name is not UTF-8, which a lock file cannot hold", einzeilig(pfad)));
    Json json{{"path", pfad}};
    json.update(inhaltAlsJson(inhaltVon(bestand.fundort(datei)), datei.plugin));
    json["state"] = code(datei.zustand);
    json["resident"] = datei.plugin && datei.plugin->resident;
    json["keys"] = std::move(schluessel);
    return json;
}

/// Checks everything before it is used. Errors: `Unlesbar` and `Json::exception` with a reason, to which
/// `liesBestandsliste` adds the file's name and the place.
class Leser {
public:
    Bestand lies(const Json& liste, const std::string& datei) {
        if (liste.at("format") != kFormat || liste.at("format_version") != kFormatVersion)
            throw Unlesbar(satz("it is no \"{1}\" of version {2}", kFormat, kFormatVersion));
        bestand_.suchpfad = orvo::orvoutil::getAbsolutePath(datei);
        bestand_.verzeichnisse.push_back({bestand_.suchpfad, 0});
        for (const Json& eintrag : feldliste(liste, "files"))
            liesDatei(eintrag);
        std::ranges::stable_sort(bestand_.schluessel, {}, [](const auto& s) { return schluesselrang(s); });
        nenneErsatz();
        return std::move(bestand_);
    }
    /// Of the file that is being read.
    std::string wo() const {
        return bestand_.dateien.empty() ? "" : "files[" + std::to_string(bestand_.dateien.size() - 1) + "]: ";
    }

private:
    static const Json& feldliste(const Json& objekt, const char* name) {
        if (!objekt.at(name).is_array())
            throw Unlesbar(satz("\"{1}\" is no list", name));
        return objekt.at(name);
    }

    void liesDatei(const Json& eintrag) {
        DateiFakt& datei = bestand_.dateien.emplace_back();
        datei.name = eintrag.at("path").get<std::string>();
        if (!istUnterpfad(datei.name))
            throw Unlesbar(satz("the path leads elsewhere: {1}", einzeilig(datei.name)));
        if (!pfade_.insert(datei.name).second)
            throw Unlesbar(satz("it is there twice: {1}", einzeilig(datei.name)));
        datei.zustand = zustand(eintrag.at("state").get<std::string>());
        if (!eintrag.at("sha256").is_null()) {
            datei.inhalt = {eintrag.at("size").get<std::uint64_t>(), eintrag.at("sha256").get<std::string>()};
            const std::string& summe = datei.inhalt->sha256;
            if (summe.size() != 64 || summe.find_first_not_of("0123456789abcdef") != std::string::npos)
                throw Unlesbar(satz("this is no SHA-256: {1}", einzeilig(summe)));
        }
        if (datei.zustand == Zustand::GELADEN || !eintrag.at("product_version").is_null()) {
            PluginFakt& plugin = datei.plugin.emplace();
            plugin.produktVersion = eintrag.at("product_version").get<std::string>();
            plugin.fileVersion = eintrag.at("file_version").get<std::string>();
            plugin.resident = eintrag.at("resident").get<bool>();
            plugin.erweiterungen.resize(2); // one that serves sub-case types, and one that does not
            plugin.erweiterungen[0].bedientUnterfallarten = true;
        }
        for (const Json& einer : feldliste(eintrag, "keys"))
            liesSchluessel(einer);
    }
    static Zustand zustand(const std::string& name) {
        for (int i = 0; i <= static_cast<int>(Zustand::ZEIT); ++i)
            if (name == code(static_cast<Zustand>(i)))
                return static_cast<Zustand>(i);
        throw Unlesbar(satz("there is no state {1}", einzeilig(name)));
    }
    void liesSchluessel(const Json& einer) {
        if (!bestand_.dateien.back().plugin)
            throw Unlesbar(satz("it holds keys, and is no plugin"));
        SchluesselFakt& schluessel = bestand_.schluessel.emplace_back();
        schluessel.typ = einer.at("type").get<std::int32_t>();
        schluessel.typName = erweiterungTypName(static_cast<tag_erweiterung_typ>(schluessel.typ));
        const bool paare = !hatKeinePaare(schluessel.typ);
        schluessel.inhaber = {static_cast<std::uint32_t>(bestand_.dateien.size() - 1), paare ? 0u : 1u};
        if (!einer.at("year").is_null())
            schluessel.zeitraum.jahr = einer.at("year").get<std::int32_t>();
        if (!paare)
            return;
        const std::string name = liesUnterfallart(einer.at("sub_case_type").get<std::string>());
        const Unterfallart unterfallart(name.c_str());
        schluessel.unterfallart = {unterfallart.getNummer(), unterfallart.getName()};
    }

    /// The period-independent entries answer for years without a key.
    void nenneErsatz() {
        std::uint32_t platz = 0;
        for (const SchluesselFakt& s : bestand_.schluessel) {
            const SpanneFakt immer{SpanneFakt::kErstesJahr, SpanneFakt::kOffen, RegisterAuskunft::UNABHAENGIG,
                                   platz};
            if (s.zeitraum.jahr == 0)
                bestand_.zeilen.push_back({s.typ, s.typName, s.unterfallart, {immer}, platz});
            ++platz;
        }
    }

    Bestand bestand_;
    std::set<std::string> pfade_;
};

Json zerlege(const std::string& datei) {
    std::ifstream strom(datei, std::ios::binary);
    std::string text(kMeistens, '\0');
    strom.read(text.data(), static_cast<std::streamsize>(kMeistens));
    if (!strom.eof()) // also of a file that could not be opened
        throw Unlesbar(strom ? satz("it is too large") : systemtext(errno));
    text.resize(static_cast<std::size_t>(strom.gcount()));
    return Json::parse(text, [](int tiefe, Json::parse_event_t, const Json&) {
        if (tiefe > kTiefe)
            throw Unlesbar(satz("it is nested too deeply"));
        return true;
    });
}

} // namespace

std::vector<Json> schluesselJeDatei(const Bestand& bestand) {
    std::vector<Json> je(bestand.dateien.size(), Json::array());
    for (const SchluesselFakt& schluessel : bestand.schluessel) {
        if (!bestand.erweiterung(schluessel.inhaber).istZuHaben())
            continue;
        const bool paare = !hatKeinePaare(schluessel.typ);
        const std::int32_t jahr = paare ? schluessel.zeitraum.jahr : 0;
        je[schluessel.inhaber.datei].push_back(
            {{"type", schluessel.typ},
             {"sub_case_type", paare ? Json(jsonText(schluessel.unterfallart.name)) : Json(nullptr)},
             {"year", jahr != 0 ? Json(jahr) : Json(nullptr)},
             {"period", jahr != 0 ? anzeige(schluessel.zeitraum) : "any"}});
    }
    return je;
}

Json bestandsliste(const Bestand& bestand, bool nurBeschriebene, const std::string& selbst) {
    Json liste = jsonKopf("lock");
    liste["format"] = kFormat;
    liste["format_version"] = kFormatVersion;
    liste["made_by"] = versionen();
    liste["described"] = nurBeschriebene;
    for (const VerzeichnisFakt& verzeichnis : bestand.verzeichnisse)
        if (verzeichnis.fehler != 0)
            throw Unlesbar(einzeilig(verzeichnis.pfad) + ": " + systemtext(verzeichnis.fehler));
    std::vector<Json> schluessel = schluesselJeDatei(bestand);
    std::map<std::string, Json> sortiert;
    for (std::size_t i = 0; i < bestand.dateien.size(); ++i) {
        const DateiFakt& datei = bestand.dateien[i];
        if (std::error_code keins; datei.plugin || !fs::equivalent(bestand.fundort(datei), selbst, keins))
            sortiert[kurzerPfad(bestand, datei)] = dateiAlsJson(bestand, datei, std::move(schluessel[i]));
    }
    Json& dateien = liste["files"] = Json::array();
    for (auto& [pfad, datei] : sortiert)
        dateien.push_back(std::move(datei));
    return liste;
}

bool istBestandsliste(const std::string& pfad) {
    struct stat s {};
    return stat(pfad.c_str(), &s) == 0 && !S_ISDIR(s.st_mode);
}

Bestand liesBestandsliste(const std::string& datei) {
    Leser leser;
    try {
        return leser.lies(zerlege(datei), datei);
    } catch (const std::exception& fehler) {
        throw Unlesbar(
            satz("{1} is no lock file: {2}", einzeilig(datei), leser.wo() + einzeilig(fehler.what())));
    }
}

} // namespace werkzeug
