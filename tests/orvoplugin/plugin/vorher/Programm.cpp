// A program that is linked with a plugin, so that the plugin comes into the process before the library. Loads the plugin
// by its path as well. Exit code: 0 if that succeeds.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/StreamLogSink.h>

#include <iostream>
#include <memory>

int main(int, char** argv) {
    orvo::orvoutil::Logger::setSink(std::make_shared<orvo::orvoutil::StreamLogSink>(std::cout));
    orvo::orvoutil::Einstellungen().setze("basis.home_dir", "/nowhere");
    const bool geladen = OrvoPluginManager::getInstanz(nullptr)->ladePlugin(argv[1]);
    orvo::orvoutil::Logger::setSink(nullptr);
    return geladen ? 0 : 1;
}
