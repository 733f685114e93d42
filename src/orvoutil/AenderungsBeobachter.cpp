#include <orvoutil/AenderungsBeobachter.h>

namespace orvo::orvoutil {

AenderungsNachricht::AenderungsNachricht(int art, const std::string& schluessel)
    : art_(art), schluessel_(schluessel) {}

AenderungsBeobachter::~AenderungsBeobachter() = default;

} // namespace orvo::orvoutil
