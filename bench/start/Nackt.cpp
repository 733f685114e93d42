// The floor: the cost of the same work with the system's loader alone.
//
//     floor <home> start|reload|open|use|memory
//
// Each library is opened, its two entry points are looked up and called, and it is closed. For "initialize" the plugin
// gets an object to describe itself to, as from the product, so both do the same work.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginVersion.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Einstellungen.h>

#include "Messung.h"

#include <dlfcn.h>

#include <cstdlib>
#include <list>
#include <memory>

namespace {

/// A library as the system's loader opens it.
class Bibliothek {
public:
    explicit Bibliothek(const std::string& datei) : griff_(dlopen(datei.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (griff_)
            return;
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    Bibliothek(const Bibliothek&) = delete;
    Bibliothek& operator=(const Bibliothek&) = delete;
    ~Bibliothek() { dlclose(griff_); }

    template <class Funktion>
    Funktion suche(const char* name) const {
        return reinterpret_cast<Funktion>(dlsym(griff_, name));
    }

    void holeUndGib() const { delete suche<Service* (*)()>("orvo_plugin_get_check_service")(); }

private:
    void* griff_;
};

using Plugins = std::vector<std::unique_ptr<OrvoPluginV1>>;

Plugins starte(const std::string& verzeichnis) {
    Plugins plugins;
    for (const std::string& datei : dateien(verzeichnis)) {
        const Bibliothek bibliothek(datei);
        std::list<orvo_plugin_version_t> typen;
        bibliothek.suche<void (*)(std::list<orvo_plugin_version_t>*)>("orvo_plugin_get_types")(&typen);
        plugins.push_back(std::make_unique<OrvoPluginV1>(nullptr));
        if (!bibliothek.suche<bool (*)(OrvoPluginV1*)>("orvo_plugin_initialize")(plugins.back().get()))
            std::exit(1);
    }
    return plugins;
}

void oeffneJedesMal(const std::string& datei, int anzahl) {
    for (int i = 0; i < anzahl; ++i)
        Bibliothek(datei).holeUndGib();
}

void nutze(const std::string& datei) {
    const Bibliothek bibliothek(datei);
    miss(kNutzungen, [&] {
        for (int i = 0; i < kNutzungen; ++i)
            bibliothek.holeUndGib();
    });
}

} // namespace

int main(int anzahl, char** argumente) {
    if (anzahl != 3)
        return 2;
    const std::string verzeichnis = std::string(argumente[1]) + "/plugins";
    const std::string_view was = argumente[2];
    // As in the product, so it needs the same libraries in the same order: the loader searches them one by one.
    orvo::orvoutil::Einstellungen().setze("basis.home_dir", argumente[1]);
    Plugins plugins; // as in the product, they outlive the measurement
    if (was == "start") {
        miss(1, [&] { plugins = starte(verzeichnis); });
    } else if (was == "reload") {
        plugins = starte(verzeichnis);
        miss(1, [&] {
            plugins.clear();
            plugins = starte(verzeichnis);
        });
    } else if (was == "open") {
        const std::string datei = dateien(verzeichnis).at(0);
        oeffneJedesMal(datei, 3);
        miss(kOeffnungen, [&] { oeffneJedesMal(datei, kOeffnungen); });
    } else if (was == "use") {
        nutze(dateien(verzeichnis).at(0));
    } else if (was == "memory") {
        const double vorher = heap();
        plugins = starte(verzeichnis);
        std::printf("%.0f %d\n", heap() - vorher, eingeblendete());
    } else {
        return 2;
    }
}
