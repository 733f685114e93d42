#pragma once

#include "TestPlugins.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

/// The name of a table's case as the name of its test.
constexpr auto nameDesFalls = [](const auto& fall) { return std::string(fall.param.name); };

/// A plugin library and the text that it causes.
struct Bibliotheksfall {
    const char* name;
    const char* bibliothek;
    const char* text; ///< null for an exception that has none
};

inline std::ostream& operator<<(std::ostream& out, const Bibliotheksfall& fall) { return out << fall.name; }

/// Exceptions of an entry point that are not of the library's own classes.
inline std::vector<Bibliotheksfall> werfendePlugins() {
    static constexpr char standard[] = "Standardausnahme aus dem Plugin";
    static constexpr char eigene[] = "Ausnahme einer Klasse des Plugins, mit einem langen Text: \xFC"
                                     "ber alle Grenzen";
    return {
        {"StandardExceptionFromTypes", test_plugins::ThrowsStandardExceptionFromTypes, standard},
        {"OwnStandardExceptionFromTypes", test_plugins::ThrowsOwnStandardExceptionFromTypes, eigene},
        {"OwnClassFromTypes", test_plugins::ThrowsOwnClassFromTypes, nullptr},
        {"IntFromTypes", test_plugins::ThrowsIntFromTypes, nullptr},
        {"StandardExceptionFromInitialize", test_plugins::ThrowsStandardExceptionFromInitialize, standard},
        {"OwnStandardExceptionFromInitialize", test_plugins::ThrowsOwnStandardExceptionFromInitialize,
         eigene},
        {"OwnClassFromInitialize", test_plugins::ThrowsOwnClassFromInitialize, nullptr},
        {"IntFromInitialize", test_plugins::ThrowsIntFromInitialize, nullptr},
        {"InitExceptionFromInitialize", test_plugins::ThrowsInitException, "GENERELL: vom Plugin selbst"},
        {"ExtensionOfItsOwnClass", test_plugins::AddsExtensionOfItsOwnClass,
         "INITIALISIERUNGS_FEHLER: Klasse der Erweiterung liegt in der Plugin-Bibliothek: "
         "21ErweiterungDesPlugins"},
        {"LoaderExceptionFromInitialize", test_plugins::ThrowsLoaderException,
         "STRUKTUR_FEHLER: vom Plugin selbst"},
        {"ClassDerivedFromInitException", test_plugins::ThrowsClassDerivedFromInitException,
         "Text einer Ausnahme, deren Klasse im Plugin liegt, und auch ihr \xC4nderungsstand"},
    };
}
