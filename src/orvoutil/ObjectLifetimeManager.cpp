#include <orvoutil/ObjectLifetimeManager.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace orvo::orvoutil {

ObjectLifetimeManager::ObjectLifetimeManager() = default;

ObjectLifetimeManager& ObjectLifetimeManager::instance() {
    static auto& manager = *new ObjectLifetimeManager; // never destroyed: usable to the end of the process
    [[maybe_unused]] static const int angemeldet = std::atexit([] { instance().beende(); });
    return manager;
}

/// Called at process end.
void ObjectLifetimeManager::beende() {
    {
        const std::lock_guard halter(sperre_);
        beendet_ = true;
    }
    destroyAll();
}

void ObjectLifetimeManager::destroyAll() {
    std::unique_lock sperre(sperre_);
    if (imAbbau_)
        return;
    imAbbau_ = true;
    while (!eintraege_.empty()) { // nothing is added meanwhile
        const Eintrag& letzter = eintraege_.back();
        sperre.unlock();
        letzter.zerstoere(letzter.objekt);
        sperre.lock();
        eintraege_.pop_back();
    }
    imAbbau_ = false;
}

bool ObjectLifetimeManager::wirdAbgebaut() const {
    const std::lock_guard halter(sperre_);
    return imAbbau_ || beendet_;
}

void* ObjectLifetimeManager::finde(std::string_view name, const std::type_info& typ) const {
    const std::lock_guard halter(sperre_);
    const Eintrag* const gefunden = eintrag(name);
    return gefunden && *gefunden->typ == typ ? gefunden->objekt : nullptr;
}

ObjectLifetimeManager::Platz::Platz(std::string_view name) {
    eintrag_.push_back({std::string(name), nullptr, nullptr, nullptr});
}

ObjectLifetimeManager::Platz::~Platz() = default;

void ObjectLifetimeManager::Platz::uebergib(void* objekt, const std::type_info& typ,
                                            void (*zerstoere)(void*) noexcept) {
    Eintrag& neuer = eintrag_.front();
    if (!objekt)
        throw std::invalid_argument("ObjectLifetimeManager: kein Objekt: " + neuer.name);
    ObjectLifetimeManager& manager = instance();
    const std::lock_guard halter(manager.sperre_);
    if (manager.imAbbau_ || manager.beendet_)
        throw std::logic_error("ObjectLifetimeManager: wird abgebaut: " + neuer.name);
    if (manager.eintrag(neuer.name))
        throw std::logic_error("ObjectLifetimeManager: Name schon vergeben: " + neuer.name);
    neuer.objekt = objekt;
    neuer.typ = &typ;
    neuer.zerstoere = zerstoere;
    manager.eintraege_.splice(manager.eintraege_.end(), eintrag_);
}

/// The entry of that name; null when there is none. Call with the lock held.
const ObjectLifetimeManager::Eintrag* ObjectLifetimeManager::eintrag(std::string_view name) const {
    const auto gefunden = std::find_if(eintraege_.begin(), eintraege_.end(),
                                       [&](const Eintrag& eintrag) { return eintrag.name == name; });
    return gefunden == eintraege_.end() ? nullptr : &*gefunden;
}

} // namespace orvo::orvoutil
