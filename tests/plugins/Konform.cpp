// A plugin that passes all checks of the tool, except for the faults listed in a text file beside it, "<library>.txt",
// one per line: when, what, and an argument.
//
//     WHEN    oeffnen (start-up code), typen, beschreiben, laden, entladen (the hooks), factory, pruefen, ende (of a
//             service), schliessen (the library's last code)
//     WHAT    see `taten` and `beschreibung`
//
// Built with other flags it has faults in the file itself (see tool_check.cmake).

#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/service/PruefErgebnis.h>
#include <orvoplugin/service/SteuerfallListe.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cfenv>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>

namespace {

/// Classes known to this library only.
class EigeneAusnahme {
    std::string text_ = "a text that is too long to be kept within the object itself";
};

int geladen = 0;  // OnLoad less OnUnload
int lebende = 0;  // services
int geworden = 0; // services made in total

std::string ort() {
    Dl_info wir{};
    dladdr(reinterpret_cast<void*>(&orvo_plugin_get_types), &wir);
    return wir.dli_fname;
}

[[noreturn]] void haenge() {
    for (;;)
        pause();
}

void stuerzeAb() {
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

/// Faults that are possible at any time, by name. The argument is the rest of the line.
void tue(const std::string& was, const std::string& womit) {
    static const std::map<std::string, std::function<void(const std::string&)>> taten{
        {"absturz", [](const std::string&) { stuerzeAb(); }},
        {"abbruch",
         [](const std::string& text) {
             std::cerr << "before\n" << text << "\n\n";
             std::abort();
         }},
        {"haenge", [](const std::string&) { haenge(); }},
        {"exit", [](const std::string& code) { _exit(std::stoi(code)); }},
        {"wirf", [](const std::string& text) { throw std::runtime_error(text); }},
        {"wirfeigenes", [](const std::string&) { throw EigeneAusnahme(); }},
        {"ausgabe", [](const std::string& text) { std::puts(text.c_str()); }},
        {"fehlerausgabe", [](const std::string& text) { std::cerr << text << std::endl; }},
        {"locale", [](const std::string& name) { std::setlocale(LC_ALL, name.c_str()); }},
        {"cxxlocale",
         [](const std::string&) { std::locale::global(std::locale(std::locale(), new std::ctype<char>)); }},
        {"verzeichnis",
         [](const std::string& pfad) {
             if (chdir(pfad.c_str()) != 0)
                 std::abort();
         }},
        {"signal", [](const std::string&) { std::signal(SIGUSR1, SIG_IGN); }},
        {"signalmaske",
         [](const std::string&) {
             sigset_t menge;
             sigemptyset(&menge);
             sigaddset(&menge, SIGUSR2);
             sigprocmask(SIG_BLOCK, &menge, nullptr);
         }},
        {"terminate", [](const std::string&) { std::set_terminate(std::abort); }},
        {"oeffne", [](const std::string& pfad) { std::ignore = open(pfad.c_str(), O_RDONLY); }},
        {"schliesse", [](const std::string& nummer) { close(std::stoi(nummer)); }},
        {"schliesseab", [](const std::string& nummer) { closefrom(std::stoi(nummer)); }},
        {"setenv", [](const std::string& wert) { setenv("ORVO_TEST_VARIABLE", wert.c_str(), 1); }},
        {"umask", [](const std::string&) { umask(0123); }},
        {"thread",
         [](const std::string&) { // code outside the plugin, which stays when the plugin is unmapped
             pthread_t thread;
             pthread_create(&thread, nullptr,
                            reinterpret_cast<void* (*)(void*)>(dlsym(RTLD_DEFAULT, "pause")), nullptr);
         }},
        {"faden", // code of the plugin
         [](const std::string&) {
             std::thread([] {
                 for (;;)
                     std::this_thread::yield();
             }).detach();
         }},
        {"knapp",
         [](const std::string&) {
             const rlimit keine{0, 0};
             setrlimit(RLIMIT_NOFILE, &keine);
         }},
        {"logge",
         [](const std::string& zeilen) {
             for (int i = std::stoi(zeilen); i > 0; --i)
                 if (auto* const logger = orvo::orvoutil::Logger::getInstance("konform"))
                     logger->info("one of many lines");
         }},
        {"schlafe",
         [](const std::string& ms) {
             std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(ms)));
         }},
        {"kind",
         [](const std::string&) {
             if (fork() == 0)
                 haenge();
         }},
        {"zombie",
         [](const std::string&) {
             const pid_t kind = fork();
             if (kind == 0)
                 _exit(0);
             siginfo_t ende;
             waitid(P_PID, static_cast<id_t>(kind), &ende, WEXITED | WNOWAIT);
         }},
        {"rundung", [](const std::string&) { std::fesetround(FE_UPWARD); }},
        {"strom", [](const std::string&) { std::cout << std::hex; }},
        {"wecker", [](const std::string&) { alarm(10000); }},
        {"einstellung",
         [](const std::string& wert) {
             orvo::orvoutil::Einstellungen().setze("basis.resident_plugins", wert);
         }},
        {"behalte", [](const std::string&) { dlopen(ort().c_str(), RTLD_LAZY); }},
        {"bringemit", [](const std::string& pfad) { dlopen(pfad.c_str(), RTLD_LAZY); }},
        {"verliere",
         [](const std::string&) {
             volatile char* const stueck = static_cast<char*>(std::malloc(1000));
             *stueck = 1;
         }},
        {"absturzwennlebende", [](const std::string&) { lebende > 0 ? stuerzeAb() : void(); }},
        {"abbruchwennnochmal", [](const std::string&) { geworden > 1 ? std::abort() : void(); }},
    };
    if (const auto tat = taten.find(was); tat != taten.end())
        tat->second(womit);
}

using Folge = std::function<void(const std::string&, const std::string&)>;

/// Calls `folge` for each fault of that time, with its name and the rest of the line.
void lies(const char* wann, const Folge& folge) {
    std::ifstream datei(ort() + ".txt");
    for (std::string zeile; std::getline(datei, zeile);) {
        std::istringstream worte(zeile);
        std::string zeit, was, womit;
        if (worte >> zeit >> was && zeit == wann) {
            std::getline(worte >> std::ws, womit);
            datei.close(); // a fault may inspect the descriptors, or not return
            folge(was, womit);
            return;
        }
    }
}

void tueWasAnstehtBeim(const char* wann) { lies(wann, tue); }

bool sollBeim(const char* wann, const std::string& was) {
    bool soll = false;
    lies(wann, [&](const std::string& gelesen, const std::string&) { soll = gelesen == was; });
    return soll;
}

class Pruefung : public orvo::service::ValidierungsService {
public:
    Pruefung() {
        ++lebende;
        ++geworden;
    }
    ~Pruefung() override {
        --lebende;
        if (this == einzige)
            einzige = nullptr;
        tueWasAnstehtBeim("ende");
    }
    /// Finds something in each record.
    int pruefe(const orvo::data::SteuerfallListe& faelle, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis& ergebnis) override {
        tueWasAnstehtBeim("pruefen");
        for (std::size_t i = 0; i < faelle.getAnzahl(); ++i)
            ergebnis.fuegeHinzu(4711, "Feld", faelle.getDatensatz(i));
        return static_cast<int>(faelle.getAnzahl());
    }

    static Pruefung* einzige; ///< when all users get the same object
};

Pruefung* Pruefung::einzige = nullptr;

class Finanzaemter : public Service {};

struct Dauer {
    Dauer() { tueWasAnstehtBeim("oeffnen"); }
    ~Dauer() { tueWasAnstehtBeim("schliessen"); }
} dauer;

OrvoValidierungsServiceErweiterung pruefung(const Unterfallart& ua, int jahr) {
    OrvoValidierungsServiceErweiterung erweiterung(ua, Veranlagungszeitraum(jahr, "YYYY"));
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    return erweiterung;
}

OrvoValidierungsServiceErweiterung ohneZeitraum() {
    OrvoValidierungsServiceErweiterung erweiterung(UFA_10, std::list<Veranlagungszeitraum>());
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    return erweiterung;
}

void beschrifte(OrvoPluginV1& plugin, const std::string& text) {
    OrvoPlugin::LabelEintrag label;
    label.text1 = text;
    plugin.addLabelInformation(label);
}

/// Possible differences in the description.
void beschreibeAnders(OrvoPluginV1& plugin, const std::string& was, const std::string& womit, bool& erfolg) {
    if (was == "version")
        plugin.setProduktVersion(womit);
    else if (was == "fileversion")
        plugin.setFileVersion(womit);
    else if (was == "label")
        beschrifte(plugin, womit == "steuerzeichen" ? "a\x01"
                                                      "b"
                                                    : womit);
    else if (was == "zufall")
        beschrifte(plugin, std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    else if (was == "umgebung")
        beschrifte(plugin, std::getenv(womit.c_str()) ? std::getenv(womit.c_str()) : "");
    else if (was == "arbeitsverzeichnis")
        beschrifte(plugin, std::filesystem::current_path());
    else if (was == "kommazahl")
        beschrifte(plugin, (std::ostringstream() << 1.5).str());
    else if (was == "ablehnung")
        erfolg = false;
    else if (was == "onload")
        plugin.setOnLoadFuncName(womit);
    else if (was == "onunload")
        plugin.setOnUnloadFuncName(womit);
    else if (was == "doppelt")
        plugin.addErweiterung(pruefung(UFA_10, 2009));
    else if (was == "ohnezeitraum")
        plugin.addErweiterung(ohneZeitraum());
    else if (was == "unterfallart")
        plugin.addErweiterung(pruefung(Unterfallart(womit.c_str()), 2009));
    else
        tue(was, womit);
}

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    lies("typen", [&](const std::string& was, const std::string& womit) {
        if (was == "ersetze")
            typen->clear();
        else if (was == "typ")
            typen->push_back({std::stoi(womit)});
        else
            tue(was, womit);
    });
    typen->push_back({1});
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    bool erfolg = true;
    plugin->setProduktVersion("1.2.3");
    plugin->setFileVersion("2, 0, 0, 1");
    plugin->setOnLoadFuncName("beimLaden");
    plugin->setOnUnloadFuncName("beimEntladen");
    beschrifte(*plugin, "Pr\xFC"
                        "fung");
    if (sollBeim("beschreiben", "nichts"))
        return true;
    plugin->addErweiterung(OrvoFADatenServiceErweiterung());
    if (sollBeim("beschreiben", "nurfinanzamt"))
        return true;
    OrvoValidierungsServiceErweiterung eine = pruefung(UFA_10, 2009);
    lies("beschreiben", [&](const std::string& was, const std::string& womit) {
        if (was == "factoryname")
            eine.setServiceFactoryName(womit);
        else if (was == "ohneloeschen")
            eine.setzeFlag(FLAG_SERVICE_LOESCHEN, false);
        else
            beschreibeAnders(*plugin, was, womit, erfolg);
    });
    plugin->addErweiterung(eine);
    plugin->addErweiterung(pruefung("LSTB", 2010));
    return erfolg;
}

Service* orvo_plugin_get_check_service() {
    if (sollBeim("factory", "null"))
        return nullptr;
    if (sollBeim("factory", "nullwennzweimalgeladen") && geladen > 1)
        return nullptr;
    if (sollBeim("factory", "nullwennschoneiner") && lebende > 0)
        return nullptr;
    if (sollBeim("factory", "falsche"))
        return new Finanzaemter;
    if (sollBeim("factory", "statische")) {
        static Pruefung statische;
        return &statische;
    }
    if (sollBeim("factory", "dieselbe"))
        return Pruefung::einzige ? Pruefung::einzige : Pruefung::einzige = new Pruefung;
    tueWasAnstehtBeim("factory");
    return new Pruefung;
}

Service* orvo_plugin_get_finanzamt_daten_service() {
    static Finanzaemter finanzaemter;
    return &finanzaemter;
}

extern "C" {
ORVO_PLUGIN_EXPORT void beimLaden() {
    ++geladen;
    tueWasAnstehtBeim("laden");
}
ORVO_PLUGIN_EXPORT void beimEntladen() {
    --geladen;
    tueWasAnstehtBeim("entladen");
}

#ifdef MIT_EINMALIGEM_SYMBOL
__asm__(".pushsection .data\n"
        ".globl einmalig\n"
        ".type einmalig,@gnu_unique_object\n"
        ".size einmalig,4\n"
        "einmalig: .long 3\n"
        ".popsection\n");
#endif
#ifdef MIT_THREAD_DESTRUKTOR
thread_local std::string jeThread;
__attribute__((used)) static std::size_t wirdNieGerufen() { return jeThread.size(); }
#endif
#ifdef MIT_C_SYMBOLEN
ORVO_PLUGIN_EXPORT int inflate();
int inflate() { return 0; }
ORVO_PLUGIN_EXPORT extern int fremdeDaten;
int fremdeDaten = 1;
#endif
#ifdef MIT_CODE_AENDERUNG
__asm__(".pushsection .text\n"
        ".balign 8\n"
        ".quad beimLaden\n"
        ".popsection\n");
#endif
}

#ifdef MIT_CXX_NAMEN
ORVO_PLUGIN_EXPORT void cxxFunktion();
void cxxFunktion() {}
#endif
