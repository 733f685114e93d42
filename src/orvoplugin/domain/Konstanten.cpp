#include <orvoplugin/domain/Konstanten.h>

const NieZerstoert<VordefinierteUnterfallarten> kVordefinierteUnterfallarten;
