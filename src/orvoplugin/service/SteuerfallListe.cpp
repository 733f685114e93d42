#include <orvoplugin/service/SteuerfallListe.h>

namespace orvo::data {

SteuerfallListe::~SteuerfallListe() = default;

} // namespace orvo::data
