#pragma once

#include <algorithm>
#include <cstddef>
#include <list>
#include <utility>

namespace orvo::orvoutil {

/// List of observers that may change while it is being walked: an observer may remove itself or others, add others,
/// or destroy the list.
///
/// Ownership: does not own the observers.
/// Errors: only `anhaengen` throws, `std::bad_alloc`.
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

    /// Removes the first entry of that observer; null and unknown ones are ignored.
    void entfernen(T* beobachter) {
        const auto eintrag = std::find(liste_.begin(), liste_.end(), beobachter);
        if (!beobachter || eintrag == liste_.end())
            return;
        if (durchlaeufe_)
            *eintrag = nullptr; // erased after the last walk
        else
            liste_.erase(eintrag);
    }

private:
    std::list<T*> liste_;
    Durchlauf* durchlaeufe_ = nullptr; // the walks under way
};

/// One walk over a list, in the order of its entries, without those removed or appended since it began. It ends early
/// when the list is destroyed.
template <class T>
class BeobachterListe<T>::Durchlauf {
public:
    explicit Durchlauf(BeobachterListe& liste) noexcept
        : liste_(&liste),
          naechster_(liste.liste_.begin()),
          uebrige_(liste.liste_.size()),
          naechsterDurchlauf_(std::exchange(liste.durchlaeufe_, this)) {}
    Durchlauf(const Durchlauf&) = delete;
    Durchlauf& operator=(const Durchlauf&) = delete;
    ~Durchlauf() {
        if (!liste_)
            return;
        Durchlauf** verweis = &liste_->durchlaeufe_;
        while (*verweis != this)
            verweis = &(*verweis)->naechsterDurchlauf_;
        *verweis = naechsterDurchlauf_;
        if (!liste_->durchlaeufe_)
            liste_->liste_.remove(nullptr);
    }

    /// Returns: the next observer; null at the end.
    T* naechster() noexcept {
        while (uebrige_ > 0) {
            --uebrige_;
            if (T* const beobachter = *naechster_++)
                return beobachter;
        }
        return nullptr;
    }

private:
    friend class BeobachterListe;

    void beende() noexcept {
        liste_ = nullptr;
        uebrige_ = 0;
    }

    BeobachterListe* liste_; // null when it is gone
    typename std::list<T*>::iterator naechster_;
    std::size_t uebrige_; // entries still to be visited
    Durchlauf* naechsterDurchlauf_;
};

} // namespace orvo::orvoutil
