#pragma once

#ifndef __cpp_exceptions
#error "orvoplugin: abgesichert catches exceptions; compile without -fno-exceptions, or without this header"
#endif

#include <orvoutil/Log.h>

#include <exception>
#include <string>
#include <type_traits>
#include <utility>

/// \file
/// For plugin authors, optional: catches what a plugin's own code throws.
///
///     bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
///         return abgesichert([&] {
///             plugin->setProduktVersion("1.0.0");
///             ...
///             return true;
///         });
///     }
///
///     Service* orvo_plugin_get_check_service() {
///         return abgesichert([] { return new Pruefung; });
///     }

/// Logs the exception that is being handled, at level error.
__attribute__((visibility("hidden"))) inline void protokolliereAusnahme(const char* wo) noexcept {
    orvo::orvoutil::Log("orvo.plugin.Absicherung").error([&] {
        std::string text = std::string("Ausnahme in ") + wo + ": ";
        try {
            throw;
        } catch (const std::exception& ausnahme) {
            const char* const grund = ausnahme.what();
            return text + (grund ? grund : "");
        } catch (...) {
            return text + "unbekannte Ausnahme";
        }
    });
}

/// Calls `ruf` and returns what it returns. If it throws, the log says "Ausnahme in <function>: <text>" at level
/// error, and the result is `false`, null or 0: an entry point refuses the plugin, a factory gives no service. The library
/// catches what leaves a plugin too, but cannot name the function.
///
/// Parameters: `wo` names the function in the log; by default the calling one.
template <class Ruf>
__attribute__((visibility("hidden"))) auto abgesichert(Ruf&& ruf,
                                                       const char* wo = __builtin_FUNCTION()) noexcept
    -> std::invoke_result_t<Ruf> {
    using Ergebnis = std::invoke_result_t<Ruf>;
    static_assert(std::is_void_v<Ergebnis> || std::is_scalar_v<Ergebnis>,
                  "abgesichert: the function called returns bool, a pointer, a number or nothing");
    try {
        return std::forward<Ruf>(ruf)();
    } catch (...) {
        protokolliereAusnahme(wo);
    }
    return Ergebnis();
}
