#include <orvoplugin/domain/Abhaengigkeit.h>

Abhaengigkeit::~Abhaengigkeit() = default;

UfaVzAbhaengigkeit::UfaVzAbhaengigkeit(const Unterfallart& ua) : Abhaengigkeit(UFA_VZ), unterfallart_(ua) {}

UfaVzAbhaengigkeit::UfaVzAbhaengigkeit(const Unterfallart& ua, const Veranlagungszeitraum& vz)
    : Abhaengigkeit(UFA_VZ), veranlagungszeitraeume_{vz}, unterfallart_(ua) {}

UfaVzAbhaengigkeit::UfaVzAbhaengigkeit(const Unterfallart& ua, const Veranlagungszeitraum& von,
                                       const Veranlagungszeitraum& bis)
    : Abhaengigkeit(UFA_VZ), unterfallart_(ua) {
    for (std::int64_t jahr = von.getJahr(); jahr <= bis.getJahr(); ++jahr)
        veranlagungszeitraeume_.emplace_back(static_cast<int>(jahr), "YYYY");
}

UfaVzAbhaengigkeit::UfaVzAbhaengigkeit(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs)
    : Abhaengigkeit(UFA_VZ), veranlagungszeitraeume_(vzs.begin(), vzs.end()), unterfallart_(ua) {}

UfaVzAbhaengigkeit::~UfaVzAbhaengigkeit() = default;
