// The effect of the kit's options on a real plugin.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/HoleService.h>

#include "TestPlugins.h"
#include "orvoplugin/registry/Registratur.h"
#include "support/Prozess.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using PluginKit = Registratur;

TEST_F(PluginKit, MakesAPluginThatLeavesTheProcessWithAllThatACompilerMayMarkAsUnique) {
    const std::string pfad = home_.kopiere(test_plugins::HasUniqueCandidates, "plugins/libeinmalig.dylib");
    starte();
    EXPECT_FALSE(istEingeblendet(pfad));
    {
        const auto dienst = holeFADatenService();
        ASSERT_TRUE(dienst);
        EXPECT_TRUE(istEingeblendet(pfad));
    }
    EXPECT_FALSE(istEingeblendet(pfad));
}

} // namespace
