#include "KonstantenAnderswo.h"

#include <orvoplugin/domain/Konstanten.h>

const Unterfallart& lstbAnderswo() { return UFA_LSTB; }
