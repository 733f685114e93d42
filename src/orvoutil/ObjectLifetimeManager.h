#pragma once

#include <orvoutil/Export.h>

#include <mutex>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace orvo::orvoutil {

/// Owner of the process-wide objects: each is registered under a name, and all are destroyed at process end, in
/// reverse order of registration. Each is findable by its name until its destructor has returned.
///
/// A typical object is made on first request, unless `wirdAbgebaut`.
///
/// Ownership: owns the objects; the code of their classes must stay loaded as long.
/// Threads: any. Objects are destroyed while no lock is held, so their destructors may look others up.
class ORVOUTIL_API ObjectLifetimeManager {
public:
    /// The process's manager; usable to the very end of the process.
    static ObjectLifetimeManager& instance();

    ObjectLifetimeManager(const ObjectLifetimeManager&) = delete;
    ObjectLifetimeManager& operator=(const ObjectLifetimeManager&) = delete;

    /// Returns: the object of that name; null when there is none, or when it was registered as another type.
    template <class T>
    T* getObject(std::string_view name) const {
        return static_cast<T*>(finde(name, typeid(T)));
    }

    /// Registers an object.
    /// Ownership: passes to the manager, unless this throws.
    /// Errors: `std::invalid_argument` for null; `std::logic_error` when the name is in use, and while
    /// `wirdAbgebaut`.
    template <class T>
    void addObject(std::string_view name, T* objekt) {
        fuegeHinzu(name, objekt, typeid(T), &loesche<T>);
    }

    /// Destroys all objects; later registrations start anew. A call made while another is at work, by a destructor
    /// for instance, does nothing.
    void destroyAll();

    /// Whether `destroyAll` is at work, or the objects were destroyed because the process ends: nothing can be
    /// registered then.
    bool wirdAbgebaut() const;

private:
    using Zerstoerer = void (*)(void*) noexcept;
    struct Eintrag {
        std::string name;
        void* objekt;
        const std::type_info* typ;
        Zerstoerer zerstoere;
    };
    class Prozessende;

    ObjectLifetimeManager();
    ~ObjectLifetimeManager() = delete;

    template <class T>
    static void loesche(void* objekt) noexcept {
        delete static_cast<T*>(objekt);
    }

    void* finde(std::string_view name, const std::type_info& typ) const;
    void fuegeHinzu(std::string_view name, void* objekt, const std::type_info& typ, Zerstoerer zerstoere);
    const Eintrag* eintrag(std::string_view name) const;

    mutable std::mutex sperre_;
    std::vector<Eintrag> eintraege_; // in order of registration
    bool imAbbau_ = false;
    bool beendet_ = false;
};

} // namespace orvo::orvoutil
