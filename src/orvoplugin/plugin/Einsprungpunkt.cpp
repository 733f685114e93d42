#include <orvoplugin/plugin/Einsprungpunkt.h>

int Einsprungpunkt::laufende_ = 0;
