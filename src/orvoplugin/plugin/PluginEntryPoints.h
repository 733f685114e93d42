#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/PluginVersion.h>

#include <list>

class OrvoPluginV1;
class Service;

/// \file
/// The C functions that a plugin library exports. A plugin that includes this header has its definitions
/// checked against these prototypes, and exported: a definition with another result, or with other parameters, does
/// not compile. What no compiler can find, a misspelt name or an entry point without its parameter, fails the check
/// that `orvo_add_plugin` runs after linking.
///
/// Every plugin has the first two. Of the factories it has those of the extensions that it declares; each
/// returns a service object, or null when it cannot make one. Who deletes the object depends on the extension:
/// with `FLAG_SERVICE_LOESCHEN` set the library does when the service is given back, otherwise the plugin keeps
/// it. The names of the OnLoad and OnUnload hooks are the plugin's choice (`OrvoPlugin::setOnLoadFuncName`);
/// they are `extern "C"`, exported, and take and return nothing.
///
/// An exception that leaves one of these functions is caught, reported in the log with its text, and costs this
/// plugin only. None of the first two may ask for the registry or the plugin manager: both are still at work on
/// this very plugin, and refuse with a `std::logic_error`.

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif

extern "C" {

/// Appends one record per plugin interface that the library implements to the caller's empty list.
ORVO_PLUGIN_EXPORT void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen);

/// Describes the plugin through the operations of the object given: its extensions, versions, labels, hooks.
/// Returns: true on success; false refuses the plugin.
ORVO_PLUGIN_EXPORT bool orvo_plugin_initialize(OrvoPluginV1* plugin);

/// Makes the service of an `OrvoValidierungsServiceErweiterung`: an `orvo::service::ValidierungsService`.
ORVO_PLUGIN_EXPORT Service* orvo_plugin_get_check_service();
/// Makes the service of an `OrvoFeldInfoDatenServiceErweiterung`.
ORVO_PLUGIN_EXPORT Service* orvo_plugin_get_feldinfo_daten_service();
/// Makes the service of an `OrvoFTDatenServiceErweiterung`.
ORVO_PLUGIN_EXPORT Service* orvo_plugin_get_fehlertext_daten_service();
/// Makes the service of an `OrvoFADatenServiceErweiterung`.
ORVO_PLUGIN_EXPORT Service* orvo_plugin_get_finanzamt_daten_service();
/// Makes the service of an `OrvoXPathMappingServiceErweiterung`: an `IXPathMappingService`.
ORVO_PLUGIN_EXPORT Service* orvo_plugin_get_xpath_mapping_service();
/// Makes the service of an `OrvoDatensatzReaderErweiterung`: a `DatensatzReaderService`.
ORVO_PLUGIN_EXPORT Service* orvo_plugin_get_datensatz_reader_service();
}

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

// A definition with other parameters would be a C++ function of the same name, beside the C function that the library
// looks for, and nobody would notice before the plugin is refused. So it does not compile.

/// Passes for an argument of any type, in the check below.
struct OrvoBeliebigesArgument {
    template <class T>
    operator T&() const;
};

/// Compiled at the end of the file that includes this header: the calls depend on `Argument`, so they see every
/// function of these names that the file declares, and a further one makes them ambiguous, or possible.
template <class Argument>
void orvoPruefeSignaturen(Argument a) {
#define ORVO_PRUEFE_FACTORY(name)                                                                            \
    static_assert(                                                                                           \
        !requires { name(a); } && !requires { name(a, a); }, "wrong parameters: write Service* " #name "()")
    static_assert(
        requires { orvo_plugin_get_types(a); } && !requires { orvo_plugin_get_types(a, a); },
        "wrong parameters: write void orvo_plugin_get_types(std::list<orvo_plugin_version_t>*)");
    static_assert(
        requires { orvo_plugin_initialize(a); } && !requires { orvo_plugin_initialize(a, a); },
        "wrong parameters: write bool orvo_plugin_initialize(OrvoPluginV1*)");
    ORVO_PRUEFE_FACTORY(orvo_plugin_get_check_service);
    ORVO_PRUEFE_FACTORY(orvo_plugin_get_feldinfo_daten_service);
    ORVO_PRUEFE_FACTORY(orvo_plugin_get_fehlertext_daten_service);
    ORVO_PRUEFE_FACTORY(orvo_plugin_get_finanzamt_daten_service);
    ORVO_PRUEFE_FACTORY(orvo_plugin_get_xpath_mapping_service);
    ORVO_PRUEFE_FACTORY(orvo_plugin_get_datensatz_reader_service);
#undef ORVO_PRUEFE_FACTORY
}
/// Makes the check above run.
inline void orvoPruefeSignaturen() { orvoPruefeSignaturen(OrvoBeliebigesArgument()); }
