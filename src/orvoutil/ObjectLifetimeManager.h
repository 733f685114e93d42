#pragma once

#include <orvoutil/Export.h>

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <typeinfo>

namespace orvo::orvoutil {

/// Owner of the process-wide objects: each is registered under a name, and all are destroyed at process end, in
/// reverse order of registration. Each can be found until its destructor has returned.
///
/// Ownership: owns the objects; the code of their classes must stay loaded as long.
/// Threads: any. Objects are destroyed while no lock is held, so their destructors may look others up.
class ORVOUTIL_API ObjectLifetimeManager {
    struct Eintrag {
        std::string name;
        void* objekt;
        const std::type_info* typ;
        void (*zerstoere)(void*) noexcept;
    };

public:
    /// The process's manager; never destroyed.
    static ObjectLifetimeManager& instance();

    ObjectLifetimeManager(const ObjectLifetimeManager&) = delete;
    ObjectLifetimeManager& operator=(const ObjectLifetimeManager&) = delete;

    /// Returns: the object of that name; null when there is none, or when it was registered as another type.
    template <class T>
    T* getObject(std::string_view name) const {
        return static_cast<T*>(finde(name, typeid(T)));
    }

    /// Registers an object. Ownership: passes to the manager, unless this throws.
    /// Errors: `std::invalid_argument` for null; `std::logic_error` when the name is in use, and while
    /// `wirdAbgebaut`.
    template <class T>
    void addObject(std::string_view name, T* objekt) {
        Platz(name).uebergib(objekt, typeid(T), &loesche<T>);
    }

    /// A place for an object that is still to be made; registering it then allocates nothing.
    class ORVOUTIL_API Platz {
    public:
        explicit Platz(std::string_view name);
        Platz(const Platz&) = delete;
        Platz& operator=(const Platz&) = delete;
        ~Platz();

        /// Registers the object; once. Errors: as `addObject`, with the object destroyed.
        /// Parameters: `zerstoere` deletes the object when its time has come.
        template <class T>
        T* besetze(std::unique_ptr<T> objekt, void (*zerstoere)(void*) noexcept) {
            uebergib(objekt.get(), typeid(T), zerstoere);
            return objekt.release();
        }

    private:
        friend class ObjectLifetimeManager;

        void uebergib(void* objekt, const std::type_info& typ, void (*zerstoere)(void*) noexcept);

        std::list<Eintrag> eintrag_; // one, or none once it is taken
    };

    /// Destroys all objects; later registrations start anew. Does nothing while it is running already.
    void destroyAll();

    /// Whether `destroyAll` is running or the process is ending: nothing can be registered then.
    bool wirdAbgebaut() const;

private:
    ObjectLifetimeManager();
    ~ObjectLifetimeManager() = delete;

    template <class T>
    static void loesche(void* objekt) noexcept {
        delete static_cast<T*>(objekt);
    }

    void beende();
    void* finde(std::string_view name, const std::type_info& typ) const;
    const Eintrag* eintrag(std::string_view name) const;

    mutable std::mutex sperre_;
    std::list<Eintrag> eintraege_; // in order of registration
    bool imAbbau_ = false;
    bool beendet_ = false;
};

} // namespace orvo::orvoutil
