// Compiled into a plugin, reserves room for the plugin's description in its file. `orvoplugin describe` fills it.
#include <orvoplugin/plugin/Beschreibungsplatz.h>

#ifndef ORVO_DESCRIPTION_SIZE
#define ORVO_DESCRIPTION_SIZE 4096
#endif

ORVO_BESCHREIBUNGSPLATZ(ORVO_DESCRIPTION_SIZE);
