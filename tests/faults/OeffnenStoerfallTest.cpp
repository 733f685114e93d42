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

TEST_F(OeffnenStoerfall, AnUnresolvedFunctionIsFoundAtOnceThoughLinkedLazily) {
    legeSchlechtes(test_plugins::CallsAMissingFunction);
    erwarteNichtGeoeffnet("undefined symbol: gibtEsNicht");
}

TEST_F(OeffnenStoerfall, TheSameLibraryUnderASecondNameIsAPluginOfItsOwn) {
    std::filesystem::create_hard_link(vorher, schlechtes);
    erwarteGeladen();
}
