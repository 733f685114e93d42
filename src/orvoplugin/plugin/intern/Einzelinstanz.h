#pragma once

#include <orvoplugin/plugin/intern/Pluginbibliothek.h>
#include <orvoutil/Log.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/Spur.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>

/// Names of the two process-wide objects: of registration, and of the log category.
constexpr char kPluginManagerName[] = "orvo.plugin.OrvoPluginManager";
constexpr char kErweiterungsManagerName[] = "orvo.plugin.OrvoErweiterungsManager";

struct EinzelinstanzTexte {
    const char* name;
    const char* operation; ///< for the traces
    const char* suche;     ///< debug message before the object is looked for
    const char* start;     ///< debug message before it is made
};

/// The object that `holeEinzelinstanz` made, until its destructor has returned; else null.
template <class T>
__attribute__((visibility("hidden"))) inline std::atomic<T*> einzelinstanz = nullptr;

template <class T>
void beendeEinzelinstanz(void* objekt) noexcept {
    delete static_cast<T*>(objekt);
    einzelinstanz<T> = nullptr;
}

/// As `holeEinzelinstanz`, with the traces.
template <class T, class Erzeuge>
T* sucheEinzelinstanz(const EinzelinstanzTexte& texte, Erzeuge&& erzeuge) {
    using namespace orvo::orvoutil;
    static bool inArbeit = false;
    struct Arbeit {
        Arbeit() { inArbeit = true; }
        ~Arbeit() { inArbeit = false; }
    };

    const Log log = Log::nurFuerDebug(texte.name);
    const Spur spur(log, texte.operation);
    ObjectLifetimeManager& lebenszeit = ObjectLifetimeManager::instance();
    log.debug(texte.suche);
    T* instanz = lebenszeit.getObject<T>(texte.name);
    if (!instanz && !lebenszeit.wirdAbgebaut()) {
        if (inArbeit && Laufend::gibtEs(Lauf::Lader))
            return nullptr;
        if (inArbeit)
            throw std::logic_error(std::string(texte.name) +
                                   ": wird gerade gestartet und ist noch nicht verfuegbar.");
        log.debug(texte.start);
        const Arbeit arbeit;
        ObjectLifetimeManager::Platz platz(texte.name); // registering then cannot fail
        instanz = platz.besetze(std::unique_ptr<T>(erzeuge()), beendeEinzelinstanz<T>);
        einzelinstanz<T> = instanz;
    }
    spur.ende();
    return instanz;
}

/// The registered object, made by `erzeuge` if there is none. A call that finds it writes nothing that threads share.
///
/// Returns: the object, owned by the `ObjectLifetimeManager`; null once that has destroyed it. Null too for
/// the start-up and last code of a library while the object is being made: no exception may pass through the system's
/// loader.
/// Errors: `std::logic_error` for other callers while the object is being made; what `erzeuge` throws.
template <class T, class Erzeuge>
T* holeEinzelinstanz(const EinzelinstanzTexte& texte, Erzeuge&& erzeuge) {
    T* const instanz = einzelinstanz<T>.load(std::memory_order_acquire);
    return instanz && !orvo::orvoutil::Log::schreibtDebug() ? instanz : sucheEinzelinstanz<T>(texte, erzeuge);
}
