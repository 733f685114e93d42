#include <orvoplugin/service/ValidierungsService.h>

namespace orvo::service {

ValidierungsService::ValidierungsService() = default;
ValidierungsService::ValidierungsService(const ValidierungsService&) = default;
ValidierungsService& ValidierungsService::operator=(const ValidierungsService&) = default;
ValidierungsService::~ValidierungsService() = default;

int ValidierungsService::checkSammeldatenKonsistenz(const orvo::data::SteuerfallListe& liste,
                                                    const Unterfallart&, const Veranlagungszeitraum&,
                                                    PruefErgebnis&) {
    constexpr int kEinFall = 0, kMehrereFaelle = 4;
    return liste.getAnzahl() <= 1 ? kEinFall : kMehrereFaelle;
}

void ValidierungsService::addSupportedFeature(const FeatureId& id) { supportedFeatures_.insert(id); }

bool ValidierungsService::setFeature(const FeatureId& id, bool wert) {
    if (!isFeatureSupported(id))
        return false;
    features_[id] = wert;
    return true;
}

bool ValidierungsService::isFeatureSupported(const FeatureId& id) const {
    return supportedFeatures_.contains(id);
}

bool ValidierungsService::isFeatureSet(const FeatureId& id) const {
    const auto gefunden = features_.find(id);
    return gefunden != features_.end() && gefunden->second;
}

} // namespace orvo::service
