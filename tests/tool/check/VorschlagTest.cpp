#include "check/Vorschlag.h"

#include <gmock/gmock.h>

using namespace testing;
using namespace werkzeug::check;
using namespace werkzeug;

namespace {

Bibliotheksinhalt mit(std::initializer_list<Bibliothekssymbol> symbole) {
    Bibliotheksinhalt inhalt;
    inhalt.exportierte = symbole;
    return inhalt;
}

Bibliothekssymbol funktion(const char* name) { return {name, Symbolbindung::Global, Symbolart::Funktion}; }

constexpr char kInitialize[] = "orvo_plugin_initialize";

} // namespace

TEST(Vorschlag, NamesNearlyTheSameAreSuggested) {
    for (const char* const name :
         {"orvo_plugin_initialise", "orvo_plugin_initalize", "Orvo_Plugin_Initialize", "orvo_plugin_init",
          "orvo_plugin_intialize", "orvoplugin_initialize"})
        EXPECT_THAT(warumNichtExportiert(mit({funktion("andere"), funktion(name)}), kInitialize, true),
                    AllOf(HasSubstr(name), HasSubstr("did you mean orvo_plugin_initialize?")));
}

TEST(Vorschlag, TheNearestNameIsTaken) {
    EXPECT_THAT(
        warumNichtExportiert(mit({funktion("orvo_plugin_initialise_"), funktion("orvo_plugin_initialise"),
                                  funktion("orvo_plugin_initialisse")}),
                             kInitialize, true),
        HasSubstr("\"orvo_plugin_initialise\" is exported"));
}

TEST(Vorschlag, OtherEntryPointsAreNotTakenForMisspeltOnes) {
    const Bibliotheksinhalt inhalt =
        mit({funktion("orvo_plugin_get_feldinfo_daten_service"), funktion("orvo_plugin_get_check_service")});
    for (const char* const name :
         {"orvo_plugin_get_types", kInitialize, "orvo_plugin_get_fehlertext_daten_service",
          "orvo_plugin_get_finanzamt_daten_service"})
        EXPECT_THAT(warumNichtExportiert(inhalt, name, true),
                    StartsWith(std::string("\"") + name + "\" is not exported: "));
}

TEST(Vorschlag, AFunctionOfTheLibrarysHeaderIsToBeDefinedAsItStandsThere) {
    for (const bool fest : {true, false})
        EXPECT_EQ(warumNichtExportiert(mit({}), kInitialize, fest),
                  "\"orvo_plugin_initialize\" is not exported: include "
                  "orvoplugin/plugin/PluginEntryPoints.h and define it as it stands there, with this very "
                  "name, these parameters and in no namespace");
}

TEST(Vorschlag, AFunctionOfThePluginsOwnIsToBeMarked) {
    EXPECT_EQ(warumNichtExportiert(mit({}), "beimLaden", false),
              "\"beimLaden\" is not exported: define it extern \"C\" and mark it ORVO_PLUGIN_EXPORT");
}

TEST(Vorschlag, ACxxFunctionOfTheNameIsToldFromACOne) {
    EXPECT_EQ(
        warumNichtExportiert(mit({funktion("_Z22orvo_plugin_initializeP12OrvoPluginV1")}), kInitialize, true),
        "\"orvo_plugin_initialize\" is exported as a C++ function: declare it extern \"C\"");
}

TEST(Vorschlag, AVariableOfTheNameIsNoFunction) {
    EXPECT_EQ(warumNichtExportiert(mit({{kInitialize, Symbolbindung::Global, Symbolart::Daten}}), kInitialize,
                                   true),
              "\"orvo_plugin_initialize\" is exported, but is no function");
}

TEST(Vorschlag, WhereTheNameIsThePluginsOwnTheExportedOneIsSuggested) {
    EXPECT_EQ(warumNichtExportiert(mit({funktion("beimLaden")}), "beimladen", false),
              "\"beimLaden\" is exported, \"beimladen\" is not: did you mean beimLaden?");
}
