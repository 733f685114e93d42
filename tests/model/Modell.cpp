#include "Modell.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace modell {

namespace {

constexpr const char* kArten[] = {"", "check", "feldinfo", "fehlertext", "finanzamt", "xpath", "reader"};
constexpr int kFinanzamt = 4;
constexpr int kImmer = 0;

int typVon(const std::string& art) {
    int typ = 0;
    while (art != kArten[typ])
        ++typ;
    return typ;
}

bool istNummer(const std::string& ua) {
    return !ua.empty() && std::all_of(ua.begin(), ua.end(), [](unsigned char c) { return std::isdigit(c); });
}

std::string klein(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

int jahrVon(const std::string& zeitraum) {
    if (zeitraum == "immer")
        return kImmer;
    const int jahr = std::atoi(zeitraum.substr(0, 4).c_str());
    if (jahr > 999)
        return jahr;
    return jahr == 98 || jahr == 99 ? 1900 + jahr : 2000 + jahr;
}

/// The numbers of a version; missing ones count as zero.
std::vector<int> zahlenVon(const std::string& version) {
    std::vector<int> zahlen(8, 0);
    std::size_t stelle = 0;
    std::string teil;
    for (const char c : version + ".") {
        if (c != '.') {
            teil += c;
            continue;
        }
        zahlen[stelle++] = istNummer(teil) ? std::atoi(teil.c_str()) : 0;
        teil.clear();
    }
    return zahlen;
}

} // namespace

std::string Beschreibung::text() const {
    std::string zeilen = "produktversion " + version + "\n";
    if (resident)
        zeilen += "resident\n";
    if (loeschen)
        zeilen += "loeschen\n";
    for (const Angebot& angebot : angebote) {
        const std::string art = angebot.art == "finanzamt"    ? "finanzamt_daten_service"
                                : angebot.art == "feldinfo"   ? "feldinfo_daten_service"
                                : angebot.art == "fehlertext" ? "fehlertext_daten_service"
                                : angebot.art == "xpath"      ? "xpath_mapping_service"
                                : angebot.art == "reader"     ? "datensatz_reader_service"
                                                              : "check_service";
        zeilen += "factory " + (angebot.factory.empty() ? "orvo_plugin_get_" + art : angebot.factory) + "\n";
        zeilen += angebot.art;
        if (angebot.art != "finanzamt") {
            zeilen += " " + angebot.ua + " ";
            for (std::size_t i = 0; i < angebot.jahre.size(); ++i)
                zeilen += (i ? "," : "") + angebot.jahre[i];
        }
        zeilen += "\n";
    }
    return abgelehnt ? zeilen + "abgelehnt\n" : zeilen;
}

std::string Frage::text() const { return std::to_string(typ) + "/" + ua + "/" + zeitraum; }

int Plugin::ausgegeben() const {
    int summe = 0;
    for (const auto& erweiterung : erweiterungen)
        summe += erweiterung->ausgegeben;
    return summe;
}

bool Modell::gleich(const Schluessel& a, const Schluessel& b) {
    if (a.typ != b.typ || a.jahr != b.jahr)
        return false;
    if (istNummer(a.ua) && istNummer(b.ua))
        return std::atoi(a.ua.c_str()) == std::atoi(b.ua.c_str());
    return klein(a.ua) == klein(b.ua);
}

std::vector<Modell::Schluessel> Modell::schluesselVon(const Erweiterung& erweiterung) {
    if (erweiterung.typ == kFinanzamt)
        return {{kFinanzamt, "0", 2000}};
    std::vector<Schluessel> schluessel;
    for (const std::string& jahr : erweiterung.angebot.jahre)
        schluessel.push_back({erweiterung.typ, erweiterung.angebot.ua, jahrVon(jahr)});
    return schluessel;
}

Modell::Eintrag* Modell::suche(const Schluessel& schluessel) {
    for (Eintrag& eintrag : register_)
        if (gleich(eintrag.schluessel, schluessel))
            return &eintrag;
    return nullptr;
}

void Modell::trageEin(Erweiterung* erweiterung) {
    for (const Schluessel& schluessel : schluesselVon(*erweiterung)) {
        Eintrag* const bestehender = suche(schluessel);
        if (!bestehender) {
            register_.push_back({schluessel, erweiterung});
        } else if (erweiterung->typ != kFinanzamt) {
            ++doppelte;
            if (zahlenVon(erweiterung->plugin->beschreibung.version) >
                zahlenVon(bestehender->erweiterung->plugin->beschreibung.version))
                *bestehender = {schluessel, erweiterung};
        }
    }
}

bool Modell::lade(const std::string& pfad, const Beschreibung& beschreibung) {
    if (beschreibung.abgelehnt)
        return false;
    auto plugin = std::make_unique<Plugin>();
    plugin->pfad = pfad;
    plugin->beschreibung = beschreibung;
    for (const Angebot& angebot : beschreibung.angebote) {
        auto erweiterung = std::make_unique<Erweiterung>();
        erweiterung->plugin = plugin.get();
        erweiterung->angebot = angebot;
        erweiterung->typ = typVon(angebot.art);
        plugin->erweiterungen.push_back(std::move(erweiterung));
    }
    plugins_.push_back(std::move(plugin));
    for (const auto& erweiterung : plugins_.back()->erweiterungen)
        trageEin(erweiterung.get());
    return true;
}

void Modell::entlade(std::size_t welches) {
    for (const auto& erweiterung : plugins_[welches]->erweiterungen)
        for (const Schluessel& schluessel : schluesselVon(*erweiterung))
            std::erase_if(register_, [&](const Eintrag& e) { return gleich(e.schluessel, schluessel); });
    plugins_.erase(plugins_.begin() + static_cast<std::ptrdiff_t>(welches));
}

void Modell::entladeAlle() {
    while (!plugins_.empty())
        entlade(0);
}

Erweiterung* Modell::finde(const Frage& frage) const {
    for (const int jahr : {jahrVon(frage.zeitraum), kImmer})
        for (const Eintrag& eintrag : register_)
            if (gleich(eintrag.schluessel, {frage.typ, frage.ua, jahr}))
                return eintrag.erweiterung;
    return nullptr;
}

std::vector<Erweiterung*> Modell::registriert() const {
    std::vector<Erweiterung*> erweiterungen;
    for (const Eintrag& eintrag : register_)
        erweiterungen.push_back(eintrag.erweiterung);
    return erweiterungen;
}

void Modell::nutze(Plugin& plugin) {
    if (plugin.nutzer == 0) {
        plugin.offen = true;
        plugin.status = 2;
    }
    ++plugin.nutzer;
}

void Modell::lass(Plugin& plugin) {
    --plugin.nutzer;
    if (plugin.nutzer == 0 && !plugin.beschreibung.resident) {
        plugin.offen = false;
        plugin.status = 3;
    }
}

bool Modell::darfLassen(const Plugin& plugin) {
    const int ausgegeben = plugin.ausgegeben();
    return ausgegeben == 0 || plugin.nutzer > ausgegeben;
}

Service Modell::hole(Erweiterung& erweiterung) {
    nutze(*erweiterung.plugin);
    const std::string& factory = erweiterung.angebot.factory;
    const bool eigene = factory.empty();
    const bool gleicher = factory == "gleicherService"; // an object of the check service's class
    const bool falscher = factory == "falscherService"; // an object of no service's class
    if (!erweiterung.plugin->offen || !(eigene || gleicher || falscher)) {
        lass(*erweiterung.plugin);
        return Service::KEINER;
    }
    const std::string& art = erweiterung.angebot.art;
    const bool beliebiger = art == "feldinfo" || art == "fehlertext" || art == "finanzamt";
    const bool passt = eigene || beliebiger || (gleicher && art == "check");
    return passt ? Service::PASSENDER : Service::FALSCHER;
}

void Modell::merke(Erweiterung& erweiterung, const void* service) {
    ++erweiterung.instanzen[service];
    ++erweiterung.ausgegeben;
}

void Modell::gib(Erweiterung& erweiterung, const void* service) {
    const auto eintrag = erweiterung.instanzen.find(service);
    if (eintrag == erweiterung.instanzen.end()) {
        ++unbekannte;
        return;
    }
    if (--eintrag->second == 0)
        erweiterung.instanzen.erase(eintrag);
    --erweiterung.ausgegeben;
    lass(*erweiterung.plugin);
}

} // namespace modell
