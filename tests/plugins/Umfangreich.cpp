// A plugin with a table of texts, 1,000 entries or, with VIELE, 60,000. Each entry is a relocation.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>

#define ZEHN(x) x, x, x, x, x, x, x, x, x, x
#define TAUSEND ZEHN(ZEHN(ZEHN(texte)))
#ifdef VIELE
#define EINTRAEGE ZEHN(TAUSEND), ZEHN(TAUSEND), ZEHN(TAUSEND), ZEHN(TAUSEND), ZEHN(TAUSEND), ZEHN(TAUSEND)
#define TEXTBYTES 2'000'000
#else
#define EINTRAEGE TAUSEND
#define TEXTBYTES 16'000
#endif

namespace {
const char texte[TEXTBYTES] = {1};
const char* volatile tabelle[] = {EINTRAEGE}; // volatile: not folded by the compiler
} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    typen->push_back(orvo_plugin_version_t{1});
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion("1.0");
    return tabelle[0] == texte;
}
