// A client that loads what is in a lock file, and nothing else: lockclient HOME LOCK. It prints the plugins that it
// loaded, and the files that it refused. Exit status: 0 when it refused none, 1 when it did, 2 for a wrong call.

#include "LockWaechter.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>

#include <exception>
#include <iostream>

using namespace orvo::orvoutil;

int main(int argc, char** argv) try {
    if (argc != 3) {
        std::cerr << "usage: lockclient HOME LOCK\n";
        return 2;
    }
    const std::string home = getAbsolutePath(argv[1]);
    LockWaechter waechter(argv[2], home + "/plugins");
    OrvoPluginManager::setLadeBeobachter(&waechter);
    Einstellungen().setze("basis.home_dir", home);
    OrvoErweiterungsManager::getInstanz(); // loads the plugins
    for (const OrvoPlugin* const plugin : OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins())
        std::cout << "loaded " << plugin->getSharedLib()->getName() << "\n";
    OrvoPluginManager::setLadeBeobachter(nullptr);
    for (const std::string& abgewiesene : waechter.getAbgewiesene())
        std::cout << "refused " << abgewiesene << "\n";
    return waechter.getAbgewiesene().empty() ? 0 : 1;
} catch (const std::exception& ausnahme) {
    std::cerr << ausnahme.what() << "\n";
    return 1;
}
