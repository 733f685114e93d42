// The floor: the cost of the same work with the system's loader alone.
//
//     floor <home> start|types|cycle|memory
//
// Each library is opened, its two entry points are looked up and called, and it is closed. For "initialize" the plugin
// gets an object to describe itself to, as from the product, so both do the same work. "types" leaves that call out.
// Built without the product's libraries, it supports only "types".

#include <orvoplugin/plugin/PluginVersion.h>

#include "Messung.h"

#include <dirent.h>
#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <memory>
#include <string_view>
#include <vector>

#ifdef ORVO_BENCH_MIT_BIBLIOTHEK
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Einstellungen.h>
#endif

namespace {

std::vector<std::string> dateien(const std::string& verzeichnis) {
    std::vector<std::string> namen;
    if (DIR* const offen = opendir(verzeichnis.c_str())) {
        while (const dirent* const eintrag = readdir(offen))
            if (std::string_view(eintrag->d_name).ends_with(".dylib"))
                namen.push_back(verzeichnis + "/" + eintrag->d_name);
        closedir(offen);
    }
    std::sort(namen.begin(), namen.end());
    return namen;
}

void* oeffne(const std::string& datei) {
    void* const griff = dlopen(datei.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!griff) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    return griff;
}

template <class Funktion>
Funktion suche(void* griff, const char* name) {
    return reinterpret_cast<Funktion>(dlsym(griff, name));
}

void nenneTypen(void* griff) {
    std::list<orvo_plugin_version_t> typen;
    suche<void (*)(std::list<orvo_plugin_version_t>*)>(griff, "orvo_plugin_get_types")(&typen);
}

void nurTypen(const std::string& verzeichnis) {
    for (const std::string& datei : dateien(verzeichnis)) {
        void* const griff = oeffne(datei);
        nenneTypen(griff);
        dlclose(griff);
    }
}

#ifdef ORVO_BENCH_MIT_BIBLIOTHEK

using Plugins = std::vector<std::unique_ptr<OrvoPluginV1>>;

Plugins starte(const std::string& verzeichnis) {
    Plugins plugins;
    for (const std::string& datei : dateien(verzeichnis)) {
        void* const griff = oeffne(datei);
        nenneTypen(griff);
        plugins.push_back(std::make_unique<OrvoPluginV1>(nullptr));
        if (!suche<bool (*)(OrvoPluginV1*)>(griff, "orvo_plugin_initialize")(plugins.back().get()))
            std::exit(1);
        dlclose(griff);
    }
    return plugins;
}

Service* hole(void* griff) { return suche<Service* (*)()>(griff, "orvo_plugin_get_check_service")(); }

void kreise(const std::string& datei, int anzahl) {
    for (int i = 0; i < anzahl; ++i) {
        void* const griff = oeffne(datei);
        delete hole(griff);
        dlclose(griff);
    }
}

/// Growth in KiB, with all libraries open and after closing them, and the number that is still mapped.
void speicherbedarf(const std::string& verzeichnis) {
    const double vorher = speicher();
    std::vector<void*> griffe;
    std::vector<Service*> services;
    for (const std::string& datei : dateien(verzeichnis)) {
        griffe.push_back(oeffne(datei));
        services.push_back(hole(griffe.back()));
    }
    const double offen = speicher();
    for (std::size_t i = 0; i < griffe.size(); ++i) {
        delete services[i];
        dlclose(griffe[i]);
    }
    std::printf("%.0f %.0f %.0f\n", offen - vorher, speicher() - vorher, eingeblendete());
}

#endif

} // namespace

int main(int anzahl, char** argumente) {
    if (anzahl != 3)
        return 2;
    const std::string verzeichnis = std::string(argumente[1]) + "/plugins";
    const std::string_view was = argumente[2];
#ifdef ORVO_BENCH_MIT_BIBLIOTHEK
    // As in the product, so it needs the same libraries in the same order: the loader searches them one by one.
    orvo::orvoutil::Einstellungen().setze("basis.home_dir", argumente[1]);
#endif
    if (was == "types")
        std::printf("%.0f\n", nanosekunden([&] { nurTypen(verzeichnis); }));
#ifdef ORVO_BENCH_MIT_BIBLIOTHEK
    else if (was == "start") {
        Plugins plugins; // as in the product, they outlive the measurement
        std::printf("%.0f\n", nanosekunden([&] { plugins = starte(verzeichnis); }));
    } else if (was == "cycle") {
        const std::string datei = dateien(verzeichnis).at(0);
        kreise(datei, 3);
        constexpr int kKreise = 300;
        std::printf("%.1f\n", nanosekunden([&] { kreise(datei, kKreise); }) / kKreise);
    } else if (was == "memory")
        speicherbedarf(verzeichnis);
#endif
    else
        return 2;
}
