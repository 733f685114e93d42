// Reserves room for a description in a plugin's file.

#include <orvoplugin/plugin/Beschreibungsplatz.h>

ORVO_BESCHREIBUNGSPLATZ(4096);
