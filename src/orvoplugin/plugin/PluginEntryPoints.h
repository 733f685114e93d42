#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/PluginVersion.h>

#include <list>

class OrvoPluginV1;
class Service;

/// \file
/// The C functions that a plugin library exports. A plugin that includes this header has its definitions exported and
/// checked against these prototypes: one with another result or other parameters does not compile. A misspelt name or an
/// entry point without its parameter fails the check that `orvo_add_plugin` runs after linking.
///
/// Every plugin has the first two, and the factories of the extensions that it declares. A factory returns a service
/// object, or null when it cannot make one. With `FLAG_SERVICE_LOESCHEN` set the library deletes the object when it is
/// given back, otherwise the plugin keeps it. The plugin names its OnLoad and OnUnload hooks itself
/// (`OrvoPlugin::setOnLoadFuncName`); they are `extern "C"`, exported, and take and return nothing.
///
/// An exception that leaves one of these functions is caught and logged with its text; other plugins are unaffected. While
/// the registry and the plugin manager are being made, they refuse the first two with a `std::logic_error`.

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

// A definition with other parameters would be a C++ function beside the C function that the library looks for. It does
// not compile.

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
