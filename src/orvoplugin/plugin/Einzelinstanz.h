#pragma once

// Internal: the one way to the two process-wide objects, the plugin manager and the registry.

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/Spur.h>

#include <memory>
#include <stdexcept>
#include <string>

/// Names of the two: of registration, and of the log category.
constexpr char kPluginManagerName[] = "orvo.plugin.OrvoPluginManager";
constexpr char kErweiterungsManagerName[] = "orvo.plugin.OrvoErweiterungsManager";

/// The texts that tell the two apart.
struct EinzelinstanzTexte {
    const char* name;
    const char* operation; ///< for the traces
    const char* suche;     ///< debug message before the object is looked for
    const char* start;     ///< debug message before it is made
};

/// The registered object, made by `erzeuge` when there is none.
///
/// Returns: the object, owned by the `ObjectLifetimeManager`; null while that destroys its objects, and after the
/// process has begun to end: nothing is made anew then. Null too for the start-up and the last code of a library that
/// is opened or closed while the object is being made.
/// Errors: `std::logic_error` from inside a plugin's entry point, and from inside the making of the object:
/// there is only half an object to give.
template <class T, class Erzeuge>
T* holeEinzelinstanz(const EinzelinstanzTexte& texte, Erzeuge&& erzeuge) {
    using namespace orvo::orvoutil;
    static bool inArbeit = false;
    struct Arbeit {
        Arbeit() { inArbeit = true; }
        ~Arbeit() { inArbeit = false; }
    };

    static Logger* logger = nullptr; // stays valid once there is one
    if (!logger)
        logger = Logger::getInstance(texte.name);
    const Spur spur(logger, texte.operation);
    ObjectLifetimeManager& lebenszeit = ObjectLifetimeManager::instance();
    const bool abbau = lebenszeit.wirdAbgebaut(); // the plugin at work may be what ended the process
    if (!abbau && Einsprungpunkt::laeuft())
        throw std::logic_error(std::string(texte.name) +
                               ": im Einsprungpunkt eines Plugins nicht verfuegbar.");
    if (!abbau && inArbeit) {
        if (Laderarbeit::laeuft())
            return nullptr;
        throw std::logic_error(std::string(texte.name) +
                               ": wird gerade gestartet und ist noch nicht verfuegbar.");
    }

    if (logger && logger->isDebugEnabled())
        logger->debug(texte.suche);
    T* instanz = lebenszeit.getObject<T>(texte.name);
    if (!instanz && !abbau) {
        if (logger && logger->isDebugEnabled())
            logger->debug(texte.start);
        const Arbeit arbeit;
        std::unique_ptr<T> neu(erzeuge());
        lebenszeit.addObject<T>(texte.name, neu.get());
        instanz = neu.release();
    }
    spur.ende();
    return instanz;
}
