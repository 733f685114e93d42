#pragma once

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginLoader.h>
#include <orvoutil/SharedLib.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

/// The description that the plugin of that file gives when it is asked.
inline std::string erfragteBeschreibung(const std::string& pfad) {
    OrvoPluginLoader loader;
    const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(new orvo::orvoutil::SharedLib(pfad)));
    return schreibeBeschreibung(*plugin);
}

/// Writes those bytes into the file.
inline void ueberschreibe(const std::string& pfad, std::uint64_t stelle, const std::string& bytes) {
    std::fstream datei(pfad, std::ios::in | std::ios::out | std::ios::binary);
    datei.seekp(static_cast<std::streamoff>(stelle))
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!datei.flush())
        throw std::runtime_error("cannot write " + pfad);
}

/// Fills the room for a description in the file, in place; with no bytes it is as if it had never been filled.
inline void trageEin(const std::string& pfad, std::string bytes) {
    const Beschreibungsfund fund = liesBeschreibung(pfad);
    if (fund.platz < bytes.size())
        throw std::runtime_error("no room in " + pfad);
    bytes.resize(fund.platz);
    ueberschreibe(pfad, fund.stelle, bytes);
}

/// Has the file describe itself.
inline void beschrifte(const std::string& pfad) { trageEin(pfad, erfragteBeschreibung(pfad)); }
