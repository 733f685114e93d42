#include <orvoplugin/service/ServiceKonstanten.h>

const NieZerstoert<VordefinierteServiceTexte> kVordefinierteServiceTexte;
