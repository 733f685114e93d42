#include <orvoutil/Latin1.h>

constexpr orvo::orvoutil::Latin1Text kPreis{u8"100 €"};
