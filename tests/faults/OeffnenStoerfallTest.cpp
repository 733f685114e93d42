// Faults found when the system's loader opens a plugin: something that it needs is missing.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "TestPlugins.h"

#include <filesystem>

namespace {

class OeffnenStoerfall : public Stoerfall {};

} // namespace

TEST_F(OeffnenStoerfall, ALibraryThatItNeedsIsMissing) {
    legeSchlechtes(test_plugins::NeedsAMissingLibrary);
    erwarteNichtGeoeffnet("libgibtEsNicht.so: cannot open shared object file: No such file or directory");
}

TEST_F(OeffnenStoerfall, ALibraryThatItNeedsLiesBesideItAndIsCut) {
    legeSchlechtes(test_plugins::NeedsALibraryBesideIt);
    const std::string hilfe = home.kopiere(test_plugins::hilft, "plugins/libhilft.so");
    std::filesystem::resize_file(hilfe, std::filesystem::file_size(hilfe) / 3); // the loader would crash
    erwarteNichtGeoeffnet("ben\xF6tigte Bibliothek libhilft.so: abgeschnitten: "
                          "Abschnittstabelle endet hinter der Datei");
    home.kopiere(test_plugins::hilft, "plugins/libhilft.so");
    EXPECT_TRUE(ladeNeu());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libmmm.dylib", "libzzz.dylib"}));
}

TEST_F(OeffnenStoerfall, AnUnresolvedFunctionIsFoundAtOnceThoughLinkedLazily) {
    legeSchlechtes(test_plugins::CallsAMissingFunction);
    erwarteNichtGeoeffnet("undefined symbol: gibtEsNicht");
}

TEST_F(OeffnenStoerfall, TheSameLibraryUnderASecondNameIsAPluginOfItsOwn) {
    std::filesystem::create_hard_link(vorher, schlechtes);
    erwarteGeladen();
}
