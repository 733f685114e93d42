#pragma once

#include <cstddef>
#include <list>

namespace orvo::orvoutil {

/// List of observers that may change while it is being walked: an observer that is told something may remove
/// itself or others, add others, or destroy the list.
///
/// Ownership: owns its entries, not the observers.
/// Errors: only `anhaengen` can fail, for want of memory.
/// Threads: one at a time, for the list and all walks over it.
template <class T>
class BeobachterListe {
public:
    class Durchlauf;

    BeobachterListe() = default;
    BeobachterListe(const BeobachterListe&) = delete;
    BeobachterListe& operator=(const BeobachterListe&) = delete;
    ~BeobachterListe() {
        for (Durchlauf* d = durchlaeufe_; d; d = d->naechsterDurchlauf_)
            d->beende();
    }

    /// Appends an entry; null is ignored. One appended twice is told twice.
    void anhaengen(T* beobachter) {
        if (beobachter)
            liste_.push_back(beobachter);
    }

    /// Takes the first entry of that observer out; null and unknown ones are ignored.
    void entfernen(T* beobachter) {
        std::size_t index = 0;
        for (auto eintrag = liste_.begin(); eintrag != liste_.end(); ++eintrag, ++index) {
            if (*eintrag != beobachter)
                continue;
            for (Durchlauf* d = durchlaeufe_; d; d = d->naechsterDurchlauf_)
                d->vergiss(eintrag, index);
            liste_.erase(eintrag);
            return;
        }
    }

private:
    std::list<T*> liste_;
    Durchlauf* durchlaeufe_ = nullptr; // the walks under way
};

/// One walk over a list, in the order of its entries. Entries removed on the way are not visited, nor are those
/// appended since the walk began. It ends early when the list is destroyed.
template <class T>
class BeobachterListe<T>::Durchlauf {
public:
    explicit Durchlauf(BeobachterListe& liste) noexcept
        : liste_(&liste),
          naechster_(liste.liste_.begin()),
          ende_(liste.liste_.size()),
          naechsterDurchlauf_(liste.durchlaeufe_) {
        liste.durchlaeufe_ = this;
    }
    Durchlauf(const Durchlauf&) = delete;
    Durchlauf& operator=(const Durchlauf&) = delete;
    ~Durchlauf() {
        if (!liste_)
            return;
        Durchlauf** verweis = &liste_->durchlaeufe_;
        while (*verweis != this)
            verweis = &(*verweis)->naechsterDurchlauf_;
        *verweis = naechsterDurchlauf_;
    }

    /// Returns: the next observer; null at the end.
    T* naechster() noexcept {
        if (index_ == ende_)
            return nullptr;
        ++index_;
        return *naechster_++;
    }

private:
    friend class BeobachterListe;
    using Eintrag = typename std::list<T*>::iterator;

    void vergiss(Eintrag eintrag, std::size_t index) noexcept {
        if (eintrag == naechster_)
            ++naechster_;
        if (index < index_)
            --index_;
        if (index < ende_)
            --ende_;
    }

    void beende() noexcept {
        liste_ = nullptr;
        index_ = ende_;
    }

    BeobachterListe* liste_; // null when it is gone
    Eintrag naechster_;
    std::size_t index_ = 0; // of `naechster_`
    std::size_t ende_;      // index behind the last entry to visit
    Durchlauf* naechsterDurchlauf_;
};

} // namespace orvo::orvoutil
