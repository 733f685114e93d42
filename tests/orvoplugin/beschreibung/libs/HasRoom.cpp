// Nothing refers to the room, and nothing else is kept.

#include <orvoplugin/plugin/Beschreibungsplatz.h>

ORVO_BESCHREIBUNGSPLATZ(64);
