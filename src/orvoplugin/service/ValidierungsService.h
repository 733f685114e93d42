#pragma once

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/service/PruefErgebnis.h>
#include <orvoplugin/service/Service.h>
#include <orvoplugin/service/ServiceKonstanten.h>
#include <orvoplugin/service/SteuerfallListe.h>

#include <cstdint>
#include <map>
#include <set>

namespace orvo::service {

/// Check service ("Validierungsservice") of a plugin: checks the tax cases of a submission. The plugin derives
/// from it, implements the check and says which features can be switched.
class ORVOPLUGIN_API ValidierungsService : public Service {
public:
    /// Number of a feature; the service gives it a meaning.
    using FeatureId = std::int32_t;

    ValidierungsService();
    ValidierungsService(const ValidierungsService&);
    ValidierungsService& operator=(const ValidierungsService&);
    ~ValidierungsService() override;

    /// Checks every tax case of the list against the rules of that sub-case type and period.
    /// Returns: a status of the service's own; 0 means that nothing was found.
    virtual int pruefe(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua,
                       const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis) = 0;

    /// Checks whether the tax cases go together in one submission ("Sammeldaten", collected data). A service that
    /// takes collected data overrides it. Returns: 0 for one case at most, 4 for more.
    virtual int checkSammeldatenKonsistenz(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua,
                                           const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis);

    /// Declares a feature; meant for the derived service's constructor.
    void addSupportedFeature(const FeatureId& id);
    /// Switches a feature. Returns: false, changing nothing, for one that is not supported.
    bool setFeature(const FeatureId& id, bool wert);
    bool isFeatureSupported(const FeatureId& id) const;
    /// False for a feature that was never switched.
    bool isFeatureSet(const FeatureId& id) const;
    const std::set<FeatureId>& getSupportedFeatures() const { return supportedFeatures_; }

private:
    std::map<FeatureId, bool> features_;
    std::set<FeatureId> supportedFeatures_;
};

} // namespace orvo::service
