// A plugin that harms its process as a text file beside it says, "<library>.txt", with one order per line:
//
//     tu WANN WAS [ZAHL]     WANN is start (the library is opened), types, initialize, onload, factory, factory2
//                            (the factory "zweiter"), rueckgabe (a service is deleted) or ende (the library is closed); WAS:
//                            segv, abort, kill, exit ZAHL, haenge, schliesse (all descriptors), schreibe (on all
//                            descriptors), farbe (escape sequences on both standard streams), faden (a thread that
//                            crashes a little later), schlafe ZAHL (milliseconds), stumm (takes the observers out),
//                            knapp (lets no more descriptors be opened), wecker ZAHL (has SIGALRM sent in so many
//                            seconds), loesche (its own file)
//     version TEXT           label TEXT            the rest of the line, whatever its bytes
//     check NAME             a check service for the sub-case type of that name, any bytes, for 2009
//     checks ZAHL            so many check services, in one extension, for the sub-case types from 1000 on
//     factory NAME           the check services after it name that factory
//     diene                  its factory makes a new service each time, which is deleted on release; else it returns
//                            null
//     statisch               the same, but it is a static object all the same

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/service/ValidierungsService.h>

#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <new>
#include <sstream>
#include <string>
#include <thread>

namespace {

void lies(const std::function<void(const std::string&, std::istream&)>& befolge) {
    Dl_info wir{};
    dladdr(reinterpret_cast<void*>(&orvo_plugin_initialize), &wir);
    std::ifstream datei(std::string(wir.dli_fname) + ".txt", std::ios::binary);
    for (std::string zeile; std::getline(datei, zeile);) {
        std::istringstream worte(zeile);
        std::string auftrag;
        worte >> auftrag;
        worte.get(); // the blank
        befolge(auftrag, worte);
    }
}

std::string rest(std::istream& worte) {
    std::string text;
    std::getline(worte, text);
    return text;
}

void schreibeUeberallhin() {
    const std::string muell(64, '\xFF');
    for (int deskriptor = 0; deskriptor < 1024; ++deskriptor)
        if (write(deskriptor, muell.data(), muell.size()) < 0)
            continue;
}

void loesche() {
    Dl_info wir{};
    dladdr(reinterpret_cast<void*>(&orvo_plugin_initialize), &wir);
    unlink(wir.dli_fname);
}

void begrenze() {
    const rlimit keine{0, 0};
    setrlimit(RLIMIT_NOFILE, &keine);
}

/// Crashes also under a sanitizer, which may handle the signal itself.
void sterbeAn(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void tu(const std::string& was, int zahl) {
    if (was == "segv")
        sterbeAn(SIGSEGV);
    else if (was == "abort")
        std::abort();
    else if (was == "kill")
        std::raise(SIGKILL);
    else if (was == "exit")
        std::exit(zahl);
    else if (was == "haenge")
        for (;;)
            pause();
    else if (was == "schliesse")
        closefrom(0);
    else if (was == "schreibe")
        schreibeUeberallhin();
    else if (was == "farbe")
        for (std::FILE* strom : {stdout, stderr}) {
            std::fputs("\x1b[31mROT\x1b]0;Titel\a", strom);
            std::fflush(strom);
        }
    else if (was == "knapp")
        begrenze();
    else if (was == "wecker")
        alarm(static_cast<unsigned>(zahl));
    else if (was == "loesche")
        loesche();
    else if (was == "stumm")
        OrvoPluginManager::setLadeBeobachter(nullptr);
    else if (was == "schlafe")
        std::this_thread::sleep_for(std::chrono::milliseconds(zahl));
    else if (was == "faden")
        std::thread([] {
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
            sterbeAn(SIGBUS);
        }).detach();
}

void tuWas(const std::string& jetzt) {
    lies([&](const std::string& auftrag, std::istream& worte) {
        std::string wann, was;
        int zahl = 0;
        if (auftrag == "tu" && worte >> wann >> was && wann == jetzt) {
            worte >> zahl;
            tu(was, zahl);
        }
    });
}

__attribute__((constructor)) void beimOeffnen() { tuWas("start"); }
__attribute__((destructor)) void beimSchliessen() { tuWas("ende"); }

bool steht(const std::string& gesucht) {
    bool gefunden = false;
    lies([&](const std::string& auftrag, std::istream&) { gefunden |= auftrag == gesucht; });
    return gefunden;
}

class Pruefung : public orvo::service::ValidierungsService {
public:
    ~Pruefung() override { tuWas("rueckgabe"); }
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

Veranlagungszeitraum jahr() { return Veranlagungszeitraum(2009, "YYYY"); }

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    typen->push_back({1});
    tuWas("types");
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    tuWas("initialize");
    std::string factory;
    const auto biete = [&](OrvoValidierungsServiceErweiterung erweiterung) {
        if (!factory.empty())
            erweiterung.setServiceFactoryName(factory);
        erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, steht("diene") || steht("statisch"));
        plugin->addErweiterung(erweiterung);
    };
    if (steht("tu"))
        plugin->setOnLoadFuncName("beimLaden");
    lies([&](const std::string& auftrag, std::istream& worte) {
        if (auftrag == "version") {
            plugin->setProduktVersion(rest(worte));
        } else if (auftrag == "label") {
            OrvoPlugin::LabelEintrag label;
            label.text1 = rest(worte);
            plugin->addLabelInformation(label);
        } else if (auftrag == "factory") {
            factory = rest(worte);
        } else if (auftrag == "check") {
            biete({Unterfallart(rest(worte).c_str()), jahr()});
        } else if (auftrag == "checks") {
            int zahl = 0;
            worte >> zahl;
            std::list<Unterfallart> uas;
            for (int i = 0; i < zahl; ++i)
                uas.emplace_back(1000 + i);
            biete({uas, jahr()});
        }
    });
    return true;
}

namespace {

Service* mache(const char* wann) {
    tuWas(wann);
    if (!steht("statisch"))
        return steht("diene") ? new Pruefung : nullptr;
    alignas(Pruefung) static char platz[sizeof(Pruefung)];
    return new (platz) Pruefung; // never destroyed with the library
}

} // namespace

Service* orvo_plugin_get_check_service() { return mache("factory"); }
extern "C" ORVO_PLUGIN_EXPORT Service* zweiter() { return mache("factory2"); }
extern "C" ORVO_PLUGIN_EXPORT void beimLaden() { tuWas("onload"); }
