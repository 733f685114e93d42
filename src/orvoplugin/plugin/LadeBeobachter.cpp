#include <orvoplugin/plugin/LadeBeobachter.h>

LadeBeobachter::~LadeBeobachter() = default;

void LadeBeobachter::betrittVerzeichnis(const std::string&) noexcept {}
void LadeBeobachter::findetDatei(const std::string&, const std::string&, Dateiart,
                                 const std::string&) noexcept {}
bool LadeBeobachter::ladeDatei(const std::string&) noexcept { return true; }
void LadeBeobachter::pluginGeladen(const std::string&, const OrvoPlugin&) noexcept {}
void LadeBeobachter::dateiAbgelehnt(const std::string&, orvo_plugin_ablehnung_t, const char*) noexcept {}
